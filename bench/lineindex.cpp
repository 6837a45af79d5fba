// Figures of the line table on a large document: building it, the position and line lookups,
// changing lengths, and its memory per line. Prints "name value unit" lines.
// Usage: bench_lineindex [LINES]   (default 10000000, about 100 MB of HTML)
#include <algorithm>
#include <chrono>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <numeric>
#include <random>
#include <string>
#include <vector>

#include "src/layout/lineblockpool.h"
#include "src/layout/lineindex.h"

namespace {

using Clock = std::chrono::steady_clock;

double NsSince(Clock::time_point t0) {
    return std::chrono::duration<double, std::nano>(Clock::now() - t0).count();
}

void Print(const char* lpszName, double dValue, const char* lpszUnit) {
    std::printf("%s %.2f %s\n", lpszName, dValue, lpszUnit);
}

// Line lengths shaped like generated HTML: indentation that follows the nesting, short tags and
// text, some blank lines, now and then a long paragraph or script line; LF ends every line.
std::vector<int32_t> MakeHtmlLineLengths(size_t nLines, std::mt19937& rng) {
    std::vector<int32_t> aLength;
    aLength.reserve(nLines);
    std::geometric_distribution<int> content(0.2);
    std::uniform_int_distribution<int> percent(0, 99);
    std::uniform_int_distribution<int> longLine(40, 400);
    int nDepth = 2;
    for (size_t i = 0; i < nLines; ++i) {
        const int nKind = percent(rng);
        if (nKind < 8) {
            aLength.push_back(1);
            continue;
        }
        if (nKind < 30 && nDepth < 12)
            ++nDepth;
        else if (nKind < 52 && nDepth > 0)
            --nDepth;
        const int nText = nKind == 99 ? longLine(rng) : 1 + content(rng);
        aLength.push_back(nDepth / 2 + nText + 1);
    }
    return aLength;
}

int Depth(const CLineIndex& node) {
    if (!node.m_pChildren)
        return 1;
    return 1 + std::max(Depth(node.m_pChildren[0]), Depth(node.m_pChildren[1]));
}

// Memory that the table holds: its blocks (whole 2.4 KB blocks, used or not) and its child
// arrays. The pool's own reserve of free blocks is given apart.
void PrintMemory(const CLineIndex& table) {
    const CLineBlockPool& pool = CLineBlock::Pool();
    const double dLines = double(table.m_nCount);
    const double dBlocks = double(pool.GetUsedCount()) * double(pool.GetSlotSize());
    const double dNodes = double(CLineIndex::GetChildArrayCount()) * 2.0 * sizeof(CLineIndex);
    Print("lineindex_bytes_per_line", (dBlocks + dNodes) / dLines, "bytes");
    Print("lineindex_pool_reserve_per_line",
          double(pool.GetSlotCount() - pool.GetUsedCount()) * double(pool.GetSlotSize()) / dLines,
          "bytes");
    Print("lineindex_block_fill",
          100.0 * dLines / (double(pool.GetUsedCount()) * kLineBlockCapacity), "percent");
    Print("lineindex_depth", Depth(table), "levels");
}

// Times nCalls of fnCall(i), i from 0, and prints the mean per call.
template <class F>
void TimeCalls(const char* lpszName, size_t nCalls, F fnCall) {
    const auto t0 = Clock::now();
    for (size_t i = 0; i < nCalls; ++i)
        fnCall(i);
    Print(lpszName, NsSince(t0) / double(nCalls), "ns/call");
}

}  // namespace

