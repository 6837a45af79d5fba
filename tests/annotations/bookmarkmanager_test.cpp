// The bookmark list against a plain model of it: random adds, loads, renames and removals over a
// few names, so that names repeat; after each, the list's order and every lookup by name must be
// the model's.
#include <gtest/gtest.h>

#include <algorithm>
#include <random>
#include <string>
#include <vector>

#include "htmldoc/htmldocument.h"
#include "src/annotations/bookmarkmanager.h"

namespace {

struct Model {
    std::vector<CBookmark*> list;  // newest first

    CBookmark* Find(const std::string& name) const {
        const auto it = std::find_if(list.begin(), list.end(), [&](CBookmark* b) { return b->GetName() == name; });
        return it == list.end() ? nullptr : *it;
    }
};

const std::vector<std::string> kNames = {"a", "b", "Bookmark 1", "bookmark 1", "c d", ""};

void ExpectSame(const CBookmarkManager& manager, const Model& model, int step) {
    ASSERT_EQ(manager.GetCount(), static_cast<long>(model.list.size())) << "step " << step;
    for (size_t i = 0; i < model.list.size(); ++i) ASSERT_EQ(manager.GetAt(static_cast<long>(i)), model.list[i]) << "step " << step;
    EXPECT_EQ(manager.GetAt(manager.GetCount()), nullptr);
    for (const std::string& name : kNames) ASSERT_EQ(manager.FindByName(name), model.Find(name)) << "step " << step << " " << name;
}

TEST(BookmarkManager, RandomChangesKeepTheOrderAndTheLookupsOfAPlainList) {
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText(std::string(1000, 'x'));
    CBookmarkManager manager;
    manager.SetDocument(static_cast<ISourceText*>(doc.Get()));
    Model model;
    std::mt19937 rng(7);
    const auto pick = [&](size_t n) { return std::uniform_int_distribution<size_t>(0, n - 1)(rng); };
    for (int step = 0; step < 4000; ++step) {
        const std::string& name = kNames[pick(kNames.size())];
        const long pos = static_cast<long>(pick(1000));
        switch (pick(10)) {
            case 0: case 1: case 2: {
                CBookmark* existing = model.Find(name);
                CBookmark* added = manager.Add(pos, pos, name);
                ASSERT_NE(added, nullptr);
                if (existing) ASSERT_EQ(added, existing);
                else model.list.insert(model.list.begin(), added);
                EXPECT_EQ(added->GetRange()->GetStart(), pos);
                break;
            }
            case 3: case 4:
                model.list.insert(model.list.begin(), manager.InsertLoaded(name, pos, pos));
                break;
            case 5: case 6:
                if (!model.list.empty()) {
                    const size_t i = pick(model.list.size());
                    ASSERT_TRUE(manager.Remove(model.list[i]));
                    model.list.erase(model.list.begin() + static_cast<long>(i));
                }
                break;
            case 7: case 8:
                if (!model.list.empty()) manager.Rename(model.list[pick(model.list.size())], name);
                break;
            default:
                if (pick(20) == 0) {
                    manager.RemoveAll();
                    model.list.clear();
                }
                EXPECT_FALSE(manager.Remove(nullptr));
                break;
        }
        ExpectSame(manager, model, step);
    }
    manager.SetDocument(nullptr);
}

}  // namespace
