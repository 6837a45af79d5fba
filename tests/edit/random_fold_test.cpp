// Long random sequences of folds, expansions, bookmark toggles, caret keys and host edits,
// checked after every step against a plain model: a tree of blocks kept by a literal walk over
// lists, and a list of bookmarks, whose ends follow each edit by the document's rule for tracked
// ranges. Also after every step: the line table is what a fresh layout with the same blocks
// folded gives, LineCount and the table agree, every position of a folded line maps to its left
// edge, and the bookmark events came in the model's order.
// ZENTREL_LONG_TESTS=1 runs ten times as many steps; ZENTREL_SEED=N shifts the seeds.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdlib>
#include <random>
#include <string>
#include <vector>

#include "platform/testing/testplatform.h"
#include "platform/testing/testwindow.h"
#include "platform/window/input.h"
#include "platform/window/keys.h"
#include "tests/view/viewtest.h"

namespace {

// Two ends of a tracked range, moved through an edit as the document moves them: ends behind
// the removed bytes shift, ends inside them fall to its start; an insertion pushes the ends
// behind it, and the lower end of a non-empty range standing right at it.
struct Ends {
    long active = 0, anchor = 0;
    long Low() const { return std::min(active, anchor); }
    long High() const { return std::max(active, anchor); }
    void Edit(long pos, long removed, long inserted) {
        const auto afterDelete = [&](long e) { return e > pos + removed ? e - removed : std::min(e, pos); };
        active = afterDelete(active);
        anchor = afterDelete(anchor);
        if (inserted == 0) return;
        const long low = Low();
        const bool grows = active != anchor;
        const auto afterInsert = [&](long e) { return e > pos || (e == pos && grows && e == low) ? e + inserted : e; };
        active = afterInsert(active);
        anchor = afterInsert(anchor);
    }
};

struct ModelBlock {
    Ends ends;
    std::vector<ModelBlock> kids;
    long Start() const { return ends.Low(); }
    long End() const { return ends.High(); }
    void Edit(long pos, long removed, long inserted) {
        ends.Edit(pos, removed, inserted);
        for (ModelBlock& k : kids) k.Edit(pos, removed, inserted);
    }
};

// The tree as the rules say it, walked child by child.
struct ModelTree {
    std::vector<ModelBlock> top;

    bool Collapse(long lo, long hi) {
        size_t i = 0;
        for (; i < top.size(); ++i) {
            const long cs = top[i].Start(), ce = top[i].End();
            if (lo > cs && lo < ce) return false;
            if (lo <= cs) break;
        }
        const size_t first = i;
        if (i < top.size() && lo == top[i].Start() && hi == top[i].End()) return false;
        for (; i < top.size(); ++i) {
            const long cs = top[i].Start(), ce = top[i].End();
            if (hi >= ce) continue;
            if (cs < hi) return false;
            break;
        }
        ModelBlock block{{lo, hi}, {top.begin() + static_cast<long>(first), top.begin() + static_cast<long>(i)}};
        top.erase(top.begin() + static_cast<long>(first), top.begin() + static_cast<long>(i));
        top.insert(top.begin() + static_cast<long>(first), std::move(block));
        return true;
    }

    long Expand(long lo, long hi, bool oneLevel) {
        long a = lo, b = hi, count = 0;
        size_t i = 0;
        while (i < top.size() && top[i].Start() < lo) ++i;
        while (i < top.size()) {
            const long cs = top[i].Start(), ce = top[i].End();
            bool matches = a == b ? cs == a : cs >= a && ce <= b;
            if (a == b && cs != a) break;
            if (a == b && !oneLevel) b = ce;
            if (matches) {
                std::vector<ModelBlock> kids = std::move(top[i].kids);
                std::erase_if(kids, [](const ModelBlock& k) { return k.Start() == k.End(); });
                top.erase(top.begin() + static_cast<long>(i));
                top.insert(top.begin() + static_cast<long>(i), kids.begin(), kids.end());
                if (oneLevel) i += kids.size();
                ++count;
            } else {
                ++i;
            }
            if (ce > b) break;
        }
        return count;
    }

