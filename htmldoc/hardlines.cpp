#include "htmldoc/hardlines.h"

#include <algorithm>
#include <cstring>
#include <iterator>

namespace {

// Lines per chunk when a run of chunks is packed; a chunk may grow to twice that before it is
// split again.
constexpr size_t kChunkLines = 128;
constexpr size_t kMaxChunkLines = 2 * kChunkLines;

// Gives `add` the length of each line that a line feed of `text` ends, in order, when `text`
// follows `prefix` bytes of a line. Gives back the bytes behind the last line feed, the prefix
// included when there is none.
template <class Add>
long EachEndedLine(long prefix, std::string_view text, Add add) {
    long run = prefix;
    const char* p = text.data();
    const char* end = p + text.size();
    while (p < end) {
        const void* hit = std::memchr(p, '\n', static_cast<size_t>(end - p));
        if (!hit) break;
        const char* lf = static_cast<const char*>(hit);
        add(run + (lf - p) + 1);
        run = 0;
        p = lf + 1;
    }
    return run + (end - p);
}

// Gives `add` the length of each line that `text` makes when it stands between `prefix` bytes of
// a line and `suffix` bytes of the rest of that line, in order.
template <class Add>
void EachLine(long prefix, std::string_view text, long suffix, Add add) {
    add(EachEndedLine(prefix, text, add) + suffix);
}

std::vector<int32_t> SplitLines(long prefix, std::string_view text, long suffix) {
    std::vector<int32_t> lens;
    EachLine(prefix, text, suffix, [&lens](long len) { lens.push_back(static_cast<int32_t>(len)); });
    return lens;
}

long Sum(const std::vector<int32_t>& v, size_t from, size_t to) {
    long s = 0;
    for (size_t i = from; i < to; ++i) s += v[i];
    return s;
}

}  // namespace

CHardLines::CHardLines() { Assign({}); }

void CHardLines::Assign(std::string_view text, size_t nTwoThreadBytes) {
    m_chunks.clear();
    m_nLines = 0;
    // Straight into the chunks: a list of every line first would be as large again.
    if (text.size() < nTwoThreadBytes) {
        EachLine(0, text, 0, [this](long len) { AddLine(&m_chunks, len); });
    } else {
        // The two halves at once; the line that runs over the middle is put together after.
        const size_t half = text.size() / 2;
        std::vector<CChunk> back;
        long rest = 0;
        RunOnTwoThreads(
            [&] { rest = EachEndedLine(0, text.substr(0, half), [this](long len) { AddLine(&m_chunks, len); }); },
            [&] { EachLine(0, text.substr(half), 0, [&back](long len) { AddLine(&back, len); }); });
        back.front().lens.front() += static_cast<int32_t>(rest);
        back.front().bytes += rest;
        m_chunks.insert(m_chunks.end(), std::make_move_iterator(back.begin()), std::make_move_iterator(back.end()));
    }
    Rebuild();
}

void CHardLines::AddLine(std::vector<CChunk>* chunks, long len) {
    if (chunks->empty() || chunks->back().lens.size() >= kChunkLines) chunks->emplace_back().lens.reserve(kChunkLines);
    chunks->back().lens.push_back(static_cast<int32_t>(len));
    chunks->back().bytes += len;
}

void CHardLines::Rebuild() {
    size_t n = m_chunks.size();
    m_treeBytes.assign(n + 1, 0);
    m_treeLines.assign(n + 1, 0);
    m_nBytes = 0;
    m_nLines = 0;
    for (size_t c = 0; c < n; ++c) {
        m_nBytes += m_chunks[c].bytes;
        m_nLines += static_cast<long>(m_chunks[c].lens.size());
        m_treeBytes[c + 1] += m_chunks[c].bytes;
        m_treeLines[c + 1] += static_cast<long>(m_chunks[c].lens.size());
        size_t parent = (c + 1) + ((c + 1) & (~(c + 1) + 1));
        if (parent <= n) {
            m_treeBytes[parent] += m_treeBytes[c + 1];
            m_treeLines[parent] += m_treeLines[c + 1];
        }
    }
}

void CHardLines::TreeAdd(size_t chunk, long bytes, long lines) {
    for (size_t i = chunk + 1; i < m_treeBytes.size(); i += i & (~i + 1)) {
        m_treeBytes[i] += bytes;
        m_treeLines[i] += lines;
    }
    m_nBytes += bytes;
    m_nLines += lines;
}

long CHardLines::TreePrefix(const std::vector<long>& tree, size_t chunks) const {
    long s = 0;
    for (size_t i = chunks; i > 0; i -= i & (~i + 1)) s += tree[i];
    return s;
}

size_t CHardLines::TreeFind(const std::vector<long>& tree, long value, long* before) const {
    size_t n = tree.size() - 1;
    size_t mask = 1;
    while (mask * 2 <= n) mask *= 2;
    size_t pos = 0;
    long rest = value;
    for (; mask > 0; mask /= 2) {
        if (pos + mask <= n && tree[pos + mask] <= rest) {
            pos += mask;
            rest -= tree[pos];
        }
    }
    *before = value - rest;
    return pos;
}

