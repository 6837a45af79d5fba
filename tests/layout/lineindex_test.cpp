// Tests of the line table: its shape at the block limits, bad arguments, running out of blocks,
// and a long random run against a plain vector, which also covers small tables with empty lines,
// lookups at and past the end, and tables drained from either end.
#include <gtest/gtest.h>

#include <cstdlib>
#include <numeric>
#include <random>
#include <stdexcept>
#include <string>
#include <vector>

#include "src/layout/lineblockpool.h"
#include "src/layout/lineindex.h"

namespace {

using Lengths = std::vector<int32_t>;

::testing::AssertionResult Valid(const CLineIndex& table, bool bBalanced = true) {
    std::string strWhy;
    if (table.CheckInvariants(&strWhy, bBalanced))
        return ::testing::AssertionSuccess();
    return ::testing::AssertionFailure() << strWhy;
}

// Appends nLines to table and model alike; line i is 1 + i % 97 bytes long.
void Append(CLineIndex& table, Lengths& model, int nLines) {
    for (int i = 0; i < nLines; ++i) {
        const int32_t nLength = 1 + int32_t(model.size() % 97);
        table.InsertAt(table.GetCount(), nLength);
        model.push_back(nLength);
    }
}

// Removes nLines from the front or the back of table and model alike.
void Remove(CLineIndex& table, Lengths& model, int nLines, bool bBack) {
    for (int i = 0; i < nLines; ++i) {
        const long nIndex = bBack ? table.GetCount() - 1 : 0;
        table.RemoveAt(nIndex);
        model.erase(model.begin() + nIndex);
    }
}

// The line that holds byte nPos, as the table defines it: zero-length lines in front of the
// position are passed over, and a position at or past the end gives the last line.
long ModelFind(const Lengths& model, int64_t nPos, int64_t* pnStart) {
    // Whole runs of lines that end at or before nPos are skipped by their sum, for speed.
    constexpr size_t kRun = 64;
    int64_t nStart = 0;
    size_t i = 0;
    for (; i + kRun < model.size(); i += kRun) {
        const int64_t nRun =
            std::accumulate(model.begin() + i, model.begin() + i + kRun, int64_t(0));
        if (nStart + nRun > nPos)
            break;
        nStart += nRun;
    }
    for (; i < model.size(); ++i) {
        if (nStart + model[i] > nPos || i + 1 == model.size()) {
            *pnStart = nStart;
            return long(i);
        }
        nStart += model[i];
    }
    *pnStart = 0;
    return 0;
}

int64_t ModelStart(const Lengths& model, size_t nIndex) {
    return std::accumulate(model.begin(), model.begin() + nIndex, int64_t(0));
}

// Every length, every line start and every position of the table against the model.
::testing::AssertionResult MatchesEverywhere(const CLineIndex& table, const Lengths& model) {
    if (size_t(table.GetCount()) != model.size())
        return ::testing::AssertionFailure() << "count " << table.GetCount();
    int64_t nStart = 0;
    for (size_t i = 0; i <= model.size(); ++i) {
        if (table.GetLineStart(long(i)) != nStart)
            return ::testing::AssertionFailure() << "GetLineStart(" << i << ")";
        if (i == model.size())
            break;
        if (table.GetAt(long(i)) != model[i])
            return ::testing::AssertionFailure() << "GetAt(" << i << ")";
        nStart += model[i];
    }
    for (int64_t nPos = 0; nPos <= nStart + 2; ++nPos) {
        int64_t nWant = 0;
        long nGot = 0;
        const long nLine = table.FindLineAndStart(long(nPos), &nGot);
        if (nLine != ModelFind(model, nPos, &nWant) || nGot != nWant ||
            table.FindLine(long(nPos)) != nLine)
            return ::testing::AssertionFailure() << "FindLine(" << nPos << ") gave " << nLine;
    }
    return ::testing::AssertionSuccess();
}

// Caps the blocks in use for one test, so that the table runs out of memory on purpose.
class BlockLimit {
public:
    explicit BlockLimit(size_t nMoreBlocks) {
        CLineBlock::Pool().SetUseLimit(CLineBlock::Pool().GetUsedCount() + nMoreBlocks);
    }
    ~BlockLimit() { CLineBlock::Pool().SetUseLimit(CLineBlockPool::kNoLimit); }
};

TEST(LineIndex, LeafSplitsOnlyWhenItIsFull) {
    CLineIndex table;
    Lengths model;
    Append(table, model, 600);
    EXPECT_EQ(table.m_pChildren, nullptr);  // line 599 still fits the one block
    Append(table, model, 1);
    ASSERT_NE(table.m_pChildren, nullptr);
    EXPECT_EQ(table.m_pChildren[0].m_nCount, 300);
    EXPECT_EQ(table.m_pChildren[1].m_nCount, 301);
    EXPECT_EQ(table.m_pChildren[1].m_nTotal, ModelStart(model, 601) - ModelStart(model, 300));
    ASSERT_TRUE(Valid(table));

    // At the boundary a line joins the smaller side: here the end of the left child...
    table.InsertAt(300, 7);
    EXPECT_EQ(table.m_pChildren[0].m_nCount, 301);
    // ...and on a tie the front of the right child.
    table.InsertAt(301, 8);
    EXPECT_EQ(table.m_pChildren[1].m_nCount, 302);
    EXPECT_EQ(table.m_pChildren[1].GetAt(0), 8);
    model.insert(model.begin() + 300, {7, 8});
    EXPECT_TRUE(MatchesEverywhere(table, model));
}

TEST(LineIndex, BalanceMovesLinesToEqualHalves) {
    CLineIndex table;
    Lengths model;
    Append(table, model, 601);  // 300 and 301
    Append(table, model, 298);
    EXPECT_EQ(table.m_pChildren[1].m_nCount, 599);  // 299 apart: still in balance
    Append(table, model, 1);
    EXPECT_EQ(table.m_pChildren[0].m_nCount, 450);
    EXPECT_EQ(table.m_pChildren[1].m_nCount, 450);
    ASSERT_TRUE(Valid(table));
    for (int i = 0; i < 300; ++i) {  // and the other way: 750 against 450 makes 600 each
        table.InsertAt(0, 5);
        model.insert(model.begin(), 5);
    }
    EXPECT_EQ(table.m_pChildren[0].m_nCount, 600);
    EXPECT_EQ(table.m_pChildren[1].m_nCount, 600);
    ASSERT_TRUE(Valid(table));
    EXPECT_TRUE(MatchesEverywhere(table, model));
}

// A node of 151 lines that loses one becomes a leaf of 150, whatever its children held; a right
// child may be empty on the way, and positions past the end then find the left one's last line.
TEST(LineIndex, NodeOfTooFewLinesMergesIntoOneLeaf) {
    for (int nLeft : {0, 1, 75, 150, 151}) {
        SCOPED_TRACE("left child of " + std::to_string(nLeft));
        CLineIndex table;
        Lengths model;
        Append(table, model, 601);  // 300 and 301; shrink them without tipping the balance
        const bool bBackFirst = nLeft <= 75;
        Remove(table, model, bBackFirst ? 150 + nLeft : 300 - nLeft, bBackFirst);
        Remove(table, model, bBackFirst ? 300 - nLeft : 150 + nLeft, !bBackFirst);
        ASSERT_NE(table.m_pChildren, nullptr);
        ASSERT_EQ(table.m_pChildren[0].m_nCount, nLeft);
        ASSERT_TRUE(Valid(table));
        EXPECT_TRUE(MatchesEverywhere(table, model));
        const CLineBlock* pRightBlock = table.m_pChildren[1].m_pBlock;

        Remove(table, model, 1, true);
        EXPECT_EQ(table.m_pChildren, nullptr);
        EXPECT_EQ(table.m_nCount, 150);
        if (nLeft == 0) {  // an emptied left side takes the right block as it stands
            EXPECT_EQ(table.m_pBlock, pRightBlock);
        }
        ASSERT_TRUE(Valid(table));
        EXPECT_TRUE(MatchesEverywhere(table, model));
    }
}

TEST(LineIndex, RemoveAllAndTheDestructorGiveEveryBlockAndNodeBack) {
    const size_t nBlocks = CLineBlock::Pool().GetUsedCount();
    const long nArrays = CLineIndex::GetChildArrayCount();
    {
        CLineIndex table;
        Lengths model;
        Append(table, model, 5000);
        table.RemoveAll();
        EXPECT_EQ(table.m_nCount + table.m_nTotal, 0);
        EXPECT_EQ(CLineBlock::Pool().GetUsedCount(), nBlocks);
        EXPECT_EQ(CLineIndex::GetChildArrayCount(), nArrays);
        Append(table, model, 2000);
    }
    EXPECT_EQ(CLineBlock::Pool().GetUsedCount(), nBlocks);
    EXPECT_EQ(CLineIndex::GetChildArrayCount(), nArrays);
}

TEST(LineIndex, BadArgumentsThrowAndChangeNothing) {
    CLineIndex table;
    Lengths model;
    Append(table, model, 700);
    EXPECT_THROW(table.InsertAt(-1, 1), std::out_of_range);
    EXPECT_THROW(table.InsertAt(701, 1), std::out_of_range);
    EXPECT_THROW(table.InsertAt(0, -1), std::invalid_argument);
    EXPECT_THROW(table.InsertAt(0, 0x7FFFFFFF), std::invalid_argument);
    EXPECT_THROW(table.RemoveAt(700), std::out_of_range);
    EXPECT_THROW(table.GetAt(-1), std::out_of_range);
    EXPECT_THROW(table.AddAt(700, 1), std::out_of_range);
    EXPECT_THROW(table.AddAt(5, -7), std::invalid_argument);  // line 5 is 6 bytes long
    EXPECT_THROW(table.AddAt(5, 0x7FFFFFFF), std::invalid_argument);
    EXPECT_THROW(table.GetLineStart(701), std::out_of_range);
    EXPECT_THROW(table.FindLine(-1), std::out_of_range);
    EXPECT_EQ(CLineIndex().FindLine(5), 0);  // an empty table answers, though none should exist
    EXPECT_EQ(table.FindLine(0x7FFFFFFFFFL), 699);  // far past the end: the last line
    ASSERT_TRUE(Valid(table));
    EXPECT_TRUE(MatchesEverywhere(table, model));
}

TEST(LineIndex, RunningOutOfBlocksThrowsAndKeepsTheTable) {
    CLineIndex table;
    {
        BlockLimit limit(0);
        EXPECT_THROW(table.InsertAt(0, 5), std::bad_alloc);
        EXPECT_EQ(table.m_nCount, 0);
        EXPECT_EQ(table.m_pBlock, nullptr);
    }
    Lengths model;
    Append(table, model, 600);
    {
        BlockLimit limit(0);  // the split needs a second block
        EXPECT_THROW(table.InsertAt(600, 5), std::bad_alloc);
        EXPECT_EQ(table.m_pChildren, nullptr);
        EXPECT_TRUE(MatchesEverywhere(table, model));
    }
    // Under a tight cap, rebalancing runs out of blocks half way; the table must stay sound and
    // keep its bytes, whichever operation failed where.
    std::mt19937 rng(11);
    Append(table, model, 6000);
    BlockLimit limit(1);
    int nFailures = 0;
    for (int nStep = 0; nStep < 20000; ++nStep) {
        const int64_t nBefore = table.m_nTotal;
        // Appending keeps the nodes rebalancing; the rest splits and merges leaves.
        const unsigned nKind = rng() % 4;
        const bool bInsert = nKind < 3;
        const long nIndex =
            nKind == 0 ? table.GetCount() : long(rng() % (table.GetCount() + (bInsert ? 1 : 0)));
        const long nLength = bInsert ? 3 : table.GetAt(nIndex);
        try {
            if (bInsert)
                table.InsertAt(nIndex, nLength);
            else
                table.RemoveAt(nIndex);
        } catch (const std::bad_alloc&) {
            ++nFailures;
            ASSERT_TRUE(Valid(table, false)) << "step " << nStep;
            const int64_t nAfter = bInsert ? nBefore + nLength : nBefore - nLength;
            ASSERT_TRUE(table.m_nTotal == nBefore || table.m_nTotal == nAfter) << "step " << nStep;
        }
    }
    EXPECT_GT(nFailures, 0);
}

// ---- a long random run against a std::vector ----

class RandomRun {
public:
    explicit RandomRun(uint64_t nSeed) : m_rng(nSeed) {}
    ::testing::AssertionResult Step(long nStep);

private:
    long Below(long n) { return n <= 0 ? 0 : long(m_rng() % uint64_t(n)); }
    long PickIndex(long nLimit) {  // 0 to nLimit - 1, the edges often
        const long nKind = Below(8);
        return nKind == 0 ? 0 : nKind == 1 ? nLimit - 1 : Below(nLimit);
    }
    void Mutate();
    ::testing::AssertionResult Query();

