// The bookmarks in the order of their lower ends, so that the gutter finds the flag of a line by
// halving instead of walking the whole list at every painted row.
//
// Edits keep that order: the document moves every end monotonically. Only ends at the very place
// of an insertion may trade places (an empty range stays in front of text inserted where it
// stands, the lower end of one that is not empty goes behind it), so after each change the
// entries whose lower ends lie in the changed text are sorted again.
#pragma once
#include <vector>

class CBookmark;

class CBookmarkIndex {
public:
    void Insert(CBookmark* bookmark);
    void Erase(CBookmark* bookmark);
    void Clear() { m_entries.clear(); }
    // Restores the order among the bookmarks whose lower ends lie from lo to hi, the text of a
    // change in positions after it.
    void ResortChanged(long lo, long hi);
    // The newest bookmark whose lower end lies from start up to, not including, end; null if none.
    CBookmark* FindNewestIn(long start, long end) const;

private:
    using Entries = std::vector<CBookmark*>;
    // The first entry whose lower end is at pos or behind it.
    Entries::const_iterator FirstFrom(long pos) const;

    Entries m_entries;
};
