// The span, in current positions, that a run of edits has touched so far: the smallest start
// and the greatest end of new text. Reporting it as one replacement covers the whole run.
#pragma once
#include <algorithm>

class CChangeSpan {
public:
    void Add(long pos, long removed, long inserted) {
        if (m_bEmpty) {
            m_nStart = pos;
            m_nEnd = pos + inserted;
            m_bEmpty = false;
            return;
        }
        long end = m_nEnd <= pos ? m_nEnd : (m_nEnd >= pos + removed ? m_nEnd - removed + inserted : pos + inserted);
        m_nStart = std::min(m_nStart, pos);
        m_nEnd = std::max(end, pos + inserted);
    }
    bool Empty() const { return m_bEmpty; }
    long Start() const { return m_nStart; }
    long End() const { return m_nEnd; }

private:
    bool m_bEmpty = true;
    long m_nStart = 0;
    long m_nEnd = 0;
};
