// The hard lines of the text: lines that end with LF (a CR in front of the LF belongs to the
// line end). Kept as a list of line lengths, the break included, in 32 bits (a text stays below
// 2^31 bytes), cut into chunks; a Fenwick tree over the chunks gives the bytes and lines in
// front of each chunk, so that finding the line of a position and the start of a line take
// logarithmic time in the number of chunks plus a short scan inside one chunk, and an edit
// costs the same.
#pragma once
#include <cstdint>
#include <string_view>
#include <vector>

#include "htmldoc/twothreads.h"

class CHardLines {
public:
    CHardLines();

    // Rebuilds the table for the whole text; a text of nTwoThreadBytes or more is read in two
    // halves at once.
    void Assign(std::string_view text, size_t nTwoThreadBytes = kTwoThreadBytes);
    // The text had `oldCount` bytes at `pos` replaced by `text`.
    void Replace(long pos, long oldCount, std::string_view text);

    long LineCount() const { return m_nLines; }
    long Length() const { return m_nBytes; }
    // The line that holds `pos`; positions at or past the end belong to the last line.
    long LineFromPos(long pos) const;
    // The first byte of `line`, for 0 <= line < LineCount().
    long LineStart(long line) const;
    // Start and length (break included) of the line that holds `pos`.
    void LineAround(long pos, long* line, long* start, long* length) const;

private:
    struct CChunk {
        std::vector<int32_t> lens;
        long bytes = 0;
    };
    // A chunk and the line inside it.
    struct CSpot {
        size_t chunk = 0;
        size_t index = 0;
        long start = 0;  // position of the line's first byte
    };

    CSpot SpotFromPos(long pos) const;
    CSpot SpotFromLine(long line) const;
    // Replaces `count` lines from `first` by lines of the given lengths.
    void Splice(long first, long count, const std::vector<int32_t>& lens);
    static void AddLine(std::vector<CChunk>* chunks, long len);
    // Splits oversized chunks, drops empty ones, merges small ones, and rebuilds the tree.
    void Normalize(size_t from, size_t to);
    void Rebuild();
    void TreeAdd(size_t chunk, long bytes, long lines);
    // The first chunk whose running total in `tree` passes `value`; `before` gets the total of
    // the chunks in front of it.
    size_t TreeFind(const std::vector<long>& tree, long value, long* before) const;
    long TreePrefix(const std::vector<long>& tree, size_t chunks) const;

    std::vector<CChunk> m_chunks;
    std::vector<long> m_treeBytes;  // Fenwick trees, 1-based, over chunk byte and line counts
    std::vector<long> m_treeLines;
    long m_nLines = 0;
    long m_nBytes = 0;
};
