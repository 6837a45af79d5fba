// Tag hints: the one tooltip over the text, whose text is asked for when it is about to show. A
// syntax item of kind 2 gives a short hint; anything else gives the description of the tag or
// attribute under the mouse, or with Ctrl where it is defined. Shift keeps the description away.
#include <algorithm>

#include "platform/window/input.h"
#include "src/resources/strings.h"
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"

namespace {

// The kind of syntax item that offers a hint.
constexpr long kHintItemKind = 2;

// The text of the last description, shared by every control: the tip only points at it, so it
// has to outlive the request.
std::string& SharedTipText() {
    static auto* text = new std::string;
    return *text;
}

// Copies at most 79 bytes of a hint into the request's own buffer, never half a character.
void CopyHint(const std::string& hint, NMTTDISPINFO* info) {
    const size_t limit = sizeof info->szText - 1;
    size_t n = 0;
    while (n < hint.size() && hint[n]) {
        const size_t step = IsLeadByte(static_cast<BYTE>(hint[n])) && n + 1 < hint.size() ? 2 : 1;
        if (n + step > limit) break;
        n += step;
    }
    std::copy_n(hint.data(), n, info->szText);
    info->szText[n] = 0;
}

// The object a documentation item stands for, one step along its link; the item itself where it
// is final or has no link.
ComPtr<ISourceDocItem> FollowDocLink(ComPtr<ISourceDocItem> doc) {
    ComPtr<ISourceDocLink> link;
    if (FAILED(doc->QueryInterface(IID_ISourceDocLink, reinterpret_cast<void**>(link.Out()))) || !link) return doc;
    if (link->IsFinal()) return doc;
    ComPtr<IUnknown> next;
    if (FAILED(link->GetTarget(next.Out())) || !next) return doc;
    ComPtr<ISourceDocItem> target;
    if (FAILED(next->QueryInterface(IID_ISourceDocItem, reinterpret_cast<void**>(target.Out()))) || !target) return nullptr;
    return target;
}

}  // namespace

// The tip is made with the window; it is switched off while neither hints nor descriptions are on.
BOOL CZentrelCtrl::CreateToolTip() {
    if (!m_tooltip.Create(m_hWnd)) return FALSE;
    m_tooltip.AddTool(kToolId, RECT{});
    UpdateToolTipActivation();
    return TRUE;
}

void CZentrelCtrl::UpdateToolTipActivation() {
    if (m_tooltip.GetSafeHwnd()) m_tooltip.Activate(GetOption(OPT_AUTOHINT) || GetOption(OPT_AUTODOC));
}

// Until the mouse moves, the tool is the text area; then, while no tip shows, a box a character
// wide on each side of the mouse and one line high, so that a tip comes up where the mouse rests.
void CZentrelCtrl::SetToolRectToTextArea() {
    if (!m_tooltip.GetSafeHwnd()) return;
    RECT rc = m_rcClient;
    rc.left = m_nIndentSize;
    m_tooltip.SetToolRect(kToolId, rc);
}

void CZentrelCtrl::MoveToolRect(int x, int y) {
    if (m_bTipShown || !m_tooltip.GetSafeHwnd()) return;
    const auto top = static_cast<LONG>((y >= 0 ? y : y - m_nLineHeight + 1) / m_nLineHeight * m_nLineHeight);
    const auto half = static_cast<LONG>(m_nCharWidth);
    m_tooltip.SetToolRect(kToolId, RECT{x - half, top, x + half, top + static_cast<LONG>(m_nLineHeight)});
}

void CZentrelCtrl::RelayToToolTip(UINT message, WPARAM wParam, LPARAM lParam) {
    m_tooltip.RelayEvent(MSG{m_hWnd, message, wParam, lParam});
}

LRESULT CZentrelCtrl::OnNotify(WPARAM id, NMHDR* pNMHDR) {
    LRESULT result = 0;
    if (!pNMHDR || pNMHDR->hwndFrom != m_tooltip.GetSafeHwnd()) return 0;
    switch (pNMHDR->code) {
        case TTN_NEEDTEXT: OnToolTipNeedText(static_cast<UINT>(id), pNMHDR, &result); break;
        case TTN_SHOW: OnToolTipShow(static_cast<UINT>(id), pNMHDR, &result); break;
        case TTN_POP: OnToolTipPop(static_cast<UINT>(id), pNMHDR, &result); break;
        default: break;
    }
    return result;
}

BOOL CZentrelCtrl::OnToolTipNeedText(UINT, NMHDR* pNMHDR, LRESULT* pResult) {
    auto* info = reinterpret_cast<NMTTDISPINFO*>(pNMHDR);
    *pResult = 0;
    if (!m_pDoc || !m_pSyntax || pNMHDR->idFrom != kToolId) return FALSE;
    POINT pt;
    if (!GetCursorPos(&pt) || !ScreenToClient(m_hWnd, &pt) || pt.x < m_nIndentSize) return FALSE;
    const long pos = PositionFromClientPoint(pt.x, pt.y);
    if (pos >= m_pDoc->GetLength()) return FALSE;
    long itemStart = 0;
    ComPtr<ISourceSyntaxItem> item;
    if (FAILED(m_pSyntax->GetItemAt(pos, &itemStart, item.Out())) || !item) return FALSE;
    const bool hint = GetOption(OPT_AUTOHINT) && item->GetItemKind() == kHintItemKind;
    const BOOL supplied = hint ? SupplyHintText(item.Get(), info) : SupplyDescriptionText(pos, info);
    return static_cast<BOOL>(*pResult = supplied);
}

BOOL CZentrelCtrl::SupplyHintText(ISourceSyntaxItem* pItem, NMTTDISPINFO* pInfo) {
    ComPtr<ISourceHintItem> hint;
    if (FAILED(pItem->QueryInterface(IID_ISourceHintItem, reinterpret_cast<void**>(hint.Out()))) || !hint) return FALSE;
    std::string text;
    hint->GetHintText(&text);
    CopyHint(text, pInfo);
    pInfo->lpszText = pInfo->szText;
    m_bDocTip = FALSE;
    return TRUE;
}

// The description, or with Ctrl the name of where the thing is defined; nothing with Shift.
BOOL CZentrelCtrl::SupplyDescriptionText(long nPos, NMTTDISPINFO* pInfo) {
    if (!GetOption(OPT_AUTODOC)) return FALSE;
    ComPtr<ISourceDocItem> doc;
    if (FAILED(m_pSyntax->GetDocItemAt(nPos, doc.Out())) || !doc) return FALSE;
    doc = FollowDocLink(std::move(doc));
    if (!doc) return FALSE;
    std::string& text = SharedTipText();
    switch (Mods()) {
        case 0:
            text.clear();
            doc->GetDescription(&text);
            if (text.empty()) text = LoadString(171);
            break;
        case 2: {
            long id = 0;
            std::string source;
            doc->GetSourceId(&id);
            if (FAILED(doc->GetSourceName(id, &source))) return FALSE;
            text = source.empty() ? LoadString(172) : FormatMessage(LoadString(170), {source});
            break;
        }
        default: return FALSE;
    }
    pInfo->lpszText = text.c_str();
    m_bDocTip = TRUE;
    return TRUE;
}

BOOL CZentrelCtrl::OnToolTipShow(UINT, NMHDR*, LRESULT* pResult) {
    m_bTipShown = TRUE;
    *pResult = TRUE;
    return TRUE;
}

BOOL CZentrelCtrl::OnToolTipPop(UINT, NMHDR*, LRESULT* pResult) {
    m_bTipShown = FALSE;
    *pResult = TRUE;
    return TRUE;
}
