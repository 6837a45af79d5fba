// Caret movement. The view never moves the caret itself: it works out a target and asks the
// selection range to go there; the document answers through OnSelectionChanged, so the mirror
// (m_nSelActive, m_nSelAnchor) is current when each call returns.
#include <algorithm>

#include "platform/window/caret.h"
#include "platform/window/keys.h"
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr BYTE kCR = '\r', kLF = '\n';

BOOL Extends(int mods) { return (mods & 1) ? TRUE : FALSE; }

}  // namespace

int CZentrelCtrl::Mods() {
    int mods = 0;
    if (GetKeyState(VK_SHIFT) < 0) mods |= 1;
    if (GetKeyState(VK_CONTROL) < 0) mods |= 2;
    return mods;
}

// A CR LF pair and a double-byte character are one step each.
long CZentrelCtrl::NextCharPos(long pos) {
    const long length = m_pDoc->GetLength();
    if (pos >= length) return pos;
    const auto c = static_cast<BYTE>(m_pDoc->GetCharAt(pos));
    const long next = pos + 1;
    if (next >= length) return next;
    if (c == kCR) return static_cast<BYTE>(m_pDoc->GetCharAt(next)) == kLF ? pos + 2 : next;
    return IsLeadByte(c) ? pos + 2 : next;
}

// Going back is ambiguous behind a lead-byte value, which may be a trail byte: then the walk
// starts at the last byte that cannot be a lead byte and steps forward to the position.
long CZentrelCtrl::PrevCharPos(long pos) {
    if (pos <= 1) return 0;
    const long q = pos - 2;
    const auto c = static_cast<BYTE>(m_pDoc->GetCharAt(q));
    if (!IsLeadByte(c)) return c == kCR ? q : pos - 1;
    long sure = q;
    while (sure > 0 && IsLeadByte(static_cast<BYTE>(m_pDoc->GetCharAt(sure - 1)))) --sure;
    long at = sure;
    for (;;) {
        const long next = NextCharPos(at);
        if (next >= pos || next == at) return at;
        at = next;
    }
}

void CZentrelCtrl::MoveCaret(long pos, int mods) {
    if (pos == m_nSelActive) return;
    HideCaret(m_hWnd);
    long blockStart, blockEnd;
    if (FindCollapse(pos, &blockStart, &blockEnd)) {
        // A collapsed block is one unit: the caret jumps over it, never into it.
        if (pos > m_nSelActive) {
            if (pos > blockStart) pos = blockEnd;
        } else if (pos < blockEnd) {
            pos = blockStart;
        }
    }
    m_pSelection->SetActive(pos, Extends(mods));
    ShowCaret(m_hWnd);
}

namespace {

// Left and right differ in which way a selection collapses and a step or a word goes.
struct SideStep {
    HRESULT (ISourceRange::*collapse)();
    HRESULT (ISourceText::*word)(long, long*);
    long (CZentrelCtrl::*character)(long);
};

// Without a modifier a selection collapses to that side; otherwise the caret steps from the
// active end, by a word with Ctrl.
void MoveSideways(CZentrelCtrl& view, SideStep step, int mods) {
    view.m_nGoalX = -1;
    if (view.m_nSelActive != view.m_nSelAnchor && mods == 0) {
        (view.m_pSelection->*step.collapse)();
        return;
    }
    long target = view.m_nSelActive;
    if (mods & 2)
        (view.m_pDoc->*step.word)(view.m_nSelActive, &target);
    else
        target = (view.*step.character)(view.m_nSelActive);
    view.MoveCaret(target, mods);
}

}  // namespace

void CZentrelCtrl::CharLeft(int mods) {
    MoveSideways(*this, {&ISourceRange::CollapseToLeft, &ISourceText::PrevWord, &CZentrelCtrl::PrevCharPos}, mods);
}

void CZentrelCtrl::CharRight(int mods) {
    MoveSideways(*this, {&ISourceRange::CollapseToRight, &ISourceText::NextWord, &CZentrelCtrl::NextCharPos}, mods);
}

namespace {

// The four vertical moves differ in the step and in which end of a selection they leave from.
struct VerticalStep {
    long dy;
    bool forward;
};

// Moves by dy pixels from the caret, or from the selection's far end in the direction of travel
// when a selection is left behind, keeping the pixel column of the first move of a run.
void MoveVertically(CZentrelCtrl& view, VerticalStep step, int mods) {
    long base = view.m_nSelActive;
    if (view.m_nSelActive != view.m_nSelAnchor && !(mods & 1))
        base = step.forward ? std::max(view.m_nSelActive, view.m_nSelAnchor)
                            : std::min(view.m_nSelActive, view.m_nSelAnchor);
    POINT pt;
    view.DocPointFromPosition(base, &pt);
    if (view.m_nGoalX == -1)
        view.m_nGoalX = pt.x;
    else
        pt.x = view.m_nGoalX;
    view.MoveCaret(view.PositionFromDocPoint(pt.x, pt.y + step.dy), mods);
}

}  // namespace

void CZentrelCtrl::LineUp(int mods) { MoveVertically(*this, {-m_nLineHeight, false}, mods); }
void CZentrelCtrl::LineDown(int mods) { MoveVertically(*this, {m_nLineHeight, true}, mods); }
void CZentrelCtrl::PageUp(int mods) { MoveVertically(*this, {-static_cast<long>(m_rcClient.Height()), false}, mods); }
void CZentrelCtrl::PageDown(int mods) { MoveVertically(*this, {static_cast<long>(m_rcClient.Height()), true}, mods); }

// Home goes to column 0 of the display row; with Ctrl to the start of the text.
void CZentrelCtrl::LineHome(int mods) {
    if (mods & 2) {
        m_pSelection->MoveToDocStart(Extends(mods));
        m_nGoalX = -1;
        return;
    }
    const long length = m_pDoc->GetLength();
    long target;
    if (m_nSelActive < length)
        m_Lines.FindLineAndStart(m_nSelActive, &target);
    else
        target = length - m_Lines.GetAt(m_Lines.m_nCount - 1);
    MoveCaret(target, mods);
    m_nGoalX = -1;
}

void CZentrelCtrl::LineEnd(int mods) {
    if (mods & 2)
        m_pSelection->MoveToDocEnd(Extends(mods));
    else
        MoveCaret(GetLineEnd(m_nSelActive), mods);
    m_nGoalX = -1;
}

void CZentrelCtrl::MatchBracket(int mods) { m_pSelection->MoveToMatch(Extends(mods), 0); }

// The document's structural steps, offered by the selection range when it has them.
void CZentrelCtrl::StepBack(int mods) {
    if (ComPtr<ISourceRangeStep> step = QueryAs<ISourceRangeStep>(m_pSelection, IID_ISourceRangeStep))
        step->StepBack(Extends(mods));
}

void CZentrelCtrl::StepForward(int mods) {
    if (ComPtr<ISourceRangeStep> step = QueryAs<ISourceRangeStep>(m_pSelection, IID_ISourceRangeStep))
        step->StepForward(Extends(mods));
}
