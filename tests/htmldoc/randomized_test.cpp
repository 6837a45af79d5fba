// Mixed edits, range moves, undo and redo at random, checked after every step against a plain
// model: a string for the text and a pair of ends per range, moved by the document's rules. The
// document keeps ranges far from the edits still or shifted in one sum; "far" is made a few bytes
// and a regrouping cheap here, so that edits wander in and out of those groups.
#include <gtest/gtest.h>

#include <cstdlib>
#include <random>

#include "tests/htmldoc/recordingsink.h"

namespace {

bool LongRun() {
    const char* env = std::getenv("ZENTREL_LONG_TESTS");
    return env && *env && std::string(env) != "0";
}

struct ModelEdit {
    long pos;
    std::string removed, inserted;
};
struct ModelStep {
    bool typing = false;
    std::vector<ModelEdit> edits;
};
struct Ends {
    long active = 0, anchor = 0;
    bool operator==(const Ends&) const = default;
};

class CModel {
public:
    std::string text;
    std::vector<Ends> ranges;  // [0] is the selection
    std::vector<ModelStep> undo, redo;
    bool mergeBroken = true;

    // Replaces at pos; ends inside the old bytes go to pos, ends behind move; an end at pos
    // stays in front of new text unless it is the lower end of a non-empty range.
    void Apply(long pos, long removed, const std::string& ins) {
        text.replace(static_cast<size_t>(pos), static_cast<size_t>(removed), ins);
        long n = static_cast<long>(ins.size());
        for (Ends& r : ranges) {
            for (long* e : {&r.active, &r.anchor}) {
                if (*e > pos + removed) *e -= removed;
                else if (*e > pos) *e = pos;
            }
            long low = std::min(r.active, r.anchor);
            bool nonEmpty = r.active != r.anchor;
            for (long* e : {&r.active, &r.anchor})
                if (*e > pos || (*e == pos && nonEmpty && *e == low)) *e += n;
        }
    }
    // An edit through the document (selection == false) or through the selection's own text.
    void Edit(long pos, long removed, const std::string& ins, bool bySelection, bool typing) {
        if (removed == 0 && ins.empty()) return;
        Ends& sel = ranges[0];
        bool covered = std::min(sel.active, sel.anchor) >= pos && std::max(sel.active, sel.anchor) <= pos + removed;
        std::string old = text.substr(static_cast<size_t>(pos), static_cast<size_t>(removed));
        Apply(pos, removed, ins);
        if (bySelection || covered) sel = {pos + static_cast<long>(ins.size()), pos + static_cast<long>(ins.size())};
        redo.clear();
        if (typing && !mergeBroken && !undo.empty() && undo.back().typing) {
            ModelEdit& last = undo.back().edits.back();
            if (last.pos + static_cast<long>(last.inserted.size()) == pos) {
                last.inserted += ins;
                return;
            }
        }
        undo.push_back({typing, {{pos, old, ins}}});
        mergeBroken = !typing;
    }
    bool Rewind(bool isUndo) {
        auto& from = isUndo ? undo : redo;
        auto& to = isUndo ? redo : undo;
        if (from.empty()) return false;
        ModelStep step = from.back();
        from.pop_back();
        long caret = 0;
        for (size_t i = 0; i < step.edits.size(); ++i) {
            const ModelEdit& e = step.edits[isUndo ? step.edits.size() - 1 - i : i];
            const std::string& gone = isUndo ? e.inserted : e.removed;
            const std::string& back = isUndo ? e.removed : e.inserted;
            Apply(e.pos, static_cast<long>(gone.size()), back);
            caret = e.pos + static_cast<long>(back.size());
        }
        ranges[0] = {caret, caret};
        to.push_back(step);
        mergeBroken = true;
        return true;
    }
    long Line(long pos) const { return static_cast<long>(std::count(text.begin(), text.begin() + pos, '\n')); }
    long LineStart(long line) const {
        long pos = 0;
        for (long l = 0; l < line; ++l) pos = static_cast<long>(text.find('\n', static_cast<size_t>(pos))) + 1;
        return pos;
    }
    long LineCount() const { return Line(static_cast<long>(text.size())) + 1; }
    long PrevChar(long p) const {
        if (p >= 2 && text.compare(static_cast<size_t>(p - 2), 2, "\r\n") == 0) return p - 2;
        return std::max(p - 1, 0L);
    }
    long NextChar(long p) const {
        long len = static_cast<long>(text.size());
        if (p + 1 < len && text.compare(static_cast<size_t>(p), 2, "\r\n") == 0) return p + 2;
        return std::min(p + 1, len);
    }
};

class RandomizedDocument : public ::testing::Test {
protected:
    static constexpr size_t kRanges = 10;
    void SetUp() override {
        d.doc->Ranges().Tune(4, 2);
        for (size_t i = 1; i < kRanges; ++i) {
            ComPtr<ISourceRange> r;
            d.doc->CreateRange(r.Out());
            others.push_back(r);
        }
        model.ranges.resize(kRanges);
        d.sink.events.clear();
    }
    void TearDown() override {
        for (auto& r : others) d.doc->DestroyRange(r.Get());
    }
    ISourceRange* Range(size_t i) { return i == 0 ? d.sel.Get() : others[i - 1].Get(); }

    long Pos() { return std::uniform_int_distribution<long>(0, static_cast<long>(model.text.size()))(rng); }
    std::string Piece() {
        static const char* kPieces[] = {"a", "b", "<", ">", " ", "\n", "\r\n", "<p>", "x\ny", "\r\n\r\n"};
        std::string s;
        for (int n = std::uniform_int_distribution<int>(1, 3)(rng); n > 0; --n)
            s += kPieces[std::uniform_int_distribution<int>(0, 9)(rng)];
        return s;
    }
    std::string TypedChar() { return std::string(1, "ab<> \t"[std::uniform_int_distribution<int>(0, 5)(rng)]); }

