// Undo history: merging of typing, groups and their titles, where the caret goes, and the
// modified flag against the saved point.
#include <gtest/gtest.h>

#include "tests/htmldoc/recordingsink.h"

namespace {

void Type(ISourceRange* sel, const std::string& text) {
    for (char c : text) sel->ReplaceText(&c, 1, nullptr);
}

ComPtr<ISourceUndo> UndoManager(CHtmlDocument* doc) {
    ComPtr<ISourceUndo> undo;
    EXPECT_EQ(doc->GetUndoManager(undo.Out()), S_OK);
    return undo;
}

// Merging, the caret after undo and redo, and the end of the redo history are in the randomized test.
TEST(Undo, TypingIsTitledAndAnEmptyHistoryGivesNoCaret) {
    CAttachedDoc d("<p></p>");
    d.sel->SetRange(3, 3);
    Type(d.sel.Get(), "ab");
    EXPECT_EQ(d.doc->UndoTitle(), "Typing");
    long caret = 0;
    d.doc->Undo(nullptr, &caret);
    EXPECT_EQ(d.doc->Undo(nullptr, &caret), E_FAIL);
    EXPECT_EQ(caret, -1);
}
TEST(Undo, UndoReportsTheInverseChangeThenTheSelection) {
    CAttachedDoc d("hello world");
    d.sel->SetRange(6, 11);
    d.sel->DeleteText(&d.sink);
    d.sink.events.clear();
    d.doc->Undo(&d.sink, nullptr);
    d.doc->Redo(&d.sink, nullptr);
    EXPECT_EQ(d.sink.Log(), "INSERT 6-11/11 sel 11,11 DELETE 6-11/6 sel 6,6");
}
TEST(Undo, GroupsNestAndMayEndThroughAnotherManager) {
    CAttachedDoc d("abc");
    auto first = UndoManager(d.doc.Get());
    first->BeginGroup("Moving Text");
    first->BeginGroup("inner");
    d.doc->InsertText(3, "def", 3, nullptr);
    UndoManager(d.doc.Get())->EndGroup();
    d.doc->DeleteText(0, 1, nullptr);
    first.Reset();
    auto second = UndoManager(d.doc.Get());
    EXPECT_EQ(second->EndGroup(), S_OK);
    EXPECT_EQ(second->EndGroup(), E_UNEXPECTED);  // nothing open any more
    EXPECT_EQ(d.Text(), "bcdef");
    EXPECT_EQ(d.doc->UndoTitle(), "Moving Text");
    d.doc->Undo(nullptr, nullptr);
    EXPECT_EQ(d.Text(), "abc");
    EXPECT_EQ(d.doc->RedoTitle(), "Moving Text");
    EXPECT_TRUE(d.doc->IsUndoEmpty());
    // A group with no edits leaves no step behind.
    second->BeginGroup("empty");
    second->EndGroup();
    EXPECT_TRUE(d.doc->IsUndoEmpty());
    EXPECT_FALSE(d.doc->IsRedoEmpty());
}

TEST(Undo, ModifiedFlagReturnsToCleanAtTheSavedPoint) {
    CAttachedDoc d("abc");
    d.doc->SetModified(false);
    d.sel->SetRange(3, 3);
    Type(d.sel.Get(), "d");
    EXPECT_TRUE(d.doc->IsModified());
    d.doc->Undo(nullptr, nullptr);
    EXPECT_FALSE(d.doc->IsModified());
    d.doc->Redo(nullptr, nullptr);
    d.doc->SetModified(false);  // as a save does
    Type(d.sel.Get(), "e");     // does not merge across the saved point
    d.doc->Undo(nullptr, nullptr);
    EXPECT_FALSE(d.doc->IsModified());
    EXPECT_EQ(d.Text(), "abcd");
    // Undo behind the saved point, then a new edit: the saved text cannot come back.
    d.doc->Undo(nullptr, nullptr);
    d.doc->InsertText(0, "x", 1, nullptr);
    d.doc->Undo(nullptr, nullptr);
    EXPECT_TRUE(d.doc->IsModified());
    // SetText is a reset: no history, and not the saved text.
    d.doc->SetText("new");
    EXPECT_TRUE(d.doc->IsUndoEmpty());
    EXPECT_TRUE(d.doc->IsRedoEmpty());
    EXPECT_TRUE(d.doc->IsModified());
    auto changes = d.sink.Of(CSinkEvent::Change);
    ASSERT_GE(changes.size(), 2u);
    EXPECT_EQ(changes[changes.size() - 2].action, SA_RESET);
    EXPECT_EQ(changes.back().action, SA_INSERT);
}

TEST(Undo, OpenGroupIsClosedByUndo) {
    CAttachedDoc d("abc");
    auto undo = UndoManager(d.doc.Get());
    undo->BeginGroup("left open");
    d.doc->InsertText(0, "1", 1, nullptr);
    d.doc->InsertText(0, "2", 1, nullptr);
    ASSERT_EQ(d.doc->Undo(nullptr, nullptr), S_OK);
    EXPECT_EQ(d.Text(), "abc");
    EXPECT_EQ(undo->EndGroup(), E_UNEXPECTED);
    d.doc->InsertText(0, "3", 1, nullptr);  // not part of any group
    d.doc->InsertText(0, "4", 1, nullptr);
    d.doc->Undo(nullptr, nullptr);
    EXPECT_EQ(d.Text(), "3abc");
}

}  // namespace
