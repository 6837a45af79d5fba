// The document's text for a helper thread. Only the window's thread may call the document, so a
// helper that lays out a part of a large text reads it through a feed: the helper asks for a
// window of the text, and the window's thread copies that window for it between pieces of its
// own work. The helper's reader asks for the window behind the one it reads as soon as it
// starts on it, so that it seldom waits.
#pragma once
#include <atomic>
#include <condition_variable>
#include <memory>
#include <mutex>

class ISourceText;

class CTextFeed {
public:
    explicit CTextFeed(ISourceText* doc) : m_pDoc(doc) {}
    CTextFeed(const CTextFeed&) = delete;
    CTextFeed& operator=(const CTextFeed&) = delete;

    // Window thread: copies the window the helper asked for, if it asked; costs one atomic load
    // when it did not.
    void Serve() {
        if (m_bAsked.load(std::memory_order_acquire)) ServeAsked();
    }
    // Window thread: serves the helper until it says that it is done or the feed is stopped.
    void ServeUntilDone();
    // Window thread: the helper's next wait fails; it stops at its next window.
    void Stop();

    // Helper thread: asks for `count` bytes from `pos` into `dst`. One request at a time.
    void Ask(char* dst, long pos, long count);
    // Helper thread: waits for the window asked for; false when the document did not give it or
    // the feed was stopped.
    bool Wait();
    // Helper thread: it asks for nothing more.
    void Done();

private:
    void ServeAsked();

    ISourceText* m_pDoc;
    std::mutex m_mutex;
    std::condition_variable m_changed;
    std::atomic<bool> m_bAsked{false};
    // Guarded by m_mutex.
    char* m_pDst = nullptr;
    long m_nPos = 0;
    long m_nCount = 0;
    bool m_bReady = false;
    bool m_bFailed = false;
    bool m_bDone = false;
    bool m_bStopped = false;
};

// Reads the text for a helper through a feed, with the reading calls of CTextReader. A window
// that the document could not give ends the helper's work: the reader throws
// CFedTextReader::Stopped, and the window's thread lays out the rest itself.
class CFedTextReader {
public:
    struct Stopped {};

    // A reader of a text of `length` bytes in windows of `window` bytes (at least 2 *
    // kLookBehind), asking first for the window from `pos`.
    CFedTextReader(CTextFeed& feed, long length, long window, long pos);
    ~CFedTextReader();

    long Length() const { return m_nLength; }
    unsigned char At(long pos) {
        if (pos - m_nWinStart < m_nWinLen && pos >= m_nWinStart)
            return static_cast<unsigned char>(m_pWin[pos - m_nWinStart]);
        if (pos >= m_nLength || pos < 0) return 0;
        long available = 0;
        return static_cast<unsigned char>(*Span(pos, &available));
    }
    const char* Span(long pos, long* pnAvailable) {
        if (pos >= m_nLength || pos < 0) {
            *pnAvailable = 0;
            return nullptr;
        }
        if (!(pos >= m_nWinStart && pos - m_nWinStart < m_nWinLen)) Fill(pos);
        *pnAvailable = m_nWinStart + m_nWinLen - pos;
        return m_pWin + (pos - m_nWinStart);
    }

    // A window starts a little before the byte asked for, as readers look a byte or two back.
    static constexpr long kLookBehind = 64;

private:
    void Fill(long pos);
    // Asks for the window from `start` into the spare buffer.
    void AskAhead(long start);

    CTextFeed& m_feed;
    long m_nLength;
    long m_nWindow;
    std::unique_ptr<char[]> m_pBuffers[2];
    int m_nCurrent = 0;  // the buffer that m_pWin points into; the other one is the spare
    const char* m_pWin = nullptr;
    long m_nWinStart = 0;
    long m_nWinLen = 0;
    long m_nAheadStart = -1;  // the window asked for into the spare buffer, -1 for none
};
