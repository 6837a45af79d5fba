// Key routing: the keys the editor claims ahead of the host, and the key commands.
#include "platform/window/keys.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr UINT kBeep = static_cast<UINT>(-1);

// Keys that always go to the control itself as WM_KEYDOWN, whatever the host's shortcuts.
bool IsEditorKey(WPARAM vk) {
    return vk == VK_BACK || (vk >= VK_PRIOR && vk <= VK_DOWN) || vk == VK_INSERT || vk == VK_DELETE;
}

}  // namespace

LRESULT CZentrelCtrl::PreTranslateMessage(const MSG& msg) {
    if (msg.message != WM_KEYDOWN) return 0;
    m_bCompletionHeld = 0;
    m_dwLastKey = GetTickCount();
    const WPARAM vk = msg.wParam;
    if (vk < VK_BACK || vk > VK_DELETE) return 0;
    if (IsEditorKey(vk)) {
        SendMessage(m_hWnd, WM_KEYDOWN, msg.wParam, msg.lParam);
        return 1;
    }
    const int mods = Mods();
    switch (vk) {
        case VK_TAB:
            if (GetOption(OPT_READONLY) || !m_pDoc) return 0;  // the host may move the focus with Tab
            TabKey(mods);
            return 1;
        case VK_RETURN:
            if (mods == 0 && m_pDoc && IsPickerVisible() && PickerHasCurrentRow()) {
                AcceptPick();
                ShowPicker();
                return 1;
            }
            return 0;
        case VK_ESCAPE:
            HidePicker();
            m_bCompletionHeld = 1;
            return 1;
        case VK_SPACE:
            if (!m_pDoc) return 0;
            if (mods == 2) {
                CompletionKey();
                return 1;
            }
            if (mods == 0 && IsPickerVisible() && PickerHasCurrentRow()) {
                AcceptPick();
                ShowPicker();
            }
            return 0;  // the Space is typed as well
        default:
            return 0;
    }
}

// Tab types a tab into an empty selection and indents the lines of a selection; Shift+Tab
// unindents them. With Ctrl it does nothing.
void CZentrelCtrl::TabKey(int mods) {
    const bool empty = m_pSelection->IsEmpty() != FALSE;
    if (mods == 0 && empty) {
        SendMessage(m_hWnd, WM_CHAR, '\t', 0);
    } else if (mods == 0) {
        m_pSelection->IndentLines(&m_xTextSink);
        UpdateWindow(m_hWnd);
    } else if (mods == 1 && !empty) {
        m_pSelection->UnindentLines(&m_xTextSink);
        UpdateWindow(m_hWnd);
    }
}

BOOL CZentrelCtrl::OnKeyDown(UINT nChar, UINT, UINT) {
    // Every command reaches into the document; without one the keys take the default path.
    if (!m_pDoc) return FALSE;
    const int mods = Mods();
    const bool keySelection = GetOption(OPT_KEYSELECTIONENABLE) != FALSE;
    const bool readOnly = GetOption(OPT_READONLY) != FALSE;
    const auto toPicker = [&]() {
        if (!IsPickerVisible()) return false;
        ForwardToPicker(MSG{m_hWnd, WM_KEYDOWN, nChar, 0});
        return true;
    };
    const auto moveKey = [&](void (CZentrelCtrl::*move)(int), bool pickerTakesIt) {
        if (!keySelection) return FALSE;
        if (pickerTakesIt) {
            if (toPicker()) return TRUE;
        } else if (IsPickerVisible()) {
            HidePicker();
        }
        (this->*move)(mods);
        return TRUE;
    };
    const bool ctrl = (mods & 2) != 0;
    switch (nChar) {
        case VK_BACK:
        case VK_DELETE:
            if (readOnly) {
                MessageBeep(kBeep);
                return TRUE;
            }
            if (nChar == VK_BACK)
                Backspace(mods);
            else
                DeleteForward(mods);
            return TRUE;
        case VK_TAB:
            if (readOnly || mods > 1 || (mods == 1 && m_pSelection->IsEmpty())) return FALSE;
            TabKey(mods);
            return TRUE;
        case VK_PAUSE:
            if (mods != 0) return FALSE;
            ToggleAutoConvert();
            return TRUE;
        case VK_PRIOR: return moveKey(&CZentrelCtrl::PageUp, true);
        case VK_NEXT: return moveKey(&CZentrelCtrl::PageDown, true);
        case VK_END: return moveKey(&CZentrelCtrl::LineEnd, true);
        case VK_HOME: return moveKey(&CZentrelCtrl::LineHome, true);
        case VK_LEFT: return moveKey(&CZentrelCtrl::CharLeft, false);
        case VK_UP: return moveKey(&CZentrelCtrl::LineUp, true);
        case VK_RIGHT: return moveKey(&CZentrelCtrl::CharRight, false);
        case VK_DOWN: return moveKey(&CZentrelCtrl::LineDown, true);
        case VK_INSERT:
            if (mods == 1) {
                if (readOnly) return FALSE;
                Paste();
            } else if (mods == 2) {
                Copy();
            } else if (mods == 0) {
                ToggleOverwrite();
            } else {
                return FALSE;
            }
            return TRUE;
        case VK_OEM_PLUS:
            if (!ctrl || !GetOption(OPT_COLLAPSEBLOCKENABLE)) return FALSE;
            if (!Expand(mods == 2 ? TRUE : FALSE)) MessageBeep(kBeep);
            return TRUE;
        case VK_OEM_MINUS:
            if (!ctrl || !GetOption(OPT_COLLAPSEBLOCKENABLE)) return FALSE;
            if (!Collapse()) MessageBeep(kBeep);
            return TRUE;
        case VK_OEM_COMMA:
        case VK_OEM_PERIOD:
        case VK_OEM_6:
            if (!ctrl || !keySelection) return FALSE;
            if (nChar == VK_OEM_COMMA)
                StepBack(mods);
            else if (nChar == VK_OEM_PERIOD)
                StepForward(mods);
            else
                MatchBracket(mods);
            return TRUE;
        default:
            break;
    }
    if (nChar >= '0' && nChar <= '9' && ctrl && GetOption(OPT_BOOKMARKVISIBLE)) {
        const int n = static_cast<int>(nChar - '0');
        if (mods == 2)
            GotoNumberedBookmark(n);
        else if (!ToggleNumberedBookmark(n))
            MessageBeep(kBeep);
        return TRUE;
    }
    return FALSE;
}
