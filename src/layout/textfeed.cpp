// The feed of text from the window's thread to a layout helper, and the helper's reader.
#include "src/layout/textfeed.h"

#include <algorithm>

#include "src/document/sourcetext.h"

void CTextFeed::ServeAsked() {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        if (!m_bAsked.load(std::memory_order_relaxed)) return;
        m_bFailed = FAILED(m_pDoc->CopyText(m_pDst, m_nPos, m_nCount));
        m_bReady = true;
        m_bAsked.store(false, std::memory_order_relaxed);
    }
    m_changed.notify_all();
}

void CTextFeed::ServeUntilDone() {
    for (;;) {
        {
            std::unique_lock<std::mutex> lock(m_mutex);
            m_changed.wait(lock, [this] { return m_bAsked.load(std::memory_order_relaxed) || m_bDone || m_bStopped; });
            if (!m_bAsked.load(std::memory_order_relaxed)) return;
        }
        ServeAsked();
    }
}

void CTextFeed::Stop() {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_bStopped = true;
    }
    m_changed.notify_all();
}

void CTextFeed::Ask(char* dst, long pos, long count) {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_pDst = dst;
        m_nPos = pos;
        m_nCount = count;
        m_bReady = m_bFailed = false;
        m_bAsked.store(true, std::memory_order_release);
    }
    m_changed.notify_all();
}

bool CTextFeed::Wait() {
    std::unique_lock<std::mutex> lock(m_mutex);
    m_changed.wait(lock, [this] { return m_bReady || m_bStopped; });
    if (!m_bReady) return false;
    m_bReady = false;
    return !m_bFailed;
}

void CTextFeed::Done() {
    {
        std::lock_guard<std::mutex> lock(m_mutex);
        m_bDone = true;
    }
    m_changed.notify_all();
}

CFedTextReader::CFedTextReader(CTextFeed& feed, long length, long window, long pos)
    : m_feed(feed), m_nLength(length), m_nWindow(std::max(window, 2 * kLookBehind + 1)) {
    for (auto& buffer : m_pBuffers) buffer = std::make_unique<char[]>(static_cast<size_t>(m_nWindow));
    if (pos < m_nLength) AskAhead(std::max(0L, pos - kLookBehind));
}

CFedTextReader::~CFedTextReader() {
    // The window's thread may still be copying into the spare buffer.
    if (m_nAheadStart >= 0) m_feed.Wait();
}

void CFedTextReader::AskAhead(long start) {
    m_nAheadStart = start;
    m_feed.Ask(m_pBuffers[1 - m_nCurrent].get(), start, std::min(m_nWindow, m_nLength - start));
}

void CFedTextReader::Fill(long pos) {
    const bool aheadHolds = m_nAheadStart >= 0 && pos >= m_nAheadStart && pos - m_nAheadStart < m_nWindow;
    if (!aheadHolds) {
        // A jump back or away: the window asked for ahead lands first, then the one wanted now.
        if (m_nAheadStart >= 0) {
            m_nAheadStart = -1;
            if (!m_feed.Wait()) throw Stopped{};
        }
        AskAhead(std::max(0L, pos - kLookBehind));
    }
    const long start = m_nAheadStart;
    m_nAheadStart = -1;
    if (!m_feed.Wait()) throw Stopped{};
    m_nCurrent = 1 - m_nCurrent;
    m_pWin = m_pBuffers[m_nCurrent].get();
    m_nWinStart = start;
    m_nWinLen = std::min(m_nWindow, m_nLength - start);
    const long end = m_nWinStart + m_nWinLen;
    if (end < m_nLength) AskAhead(end - kLookBehind);
}
