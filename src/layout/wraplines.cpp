// The line breaker. It walks the text from the line above a change, works out what each line
// would be now, and changes the table only where a line's length differs. It stops once a
// given number of lines in a row came out unchanged, so an edit costs a scan of a few lines.
//
// A line ends at a line feed (which stays on it), in front of a collapsed block, behind a whole
// collapsed block, or where its width reaches the wrap width: then it breaks behind the last
// space, hyphen or tab, or in front of the last double-byte character, and with no such place,
// in front of the character that overflowed. CR has no width and is no break opportunity, so a
// CR and the LF behind it stay together. A tab runs to the next stop, m_nTabPixels apart.
#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <cstring>
#include <limits>
#include <new>
#include <system_error>
#include <thread>
#include <vector>

#include "src/layout/linelengthlist.h"
#include "src/layout/rowwrapper.h"
#include "src/layout/textfeed.h"
#include "src/layout/textreader.h"
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr unsigned char kTab = '\t', kCR = '\r', kLF = '\n';

// What the breaker does with a byte value. The first two are the common ones.
enum ByteKind : unsigned char { kPlain, kBreakAfter, kLineFeed, kTabStop, kNoWidth, kLead };

struct ByteKinds {
    ByteKind kind[256];
    bool multiByte = false;
    void Build() {
        multiByte = false;
        for (int c = 0; c < 256; ++c) {
            kind[c] = IsLeadByte(static_cast<BYTE>(c)) ? kLead : kPlain;
            multiByte |= kind[c] == kLead;
        }
        kind[static_cast<BYTE>(' ')] = kind[static_cast<BYTE>('-')] = kBreakAfter;
        kind[kLF] = kLineFeed;
        kind[kTab] = kTabStop;
        kind[kCR] = kNoWidth;
    }
};

// The byte kinds of the module's code page, made again if the module reads another one.
const ByteKinds& Kinds() {
    static ByteKinds kinds;
    static CPINFO builtFor;
    static bool built = false;
    const CPINFO& now = ZentrelApp().m_cpInfo;
    if (!built || std::memcmp(&now, &builtFor, sizeof now) != 0) {
        kinds.Build();
        builtFor = now;
        built = true;
    }
    return kinds;
}

// From x to the next tab stop, tabPixels apart: in 32 bits where x fits, as a 64-bit division
// costs several times as much, and lines start with tabs.
inline long TabAdvance(long x, long tabPixels) {
    if (x >= 0 && x <= 0xFFFFFFFFL && tabPixels > 0 && tabPixels <= 0xFFFFFFFFL)
        return tabPixels - static_cast<long>(static_cast<uint32_t>(x) % static_cast<uint32_t>(tabPixels));
    return tabPixels - x % tabPixels;
}

// How one line came out of the scan.
struct ScannedLine {
    long newLen = 0;
    long scan = 0;          // where the scan stopped
    bool endedByLF = false; // at a line feed, or behind a whole collapsed block
    bool runOver = false;   // a lead byte was the last byte of the text: the run stops
};

// State of one run of the breaker over a table of line lengths.
template <class Table>
struct WrapRun {
    Table& table;
    LayoutRange& range;
    long nLines;
    long line = 0;
    long lineStart = 0;
    long oldLen = 0;
    long newLen = 0;
    long unchanged = 0;

