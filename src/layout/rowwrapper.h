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

    bool IsDone() const { return m_bDone; }
    // Bytes laid out so far, and of the whole text.
    long GetWrapped() const { return m_nPos; }
    long GetLength() const;

private:
    struct Run;
    std::unique_ptr<Run> m_pRun;
    long m_nPos = 0;
    bool m_bEmptyRowDue = false;  // the text ends in a line feed whose empty row is still to come
    bool m_bDone = false;
};
