#include "platform/qt/qtkeys.h"

#include <cstring>

namespace {

struct CKeyPair {
    int qtKey;
    int vk;
};

constexpr CKeyPair kNamedKeys[] = {
    {Qt::Key_Backspace, VK_BACK},   {Qt::Key_Tab, VK_TAB},         {Qt::Key_Backtab, VK_TAB},
    {Qt::Key_Return, VK_RETURN},    {Qt::Key_Enter, VK_RETURN},    {Qt::Key_Escape, VK_ESCAPE},
    {Qt::Key_Space, VK_SPACE},      {Qt::Key_PageUp, VK_PRIOR},    {Qt::Key_PageDown, VK_NEXT},
    {Qt::Key_End, VK_END},          {Qt::Key_Home, VK_HOME},       {Qt::Key_Left, VK_LEFT},
    {Qt::Key_Up, VK_UP},            {Qt::Key_Right, VK_RIGHT},     {Qt::Key_Down, VK_DOWN},
    {Qt::Key_Insert, VK_INSERT},    {Qt::Key_Delete, VK_DELETE},   {Qt::Key_Shift, VK_SHIFT},
    {Qt::Key_Control, VK_CONTROL},  {Qt::Key_Alt, VK_MENU},        {Qt::Key_Pause, VK_PAUSE},
    {Qt::Key_CapsLock, VK_CAPITAL}, {Qt::Key_NumLock, VK_NUMLOCK}, {Qt::Key_ScrollLock, VK_SCROLL},
};

// Punctuation by character: both characters of a key give its code.
constexpr struct {
    const char* chars;
    int vk;
} kPunctuation[] = {
    {";:", VK_OEM_1}, {"=+", VK_OEM_PLUS}, {",<", VK_OEM_COMMA}, {"-_", VK_OEM_MINUS},
    {".>", VK_OEM_PERIOD}, {"/?", VK_OEM_2}, {"`~", VK_OEM_3}, {"[{", VK_OEM_4},
    {"\\|", VK_OEM_5}, {"]}", VK_OEM_6}, {"'\"", VK_OEM_7},
};

// The shifted digits of a US keyboard, in the order of the digit keys 1..9, 0.
constexpr char kShiftedDigits[] = "!@#$%^&*()";

int KeypadKey(int key) {
    if (key >= Qt::Key_0 && key <= Qt::Key_9) return VK_NUMPAD0 + (key - Qt::Key_0);
    switch (key) {
    case Qt::Key_Asterisk: return VK_MULTIPLY;
    case Qt::Key_Plus: return VK_ADD;
    case Qt::Key_Minus: return VK_SUBTRACT;
    case Qt::Key_Period: return VK_DECIMAL;
    case Qt::Key_Slash: return VK_DIVIDE;
    default: return 0;
    }
}

int PunctuationKey(int key) {
    if (key < 0x21 || key > 0x7E) return 0;
    const char ch = static_cast<char>(key);
    if (const char* p = std::strchr(kShiftedDigits, ch)) {
        const int index = static_cast<int>(p - kShiftedDigits);
        return index == 9 ? '0' : '1' + index;
    }
    for (const auto& entry : kPunctuation)
        if (std::strchr(entry.chars, ch)) return entry.vk;
    return 0;
}

}  // namespace

int VirtualKeyFromQt(int key, Qt::KeyboardModifiers modifiers) {
    if (modifiers & Qt::KeypadModifier) {
        if (int vk = KeypadKey(key)) return vk;
    }
    if ((key >= Qt::Key_A && key <= Qt::Key_Z) || (key >= Qt::Key_0 && key <= Qt::Key_9)) return key;
    if (key >= Qt::Key_F1 && key <= Qt::Key_F24) return VK_F1 + (key - Qt::Key_F1);
    for (const CKeyPair& pair : kNamedKeys)
        if (pair.qtKey == key) return pair.vk;
    return PunctuationKey(key);
}

WPARAM MouseKeysFromQt(Qt::MouseButtons buttons, Qt::KeyboardModifiers modifiers) {
    WPARAM keys = 0;
    if (buttons & Qt::LeftButton) keys |= MK_LBUTTON;
    if (buttons & Qt::RightButton) keys |= MK_RBUTTON;
    if (buttons & Qt::MiddleButton) keys |= MK_MBUTTON;
    if (modifiers & Qt::ShiftModifier) keys |= MK_SHIFT;
    if (modifiers & Qt::ControlModifier) keys |= MK_CONTROL;
    return keys;
}

int ControlCharFromQt(int key, Qt::KeyboardModifiers modifiers) {
    if (!(modifiers & Qt::ControlModifier) || (modifiers & Qt::AltModifier)) return 0;
    if (key >= Qt::Key_A && key <= Qt::Key_Z) return key - Qt::Key_A + 1;
    return 0;
}