    // Settles the line just scanned; false when the run is over.
    bool FinishLine(bool endedByLF, CTextReader& text, long scan, long docLen) {
        if (newLen < oldLen) {
            long fell = oldLen - newLen;
            table.AddAt(line, -fell);
            ++line;
            if (endedByLF || line >= table.m_nCount) {
                table.InsertAt(line, fell);
                range.nEnd = POS_TO_END;
            } else {
                table.AddAt(line, fell);
            }
            Touched();
        } else if (newLen > oldLen) {
            long rest = newLen - oldLen;
            table.AddAt(line, rest);
            ++line;
            while (rest > 0 && line < table.m_nCount) {
                long len = table.GetAt(line);
                if (rest < len) {
                    table.AddAt(line, -rest);
                    rest = 0;
                } else {
                    table.RemoveAt(line);
                    rest -= len;
                }
            }
            range.nEnd = POS_TO_END;
            Touched();
        } else {
            ++line;
            if (line >= table.m_nCount && newLen > 0 && text.At(lineStart + newLen - 1) == kLF) {
                table.InsertAt(table.m_nCount, 0);
                range.nEnd = POS_TO_END;
            }
            if (--unchanged == 0 || scan == docLen) return false;
        }
        if (line >= table.m_nCount) {
            range.nEnd = POS_TO_END;
            return false;
        }
        lineStart += newLen;
        oldLen = table.GetAt(line);
        newLen = 0;
        range.nEnd = std::max(range.nEnd, lineStart);
        return true;
    }

    void Touched() {
        range.nStart = std::min(range.nStart, lineStart);
        unchanged = nLines;
    }
};

// What the table from before a change tells a scan for line feeds. Without a width limit in a
// single-byte code page a row that is not a whole collapsed block holds a line feed only as its
// last byte, and the last row holds none. So a repair reads the changed bytes and the last byte
// of each old row it crosses, and skips the rest of a row, which on a page of one long line is
// megabytes. A scan never looks into a collapsed block (it takes a block whole and never skips
// past a block's start), and a block that went with the change lay in the changed bytes, so no
// row asked about was a whole block.
struct OldLineFeeds {
    const CLineIndex& table;  // before the change
    long changeStart;         // where the change starts, in both texts
    long insertedEnd;         // the end of the inserted bytes in the new text
    long delta;               // bytes the change added (negative when it took bytes out)

    // The first position at or behind pos, in the new text, that may hold a line feed.
    long NextPossible(long pos) const {
        if (pos >= changeStart && pos < insertedEnd) return pos;
        const bool before = pos < changeStart;
        long start = 0;
        const long row = table.FindLineAndStart(before ? pos : pos - delta, &start);
        const long end = start + table.GetAt(row);
        const long last = row == table.m_nCount - 1 ? end : end - 1;
        return std::max(pos, before ? std::min(last, changeStart) : last + delta);
    }
};

// Scans lines for one run of the breaker, in one width table. The reader is the window's own
// (CTextReader) or a layout helper's (CFedTextReader).
template <class Reader>
struct LineScanner {
    CZentrelCtrl& view;
    Reader& text;
    const LONG* widths;
    const ByteKinds& kinds;
    long nWidth;
    long docLen;
    long nextBlock;  // the start of the first collapsed block at or behind the scan
    const OldLineFeeds* known = nullptr;  // where a scan for line feeds may skip, if anywhere

    ScannedLine Scan(long lineStart) {
        ScannedLine out;
        long scan = lineStart, breakPos = lineStart, x = 0;
        const long charWidth = view.m_nCharWidth, tabPixels = view.m_nTabPixels;
        // Without a width limit in a single-byte code page only a line feed ends a line.
        const bool lineFeedsOnly = nWidth == WIDTH_UNLIMITED && !kinds.multiByte;
        while (scan < docLen) {
            if (scan >= nextBlock && EndsAtBlock(lineStart, scan, &out)) return out;
            if (lineFeedsOnly && known) {
                const long skipTo = std::min({known->NextPossible(scan), nextBlock, docLen});
                if (skipTo > scan) {
                    scan = skipTo;
                    continue;
                }
            }
            long avail = 0;
            const auto* p = reinterpret_cast<const unsigned char*>(text.Span(scan, &avail));
            const long spanStart = scan;
            // The bytes that can be scanned with no look at a collapsed block and no new span.
            const long stop = std::min({scan + avail, nextBlock, docLen});
            if (lineFeedsOnly) {
                const void* lf = std::memchr(p, kLF, static_cast<size_t>(stop - scan));
                if (!lf) {
                    scan = stop;
                    continue;
                }
                return EndedByLineFeed(lineStart, spanStart + (static_cast<const unsigned char*>(lf) - p), &out);
            }
            while (scan < stop) {
                const unsigned char c = p[scan - spanStart];
                const ByteKind kind = kinds.kind[c];
                long size = 1;
                if (kind <= kBreakAfter) {
                    // The common bytes, with no branch on which of the two they are.
                    x += widths[c];
                    breakPos = kind == kBreakAfter ? scan + 1 : breakPos;
                } else if (kind == kLineFeed) {
                    return EndedByLineFeed(lineStart, scan, &out);
                } else if (kind == kTabStop) {
                    breakPos = scan + 1;
                    x += TabAdvance(x, tabPixels);
                } else if (kind == kLead) {
                    // A line may break in front of any double-byte character.
                    breakPos = scan;
                    size = 2;
                    x += 2 * charWidth;
                }
                scan += size;
                if (x >= nWidth) {
                    if (breakPos > lineStart)
                        scan = breakPos;  // a space, hyphen or tab that overflowed stays on the line
                    else if (scan - lineStart > size)
                        scan -= size;     // no break opportunity: the overflowing character moves down
                    return Ended(lineStart, scan, &out);
                }
            }
        }
        return Ended(lineStart, scan, &out);
    }