    std::mt19937_64 m_rng;
    CLineIndex m_table;
    Lengths m_model;
    int64_t m_nTotal = 0;
    long m_nTarget = 0;
};

void RandomRun::Mutate() {
    const long nCount = long(m_model.size());
    const long nRoll = Below(100);
    if (Below(100000) == 0) {
        m_table.RemoveAll();
        m_model.clear();
        m_nTotal = 0;
    } else if (nCount > 0 && nRoll < 15) {
        const long nIndex = PickIndex(nCount);
        const long nDelta = Below(m_model[nIndex] + 60) - m_model[nIndex];
        m_table.AddAt(nIndex, nDelta);
        m_model[nIndex] += int32_t(nDelta);
        m_nTotal += nDelta;
    } else if (nCount == 0 || nRoll < (nCount < m_nTarget ? 85 : 35)) {  // drift to the target
        const long nIndex = PickIndex(nCount + 1);
        const long nKind = Below(100);  // empty lines, long ones now and then, mostly short
        const int32_t nLength = int32_t(nKind < 12 ? 0 : nKind < 14 ? Below(5000) : 1 + Below(80));
        m_table.InsertAt(nIndex, nLength);
        m_model.insert(m_model.begin() + nIndex, nLength);
        m_nTotal += nLength;
    } else {
        const long nIndex = PickIndex(nCount);
        m_nTotal -= m_table.RemoveAt(nIndex);
        m_model.erase(m_model.begin() + nIndex);
    }
}

::testing::AssertionResult RandomRun::Query() {
    const long nCount = long(m_model.size());
    const long nIndex = PickIndex(nCount);
    if (nCount > 0 && m_table.GetAt(nIndex) != m_model[nIndex])
        return ::testing::AssertionFailure() << "GetAt(" << nIndex << ")";
    const long nLine = PickIndex(nCount + 1);
    const int64_t nLineStart =  // summed from the nearer end, to keep the model quick
        nLine < nCount / 2 ? ModelStart(m_model, nLine)
                           : m_nTotal - std::accumulate(m_model.begin() + nLine, m_model.end(), 0L);
    if (m_table.GetLineStart(nLine) != nLineStart)
        return ::testing::AssertionFailure() << "GetLineStart(" << nLine << ")";
    const long nPos = Below(m_nTotal + 3);
    int64_t nWant = 0;
    long nStart = 0;
    const long nFound = ModelFind(m_model, nPos, &nWant);
    if (nCount > 0 && (m_table.FindLine(nPos) != nFound ||
                       m_table.FindLineAndStart(nPos, &nStart) != nFound || nStart != nWant))
        return ::testing::AssertionFailure() << "FindLine(" << nPos << ")";
    return ::testing::AssertionSuccess();
}

::testing::AssertionResult RandomRun::Step(long nStep) {
    // Sizes wander between empty, one leaf, a few levels and a deeper tree.
    static const long s_aTarget[] = {0, 30, 250, 700, 2500, 6000};
    if (nStep % 30000 == 0)
        m_nTarget = s_aTarget[Below(6)];
    if (Below(10) < 6)
        Mutate();
    else if (auto result = Query(); !result)
        return result;
    if (m_table.m_nCount != long(m_model.size()) || m_table.m_nTotal != m_nTotal)
        return ::testing::AssertionFailure() << "root sums differ from the model";
    // The full check reads every line: each step while the table is small, now and then later.
    if (m_model.size() <= 1500 || nStep % 101 == 0)
        return Valid(m_table);
    return ::testing::AssertionSuccess();
}

TEST(LineIndex, RandomOperationsMatchAVector) {
    const char* lpszLong = std::getenv("ZENTREL_LONG_TESTS");
    const long nSteps = (lpszLong && std::string(lpszLong) == "1") ? 20000000 : 1000000;
    const uint64_t nSeed = 20240611;
    RandomRun run(nSeed);
    for (long nStep = 0; nStep < nSteps; ++nStep)
        ASSERT_TRUE(run.Step(nStep)) << "seed " << nSeed << ", step " << nStep;
}

TEST(LineBlockPool, GrowsTenSlotsAtATimeAndReusesFreedOnes) {
    CLineBlockPool pool(100, 10);
    std::vector<void*> aSlot;
    for (int i = 0; i < 11; ++i)
        aSlot.push_back(pool.Allocate());
    EXPECT_EQ(pool.GetSlotCount(), 20u);
    pool.Free(aSlot[3]);
    EXPECT_EQ(pool.Allocate(), aSlot[3]);
    pool.SetUseLimit(11);
    EXPECT_THROW(pool.Allocate(), std::bad_alloc);
    for (void* p : aSlot)
        pool.Free(p);
    EXPECT_EQ(pool.GetUsedCount(), 0u);
}

}  // namespace