CHardLines::CSpot CHardLines::SpotFromPos(long pos) const {
    CSpot spot;
    if (pos >= m_nBytes) {
        spot.chunk = m_chunks.size() - 1;
        spot.index = m_chunks.back().lens.size() - 1;
        spot.start = m_nBytes - m_chunks.back().lens.back();
        return spot;
    }
    spot.chunk = TreeFind(m_treeBytes, std::max<long>(pos, 0), &spot.start);
    const std::vector<int32_t>& lens = m_chunks[spot.chunk].lens;
    while (spot.index + 1 < lens.size() && pos >= spot.start + lens[spot.index]) spot.start += lens[spot.index++];
    return spot;
}

CHardLines::CSpot CHardLines::SpotFromLine(long line) const {
    CSpot spot;
    long linesBefore = 0;
    spot.chunk = TreeFind(m_treeLines, line, &linesBefore);
    spot.index = static_cast<size_t>(line - linesBefore);
    spot.start = TreePrefix(m_treeBytes, spot.chunk) + Sum(m_chunks[spot.chunk].lens, 0, spot.index);
    return spot;
}

long CHardLines::LineFromPos(long pos) const {
    CSpot spot = SpotFromPos(pos);
    return TreePrefix(m_treeLines, spot.chunk) + static_cast<long>(spot.index);
}

long CHardLines::LineStart(long line) const {
    if (line <= 0) return 0;
    if (line >= m_nLines) return m_nBytes;
    return SpotFromLine(line).start;
}

void CHardLines::LineAround(long pos, long* line, long* start, long* length) const {
    CSpot spot = SpotFromPos(pos);
    *line = TreePrefix(m_treeLines, spot.chunk) + static_cast<long>(spot.index);
    *start = spot.start;
    *length = m_chunks[spot.chunk].lens[spot.index];
}

void CHardLines::Replace(long pos, long oldCount, std::string_view text) {
    long line1, start1, len1, line2, start2, len2;
    LineAround(pos, &line1, &start1, &len1);
    LineAround(pos + oldCount, &line2, &start2, &len2);
    bool hasBreak = text.find('\n') != std::string_view::npos;
    if (line1 == line2 && !hasBreak) {
        // The common case of typing: one line changes length.
        CSpot spot = SpotFromPos(pos);
        long delta = static_cast<long>(text.size()) - oldCount;
        m_chunks[spot.chunk].lens[spot.index] += static_cast<int32_t>(delta);
        m_chunks[spot.chunk].bytes += delta;
        TreeAdd(spot.chunk, delta, 0);
        return;
    }
    long suffix = start2 + len2 - (pos + oldCount);
    Splice(line1, line2 - line1 + 1, SplitLines(pos - start1, text, suffix));
}

void CHardLines::Splice(long first, long count, const std::vector<int32_t>& lens) {
    CSpot spot = SpotFromLine(first);
    CChunk& chunk = m_chunks[spot.chunk];
    auto at = chunk.lens.begin() + static_cast<long>(spot.index);
    if (spot.index + static_cast<size_t>(count) <= chunk.lens.size()) {
        long oldBytes = Sum(chunk.lens, spot.index, spot.index + static_cast<size_t>(count));
        at = chunk.lens.erase(at, at + count);
        chunk.lens.insert(at, lens.begin(), lens.end());
        long delta = Sum(lens, 0, lens.size()) - oldBytes;
        chunk.bytes += delta;
        if (chunk.lens.size() <= kMaxChunkLines) {
            TreeAdd(spot.chunk, delta, static_cast<long>(lens.size()) - count);
            return;
        }
        Normalize(spot.chunk, spot.chunk);
        return;
    }
    // The lines to replace run over several chunks: take them out chunk by chunk.
    size_t c = spot.chunk;
    size_t index = spot.index;
    long left = count;
    while (left > 0) {
        CChunk& ch = m_chunks[c];
        long take = std::min<long>(left, static_cast<long>(ch.lens.size() - index));
        auto from = ch.lens.begin() + static_cast<long>(index);
        ch.bytes -= Sum(ch.lens, index, index + static_cast<size_t>(take));
        ch.lens.erase(from, from + take);
        left -= take;
        ++c;
        index = 0;
    }
    CChunk& target = m_chunks[spot.chunk];
    target.lens.insert(target.lens.begin() + static_cast<long>(spot.index), lens.begin(), lens.end());
    target.bytes += Sum(lens, 0, lens.size());
    Normalize(spot.chunk, c - 1);
}

void CHardLines::Normalize(size_t from, size_t to) {
    // Repack the touched chunks into chunks of the usual size.
    std::vector<int32_t> all;
    for (size_t c = from; c <= to; ++c)
        all.insert(all.end(), m_chunks[c].lens.begin(), m_chunks[c].lens.end());
    std::vector<CChunk> packed;
    for (size_t i = 0; i < all.size(); i += kChunkLines) {
        CChunk chunk;
        chunk.lens.assign(all.begin() + static_cast<long>(i),
                          all.begin() + static_cast<long>(std::min(all.size(), i + kChunkLines)));
        chunk.bytes = Sum(chunk.lens, 0, chunk.lens.size());
        packed.push_back(std::move(chunk));
    }
    m_chunks.erase(m_chunks.begin() + static_cast<long>(from), m_chunks.begin() + static_cast<long>(to) + 1);
    m_chunks.insert(m_chunks.begin() + static_cast<long>(from), std::make_move_iterator(packed.begin()),
                    std::make_move_iterator(packed.end()));
    Rebuild();
}