    ScannedLine& EndedByLineFeed(long lineStart, long lf, ScannedLine* out) {
        out->scan = lf + 1;
        out->newLen = out->scan - lineStart;
        out->endedByLF = true;
        return *out;
    }

    // At a collapsed block: true, with the line in *out, if the line ends here.
    bool EndsAtBlock(long lineStart, long scan, ScannedLine* out) {
        long blockStart, blockEnd;
        if (!view.FindCollapse(scan, &blockStart, &blockEnd)) {
            nextBlock = view.NextCollapseStart(scan + 1);
            return false;
        }
        if (scan > lineStart) {
            // The line ends in front of the block, which starts the next one.
            out->scan = scan;
            out->newLen = scan - lineStart;
            out->endedByLF = text.At(scan) == kLF;
        } else {
            // The whole block is one line, ended as if by a line feed.
            out->scan = blockEnd;
            out->newLen = blockEnd - blockStart;
            out->endedByLF = true;
            nextBlock = view.NextCollapseStart(blockEnd);
        }
        return true;
    }

    ScannedLine& Ended(long lineStart, long scan, ScannedLine* out) {
        out->runOver = scan > docLen;  // a lead byte was the last byte of the text
        out->scan = std::min(scan, docLen);
        out->newLen = out->scan - lineStart;
        return *out;
    }
};

// The scanner of a run of the breaker that starts at lineStart, with the one width table of the
// run: wrapping never looks at the style of what it measures. On the screen the table is the
// widest width of each byte over the edit font's faces; a printout measures in the font of the
// first byte's format.
LineScanner<CTextReader> ScannerFrom(CZentrelCtrl& view, CTextReader& text, DWORD dwOptions, long nWidth,
                                     long lineStart) {
    const long docLen = text.Length();
    const LONG* widths = view.m_WrapMetrics.m_aWidth;
    if (!(dwOptions & OPT_SCREENMETRICS) && lineStart < docLen) {
        CharFormat format;
        view.GetCharFormat(text.At(lineStart), lineStart, dwOptions, &format);
        if (const CFontMetrics* metrics = view.GetFontMetrics(format.dwFont)) widths = metrics->m_aWidth;
    }
    return LineScanner<CTextReader>{view, text, widths, Kinds(), nWidth, docLen, view.NextCollapseStart(lineStart)};
}

// The rows of the table from before a change, passed in order while the new rows are scanned,
// with their starts compared in the new text: a start behind the change moves by its size.
struct OldRows {
    const CLineIndex& table;
    long index;     // the first row not yet passed
    long start;     // its start in the old text
    long changeEnd; // the end of the changed bytes in the old text
    long delta;     // bytes the change added (negative when it took bytes out)

