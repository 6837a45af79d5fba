// Translation of Qt's keys, buttons and modifiers into virtual-key codes and mouse-key flags.
#pragma once
#include <Qt>

#include "platform/window/keys.h"

// The virtual-key code of a Qt key, or 0 for a key without one. Shifted punctuation maps to
// its key on a US keyboard.
int VirtualKeyFromQt(int key, Qt::KeyboardModifiers modifiers);
// MK_ flags for the buttons held and the Shift and Ctrl keys.
WPARAM MouseKeysFromQt(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers);
// The control character that Ctrl with this key types (Ctrl+A is 1), or 0.
int ControlCharFromQt(int key, Qt::KeyboardModifiers modifiers);
