// Checkpoints along long rows. Where a run of text starts on a row depends on every run before
// it, so painting or mapping at the far end of a row of megabytes would walk the whole row each
// time. The walks remember their state every few thousand bytes instead, and a later walk starts
// from the nearest remembered state at or before where it is needed, with exactly the numbers a
// walk from the row's start gives there.
//
// Besides the states every kSpacing bytes, a walk that went far to reach what it was after
// remembers its state there too (kNearGap), so that the next walk to about the same place, the
// next keystroke's, is short.
//
// A state depends on the bytes from the row's start up to it, their classes, the format table,
// the fonts and the tab size; a painted state also on the option word, on which bytes are
// selected, on whether the selection shows and on the format of the byte it stands at. The
// owner drops the states after a changed text or class position, the painted ones at it too
// (DropFrom), and all of them when the fonts or the exception tags change (Clear); the store
// drops the rest by itself when it sees that what the walks depend on has changed (Sync,
// SyncSelection). States are kept by their row's start and used only below the row's end, so a
// new layout leaves them right: a row that starts at the same place has the same bytes before
// each of its states.
#pragma once
#include <algorithm>
#include <limits>
#include <map>
#include <vector>

#include "src/paint/formatstyle.h"

// The state of the painter's run loop at the start of a run: x relative to the text origin,
// the format on the device and the font last selected into it.
struct PaintCheckpoint {
    long pos = 0;
    long x = 0;
    long maxX = 0;   // the largest x the walk had reached: it bounds what is still visible
    long reach = 0;  // the right edge of the furthest cell drawn before pos
    CharFormat format{};
    DWORD fontWord = 0;
    long overhang = 0;
};

// The state of a width walk (position mapping) at a character boundary.
struct MapCheckpoint {
    long pos = 0;
    long pixels = 0;
    long columns = 0;
    long reach = 0;  // the right edge of the furthest character before pos
};

// What every checkpoint depends on besides the text and its classes.
struct CheckpointKey {
    DWORD options = 0;
    long tabPixels = 0;
    long tabSize = 0;
    long charWidth = 0;
    long highlightStyle = 0;
    const void* syntax = nullptr;
    const void* tokens = nullptr;
    FormatStyleTable styles{};

    bool operator==(const CheckpointKey& other) const;
};

class CRowCheckpoints {
public:
    // A walk remembers its state once it is this many bytes past the last one.
    static constexpr long kSpacing = 4096;
    // A walk that went at least this far from where it started remembers where it ended.
    static constexpr long kNearGap = 256;

    // Drops everything when the key differs from the one the states were made under.
    void Sync(const CheckpointKey& key);
    // Drops the painted states that a change of the selected bytes, [low, high) now, or of
    // whether the selection shows touches: those from the first byte that looks different.
    void SyncSelection(long low, long high, bool shows);
    // Drops, on every row, the states after pos and the painted states at it, and the rows that
    // start at pos or after.
    void DropFrom(long pos);
    void Clear();
    // Switched off, the store hands out and takes nothing: every walk starts at its row's start.
    void Enable(bool on) { m_bEnabled = on; }

    // The last painted state of the row at rowStart below rowEnd whose `reach` passes `fits`.
    template <class Fits>
    const PaintCheckpoint* LastPaint(long rowStart, long rowEnd, Fits fits) const {
        const Row* row = Find(rowStart);
        return row ? Last(row->paint, rowEnd, fits) : nullptr;
    }
    template <class Fits>
    const MapCheckpoint* LastMap(long rowStart, long rowEnd, Fits fits) const {
        const Row* row = Find(rowStart);
        return row ? Last(row->map, rowEnd, fits) : nullptr;
    }
    // Where a walk of the row at rowStart should next remember its state: kSpacing bytes past
    // the last state it has.
    long NextPaintMark(long rowStart) const { return NextMark(rowStart, &Row::paint); }
    long NextMapMark(long rowStart) const { return NextMark(rowStart, &Row::map); }
    void AddPaint(long rowStart, const PaintCheckpoint& point) { Insert(&RowAt(rowStart).paint, point); }
    void AddMap(long rowStart, const MapCheckpoint& point) { Insert(&RowAt(rowStart).map, point); }

    size_t RowCount() const { return m_Rows.size(); }

private:
    // Rows kept at once; more than this (a view of many long rows) starts the store afresh.
    static constexpr size_t kMaxRows = 256;

    struct Row {
        std::vector<PaintCheckpoint> paint;
        std::vector<MapCheckpoint> map;
    };

    const Row* Find(long rowStart) const;
    Row& RowAt(long rowStart);

    // States are kept in order of position, and their reach only grows: the one wanted is
    // found by halving.
    template <class Point, class Fits>
    static const Point* Last(const std::vector<Point>& points, long rowEnd, Fits fits) {
        const auto below = std::lower_bound(points.begin(), points.end(), rowEnd,
                                            [](const Point& p, long end) { return p.pos < end; });
        const auto fitting = std::partition_point(points.begin(), below, fits);
        return fitting == points.begin() ? nullptr : &*(fitting - 1);
    }
    // Puts a state in its place by position, unless one stands there already.
    template <class Point>
    static void Insert(std::vector<Point>* points, const Point& point) {
        const auto at = std::lower_bound(points->begin(), points->end(), point.pos,
                                         [](const Point& p, long pos) { return p.pos < pos; });
        if (at == points->end() || at->pos != point.pos) points->insert(at, point);
    }
    template <class Point>
    long NextMark(long rowStart, std::vector<Point> Row::*which) const {
        if (!m_bEnabled) return std::numeric_limits<long>::max();
        const Row* row = Find(rowStart);
        return (row && !(row->*which).empty() ? (row->*which).back().pos : rowStart) + kSpacing;
    }

    std::map<long, Row> m_Rows;  // by the row's start
    CheckpointKey m_key;
    long m_nSelLow = 0, m_nSelHigh = 0;
    bool m_bSelectionShows = false;
    bool m_bEnabled = true;
};
