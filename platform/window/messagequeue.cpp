#include "platform/window/messagequeue.h"

void CMessageQueue::Post(const MSG& msg) {
    m_entries.push_back({msg, m_nNextSequence++});
}

bool CMessageQueue::InRange(UINT message, UINT first, UINT last) {
    if (first == 0 && last == 0) return true;
    return message >= first && message <= last;
}

bool CMessageQueue::Peek(MSG* out, UINT first, UINT last, bool remove) {
    for (auto it = m_entries.begin(); it != m_entries.end(); ++it) {
        if (!InRange(it->msg.message, first, last)) continue;
        if (out) *out = it->msg;
        if (remove) m_entries.erase(it);
        return true;
    }
    return false;
}

bool CMessageQueue::PopIfPostedBy(uint64_t lastSequence, MSG* out) {
    if (m_entries.empty() || m_entries.front().nSequence > lastSequence) return false;
    *out = m_entries.front().msg;
    m_entries.pop_front();
    return true;
}

std::vector<MSG> CMessageQueue::TakeAll() {
    std::vector<MSG> all;
    all.reserve(m_entries.size());
    for (const CEntry& e : m_entries) all.push_back(e.msg);
    m_entries.clear();
    return all;
}
