// The live ranges of a document, and how their ends follow the edits without a walk over all of
// them at every keystroke.
//
// Between two regroupings every tracked range is in one of three groups:
//  - still: its ends lie in front of everything edited since, so no edit has moved them;
//  - shifted: its ends lie behind everything edited since, so every edit has moved both by its
//    size; that sum is kept once, as the pending shift, and added whenever they are read;
//  - following: all others, moved by each edit one by one: the ranges near the edits, new ones,
//    and every range whose ends were set since.
// An edit behind every still range and in front of every shifted one moves the following ranges
// only. Any other edit, or a following group grown too large, settles every range and groups
// them again around that edit, in one pass; typing in one place then costs a look at the few
// ranges near it.
#pragma once
#include <cstddef>
#include <vector>

#include "platform/com/unknown.h"
#include "src/document/sourcetext.h"

class CSourceRange;

class CRangeTracker {
public:
    // The edits that follow a regrouping (typing on, deleting back) stay this near to it and find
    // no still or shifted range in their way.
    static constexpr long kDefaultNearBytes = 4096;
    // Below this many following ranges a pass over them costs less than a regrouping.
    static constexpr std::size_t kDefaultFollowingFloor = 256;
    enum class Group : unsigned char { Following, Still, Shifted };
    // Below this many ranges Add never prunes.
    static constexpr std::size_t kPruneFloor = 64;

    CRangeTracker() = default;
    CRangeTracker(const CRangeTracker&) = delete;
    CRangeTracker& operator=(const CRangeTracker&) = delete;

    // Tracks a new range; it follows the edits one by one until the next regrouping. Ranges no
    // one holds any more are dropped first whenever the count has doubled since the last time,
    // so that making n ranges costs O(n) in all.
    void Add(ComPtr<CSourceRange> range);
    // Stops tracking the range; null if it was not tracked.
    ComPtr<CSourceRange> Remove(ISourceRange* range);
    // Drops the ranges that no one but the tracker holds any more.
    void Prune();
    // Moves the ends of every range through an edit that replaced `removed` bytes at `pos` by
    // `inserted` bytes.
    void AdjustForEdit(long pos, long removed, long inserted);
    // Settles a range that is about to have its ends set: from now on it follows one by one.
    void Follow(CSourceRange* range);
    // How far from a regrouping edit ranges still follow one by one, and the smallest following
    // group that makes an edit regroup. The defaults suit typing among thousands of ranges; a
    // test makes both small so that all three groups meet in a short text with a few ranges.
    void Tune(long nearBytes, std::size_t followingFloor) {
        m_nNearBytes = nearBytes;
        m_nFollowingFloor = followingFloor;
    }
    // What the ends of a shifted range lack.
    long PendingShift() const { return m_nShift; }
    // Settles every range and hands each to `visit`.
    template <class Visit>
    void ForEach(Visit visit) {
        SettleAll();
        for (auto& range : m_ranges) visit(range.Get());
    }

private:
    void SettleAll();
    void Regroup(long pos, long removed, long inserted);
    void Settle(CSourceRange* range);
    // The edges of the stretch around an edit in which ranges follow one by one: a still range
    // ends at or in front of the first, a shifted one starts at or behind the second.
    long NearStart(long pos) const;
    long NearEnd(long pos, long inserted) const;
    // Adds the pending shift to a shifted range's ends; its group stays.
    void TakeShift(CSourceRange* range) const;

    std::vector<ComPtr<CSourceRange>> m_ranges;  // the tracking references
    std::vector<CSourceRange*> m_following;      // the following group, not counted
    std::size_t m_nFollowingLimit = 0;           // the group's size that makes the next edit regroup
    std::size_t m_nPruneAt = kPruneFloor;        // the count of ranges that makes the next Add prune
    long m_nNearBytes = kDefaultNearBytes;
    std::size_t m_nFollowingFloor = kDefaultFollowingFloor;
    long m_nShift = 0;
    long m_nStillEnd = 0;      // no still range ends behind this
    long m_nShiftedStart = 0;  // no shifted range starts in front of this, in current positions
};