    // Passes the rows inside the change and those that start in front of pos in the new text.
    void PassTo(long pos) {
        if (start < changeEnd && index < table.m_nCount) {
            // Over the changed rows in one lookup: a fold can cover millions of them.
            long rowStart = 0;
            const long row = table.FindLineAndStart(std::min<long>(changeEnd, table.m_nTotal - 1), &rowStart);
            if (row > index) {
                index = row;
                start = rowStart;
            }
        }
        while (index < table.m_nCount && (start < changeEnd || start + delta < pos)) start += table.GetAt(index++);
    }
    // Whether pos, a row start in the new text, is the start of the row not yet passed.
    bool StartsAt(long pos) const { return index < table.m_nCount && start >= changeEnd && start + delta == pos; }
};

// Rows that come or go one at a time up to this many, or up to this share of the table; beyond
// that the table is copied out, spliced and built again in one pass, as a whole layout builds it.
// A row inserted or removed alone costs a walk of the tree, a move within its block and maybe a
// rebalance line by line; a rebuild costs a short pass over every row.
constexpr long kRowsOneByOne = 1024;
constexpr long kRowsShareOneByOne = 1024;  // one row in this many

// Puts `rows` in place of the table's rows [first, last) in one rebuild of the table.
void RebuildWithRows(CLineIndex& table, long first, long last, const std::vector<long>& rows) {
    std::vector<int32_t> lengths;
    lengths.reserve(static_cast<size_t>(table.m_nCount - (last - first)) + rows.size());
    table.CopyLengths(0, first, &lengths);
    for (long row : rows) lengths.push_back(static_cast<int32_t>(row));
    table.CopyLengths(last, table.m_nCount, &lengths);
    table.Build(lengths.data(), static_cast<long>(lengths.size()));
}

// Puts `rows` in place of the table's rows [first, last), whose first starts at `start`, changing
// only the entries that differ, and widens `range` over the rows that changed.
void SpliceRows(CLineIndex& table, long first, long last, const std::vector<long>& rows, long start,
                LayoutRange* range) {
    const long oldCount = last - first, newCount = static_cast<long>(rows.size());
    if (std::abs(oldCount - newCount) > std::max(kRowsOneByOne, table.m_nCount / kRowsShareOneByOne)) {
        RebuildWithRows(table, first, last, rows);
        range->nStart = std::min(range->nStart, start);
        range->nEnd = POS_TO_END;
        return;
    }
    const long common = std::min(oldCount, newCount);
    long changedFrom = -1, changedTo = -1;
    for (long i = 0; i < common; ++i) {
        const long old = table.GetAt(first + i);
        if (old != rows[static_cast<size_t>(i)]) {
            table.AddAt(first + i, rows[static_cast<size_t>(i)] - old);
            if (changedFrom < 0) changedFrom = start;
            changedTo = start + rows[static_cast<size_t>(i)];
        }
        start += rows[static_cast<size_t>(i)];
    }
    for (long i = common; i < newCount; ++i) table.InsertAt(first + i, rows[static_cast<size_t>(i)]);
    for (long i = common; i < oldCount; ++i) table.RemoveAt(first + common);
    if (oldCount != newCount) {
        // Rows came or went: everything below moved.
        range->nStart = std::min(range->nStart, changedFrom < 0 ? start : changedFrom);
        range->nEnd = POS_TO_END;
    } else if (changedFrom >= 0) {
        range->nStart = std::min(range->nStart, changedFrom);
        range->nEnd = std::max(range->nEnd, changedTo);
    }
}

}  // namespace

void CZentrelCtrl::WrapLines(DWORD dwOptions, long nPos, LayoutRange* pRange, long nWidth, long nLines,
                             CLineIndex* pTable) {
    WrapLinesIn(dwOptions, nPos, pRange, nWidth, nLines, pTable);
}

