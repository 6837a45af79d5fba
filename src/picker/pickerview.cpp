// The view's side of the picker: the window that lives while the view has the focus, the link
// from the caret to the list, placing the window beside the token, and bringing a pick into the
// document.
#include "platform/window/controls.h"
#include "platform/window/input.h"
#include "platform/window/popup.h"
#include "src/picker/pickerwindow.h"
#include "src/view/zentrelctrl.h"

CHTMLSyntaxPicker& CZentrelCtrl::Picker() {
    if (!m_pPicker) {
        m_pPicker = std::make_shared<CHTMLSyntaxPicker>();
        m_pPicker->SetControl(this);
    }
    return *m_pPicker;
}

void CZentrelCtrl::CreatePickerWindow() {
    if (m_pDoc && HasWindow()) Picker().Create(m_hWnd);
}

void CZentrelCtrl::DestroyPickerWindow() {
    HidePicker();
    if (m_pPicker) m_pPicker->Destroy();
}

BOOL CZentrelCtrl::IsPickerVisible() const { return m_bPickerOpen ? TRUE : FALSE; }

BOOL CZentrelCtrl::PickerHasCurrentRow() const { return m_pPicker && m_pPicker->HasSelection(); }

BOOL CZentrelCtrl::PickerNextOption() { return m_pPicker ? m_pPicker->NextOption() : FALSE; }

void CZentrelCtrl::ShowPicker() { PlacePicker(UpdatePicker(), TRUE); }

void CZentrelCtrl::HidePicker() {
    if (m_pPicker && m_pPicker->GetSafeHwnd() && m_bPickerOpen) ShowWindow(m_pPicker->GetSafeHwnd(), SW_HIDE);
    m_bPickerOpen = 0;
}

void CZentrelCtrl::ForwardToPicker(const MSG& msg) {
    if (m_pPicker && msg.message == WM_KEYDOWN) m_pPicker->OnListKey(static_cast<UINT>(msg.wParam));
}

namespace {

// The format of a value's rows: in double quotes when the value is empty or opens with one, in
// single quotes when it opens with one, and bare otherwise.
std::string ValueFormat(const std::string& value) {
    if (value.empty() || value[0] == '"') return "\"%s\"";
    if (value[0] == '\'') return "'%s'";
    return {};
}

ComPtr<ISourceSchema> FindSchemaChild(ISourceSchema* parent, const std::string& name) {
    ComPtr<ISourceSchema> child;
    if (!parent || parent->FindChild(name.c_str(), child.Out()) != 0) return nullptr;
    return child;
}

}  // namespace

long CZentrelCtrl::UpdatePicker() {
    const long caret = m_nSelActive;
    if (!m_pDoc || !m_pPicker || !m_pPicker->GetSafeHwnd()) return caret;
    const ComPtr<ISourceSchema> root = GetSchemaRoot();
    if (!root) return 0;
    const TagContext ctx = AnalyzeTag(caret);
    CHTMLSyntaxPicker& picker = *m_pPicker;
    switch (ctx.context) {
        case CTX_TEXT:
            picker.SetPage(PAGE_TAG, root.Get(), "<%s>");
            picker.SelectMatching({});
            break;
        case CTX_TAG:
        case CTX_TAGNAME: {
            const bool closing = !ctx.tag.empty() && ctx.tag[0] == '/';
            picker.SetPage(PAGE_TAG, root.Get(), closing ? "/%s" : "%s");
            if (!ctx.tag.empty()) picker.SelectMatching(ctx.tag);
            break;
        }
        case CTX_ATTRIBUTE:
            if (const auto tag = FindSchemaChild(root.Get(), ctx.tag)) {
                picker.SetPage(PAGE_ATTR, tag.Get(), {});
                picker.SelectMatching(ctx.attribute);
            }
            break;
        case CTX_VALUE:
            if (const auto tag = FindSchemaChild(root.Get(), ctx.tag)) {
                if (const auto attr = FindSchemaChild(tag.Get(), ctx.attribute))
                    picker.SetPage(PageIndexOfType(attr->GetType()), attr.Get(), ValueFormat(ctx.value));
                picker.SelectMatching(ctx.value);
            }
            break;
        default: break;
    }
    return ctx.rangeStart;
}

void CZentrelCtrl::PlacePicker(long nPosition, BOOL bShow) {
    const HWND popup = m_pPicker ? m_pPicker->GetSafeHwnd() : nullptr;
    if (!popup || (!bShow && !m_bPickerOpen)) return;
    POINT top{}, below{};
    ClientPointFromPosition(nPosition, &top);
    below = POINT{top.x, top.y + static_cast<LONG>(m_nLineHeight)};
    ClientToScreen(m_hWnd, &top);
    ClientToScreen(m_hWnd, &below);
    RECT size{};
    GetClientRect(popup, &size);
    const LONG cx = size.Width(), cy = size.Height();
    const RECT desk = GetDesktopRect();
    const RECT tries[] = {{top.x, below.y, top.x + cx, below.y + cy},
                          {top.x - cx, below.y, top.x, below.y + cy},
                          {top.x, top.y - cy, top.x + cx, top.y},
                          {top.x - cx, top.y - cy, top.x, top.y}};
    RECT place = tries[0];
    for (const RECT& rc : tries)
        if (rc.left >= desk.left && rc.top >= desk.top && rc.right <= desk.right && rc.bottom <= desk.bottom) {
            place = rc;
            break;
        }
    MoveWindow(popup, static_cast<int>(place.left), static_cast<int>(place.top), static_cast<int>(cx), static_cast<int>(cy), TRUE);
    if (bShow) {
        ShowWindow(popup, SW_SHOW);
        m_bPickerOpen = 1;
    }
}

BOOL CZentrelCtrl::AcceptPick() {
    if (!m_pDoc || !m_pPicker || !m_pPicker->GetSafeHwnd() || !m_bPickerOpen) return FALSE;
    std::string value;
    if (!m_pPicker->GetValue(value)) return FALSE;
    if (value.empty()) return TRUE;
    const TagContext ctx = AnalyzeTag(m_nSelActive);
    const long start = ctx.rangeStart, end = ctx.rangeEnd;
    if (value == kMoreRow) {
        std::string current;
        if (start < end && start < m_pDoc->GetLength()) {
            current.resize(static_cast<size_t>(end - start));
            m_pDoc->CopyText(current.data(), start, end - start);
        }
        CHTMLSyntaxPickPage* page = m_pPicker->ActivePage();
        if (!page || !page->RunMore(value, current)) return FALSE;
        // The host had the thread during the request and may have taken the document away.
        if (!m_pDoc || !m_pSelection) return FALSE;
    }
    m_pSelection->SetRange(start, end);
    m_pSelection->ReplaceText(value.c_str(), static_cast<long>(value.size()), &m_xTextSink);
    return TRUE;
}

BOOL CZentrelCtrl::ShowSyntaxPicker() {
    if (!m_pDoc) return FALSE;
    if (!m_bPickerOpen) ShowPicker();
    return TRUE;
}

BOOL CZentrelCtrl::HideSyntaxPicker() {
    if (!m_pDoc) return FALSE;
    HidePicker();
    m_bCompletionHeld = 1;
    return TRUE;
}
