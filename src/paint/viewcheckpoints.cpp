// The view's side of the checkpoints of long rows: what a walk along a row depends on, besides
// the text and its classes, read from the view at the start of each walk.
#include <algorithm>

#include "src/view/zentrelctrl.h"

CRowCheckpoints& CZentrelCtrl::RowCheckpoints(DWORD dwOptions) {
    CheckpointKey key;
    key.options = dwOptions;
    key.tabPixels = m_nTabPixels;
    key.tabSize = m_nTabSize;
    key.charWidth = m_nCharWidth;
    key.highlightStyle = m_nHighlightStyle;
    key.syntax = m_pSyntax;
    key.tokens = m_pTokens;
    key.styles = m_Styles;
    m_RowCheckpoints.Sync(key);
    // A selected CR is painted even where the selection does not show: the painted states
    // depend on the selected bytes either way.
    m_RowCheckpoints.SyncSelection(std::min(m_nSelActive, m_nSelAnchor), std::max(m_nSelActive, m_nSelAnchor),
                                   SelectionShows(dwOptions));
    return m_RowCheckpoints;
}