void CZentrelCtrl::WrapAll(DWORD dwOptions, long nWidth, CLineIndex* pTable) {
    CLineLengthList list;
    // Enough for rows of 32 bytes on average, so that a large text's list is not copied over and
    // over while it grows; a text of shorter rows grows it from there.
    list.Reserve(m_pDoc ? m_pDoc->GetLength() / 32 + 16 : 16);
    CRowWrapper(*this, m_pDoc, dwOptions, nWidth).WrapRest(&list);
    pTable->Build(list.Data(), list.m_nCount);
}

namespace {

// Appends the rows of a run from where `progress` stands, at most nRows of them, and none that
// starts at or behind nStopAt. Gives how many it appended.
template <class Reader>
long AppendRows(LineScanner<Reader>& scanner, CRowWrapper::Progress& progress, long nRows, long nStopAt,
                CLineLengthList* pRows) {
    const long docLen = scanner.text.Length();
    const long countBefore = pRows->m_nCount;
    while (!progress.bDone && pRows->m_nCount - countBefore < nRows) {
        if (progress.bEmptyRowDue) {
            pRows->InsertAt(pRows->m_nCount, 0);
            progress.bDone = true;
            break;
        }
        if (progress.nPos >= nStopAt) break;
        const ScannedLine row = docLen > 0 ? scanner.Scan(progress.nPos) : ScannedLine{};
        // A lead byte that is the last byte of the text leaves the rest as one row; so does a
        // scan that could not move, which only a text shorter than it was made for gives.
        const long length = row.runOver || row.newLen <= 0 ? docLen - progress.nPos : row.newLen;
        pRows->InsertAt(pRows->m_nCount, length);
        progress.nPos += length;
        if (progress.nPos < docLen) continue;
        // The text ends: a final line feed is followed by an empty row.
        progress.bEmptyRowDue = docLen > 0 && scanner.text.At(docLen - 1) == kLF;
        progress.bDone = !progress.bEmptyRowDue;
    }
    return pRows->m_nCount - countBefore;
}

// The rows that a helper thread lays out from a line feed on, and how far it came.
struct HelperRows {
    CLineLengthList rows;
    CRowWrapper::Progress progress;
};

// The helper's part: the rows from progress.nPos to the end of the text, read through the feed
// with the settings of the window's scanner, a copy made before the helper starts (the helper
// never reads the window's reader). It stops early, its rows so far standing, when the feed
// stops or memory runs out.
void WrapBehind(LineScanner<CTextReader> from, CTextFeed& feed, long nWindow, HelperRows* pOut) {
    try {
        CFedTextReader text(feed, from.docLen, nWindow, pOut->progress.nPos);
        LineScanner<CFedTextReader> scanner{from.view, text, from.widths, from.kinds, from.nWidth, from.docLen,
                                            from.nextBlock};
        pOut->rows.Reserve((from.docLen - pOut->progress.nPos) / 32 + 16);
        AppendRows(scanner, pOut->progress, std::numeric_limits<long>::max(), std::numeric_limits<long>::max(),
                   &pOut->rows);
    } catch (const CFedTextReader::Stopped&) {
    } catch (const std::bad_alloc&) {
    }
    feed.Done();
}

// The byte behind the first line feed from a little in front of the middle of what is left of a
// large text without collapsed blocks; 0 when the layout is not to be split. A row's layout
// depends only on the text from its start on, so the rows behind a line feed are the same
// whether the layout starts there or comes to it from the top.
long SplitAt(const LineScanner<CTextReader>& scanner, ISourceText* doc, long from, const CLayoutSplit& split) {
    const long docLen = scanner.docLen;
    // Any collapsed block at all, the first one included, keeps the layout on one thread.
    if (docLen - from < split.nMinBytes || scanner.view.NextCollapseStart(0) < docLen) return 0;
    // The window's thread takes the smaller part, as it copies the helper's text besides.
    constexpr long kFrontPercent = 46;
    // A text without a line feed near its middle (a minified page) is laid out in one piece.
    constexpr long kSearch = 1L << 20;
    CTextReader text(doc);
    for (long pos = from + (docLen - from) * kFrontPercent / 100, end = std::min(docLen, pos + kSearch); pos < end;) {
        long available = 0;
        const char* p = text.Span(pos, &available);
        available = std::min(available, end - pos);
        if (const void* lf = std::memchr(p, kLF, static_cast<size_t>(available))) {
            const long behind = pos + (static_cast<const char*>(lf) - p) + 1;
            return behind < docLen ? behind : 0;
        }
        pos += available;
    }
    return 0;
}

// A whole layout split at a line feed: this thread, the window's, lays out the rows in front of
// it and copies the text for a helper as the helper asks for it; the helper lays out the rows
// behind it.
struct SplitRun {
    LineScanner<CTextReader>& scanner;
    ISourceText* doc;
    CRowWrapper::Progress& progress;
    CLineLengthList& rows;
    HelperRows helper;

