// The queue of posted messages of one window: first in, first out, with a look at the first
// message of a number range that may leave it in place.
#pragma once
#include <cstdint>
#include <deque>
#include <vector>

#include "platform/window/window.h"

class CMessageQueue {
public:
    // Appends a message. Every message gets a number one higher than the one before, so that a
    // dispatch can tell what was queued before it started.
    void Post(const MSG& msg);
    // Finds the first message with a number in [first, last] (0, 0: any; a range with first above
    // last matches nothing), copies it to `out` and, with `remove`, takes it out.
    bool Peek(MSG* out, UINT first, UINT last, bool remove);
    // Takes the first message out if it was posted no later than `lastSequence`.
    bool PopIfPostedBy(uint64_t lastSequence, MSG* out);
    // The number of the last message posted, 0 before the first.
    uint64_t LastSequence() const { return m_nNextSequence - 1; }
    // Empties the queue and gives what it held, in order.
    std::vector<MSG> TakeAll();
    size_t Size() const { return m_entries.size(); }
    bool IsEmpty() const { return m_entries.empty(); }

    static bool InRange(UINT message, UINT first, UINT last);

private:
    struct CEntry {
        MSG msg;
        uint64_t nSequence;
    };
    std::deque<CEntry> m_entries;
    uint64_t m_nNextSequence = 1;
};
