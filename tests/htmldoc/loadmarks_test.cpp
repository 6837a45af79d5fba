// The marks of loading against a plain list of them, over random edits and their undoing.
#include <gtest/gtest.h>

#include <random>

#include "htmldoc/loadmarks.h"

namespace {

struct CModelMark {
    long pos, length;
    bool operator==(const CModelMark&) const = default;
};

std::vector<CModelMark> Listed(const CLoadMarks& marks) {
    std::vector<CModelMark> out;
    marks.ForEach([&](const CLoadMark& m) { out.push_back({m.pos, m.length}); });
    return out;
}

// What an edit does to the list: marks whose text it touches go, shift sequences at its ends stay
// there, and the rest behind it move.
std::vector<CModelMark> Edited(const std::vector<CModelMark>& marks, long pos, long oldCount, long newCount) {
    std::vector<CModelMark> out;
    const long end = pos + oldCount;
    for (CModelMark m : marks) {
        if (m.length > 0 && m.pos < end ? m.pos + m.length > pos : false) continue;
        if (m.length == 0 && m.pos > pos && m.pos < end) continue;
        if (m.length == 0 && m.pos == end && oldCount > 0) m.pos = pos + newCount;
        else if (m.pos >= end && !(m.length == 0 && m.pos == pos)) m.pos += newCount - oldCount;
        out.push_back(m);
    }
    return out;
}

TEST(LoadMarks, EditsAndUndoAgreeWithAList) {
    for (unsigned seed = 1; seed <= 50; ++seed) {
        SCOPED_TRACE("seed " + std::to_string(seed));
        std::mt19937 random(seed);
        // A text of 200 bytes with references of 3 to 8 bytes and shift sequences between them.
        CLoadMarks marks;
        marks.Reset(0);
        std::vector<CModelMark> model;
        for (long pos = 0; pos < 190; pos += static_cast<long>(random() % 6)) {
            const long length = random() % 4 ? 3 + static_cast<long>(random() % 6) : 0;
            marks.Append(pos, length, length ? "" : "\x1B$B");
            model.push_back({pos, length});
            pos += length;
        }
        long textLength = 200;
        marks.EndText(textLength);
        ASSERT_EQ(Listed(marks), model);
        std::vector<std::vector<CModelMark>> before;
        struct CDone {
            long pos, oldCount, newCount;
            std::vector<CLoadMark> touched;
        };
        std::vector<CDone> done;
        for (int step = 0; step < 40; ++step) {
            const long pos = static_cast<long>(random() % static_cast<unsigned>(textLength + 1));
            const long oldCount = std::min<long>(textLength - pos, static_cast<long>(random() % 10));
            const long newCount = static_cast<long>(random() % 4);
            before.push_back(model);
            CDone edit{pos, oldCount, newCount, {}};
            marks.Replace(pos, oldCount, newCount, &edit.touched);
            done.push_back(std::move(edit));
            model = Edited(model, pos, oldCount, newCount);
            textLength += newCount - oldCount;
            ASSERT_EQ(Listed(marks), model) << "edit " << step;
        }
        while (!done.empty()) {
            const CDone& edit = done.back();
            marks.Restore(edit.pos, edit.newCount, edit.oldCount, edit.touched);
            ASSERT_EQ(Listed(marks), before.back()) << "undo " << done.size();
            done.pop_back();
            before.pop_back();
        }
    }
}

}  // namespace