    // Rows in front of the split between two looks at the helper's wishes: a few microseconds.
    static constexpr long kRowsBetweenServes = 64;

    // Both parts; false when no thread could be had, and nothing was done.
    bool Run(long splitAt, long nWindow) {
        CTextFeed feed(doc);
        helper.progress.nPos = splitAt;
        std::thread thread;
        try {
            thread = std::thread(WrapBehind, scanner, std::ref(feed), nWindow, &helper);
        } catch (const std::system_error&) {
            return false;
        }
        // Whatever happens here, the helper stops and is joined before its rows are read.
        struct Joiner {
            CTextFeed& feed;
            std::thread& thread;
            ~Joiner() {
                feed.Stop();
                thread.join();
            }
        } joiner{feed, thread};
        while (!progress.bDone && progress.nPos < splitAt) {
            AppendRows(scanner, progress, kRowsBetweenServes, splitAt, &rows);
            feed.Serve();
        }
        feed.ServeUntilDone();
        return true;
    }

    // Takes the helper's rows from the first that starts where a row of this thread ends: that
    // is at the split itself unless a double-byte character runs over the line feed there.
    // Where no start meets, this thread goes on alone.
    void TakeHelperRows(long start) {
        long i = 0;
        while (!progress.bDone) {
            while (i < helper.rows.m_nCount && start < progress.nPos) start += helper.rows.GetAt(i++);
            if (start == progress.nPos) {
                rows.Append(helper.rows, i);
                progress = helper.progress;
                return;
            }
            if (i == helper.rows.m_nCount) return;
            AppendRows(scanner, progress, 1, std::numeric_limits<long>::max(), &rows);
        }
    }
};

}  // namespace

struct CRowWrapper::Run {
    Run(CZentrelCtrl& view, ISourceText* doc, DWORD dwOptions, long nWidth)
        : pDoc(doc), text(doc), scanner(ScannerFrom(view, text, dwOptions, nWidth, 0)) {}
    ISourceText* pDoc;
    CTextReader text;
    LineScanner<CTextReader> scanner;
};

CRowWrapper::CRowWrapper(CZentrelCtrl& view, ISourceText* doc, DWORD dwOptions, long nWidth)
    : m_pRun(std::make_unique<Run>(view, doc, dwOptions, nWidth)) {}

CRowWrapper::~CRowWrapper() = default;

long CRowWrapper::GetLength() const { return m_pRun->text.Length(); }

long CRowWrapper::WrapRows(long nRows, CLineLengthList* pRows) {
    return AppendRows(m_pRun->scanner, m_progress, nRows, std::numeric_limits<long>::max(), pRows);
}

long CRowWrapper::WrapRest(CLineLengthList* pRows, const CLayoutSplit& split) {
    const long countBefore = pRows->m_nCount;
    const long splitAt = m_progress.bDone ? 0 : SplitAt(m_pRun->scanner, m_pRun->pDoc, m_progress.nPos, split);
    if (splitAt > 0) {
        SplitRun run{m_pRun->scanner, m_pRun->pDoc, m_progress, *pRows, {}};
        if (run.Run(splitAt, split.nWindowBytes)) run.TakeHelperRows(splitAt);
    }
    WrapRows(std::numeric_limits<long>::max(), pRows);
    return pRows->m_nCount - countBefore;
}

