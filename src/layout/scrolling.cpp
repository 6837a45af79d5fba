// Scroll position and caret placement.
#include "src/view/zentrelctrl.h"

void CZentrelCtrl::ClampScrollPosition() {
    long limit = m_Lines.m_nCount - 1;
    m_nTopLine = std::max(0L, std::min(m_nTopLine, limit));
    if (GetOption(OPT_WORDWRAP)) m_nLeftPixel = 0;
}

// The caret, the scroll bars and scrolling into view come with the window's caret and scroll
// bar services; until then the view stays where the host scrolled it.
void CZentrelCtrl::PlaceCaret() {}
void CZentrelCtrl::ScrollCaretIntoView() {}
void CZentrelCtrl::UpdateScrollBars(long, long) {}
