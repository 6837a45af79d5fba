// A whole layout of the text from its start, made a row at a time and only as far as asked: the
// rows are those WrapAll gives, handed out in order as a caller needs them. A printout asks for
// the rows of one page before it prints that page, so its first page does not wait for the
// layout of the last. The run measures with one width table, chosen at the start of the text,
// as a whole layout does.
#pragma once
#include <memory>

#include "platform/com/types.h"

class CLineLengthList;
class CZentrelCtrl;
class ISourceText;

// How a whole layout of a large text is split over two threads (CRowWrapper::WrapRest).
struct CLayoutSplit {
    // Texts from this many bytes on are split: below it a thread costs more than it saves.
    long nMinBytes = 4L << 20;
    // The helper reads the text in windows of this many bytes, copied for it by the window's
    // thread: large enough that the copies cost little besides their memcpy, small enough that
    // the two windows it keeps stay in the cache.
    long nWindowBytes = 256L * 1024;
};

class CRowWrapper {
public:
    // A run over `doc` with the view's metrics as they stand now, for option word `dwOptions`
    // and wrap width `nWidth` (WIDTH_UNLIMITED for none). The document and the view's metrics
    // must not change while the run lives.
    CRowWrapper(CZentrelCtrl& view, ISourceText* doc, DWORD dwOptions, long nWidth);
    ~CRowWrapper();
    CRowWrapper(const CRowWrapper&) = delete;
    CRowWrapper& operator=(const CRowWrapper&) = delete;

    // Appends the next rows of the text to `pRows`: `nRows` of them, or fewer when the text is
    // laid out to its end. A final line feed is followed by an empty row.
    // Gives how many it appended.
    long WrapRows(long nRows, CLineLengthList* pRows);
    // Appends all the rows still to come, as WrapRows does. From a line feed near the middle of
    // a large text without collapsed blocks on, a helper thread lays the rows out meanwhile.
    // Gives how many rows it appended.
    long WrapRest(CLineLengthList* pRows, const CLayoutSplit& split = {});

    bool IsDone() const { return m_progress.bDone; }
    // Bytes laid out so far, and of the whole text.
    long GetWrapped() const { return m_progress.nPos; }
    long GetLength() const;

    // How far a run has come: a function of the text and the place alone.
    struct Progress {
        long nPos = 0;
        bool bEmptyRowDue = false;  // the text ends in a line feed whose empty row is still to come
        bool bDone = false;
    };

private:
    struct Run;
    std::unique_ptr<Run> m_pRun;
    Progress m_progress;
};
