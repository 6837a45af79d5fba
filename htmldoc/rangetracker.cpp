#include "htmldoc/rangetracker.h"

#include <algorithm>
#include <iterator>

#include "htmldoc/sourcerange.h"

void CRangeTracker::Add(ComPtr<CSourceRange> range) {
    if (m_ranges.size() >= m_nPruneAt) {
        Prune();
        m_nPruneAt = std::max(kPruneFloor, 2 * m_ranges.size());
    }
    range->m_group = Group::Following;
    m_following.push_back(range.Get());
    m_ranges.push_back(std::move(range));
}

ComPtr<CSourceRange> CRangeTracker::Remove(ISourceRange* range) {
    auto it = std::find_if(m_ranges.begin(), m_ranges.end(),
                           [range](const auto& r) { return static_cast<ISourceRange*>(r.Get()) == range; });
    if (it == m_ranges.end()) return nullptr;
    Settle(it->Get());
    std::erase(m_following, it->Get());
    ComPtr<CSourceRange> gone = std::move(*it);
    m_ranges.erase(it);
    return gone;
}

void CRangeTracker::Prune() {
    // A range whose only reference is ours can never be reached again; the view, for one,
    // releases its selection without destroying it.
    const auto reachable = [](const ComPtr<CSourceRange>& range) {
        range->AddRef();
        return range->Release() != 1;
    };
    const auto gone = std::stable_partition(m_ranges.begin(), m_ranges.end(), reachable);
    if (gone == m_ranges.end()) return;
    // Only a range that is being dropped has lost every reference but ours.
    std::erase_if(m_following, [](CSourceRange* range) {
        range->AddRef();
        return range->Release() == 1;
    });
    // Released only after the lists are consistent again.
    std::vector<ComPtr<CSourceRange>> unreachable(std::make_move_iterator(gone), std::make_move_iterator(m_ranges.end()));
    m_ranges.erase(gone, m_ranges.end());
}

void CRangeTracker::TakeShift(CSourceRange* range) const {
    if (range->m_group != Group::Shifted) return;
    range->m_nActive += m_nShift;
    range->m_nAnchor += m_nShift;
}

void CRangeTracker::Settle(CSourceRange* range) {
    TakeShift(range);
    if (range->m_group != Group::Following) {
        range->m_group = Group::Following;
        m_following.push_back(range);
    }
}

void CRangeTracker::Follow(CSourceRange* range) { Settle(range); }

void CRangeTracker::SettleAll() {
    for (auto& range : m_ranges) Settle(range.Get());
}

void CRangeTracker::AdjustForEdit(long pos, long removed, long inserted) {
    // A still range ends in front of pos and is not touched; a shifted one starts behind the
    // removed bytes and moves by the edit's size, both ends.
    const bool between = pos > m_nStillEnd && pos + removed < m_nShiftedStart;
    if (!between || m_following.size() > m_nFollowingLimit) {
        Regroup(pos, removed, inserted);
        return;
    }
    for (CSourceRange* range : m_following) range->AdjustForEdit(pos, removed, inserted);
    m_nShift += inserted - removed;
    // The bounds close in on the near stretch of this edit as well: the groups stand only while
    // the edits stay near one another, and a wander away regroups around the new place.
    m_nStillEnd = std::max(m_nStillEnd, NearStart(pos));
    m_nShiftedStart = std::min(m_nShiftedStart + inserted - removed, NearEnd(pos, inserted));
}

long CRangeTracker::NearStart(long pos) const { return pos - m_nNearBytes - 1; }

long CRangeTracker::NearEnd(long pos, long inserted) const { return pos + inserted + m_nNearBytes + 1; }

void CRangeTracker::Regroup(long pos, long removed, long inserted) {
    // The bounds start at the edges of the near stretch, so that an edit that wanders out of it
    // regroups even where no range lies still or shifted.
    m_following.clear();
    m_nStillEnd = NearStart(pos);
    m_nShiftedStart = NearEnd(pos, inserted);
    for (auto& r : m_ranges) {
        CSourceRange* range = r.Get();
        TakeShift(range);
        range->AdjustForEdit(pos, removed, inserted);
        const long start = std::min(range->m_nActive, range->m_nAnchor), end = std::max(range->m_nActive, range->m_nAnchor);
        if (end <= NearStart(pos)) {
            range->m_group = Group::Still;
            m_nStillEnd = std::max(m_nStillEnd, end);
        } else if (start >= NearEnd(pos, inserted)) {
            range->m_group = Group::Shifted;
            m_nShiftedStart = std::min(m_nShiftedStart, start);
        } else {
            range->m_group = Group::Following;
            m_following.push_back(range);
        }
    }
    m_nShift = 0;
    m_nFollowingLimit = std::max(m_nFollowingFloor, 2 * m_following.size());
}
