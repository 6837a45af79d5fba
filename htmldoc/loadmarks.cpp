#include "htmldoc/loadmarks.h"

#include <algorithm>

void CLoadMarks::Reset(long textLength) {
    m_front.clear();
    m_back.clear();
    m_pool.clear();
    m_front.shrink_to_fit();
    m_back.shrink_to_fit();
    m_pool.shrink_to_fit();
    m_nLength = textLength;
}

void CLoadMarks::Append(long pos, long length, std::string_view raw) {
    if (!m_back.empty()) MoveGap(m_nLength + 1);  // all in front
    m_front.push_back({static_cast<int32_t>(pos), static_cast<uint16_t>(length), static_cast<uint16_t>(raw.size()),
                       static_cast<uint32_t>(m_pool.size())});
    m_pool += raw;
    m_nLength = std::max(m_nLength, pos + length);
}

void CLoadMarks::EndText(long textLength) {
    MoveGap(m_nLength + 1);
    m_nLength = textLength;
}

void CLoadMarks::MoveGap(long pos) {
    while (!m_front.empty() && m_front.back().pos >= pos) {
        CLoadMark mark = m_front.back();
        m_front.pop_back();
        mark.pos = static_cast<int32_t>(m_nLength - mark.pos);
        m_back.push_back(mark);
    }
    while (!m_back.empty() && m_nLength - m_back.back().pos < pos) {
        CLoadMark mark = m_back.back();
        m_back.pop_back();
        mark.pos = static_cast<int32_t>(m_nLength - mark.pos);
        m_front.push_back(mark);
    }
}

std::vector<CLoadMark> CLoadMarks::TakeSpan(long pos, long count) {
    std::vector<CLoadMark> taken;
    MoveGap(pos);
    const long end = pos + count;
    // Only the last mark in front can reach into the span.
    if (!m_front.empty() && m_front.back().pos + m_front.back().length > pos) {
        taken.push_back(m_front.back());
        m_front.pop_back();
    }
    while (!m_back.empty()) {
        CLoadMark mark = m_back.back();
        mark.pos = static_cast<int32_t>(m_nLength - mark.pos);
        if (mark.pos > end || (mark.pos == end && mark.length > 0)) break;
        m_back.pop_back();
        taken.push_back(mark);
    }
    return taken;
}

void CLoadMarks::PushBack(CLoadMark mark) {
    mark.pos = static_cast<int32_t>(m_nLength - mark.pos);
    m_back.push_back(mark);
}

void CLoadMarks::Replace(long pos, long oldCount, long newCount, std::vector<CLoadMark>* touched) {
    std::vector<CLoadMark> taken = TakeSpan(pos, oldCount);
    m_nLength += newCount - oldCount;
    std::vector<CLoadMark> behind;
    for (const CLoadMark& mark : taken) {
        if (mark.length > 0) continue;
        if (mark.pos == pos) m_front.push_back(mark);
        else if (mark.pos == pos + oldCount) behind.push_back(mark);
    }
    for (auto it = behind.rbegin(); it != behind.rend(); ++it) {
        CLoadMark mark = *it;
        mark.pos = static_cast<int32_t>(pos + newCount);
        PushBack(mark);
    }
    if (touched) *touched = std::move(taken);
}

void CLoadMarks::Insert(long pos, const std::vector<CLoadMark>& made) {
    if (made.empty()) return;
    // Behind the shift sequences that stay at pos, in front of the rest.
    MoveGap(pos + 1);
    for (CLoadMark mark : made) {
        mark.pos = static_cast<int32_t>(pos + mark.pos);
        m_front.push_back(mark);
    }
}

void CLoadMarks::Restore(long pos, long oldCount, long newCount, const std::vector<CLoadMark>& touched) {
    TakeSpan(pos, oldCount);
    m_nLength += newCount - oldCount;
    m_front.insert(m_front.end(), touched.begin(), touched.end());
}