    void Edit(long pos, long removed, long inserted) {
        for (ModelBlock& block : top) block.Edit(pos, removed, inserted);
        std::erase_if(top, [](const ModelBlock& block) { return block.Start() == block.End(); });
    }
};

std::string Format(const std::vector<ModelBlock>& blocks) {
    std::string out;
    for (const ModelBlock& b : blocks) {
        out += (out.empty() ? "" : " ") + std::to_string(b.Start()) + "-" + std::to_string(b.End());
        if (!b.kids.empty()) out += "[" + Format(b.kids) + "]";
    }
    return out;
}

struct ModelBookmark {
    std::string name;
    Ends ends;
};

const char* const kNames[] = {"Bookmark 0", "Bookmark 7", "chapter", "bookmark 3 x"};

class RandomFolding : public ::testing::TestWithParam<bool> {
protected:
    void SetUp() override {
        const char* offset = std::getenv("ZENTREL_SEED");
        m_rng.seed(11u + (GetParam() ? 1u : 0u) + (offset ? static_cast<unsigned>(std::atoi(offset)) : 0u));
        m_control = MakeControlThroughFactory();
        m_ctrl = AsControl(m_control.Get());
        m_ctrl->SetEditFont({"Courier New", 100000, 400, 1});
        m_ctrl->SetOption(OPT_WORDWRAP, GetParam() ? TRUE : FALSE);
        m_ctrl->CreateControlWindow(nullptr, {0, 0, 300, 150});
        m_cookie = m_ctrl->AdviseEvents(&m_log);
        m_doc = CreateHtmlDocument();
        m_doc->SetText(RandomText(60));
        m_ctrl->SetDocument(m_doc.Get());
        m_platform->MoveFocus(m_ctrl->GetSafeHwnd());
        m_log.events.clear();
    }
    void TearDown() override {
        m_ctrl->UnadviseEvents(m_cookie);
        m_ctrl->DestroyControlWindow();
        m_control = nullptr;
    }

    long Pick(long lo, long hi) { return std::uniform_int_distribution<long>(lo, hi)(m_rng); }

    std::string RandomText(int pieces) {
        static const char* const kPieces[] = {"a", "bc", " ", "\t", "\r\n", "\n", "<p>", "word ", "x\ny", "longerwordthatwraps"};
        std::string text;
        for (int i = 0; i < pieces; ++i) text += kPieces[Pick(0, std::size(kPieces) - 1)];
        return text;
    }
    // A position that is no CR in front of its LF, so that every edit keeps whole characters.
    long RandomPos() {
        const std::string text = m_doc->GetText();
        long pos = Pick(0, static_cast<long>(text.size()));
        if (pos > 0 && pos < static_cast<long>(text.size()) && text[pos - 1] == '\r' && text[pos] == '\n') --pos;
        return pos;
    }

    void Fold() {
        const long a = RandomPos(), b = RandomPos();
        if (a == b) return;
        m_step = "fold " + std::to_string(a) + " " + std::to_string(b);
        const bool expected = m_model.Collapse(std::min(a, b), std::max(a, b));
        ASSERT_EQ(m_ctrl->CollapseBlock(a, b, TRUE) != FALSE, expected);
    }

    void Unfold() {
        long a = RandomPos(), b = RandomPos();
        if (Pick(0, 2) == 0 && !m_model.top.empty()) a = b = m_model.top[static_cast<size_t>(Pick(0, m_model.top.size() - 1))].Start();
        const bool oneLevel = Pick(0, 1) != 0;
        m_step = "unfold " + std::to_string(a) + " " + std::to_string(b) + (oneLevel ? " one level" : " all");
        const long count = m_model.Expand(std::min(a, b), std::max(a, b), oneLevel);
        ASSERT_EQ(m_ctrl->ExpandBlocks(a, b, oneLevel ? TRUE : FALSE) != FALSE, count > 0);
    }

    void HostEdit() {
        const long a = RandomPos(), b = RandomPos();
        const long lo = std::min(a, b), hi = std::max(a, b);
        const std::string text = RandomText(static_cast<int>(Pick(0, 2)));
        const long inserted = static_cast<long>(text.size());
        m_step = "edit " + std::to_string(lo) + " " + std::to_string(hi) + " " + ::testing::PrintToString(text);
        m_doc->ReplaceText(lo, hi - lo, text.data(), inserted, nullptr);
        m_model.Edit(lo, hi - lo, inserted);
        for (ModelBookmark& b : m_marks) b.ends.Edit(lo, hi - lo, inserted);
    }

    void Select() {
        const long a = RandomPos(), b = Pick(0, 1) ? a : RandomPos();
        m_step = "select " + std::to_string(a) + " " + std::to_string(b);
        m_ctrl->SetSelection(a, b);
    }