TEST(LineIndex, BuildGivesAValidTableThatKeepsWorking) {
    std::mt19937 rng(7);
    for (long nLines : {0L, 1L, 600L, 601L, 1201L, 50000L}) {
        std::vector<int32_t> lengths(static_cast<size_t>(nLines));
        for (int32_t& n : lengths) n = static_cast<int32_t>(rng() % 90);
        CLineIndex table;
        table.InsertAt(0, 5);  // whatever stood there goes
        table.Build(lengths.data(), nLines);
        std::string why;
        ASSERT_TRUE(table.CheckInvariants(&why)) << nLines << ": " << why;
        ASSERT_EQ(table.m_nCount, nLines);
        int64_t start = 0;
        for (long i = 0; i < nLines; i += 97) {
            EXPECT_EQ(table.GetAt(i), lengths[static_cast<size_t>(i)]);
        }
        for (long i = 0; i < nLines; ++i) {
            ASSERT_EQ(table.GetLineStart(i), start);
            start += lengths[static_cast<size_t>(i)];
        }
        EXPECT_EQ(table.m_nTotal, start);
        std::vector<int32_t> copied;
        table.CopyLengths(nLines / 3, nLines - nLines / 5, &copied);
        EXPECT_EQ(copied, std::vector<int32_t>(lengths.begin() + nLines / 3, lengths.end() - nLines / 5));
        // Ordinary edits on a built table keep every rule.
        for (int step = 0; step < 2000 && nLines > 0; ++step) {
            long at = static_cast<long>(rng() % static_cast<unsigned>(table.m_nCount));
            if (step % 2) table.InsertAt(at, 3);
            else if (table.m_nCount > 1) table.RemoveAt(at);
        }
        ASSERT_TRUE(table.CheckInvariants(&why)) << nLines << ": " << why;
    }
    CLineIndex table;
    table.InsertAt(0, 4);
    const int32_t bad[] = {3, -1};
    EXPECT_THROW(table.Build(bad, 2), std::invalid_argument);
    EXPECT_EQ(table.m_nCount, 1);
    EXPECT_EQ(table.m_nTotal, 4);
}
