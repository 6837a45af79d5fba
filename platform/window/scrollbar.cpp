// Scroll bar state and its rules. The window layer keeps the numbers; the backend shows them.
#include "platform/window/scrollbar.h"

#include <algorithm>

#include "platform/window/registry.h"

namespace {

bool IsBar(int bar) { return bar == SB_HORZ || bar == SB_VERT; }

// The highest position: the page's last unit stands on nMax.
int MaxPosition(const SCROLLINFO& si) {
    const long long top = static_cast<long long>(si.nMax) - std::max<long long>(si.nPage, 1) + 1;
    return static_cast<int>(std::max<long long>(top, si.nMin));
}

// Whether the bar can move at all.
bool HasSomethingToScroll(const SCROLLINFO& si) { return MaxPosition(si) > si.nMin; }

void Clamp(SCROLLINFO* si) {
    si->nMax = std::max(si->nMax, si->nMin);
    const long long span = static_cast<long long>(si->nMax) - si->nMin + 1;
    si->nPage = static_cast<UINT>(std::min<long long>(si->nPage, span));
    si->nPos = std::clamp(si->nPos, si->nMin, MaxPosition(*si));
    si->nTrackPos = si->nPos;
}

bool SameState(const ScrollBarState& a, const ScrollBarState& b) {
    return a.visible == b.visible && a.enabled == b.enabled && a.info.nMin == b.info.nMin &&
           a.info.nMax == b.info.nMax && a.info.nPage == b.info.nPage && a.info.nPos == b.info.nPos;
}

void Publish(const RecordPtr& rec, int bar, const ScrollBarState& before) {
    const ScrollBarState& now = rec->bars[bar];
    if (!SameState(before, now)) rec->pBackend->ScrollBarChanged(bar, now);
}

}  // namespace

int SetScrollInfo(HWND hwnd, int bar, const SCROLLINFO* info, BOOL) {
    RecordPtr rec = FindLiveRecord(hwnd);
    if (!rec || !info || !IsBar(bar)) return 0;
    ScrollBarState& state = rec->bars[bar];
    const ScrollBarState before = state;
    if (info->fMask & SIF_RANGE) {
        state.info.nMin = info->nMin;
        state.info.nMax = info->nMax;
    }
    if (info->fMask & SIF_PAGE) state.info.nPage = info->nPage;
    if (info->fMask & SIF_POS) state.info.nPos = info->nPos;
    Clamp(&state.info);
    // A position alone does not change whether the bar shows.
    if (info->fMask & (SIF_RANGE | SIF_PAGE | SIF_DISABLENOSCROLL)) {
        const bool scrolls = HasSomethingToScroll(state.info);
        state.enabled = scrolls;
        state.visible = scrolls || (info->fMask & SIF_DISABLENOSCROLL);
    }
    Publish(rec, bar, before);
    return state.info.nPos;
}

BOOL GetScrollInfo(HWND hwnd, int bar, SCROLLINFO* info) {
    RecordPtr rec = FindLiveRecord(hwnd);
    if (!rec || !info || !IsBar(bar)) return FALSE;
    const SCROLLINFO& si = rec->bars[bar].info;
    if (info->fMask & SIF_RANGE) {
        info->nMin = si.nMin;
        info->nMax = si.nMax;
    }
    if (info->fMask & SIF_PAGE) info->nPage = si.nPage;
    if (info->fMask & SIF_POS) info->nPos = si.nPos;
    if (info->fMask & SIF_TRACKPOS) info->nTrackPos = si.nTrackPos;
    return TRUE;
}

BOOL ShowScrollBar(HWND hwnd, int bar, BOOL show) {
    RecordPtr rec = FindLiveRecord(hwnd);
    if (!rec || !(IsBar(bar) || bar == SB_BOTH)) return FALSE;
    for (int b : {SB_HORZ, SB_VERT}) {
        if (bar != SB_BOTH && bar != b) continue;
        const ScrollBarState before = rec->bars[b];
        rec->bars[b].visible = show != FALSE;
        Publish(rec, b, before);
    }
    return TRUE;
}

BOOL GetScrollBarState(HWND hwnd, int bar, ScrollBarState* state) {
    RecordPtr rec = FindLiveRecord(hwnd);
    if (!rec || !state || !IsBar(bar)) return FALSE;
    *state = rec->bars[bar];
    return TRUE;
}