    // Left and Right from a caret outside every block never stop inside one.
    void CaretKey() {
        const long caret = m_doc->GetLength() ? RandomPos() : 0;
        long s, e;
        if (m_ctrl->FindCollapse(caret, &s, &e) && caret != s) return;
        m_ctrl->SetSelection(caret, caret);
        const int vk = Pick(0, 1) ? VK_LEFT : VK_RIGHT;
        m_step = (vk == VK_LEFT ? "left from " : "right from ") + std::to_string(caret);
        SendMessage(m_ctrl->GetSafeHwnd(), WM_KEYDOWN, vk, 1);
        const long now = m_ctrl->GetSelectionStart();
        ASSERT_FALSE(m_ctrl->FindCollapse(now, &s, &e) && now != s) << "the caret stopped inside a block at " << now;
    }

    // Toggling a bookmark: set where there is none, cleared on its own line, moved elsewhere.
    long ToggleLine(long pos) {
        return pos < m_doc->GetLength() ? m_ctrl->Lines().FindLine(pos) : m_ctrl->Lines().m_nCount;
    }
    void Toggle() {
        const std::string name = kNames[Pick(0, std::size(kNames) - 1)];
        m_step = "toggle " + name;
        auto found = std::find_if(m_marks.begin(), m_marks.end(), [&](const ModelBookmark& b) { return b.name == name; });
        const Ends here{m_ctrl->GetSelectionStart(), m_ctrl->GetSelectionEnd()};
        if (found == m_marks.end()) {
            m_marks.insert(m_marks.begin(), {name, here});
            m_expectedEvents.push_back("+" + name);
        } else {
            const bool sameLine = ToggleLine(found->ends.Low()) == ToggleLine(here.Low());
            m_marks.erase(found);
            m_expectedEvents.push_back("-" + name);
            if (!sameLine) {
                m_marks.insert(m_marks.begin(), {name, here});
                m_expectedEvents.push_back("+" + name);
            }
        }
        ASSERT_TRUE(m_ctrl->ToggleBookmark(name));
    }

    void Step() {
        const long what = Pick(0, 19);
        if (what < 5)
            Fold();
        else if (what < 8)
            Unfold();
        else if (what < 13)
            HostEdit();
        else if (what < 15)
            Select();
        else if (what < 17)
            CaretKey();
        else
            Toggle();
    }

    static void CheckTree(const CCollapseNode& node, const std::vector<ModelBlock>& model, long length) {
        ASSERT_EQ(node.GetChildCount(), static_cast<long>(model.size()));
        for (size_t i = 0; i < model.size(); ++i) {
            const CCollapseNode& child = node.GetChild(static_cast<long>(i));
            ASSERT_EQ(child.GetStart(), model[i].Start()) << "block " << i;
            ASSERT_EQ(child.GetEnd(), model[i].End()) << "block " << i;
            ASSERT_TRUE(child.GetStart() >= 0 && child.GetEnd() <= length);
            if (i > 0) {
                ASSERT_LE(node.GetChild(static_cast<long>(i - 1)).GetEnd(), child.GetStart()) << "order";
            }
            CheckTree(child, model[i].kids, length);
        }
    }

    void CheckLayout() {
        const CLineIndex& lines = m_ctrl->Lines();
        ASSERT_EQ(lines.m_nTotal, m_doc->GetLength());
        ASSERT_EQ(DifferenceFromWholeLayout(*m_ctrl), "");
        ASSERT_EQ(m_ctrl->GetLineCount(), lines.m_nCount);
        // No outermost block is empty, each is exactly one row, and all of its positions show at that row's
        // left edge.
        const CCollapseNode& root = m_ctrl->CollapseRoot();
        for (long i = 0; i < root.GetChildCount(); ++i) {
            const long s = root.GetChild(i).GetStart(), e = root.GetChild(i).GetEnd();
            ASSERT_LT(s, e) << "an empty block stayed";
            long rowStart = 0;
            const long row = lines.FindLineAndStart(s, &rowStart);
            ASSERT_EQ(rowStart, s) << "a block begins a row";
            ASSERT_EQ(lines.GetAt(row), e - s) << "a block is one row";
            for (long p : {s, (s + e) / 2, e - 1}) {
                POINT pt{}, edge{};
                m_ctrl->DocPointFromPosition(p, &pt);
                m_ctrl->DocPointFromPosition(s, &edge);
                ASSERT_EQ(pt.x, 0) << "position " << p;
                ASSERT_EQ(pt.y, edge.y) << "position " << p;
            }
        }
    }

