#include "src/annotations/bookmarkindex.h"

#include <algorithm>

#include "src/annotations/bookmarkmanager.h"

namespace {

long LowerEnd(const CBookmark* bookmark) { return bookmark->GetRange()->GetStart(); }

bool InOrder(const CBookmark* a, const CBookmark* b) { return LowerEnd(a) < LowerEnd(b); }

}  // namespace

CBookmarkIndex::Entries::const_iterator CBookmarkIndex::FirstFrom(long pos) const {
    return std::partition_point(m_entries.begin(), m_entries.end(),
                                [pos](const CBookmark* b) { return LowerEnd(b) < pos; });
}

void CBookmarkIndex::Insert(CBookmark* bookmark) {
    m_entries.insert(m_entries.begin() + (FirstFrom(LowerEnd(bookmark)) - m_entries.cbegin()), bookmark);
}

void CBookmarkIndex::Erase(CBookmark* bookmark) {
    const long pos = LowerEnd(bookmark);
    for (auto it = FirstFrom(pos); it != m_entries.end() && LowerEnd(*it) == pos; ++it) {
        if (*it == bookmark) {
            m_entries.erase(it);
            return;
        }
    }
    std::erase(m_entries, bookmark);  // not where its end says: the order was broken, look everywhere
}

void CBookmarkIndex::ResortChanged(long lo, long hi) {
    // In front of lo the order is intact, so the halving finds the first entry of the changed
    // text; the entries behind it moved together and stay sorted.
    const auto first = m_entries.begin() + (FirstFrom(lo) - m_entries.cbegin());
    auto last = first;
    while (last != m_entries.end() && LowerEnd(*last) <= hi) ++last;
    std::stable_sort(first, last, InOrder);
}

CBookmark* CBookmarkIndex::FindNewestIn(long start, long end) const {
    CBookmark* newest = nullptr;
    for (auto it = FirstFrom(start); it != m_entries.end() && LowerEnd(*it) < end; ++it)
        if (!newest || (*it)->GetSerial() > newest->GetSerial()) newest = *it;
    return newest;
}