template <class Table>
void CZentrelCtrl::WrapLinesIn(DWORD dwOptions, long nPos, LayoutRange* pRange, long nWidth, long nLines,
                               Table* pTable) {
    CTextReader text(m_pDoc);
    const long docLen = text.Length();
    if (nPos == docLen) {
        *pRange = {nPos, POS_TO_END};
        return;
    }
    WrapRun<Table> run{*pTable, *pRange, nLines};
    run.line = std::max(0L, static_cast<long>(pTable->FindLine(nPos)) - 1);
    run.lineStart = pTable->GetLineStart(run.line);
    run.oldLen = pTable->GetAt(run.line);
    run.unchanged = nLines;

    LineScanner<CTextReader> scanner = ScannerFrom(*this, text, dwOptions, nWidth, run.lineStart);

    for (;;) {
        ScannedLine scanned = scanner.Scan(run.lineStart);
        if (scanned.runOver) break;
        run.newLen = scanned.newLen;
        if (!run.FinishLine(scanned.endedByLF, text, scanned.scan, docLen)) break;
    }
    if (pTable->m_nCount == 0) pTable->InsertAt(0, 0);
}

void CZentrelCtrl::RewrapLines(long nPos, LayoutRange* pRange, long nLines) {
    WrapLines(m_Options, nPos, pRange, BreakWidth(), nLines, &m_Lines);
}

BOOL CZentrelCtrl::FindCollapse(long nPos, long* pnStart, long* pnEnd) const {
    return m_CollapseRoot.FindCollapse(nPos, pnStart, pnEnd) ? TRUE : FALSE;
}

long CZentrelCtrl::NextCollapseStart(long nPos) const { return m_CollapseRoot.NextStart(nPos); }

long CZentrelCtrl::BreakWidth() { return GetOption(OPT_WORDWRAP) ? GetWrapWidth() : WIDTH_UNLIMITED; }

// A row's layout depends only on the text from its start on (a collapsed block being one unit),
// and its scan reads at most into the first character of the row after next. So the rows in
// front of the row that holds the byte two in front of the change read nothing that changed, and
// that row's start still stands. From there the rows are scanned anew until a new row start at
// or behind the end of the new text meets an old row start moved by the change's size: from there
// on the old rows are what a scan would give. The end of the text ends the scan too, and then a
// final line feed is followed by an empty row, as in a whole layout.
void CZentrelCtrl::RelayoutChange(long nPos, long nRemoved, long nInserted, LayoutRange* pRange) {
    CTextReader text(m_pDoc);
    const long docLen = text.Length();
    if (docLen == 0) {
        m_Lines.RemoveAll();
        m_Lines.InsertAt(0, 0);
        *pRange = {0, POS_TO_END};
        return;
    }
    const long first = nPos < 2 ? 0 : std::max(0L, static_cast<long>(m_Lines.FindLine(nPos - 2)) - 1);
    const long firstStart = m_Lines.GetLineStart(first);
    const long width = BreakWidth();
    LineScanner<CTextReader> scanner = ScannerFrom(*this, text, m_Options, width, firstStart);
    const OldLineFeeds known{m_Lines, nPos, nPos + nInserted, nInserted - nRemoved};
    if (width == WIDTH_UNLIMITED) scanner.known = &known;
    OldRows old{m_Lines, first, firstStart, nPos + nRemoved, nInserted - nRemoved};
    std::vector<long> rows;
    long pos = firstStart;
    for (;;) {
        const ScannedLine row = scanner.Scan(pos);
        rows.push_back(row.newLen);
        pos = row.scan;
        if (pos >= docLen) break;
        old.PassTo(pos);
        if (old.StartsAt(pos)) break;
    }
    const bool toTheEnd = pos >= docLen;
    if (toTheEnd && text.At(docLen - 1) == kLF) rows.push_back(0);
    SpliceRows(m_Lines, first, toTheEnd ? m_Lines.m_nCount : old.index, rows, firstStart, pRange);
}