    void CheckBookmarks() {
        const CBookmarkManager& marks = m_ctrl->Bookmarks();
        ASSERT_EQ(marks.GetCount(), static_cast<long>(m_marks.size()));
        for (size_t i = 0; i < m_marks.size(); ++i) {
            const CBookmark& b = *marks.GetAt(static_cast<long>(i));
            ASSERT_EQ(b.GetName(), m_marks[i].name);
            ASSERT_EQ(b.GetRange()->GetActive(), m_marks[i].ends.active) << b.GetName();
            ASSERT_EQ(b.GetRange()->GetAnchor(), m_marks[i].ends.anchor) << b.GetName();
        }
        std::vector<std::string> events;
        for (const auto& e : m_log.Of(EVENT_BOOKMARKCHANGED)) events.push_back((e.args[0] ? "+" : "-") + e.texts.at(1));
        ASSERT_EQ(events, m_expectedEvents);
        // The gutter shows, for each row, the newest bookmark whose lower end is on it.
        for (long row = 0; row < m_ctrl->Lines().m_nCount; ++row) {
            const long rowStart = m_ctrl->Lines().GetLineStart(row);
            const CBookmark* shown = marks.FindAtPosition(rowStart);
            const long docLen = m_doc->GetLength();
            const auto lineOf = [&](long pos) { return pos < docLen ? m_ctrl->Lines().FindLine(pos) : m_ctrl->Lines().m_nCount - 1; };
            const auto want = std::find_if(m_marks.begin(), m_marks.end(),
                                           [&](const ModelBookmark& b) { return lineOf(b.ends.Low()) == lineOf(rowStart); });
            ASSERT_EQ(shown ? shown->GetName() : "", want == m_marks.end() ? "" : want->name) << "row " << row;
        }
    }

    CTestPlatformScope m_platform;
    std::mt19937 m_rng;
    ComPtr<IDispatch> m_control;
    CZentrelCtrl* m_ctrl = nullptr;
    ComPtr<CHtmlDocument> m_doc;
    CEventLog m_log;
    DWORD m_cookie = 0;
    ModelTree m_model;
    std::vector<ModelBookmark> m_marks;
    std::vector<std::string> m_expectedEvents;
    std::string m_step;
};

TEST_P(RandomFolding, KeepsTreeBookmarksAndLayoutLikeTheModel) {
    const int steps = std::getenv("ZENTREL_LONG_TESTS") ? 20000 : 2000;
    for (int i = 0; i < steps; ++i) {
        m_step.clear();
        const std::string before = Format(m_model.top);
        Step();
        SCOPED_TRACE(::testing::Message() << "step " << i << " (" << m_step << ") text "
                                          << ::testing::PrintToString(m_doc->GetText()) << " blocks before " << before
                                          << " after " << Format(m_model.top));
        if (HasFatalFailure()) return;
        CheckTree(m_ctrl->CollapseRoot(), m_model.top, m_doc->GetLength());
        if (HasFatalFailure()) return;
        CheckLayout();
        if (HasFatalFailure()) return;
        CheckBookmarks();
        if (HasFatalFailure()) return;
    }
}

// A block of thousands of rows goes and comes back through one rebuild of the line table.
TEST_P(RandomFolding, FoldsAndOpensThousandsOfRowsAtOnce) {
    m_doc->SetText(RandomText(12000));
    const long length = m_doc->GetLength();
    ASSERT_GT(m_ctrl->Lines().m_nCount, 3000);
    for (const auto& [lo, hi] : {std::pair{length / 4, length * 3 / 4}, std::pair{1L, length - 1}}) {
        m_step = "fold " + std::to_string(lo) + " " + std::to_string(hi);
        ASSERT_TRUE(m_model.Collapse(lo, hi));
        ASSERT_TRUE(m_ctrl->CollapseBlock(lo, hi, TRUE));
        ASSERT_NO_FATAL_FAILURE(CheckLayout()) << m_step;
    }
    ASSERT_TRUE(m_ctrl->ExpandBlocks(1, length - 1, TRUE));
    ASSERT_NO_FATAL_FAILURE(CheckLayout()) << "open one level";
    ASSERT_TRUE(m_ctrl->ExpandBlocks(length / 4, length / 4, TRUE));
    ASSERT_NO_FATAL_FAILURE(CheckLayout()) << "open the inner block";
}

INSTANTIATE_TEST_SUITE_P(Wrap, RandomFolding, ::testing::Values(false, true),
                         [](const ::testing::TestParamInfo<bool>& info) { return info.param ? "Wrapped" : "Unwrapped"; });

}  // namespace