    void Step() {
        int op = std::uniform_int_distribution<int>(0, 12)(rng);
        long len = static_cast<long>(model.text.size());
        switch (op) {
            case 0: case 1: case 2: {
                // Through the document: an insert, a delete or a replacement.
                long pos = Pos();
                long n = op == 0 ? 0 : std::uniform_int_distribution<long>(0, std::min(6L, len - pos))(rng);
                std::string s = op == 1 ? "" : Piece();
                auto size = static_cast<long>(s.size());
                if (op == 0) d.doc->InsertText(pos, s.data(), size, &d.sink);
                else if (op == 1) d.doc->DeleteText(pos, n, &d.sink);
                else d.doc->ReplaceText(pos, n, s.data(), size, &d.sink);
                model.Edit(pos, n, s, false, false);
                break;
            }
            case 3: case 4: case 5: {
                // Typing, mostly at a collapsed caret.
                Ends& sel = model.ranges[0];
                std::string s = op == 5 ? Piece() : TypedChar();
                bool typing = sel.active == sel.anchor && s.size() == 1 && s != "\n";
                long start = std::min(sel.active, sel.anchor);
                long n = std::abs(sel.active - sel.anchor);
                d.sel->ReplaceText(s.data(), static_cast<long>(s.size()), &d.sink);
                model.Edit(start, n, s, true, typing);
                break;
            }
            case 6: {
                Ends& sel = model.ranges[0];
                long start = std::min(sel.active, sel.anchor);
                long n = std::abs(sel.active - sel.anchor);
                d.sel->DeleteText(&d.sink);
                model.Edit(start, n, "", true, false);
                break;
            }
            case 7: {
                size_t i = std::uniform_int_distribution<size_t>(0, kRanges - 1)(rng);
                long a = Pos(), b = std::uniform_int_distribution<int>(0, 2)(rng) == 0 ? a : Pos();
                Range(i)->SetRange(a, b);
                model.ranges[i] = {a, b};
                break;
            }
            case 8: {
                bool left = std::uniform_int_distribution<int>(0, 1)(rng) == 0;
                BOOL extend = std::uniform_int_distribution<int>(0, 1)(rng);
                d.sel->MoveCharLeft(extend, left ? 1 : -1);
                Ends& sel = model.ranges[0];
                sel.active = left ? model.PrevChar(sel.active) : model.NextChar(sel.active);
                if (!extend) sel.anchor = sel.active;
                break;
            }
            case 9: case 10: {
                bool isUndo = op == 9;
                long caret = 0;
                HRESULT hr = isUndo ? d.doc->Undo(&d.sink, &caret) : d.doc->Redo(&d.sink, &caret);
                bool done = model.Rewind(isUndo);
                ASSERT_EQ(SUCCEEDED(hr), done);
                if (done) {
                    EXPECT_EQ(caret, model.ranges[0].active);
                }
                break;
            }
            default: {
                // The gap closes for a pointer and opens again for the next edit.
                char* p = nullptr;
                d.doc->GetTextPointer(&p);
                ASSERT_EQ(std::string(p), model.text.substr(0, model.text.find('\0')));
                break;
            }
        }
    }

    void Check(long step) {
        ASSERT_EQ(d.doc->GetLength(), static_cast<long>(model.text.size())) << "step " << step;
        ASSERT_EQ(d.Text(), model.text) << "step " << step;
        for (size_t i = 0; i < kRanges; ++i) {
            Ends got{Range(i)->GetActive(), Range(i)->GetAnchor()};
            ASSERT_EQ(got, model.ranges[i]) << "range " << i << " at step " << step;
        }
        // Every move of the selection was reported.
        ASSERT_EQ(mirror, model.ranges[0]) << "step " << step;
        ASSERT_EQ(d.doc->LineCount(), model.LineCount());
        long pos = Pos(), line = 0, start = 0;
        d.doc->GetTextLine(pos, &line);
        ASSERT_EQ(line, model.Line(pos));
        d.doc->GetTextLineStart(line, &start);
        ASSERT_EQ(start, model.LineStart(line));
        ASSERT_EQ(!d.doc->IsUndoEmpty(), !model.undo.empty());
        ASSERT_EQ(!d.doc->IsRedoEmpty(), !model.redo.empty());
    }

    CAttachedDoc d;
    std::vector<ComPtr<ISourceRange>> others;
    CModel model;
    Ends mirror;
    std::mt19937 rng{12345};
};

TEST_F(RandomizedDocument, MatchesTheModel) {
    const long steps = LongRun() ? 5000000 : 200000;
    long changes = 0;
    for (long i = 0; i < steps; ++i) {
        ASSERT_NO_FATAL_FAILURE(Step());
        changes += static_cast<long>(d.sink.Of(CSinkEvent::Change).size());
        for (const auto& e : d.sink.Of(CSinkEvent::Selection)) mirror = {e.start, e.end};
        d.sink.events.clear();
        ASSERT_NO_FATAL_FAILURE(Check(i));
        // Keep the text short enough that the whole-text comparison stays cheap.
        if (model.text.size() > 400) {
            d.doc->DeleteText(0, 200, &d.sink);
            model.Edit(0, 200, "", false, false);
            for (const auto& e : d.sink.Of(CSinkEvent::Selection)) mirror = {e.start, e.end};
            d.sink.events.clear();
        }
    }
    // The mix really edits: about half of the steps change the text.
    EXPECT_GT(changes, steps / 4);
}

}  // namespace
