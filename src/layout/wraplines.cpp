// The line breaker. It walks the text from the line above a change, works out what each line
// would be now, and changes the table only where a line's length differs. It stops once a
// given number of lines in a row came out unchanged, so an edit costs a scan of a few lines.
#include <algorithm>

#include "src/layout/linelengthlist.h"
#include "src/layout/textreader.h"
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr unsigned char kTab = '\t', kCR = '\r', kLF = '\n';

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

    // Settles the line just scanned; false when the run is over. `endedByLF` says whether the
    // line ended at a line feed (or a collapsed block, which counts as one).
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

}  // namespace

void CZentrelCtrl::WrapLines(DWORD dwOptions, long nPos, LayoutRange* pRange, long nWidth, long nLines,
                             CLineIndex* pTable) {
    WrapLinesIn(dwOptions, nPos, pRange, nWidth, nLines, pTable);
}

void CZentrelCtrl::WrapAll(DWORD dwOptions, long nWidth, CLineIndex* pTable) {
    CLineLengthList list;
    list.InsertAt(0, m_pDoc->GetLength());
    LayoutRange scratch{0, 0};
    WrapLinesIn(dwOptions, 0, &scratch, nWidth, 0x7FFFFFFF, &list);
    pTable->Build(list.Data(), list.m_nCount);
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
    // One width table for the whole run: wrapping never looks at the style of what it measures.
    // Without the screen metrics bit the caller has installed the device's metrics in the same table.
    const LONG* widths = m_WrapMetrics.m_aWidth;
    (void)dwOptions;

    long scan = run.lineStart, breakPos = run.lineStart, x = 0;
    while (scan <= docLen) {
        bool endedByLF = false;
        long blockStart, blockEnd;
        if (scan == docLen) {
            // The byte behind the text is read but means nothing: the last line ends here.
        } else if (FindCollapse(scan, &blockStart, &blockEnd)) {
            if (run.newLen == 0) {
                run.newLen = blockEnd - blockStart;
                scan = blockEnd;
                endedByLF = true;
            }
        } else {
            unsigned char c = text.At(scan);
            long size = 1;
            if (IsLeadByte(c)) {
                // A line may break in front of any double-byte character, which is two columns wide.
                breakPos = scan;
                size = 2;
                x += 2 * m_nCharWidth;
            } else if (c == kLF) {
                endedByLF = true;
            } else if (c == kTab) {
                breakPos = scan + 1;
                x += m_nTabPixels - (x % m_nTabPixels);
            } else if (c != kCR) {
                x += widths[c];
                if (c == ' ' || c == '-') breakPos = scan + 1;
            }
            scan += size;
            run.newLen += size;
            if (scan > docLen) break;  // a lead byte was the last byte of the text
            if (!endedByLF && x >= nWidth) {
                if (breakPos > run.lineStart) {
                    // Back to the last break opportunity; a space, hyphen or tab that overflowed stays.
                    run.newLen -= scan - breakPos;
                    scan = breakPos;
                } else if (run.newLen > size) {
                    // No break opportunity: the character that overflowed starts the next line.
                    scan -= size;
                    run.newLen -= size;
                }
            } else if (!endedByLF && scan != docLen) {
                continue;
            }
        }
        if (!run.FinishLine(endedByLF, text, scan, docLen)) break;
        scan = breakPos = run.lineStart;
        x = 0;
    }
    if (pTable->m_nCount == 0) pTable->InsertAt(0, 0);
}

void CZentrelCtrl::RewrapLines(long nPos, LayoutRange* pRange, long nLines) {
    long width = GetOption(OPT_WORDWRAP) ? GetWrapWidth() : WIDTH_UNLIMITED;
    WrapLines(m_Options, nPos, pRange, width, nLines, &m_Lines);
}

BOOL CZentrelCtrl::FindCollapse(long nPos, long* pnStart, long* pnEnd) const {
    return m_CollapseRoot.FindCollapse(nPos, pnStart, pnEnd) ? TRUE : FALSE;
}
