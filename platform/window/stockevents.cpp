// The stock events that a control raises from its window's input: KeyDown, KeyUp, KeyPress,
// MouseDown, MouseUp, MouseMove, Click and DblClick. The modifier word has Shift 1, Ctrl 2 and
// Alt 4; the button word left 1, right 2 and middle 4.
#include "platform/window/keys.h"
#include "platform/window/olecontrol.h"

namespace {

short ShiftState() {
    short shift = 0;
    if (GetKeyState(VK_SHIFT) < 0) shift |= 1;
    if (GetKeyState(VK_CONTROL) < 0) shift |= 2;
    if (GetKeyState(VK_MENU) < 0) shift |= 4;
    return shift;
}

short ButtonsHeld(WPARAM keys) {
    short buttons = 0;
    if (keys & MK_LBUTTON) buttons |= 1;
    if (keys & MK_RBUTTON) buttons |= 2;
    if (keys & MK_MBUTTON) buttons |= 4;
    return buttons;
}

// The button of a button message, 0 for others.
short ButtonOf(UINT message) {
    switch (message) {
        case WM_LBUTTONDOWN: case WM_LBUTTONUP: case WM_LBUTTONDBLCLK: return 1;
        case WM_RBUTTONDOWN: case WM_RBUTTONUP: case WM_RBUTTONDBLCLK: return 2;
        case WM_MBUTTONDOWN: case WM_MBUTTONUP: case WM_MBUTTONDBLCLK: return 4;
        default: return 0;
    }
}

}  // namespace

BOOL COleControl::FireStockEvents(UINT message, WPARAM wParam, LPARAM lParam) {
    const short shift = ShiftState();
    const auto mouse = [&](DISPID dispid, short button) {
        FireEvent(dispid, {Variant::Short(button), Variant::Short(shift), Variant::Long(GET_X_LPARAM(lParam)),
                           Variant::Long(GET_Y_LPARAM(lParam))});
    };
    switch (message) {
        case WM_KEYDOWN:
        case WM_KEYUP: {
            int16_t key = static_cast<int16_t>(wParam);
            FireEvent(message == WM_KEYDOWN ? DISPID_KEYDOWN : DISPID_KEYUP, {Variant::RefShort(&key), Variant::Short(shift)});
            return TRUE;
        }
        case WM_CHAR: {
            int16_t ascii = static_cast<int16_t>(wParam & 0xFF);
            FireEvent(DISPID_KEYPRESS, {Variant::RefShort(&ascii)});
            return TRUE;
        }
        case WM_LBUTTONDOWN: case WM_RBUTTONDOWN: case WM_MBUTTONDOWN:
            mouse(DISPID_MOUSEDOWN, ButtonOf(message));
            return TRUE;
        case WM_LBUTTONUP: case WM_RBUTTONUP: case WM_MBUTTONUP: {
            mouse(DISPID_MOUSEUP, ButtonOf(message));
            // A left button that goes up over the window is a click.
            RECT client;
            const POINT pt{GET_X_LPARAM(lParam), GET_Y_LPARAM(lParam)};
            if (message == WM_LBUTTONUP && GetClientRect(m_hWnd, &client) && PtInRect(client, pt))
                FireEvent(DISPID_CLICK, {});
            return TRUE;
        }
        case WM_LBUTTONDBLCLK:
            FireEvent(DISPID_DBLCLICK, {});
            return TRUE;
        case WM_MOUSEMOVE:
            mouse(DISPID_MOUSEMOVE, ButtonsHeld(wParam));
            return TRUE;
        default:
            return FALSE;
    }
}
