// What the document tells the view: changes of the text, changes of the selection, scroll
// requests, long operations, and the posted repaint of restyled text.
#include <algorithm>

#include "src/view/zentrelctrl.h"

namespace {

// The action and range of a change object; false if it is not one.
bool ReadChange(IUnknown* object, long* action, ISourceChangeRange* range) {
    ComPtr<ISourceChange> change = QueryAs<ISourceChange>(object, IID_ISourceChange);
    if (!change) return false;
    *action = change->GetAction();
    change->GetRange(range);
    return true;
}

}  // namespace

HRESULT CZentrelCtrl::OnChange(long, long, IUnknown* change) {
    if (!change) return S_OK;
    long action = 0;
    ISourceChangeRange range;
    if (ReadChange(change, &action, &range)) OnTextChanged(action, range.nStart, range.nEnd);
    change->Release();
    return S_OK;
}

HRESULT CZentrelCtrl::OnBusy(BOOL busy, const char* text, long) {
    if (busy) {
        SetBusyText(text);
        ShowBusyPanel(TRUE);
    } else {
        ShowBusyPanel(FALSE);
    }
    return S_OK;
}

HRESULT CZentrelCtrl::OnSelectionChanged(long active, long anchor) {
    long oldLow = std::min(m_nSelActive, m_nSelAnchor), oldHigh = std::max(m_nSelActive, m_nSelAnchor);
    long newLow = std::min(active, anchor), newHigh = std::max(active, anchor);
    if (oldLow == newLow && oldHigh == newHigh) return S_OK;
    if (HasWindow()) {
        m_nSelActive = active;
        m_nSelAnchor = anchor;
        if (oldLow == oldHigh) {
            InvalidateRange(newLow, newHigh);
        } else if (m_bFocused || !GetOption(OPT_HIDESELECTION)) {
            // Only what changed: the span between the two starts and the span between the two ends.
            long a = std::min(oldLow, newLow), b = std::max(oldHigh, newHigh);
            long c = std::max(oldLow, newLow), d = std::min(oldHigh, newHigh);
            InvalidateRange(a, std::min(c, d));
            InvalidateRange(std::max(c, d), b);
            // The bracket in the gutter changes on the rows between an end's old and new place,
            // repainted above, and on the rows of the four ends, where its boxes come and go.
            // A higher end at a line start has its box on the line before: the row of the last
            // selected byte.
            for (long end : {oldLow, oldHigh, newLow, newHigh}) InvalidateGutterAt(end);
            for (long high : {oldHigh, newHigh})
                if (high > 0) InvalidateGutterAt(high - 1);
        }
        if (m_bFocused) ScrollCaretIntoView();
        PlaceCaret();
        TellAccessibleCaret();
    }
    if (m_bFocused) FireEvent(EVENT_SELECTIONCHANGED, {Variant::Long(active), Variant::Long(anchor)});
    return S_OK;
}

HRESULT CZentrelCtrl::OnEnsureVisible(long) {
    ScrollCaretIntoView();
    return S_OK;
}

LRESULT CZentrelCtrl::OnSourceRepaint(WPARAM, LPARAM lParam) {
    if (lParam == 0) {
        m_RowCheckpoints.Clear();
        Refresh();
        return 0;
    }
    auto* object = reinterpret_cast<IUnknown*>(lParam);
    long action = 0;
    ISourceChangeRange range;
    bool isChange = ReadChange(object, &action, &range);
    // The message carried one reference, whatever it turns out to hold.
    object->Release();
    if (!isChange) return 0;

    // Merge the restyle messages that wait behind this one into one span.
    MSG next;
    while (PeekMessage(&next, m_hWnd, WM_SOURCE_REPAINT, WM_SOURCE_REPAINT, PM_NOREMOVE)) {
        long nextAction = 0;
        ISourceChangeRange nextRange;
        if (!next.lParam || !ReadChange(reinterpret_cast<IUnknown*>(next.lParam), &nextAction, &nextRange)) break;
        if (nextAction != SA_STYLE) break;
        range.nStart = std::min(range.nStart, nextRange.nStart);
        range.nEnd = std::max(range.nEnd, nextRange.nEnd);
        PeekMessage(&next, m_hWnd, WM_SOURCE_REPAINT, WM_SOURCE_REPAINT, PM_REMOVE);
        reinterpret_cast<IUnknown*>(next.lParam)->Release();
    }
    // Re-classified bytes may be drawn in other fonts and colours from their first on.
    m_RowCheckpoints.DropFrom(std::min(range.nStart, range.nEnd));
    InvalidateRange(range.nStart, range.nEnd);
    return 0;
}
