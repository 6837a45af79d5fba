#include "src/paint/rowcheckpoints.h"

#include <utility>

namespace {

bool SameStyle(const FormatStyle& a, const FormatStyle& b) {
    return a.crText == b.crText && a.crBack == b.crBack && a.dwFont == b.dwFont;
}

template <class Point>
void TruncateFrom(std::vector<Point>* points, long pos) {
    const auto first = std::lower_bound(points->begin(), points->end(), pos, [](const Point& p, long at) { return p.pos < at; });
    points->erase(first, points->end());
}

// A mapped state at pos depends on the bytes in front of it only.
void TruncateBehind(std::vector<MapCheckpoint>* points, long pos) { TruncateFrom(points, pos + 1); }

// The first position that is selected under one of two selections and not under the other;
// -1 where they select the same bytes.
long FirstSelectionDifference(long low1, long high1, long low2, long high2) {
    const bool empty1 = low1 >= high1, empty2 = low2 >= high2;
    if (empty1 && empty2) return -1;
    if (empty1) return low2;
    if (empty2) return low1;
    if (low1 != low2) return std::min(low1, low2);
    if (high1 != high2) return std::min(high1, high2);
    return -1;
}

}  // namespace

bool CheckpointKey::operator==(const CheckpointKey& other) const {
    if (options != other.options || tabPixels != other.tabPixels || tabSize != other.tabSize ||
        charWidth != other.charWidth || highlightStyle != other.highlightStyle || syntax != other.syntax ||
        tokens != other.tokens)
        return false;
    return std::equal(styles.begin(), styles.end(), other.styles.begin(), SameStyle);
}

void CRowCheckpoints::Sync(const CheckpointKey& key) {
    if (key == m_key) return;
    Clear();
    m_key = key;
}

void CRowCheckpoints::SyncSelection(long low, long high, bool shows) {
    long first = FirstSelectionDifference(m_nSelLow, m_nSelHigh, low, high);
    if (shows != m_bSelectionShows) {
        // The bytes selected before and now change their colours; those in front stay as they were.
        for (const auto& [from, to] : {std::pair{m_nSelLow, m_nSelHigh}, std::pair{low, high}})
            if (from < to) first = first < 0 ? from : std::min(first, from);
    }
    m_nSelLow = low;
    m_nSelHigh = high;
    m_bSelectionShows = shows;
    if (first < 0) return;
    for (auto& [start, row] : m_Rows) TruncateFrom(&row.paint, first);
}

void CRowCheckpoints::DropFrom(long pos) {
    m_Rows.erase(m_Rows.lower_bound(pos), m_Rows.end());
    for (auto& [start, row] : m_Rows) {
        TruncateFrom(&row.paint, pos);
        TruncateBehind(&row.map, pos);
    }
}

void CRowCheckpoints::Clear() { m_Rows.clear(); }

const CRowCheckpoints::Row* CRowCheckpoints::Find(long rowStart) const {
    if (!m_bEnabled) return nullptr;
    const auto it = m_Rows.find(rowStart);
    return it != m_Rows.end() ? &it->second : nullptr;
}

CRowCheckpoints::Row& CRowCheckpoints::RowAt(long rowStart) {
    if (m_Rows.size() >= kMaxRows && !m_Rows.count(rowStart)) m_Rows.clear();
    return m_Rows[rowStart];
}