int main(int argc, char** argv) {
    const size_t nLines = argc > 1 ? std::strtoul(argv[1], nullptr, 10) : 10000000;
    if (nLines < 2) {
        std::fprintf(stderr, "bench_lineindex: LINES must be 2 or more\n");
        return 2;
    }
    std::mt19937 rng(20240611);
    const std::vector<int32_t> aLength = MakeHtmlLineLengths(nLines, rng);
    int64_t nBytes = 0;
    for (int32_t n : aLength)
        nBytes += n;
    Print("lineindex_lines", double(nLines), "lines");
    Print("lineindex_avg_line_length", double(nBytes) / double(nLines), "bytes");

    // The whole table from the list of lengths in one pass, as a full layout builds it.
    CLineIndex table;
    const auto tBuild = Clock::now();
    table.Build(aLength.data(), long(nLines));
    Print("lineindex_build_from_lengths", NsSince(tBuild) / double(nLines), "ns/line");

    // Appending line by line costs more as the table grows (lines move between ever more leaves
    // to keep every node balanced), so it is measured on a smaller table, per tenfold stretch.
    {
        CLineIndex appended;
        const size_t nAppendLines = std::min<size_t>(nLines, 100000);
        for (size_t nFrom = 0, nTo = std::min<size_t>(nAppendLines, 1000); nFrom < nAppendLines;
             nFrom = nTo, nTo = std::min(nAppendLines, nTo * 10)) {
            const auto t0 = Clock::now();
            for (size_t i = nFrom; i < nTo; ++i)
                appended.InsertAt(long(i), aLength[i]);
            const std::string strName = "lineindex_build_append_upto_" + std::to_string(nTo);
            Print(strName.c_str(), NsSince(t0) / double(nTo - nFrom), "ns/line");
        }
    }
    PrintMemory(table);

    // The way a full rewrap builds a table: one line of the whole text, cut from the front.
    // Capped in size, as its cost grows with the table like appending does.
    const size_t nWrapLines = std::min<size_t>(nLines, 100000);
    {
        CLineIndex wrapped;
        const long nWrapBytes =
            long(std::accumulate(aLength.begin(), aLength.begin() + nWrapLines, int64_t(0)));
        const auto t0 = Clock::now();
        wrapped.InsertAt(0, nWrapBytes);
        for (size_t i = 0; i + 1 < nWrapLines; ++i) {
            const long nRest = wrapped.GetAt(long(i));
            wrapped.AddAt(long(i), aLength[i] - nRest);
            wrapped.InsertAt(long(i) + 1, nRest - aLength[i]);
        }
        const std::string strName = "lineindex_build_wrap_" + std::to_string(nWrapLines);
        Print(strName.c_str(), NsSince(t0) / double(nWrapLines), "ns/line");
    }

    const size_t nCalls = 2000000;
    std::uniform_int_distribution<long> anyPos(0, long(nBytes) - 1);
    std::uniform_int_distribution<long> anyLine(0, long(nLines) - 1);
    std::vector<long> aPos(nCalls), aLine(nCalls);
    for (size_t i = 0; i < nCalls; ++i) {
        aPos[i] = anyPos(rng);
        aLine[i] = anyLine(rng);
    }
    long nSink = 0;
    TimeCalls("lineindex_findline", nCalls, [&](size_t i) { nSink += table.FindLine(aPos[i]); });
    TimeCalls("lineindex_findlineandstart", nCalls, [&](size_t i) {
        long nStart = 0;
        nSink += table.FindLineAndStart(aPos[i], &nStart) + nStart;
    });
    TimeCalls("lineindex_getlinestart", nCalls,
              [&](size_t i) { nSink += table.GetLineStart(aLine[i]); });
    TimeCalls("lineindex_getat", nCalls, [&](size_t i) { nSink += table.GetAt(aLine[i]); });
    TimeCalls("lineindex_addat", nCalls,
              [&](size_t i) { table.AddAt(aLine[i & ~size_t(1)], (i & 1) ? -1 : 1); });
    // A line break typed and taken away again at random places.
    TimeCalls("lineindex_insertat_removeat", nCalls, [&](size_t i) {
        if (i & 1)
            nSink += table.RemoveAt(aLine[i - 1]);
        else
            table.InsertAt(aLine[i], 7);
    });

    std::string strWhy;
    if (!table.CheckInvariants(&strWhy) || table.m_nTotal != nBytes) {
        std::fprintf(stderr, "bench_lineindex: table broken: %s\n", strWhy.c_str());
        return 1;
    }
    return nSink == 42 ? 3 : 0;  // keeps the lookups from being optimised away
}
