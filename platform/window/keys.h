// Input constants beyond those of window.h: virtual-key codes, mouse-key flags, the extra mouse
// and key messages a backend delivers, scroll bar codes, and helpers to unpack their arguments.
// Numbers are the classic ones, so that control code written against them reads the same.
#pragma once
#include <string>

#include "platform/window/window.h"

// Virtual-key codes.
constexpr int VK_RBUTTON = 0x02;
constexpr int VK_MBUTTON = 0x04;
constexpr int VK_BACK = 0x08;
constexpr int VK_TAB = 0x09;
constexpr int VK_RETURN = 0x0D;
constexpr int VK_PAUSE = 0x13;
constexpr int VK_CAPITAL = 0x14;
constexpr int VK_ESCAPE = 0x1B;
constexpr int VK_SPACE = 0x20;
constexpr int VK_PRIOR = 0x21;  // Page Up
constexpr int VK_NEXT = 0x22;   // Page Down
constexpr int VK_END = 0x23;
constexpr int VK_HOME = 0x24;
constexpr int VK_LEFT = 0x25;
constexpr int VK_UP = 0x26;
constexpr int VK_RIGHT = 0x27;
constexpr int VK_DOWN = 0x28;
constexpr int VK_INSERT = 0x2D;
constexpr int VK_DELETE = 0x2E;
// '0'..'9' are 0x30..0x39 and 'A'..'Z' are 0x41..0x5A, as their characters.
constexpr int VK_NUMPAD0 = 0x60;  // ..VK_NUMPAD0 + 9
constexpr int VK_MULTIPLY = 0x6A;
constexpr int VK_ADD = 0x6B;
constexpr int VK_SUBTRACT = 0x6D;
constexpr int VK_DECIMAL = 0x6E;
constexpr int VK_DIVIDE = 0x6F;
constexpr int VK_F1 = 0x70;  // ..VK_F1 + 23 for F24
constexpr int VK_NUMLOCK = 0x90;
constexpr int VK_SCROLL = 0x91;
// Punctuation keys, named after their place on a US keyboard.
constexpr int VK_OEM_1 = 0xBA;       // ; :
constexpr int VK_OEM_PLUS = 0xBB;    // = +
constexpr int VK_OEM_COMMA = 0xBC;   // , <
constexpr int VK_OEM_MINUS = 0xBD;   // - _
constexpr int VK_OEM_PERIOD = 0xBE;  // . >
constexpr int VK_OEM_2 = 0xBF;       // / ?
constexpr int VK_OEM_3 = 0xC0;       // ` ~
constexpr int VK_OEM_4 = 0xDB;       // [ {
constexpr int VK_OEM_5 = 0xDC;       // \ |
constexpr int VK_OEM_6 = 0xDD;       // ] }
constexpr int VK_OEM_7 = 0xDE;       // ' "

// Mouse-key flags in wParam of the mouse messages.
constexpr WPARAM MK_LBUTTON = 0x0001;
constexpr WPARAM MK_RBUTTON = 0x0002;
constexpr WPARAM MK_SHIFT = 0x0004;
constexpr WPARAM MK_CONTROL = 0x0008;
constexpr WPARAM MK_MBUTTON = 0x0010;

// Double clicks of the other two buttons.
constexpr UINT WM_RBUTTONDBLCLK = 0x0206;
constexpr UINT WM_MBUTTONDBLCLK = 0x0209;

// Sent by a backend before each WM_KEYDOWN, with the same wParam and lParam, so that the window
// can claim a key ahead of the host. A nonzero result claims it: neither WM_KEYDOWN nor the
// WM_CHAR of that key is delivered (the handler may send itself WM_KEYDOWN if it wants one).
// For Tab, an unclaimed key goes to the toolkit's focus navigation instead of the window.
constexpr UINT WM_PRETRANSLATEKEY = 0x8001;

// A character that the process code page cannot hold, as one Unicode code point in wParam.
constexpr UINT WM_UNICHAR = 0x0109;

// Sent by a backend whose input method asks for the text around the caret: lParam points to a
// SurroundingText, which the window fills with the text of the caret's line (multi-byte, at most
// a few hundred bytes each side) and the caret's offset in it. A nonzero result says it did.
constexpr UINT WM_GETSURROUNDINGTEXT = 0x8002;
struct SurroundingText {
    std::string text;
    long caret = 0;
};

// Key message lParam bits.
constexpr LPARAM KF_REPEAT_BIT = LPARAM(1) << 30;  // the key was already down
constexpr LPARAM KF_UP_BIT = LPARAM(1) << 31;      // the key is being released

// One wheel notch. A nonzero result of WM_MOUSEWHEEL leaves the wheel to the default handling,
// which moves the vertical scroll bar (and so sends WM_VSCROLL).
constexpr int WHEEL_DELTA = 120;

// Scroll bar codes in the low word of WM_HSCROLL and WM_VSCROLL; the thumb's position is in the
// high word for SB_THUMBPOSITION and SB_THUMBTRACK.
constexpr int SB_LINEUP = 0;
constexpr int SB_LINELEFT = 0;
constexpr int SB_LINEDOWN = 1;
constexpr int SB_LINERIGHT = 1;
constexpr int SB_PAGEUP = 2;
constexpr int SB_PAGELEFT = 2;
constexpr int SB_PAGEDOWN = 3;
constexpr int SB_PAGERIGHT = 3;
constexpr int SB_THUMBPOSITION = 4;
constexpr int SB_THUMBTRACK = 5;
constexpr int SB_TOP = 6;
constexpr int SB_LEFT = 6;
constexpr int SB_BOTTOM = 7;
constexpr int SB_RIGHT = 7;
constexpr int SB_ENDSCROLL = 8;

inline WPARAM MAKEWPARAM(int lo, int hi) {
    return static_cast<WPARAM>(static_cast<uint32_t>((lo & 0xFFFF) | ((hi & 0xFFFF) << 16)));
}
// Signed client coordinates of a mouse message (they are negative while the mouse is captured
// left of or above the window).
inline int GET_X_LPARAM(LPARAM lp) { return static_cast<int16_t>(LOWORD(static_cast<uintptr_t>(lp))); }
inline int GET_Y_LPARAM(LPARAM lp) { return static_cast<int16_t>(HIWORD(static_cast<uintptr_t>(lp))); }
inline int GET_WHEEL_DELTA_WPARAM(WPARAM wp) { return static_cast<int16_t>(HIWORD(wp)); }
inline int GET_KEYSTATE_WPARAM(WPARAM wp) { return LOWORD(wp); }
