#include "src/edit/accessibletext.h"

#include <algorithm>

#include "src/view/zentrelctrl.h"

long CAccessibleText::Length() { return m_pOwner->m_pDoc ? m_pOwner->m_pDoc->GetLength() : 0; }

long CAccessibleText::Clamp(long pos) { return std::clamp(pos, 0L, Length()); }

std::string CAccessibleText::Text(long start, long end) {
    start = Clamp(start);
    end = Clamp(end);
    if (end <= start) return {};
    std::string text(static_cast<size_t>(end - start) + 1, '\0');
    m_pOwner->m_pDoc->CopyTextZ(text.data(), start, end - start);
    text.resize(static_cast<size_t>(end - start));
    return text;
}

void CAccessibleText::CharBounds(long pos, long* start, long* end) {
    *start = Clamp(pos);
    *end = *start < Length() ? m_pOwner->NextCharPos(*start) : *start;
}

void CAccessibleText::WordBounds(long pos, long* start, long* end) {
    pos = Clamp(pos);
    long active = pos, anchor = pos;
    if (pos < Length()) m_pOwner->GetWordRange(pos, &active, &anchor);
    *start = std::min(active, anchor);
    *end = std::max(active, anchor);
}

void CAccessibleText::LineBounds(long pos, long* start, long* end) {
    const long length = Length();
    const long line = m_pOwner->LineOfPosition(Clamp(pos), length, start);
    *end = std::min(length, *start + m_pOwner->Lines().GetAt(line));
}

void CAccessibleText::Selection(long* active, long* anchor) {
    *active = m_pOwner->GetSelectionStart();
    *anchor = m_pOwner->GetSelectionEnd();
}

void CAccessibleText::SetSelection(long active, long anchor) {
    if (m_pOwner->m_pDoc) m_pOwner->SetSelectionEnds(Clamp(active), Clamp(anchor));
}

BOOL CAccessibleText::ReadOnly() { return !m_pOwner->m_pDoc || m_pOwner->GetOption(OPT_READONLY); }

BOOL CAccessibleText::Replace(long start, long end, const std::string& text) {
    if (ReadOnly()) return FALSE;
    start = Clamp(start);
    end = Clamp(end);
    if (end < start) std::swap(start, end);
    return SUCCEEDED(m_pOwner->m_pDoc->ReplaceText(start, end - start, text.data(), static_cast<long>(text.size()),
                                                  &m_pOwner->m_xTextSink));
}

RECT CAccessibleText::CharRect(long pos) {
    pos = Clamp(pos);
    POINT left, right;
    m_pOwner->ClientPointFromPosition(pos, &left);
    long width = m_pOwner->m_nCharWidth;
    if (pos < Length()) {
        m_pOwner->ClientPointFromPosition(m_pOwner->NextCharPos(pos), &right);
        if (right.y == left.y && right.x > left.x) width = right.x - left.x;
    }
    return RECT{left.x, left.y, static_cast<LONG>(left.x + width), static_cast<LONG>(left.y + m_pOwner->m_nLineHeight)};
}

long CAccessibleText::PositionAt(POINT pt) { return m_pOwner->m_pDoc ? m_pOwner->PositionFromClientPoint(pt.x, pt.y) : 0; }

void CAccessibleText::ScrollIntoView(long start, long end) {
    if (m_pOwner->m_pDoc) m_pOwner->ScrollRangeIntoView(Clamp(start), Clamp(end));
}

// Tells the accessibility layer of a change of the text, with the bytes that came in; only
// while something listens, so that typing costs nothing more otherwise.
void CZentrelCtrl::TellAccessibleTextChange(long nPos, long nRemoved, long nInserted) {
    if (!HasWindow() || !AccessibilityActive(m_hWnd)) return;
    if (nRemoved > 0) NotifyAccessible(m_hWnd, {AccessibleTextEvent::Removed, nPos, nRemoved, {}, 0});
    if (nInserted > 0) NotifyAccessible(m_hWnd, {AccessibleTextEvent::Inserted, nPos, 0, m_accessible.Text(nPos, nPos + nInserted), 0});
}

void CZentrelCtrl::TellAccessibleCaret() {
    if (HasWindow() && AccessibilityActive(m_hWnd))
        NotifyAccessible(m_hWnd, {AccessibleTextEvent::Caret, m_nSelActive, 0, {}, m_nSelAnchor});
}
