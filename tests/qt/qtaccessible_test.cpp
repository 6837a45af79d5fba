// The control through Qt's accessibility API, as a screen reader reaches it: text at offsets by
// character, word and line, the caret and the selection both ways, edits through the editable
// text, and the events of typing, deleting and moving the caret.
#include <QAbstractScrollArea>
#include <QAccessible>
#include <algorithm>

#include "platform/qt/qtaccessible.h"
#include "platform/window/keys.h"
#include "tests/qt/qtviewfixture.h"

namespace {

struct HeardEvent {
    QAccessible::Event type;
    int position;
    QString text;
};
std::vector<HeardEvent>* g_heard = nullptr;

void Hear(QAccessibleEvent* event) {
    if (!g_heard) return;
    HeardEvent e{event->type(), -1, {}};
    if (event->type() == QAccessible::TextInserted) {
        const auto* insert = static_cast<QAccessibleTextInsertEvent*>(event);
        e.position = insert->changePosition();
        e.text = insert->textInserted();
    } else if (event->type() == QAccessible::TextRemoved) {
        const auto* remove = static_cast<QAccessibleTextRemoveEvent*>(event);
        e.position = remove->changePosition();
        e.text = remove->textRemoved();
    } else if (event->type() == QAccessible::TextCaretMoved || event->type() == QAccessible::TextSelectionChanged) {
        e.position = static_cast<QAccessibleTextCursorEvent*>(event)->cursorPosition();
    }
    g_heard->push_back(e);
}

class QtAccessibleFixture : public QtViewFixture {
protected:
    QtAccessibleFixture() {
        SetAccessibleListener(Hear);
        g_heard = &heard;
    }
    ~QtAccessibleFixture() override {
        g_heard = nullptr;
        SetAccessibleListener(nullptr);
    }
    void Open(const std::string& text) {
        OpenText(text, 400, 200);
        face = QAccessible::queryAccessibleInterface(QtWidgetFromHwnd(hwnd));
        ASSERT_TRUE(face);
        ASSERT_TRUE(text_ = face->textInterface());
        ASSERT_TRUE(edit = face->editableTextInterface());
        heard.clear();
    }
    const HeardEvent* Find(QAccessible::Event type) const {
        auto it = std::find_if(heard.begin(), heard.end(), [type](const HeardEvent& e) { return e.type == type; });
        return it == heard.end() ? nullptr : &*it;
    }
    QString At(int offset, QAccessible::TextBoundaryType type, int* start, int* end) {
        return text_->textAtOffset(offset, type, start, end);
    }

    QAccessibleInterface* face = nullptr;
    QAccessibleTextInterface* text_ = nullptr;
    QAccessibleEditableTextInterface* edit = nullptr;
    std::vector<HeardEvent> heard;
};

TEST_F(QtAccessibleFixture, ReadsTextByOffsetCharacterWordAndLine) {
    Open("<p>first line</p>\r\nsecond words here\n");
    EXPECT_EQ(face->role(), QAccessible::EditableText);
    EXPECT_TRUE(face->state().multiLine);
    EXPECT_TRUE(face->state().editable);
    EXPECT_EQ(text_->characterCount(), document->GetLength());
    EXPECT_EQ(text_->text(3, 8), "first");
    int start = 0, end = 0;
    EXPECT_EQ(At(5, QAccessible::CharBoundary, &start, &end), "r");
    EXPECT_EQ(start, 5);
    EXPECT_EQ(end, 6);
    EXPECT_EQ(At(5, QAccessible::WordBoundary, &start, &end), "first");
    EXPECT_EQ(start, 3);
    EXPECT_EQ(At(5, QAccessible::LineBoundary, &start, &end), "<p>first line</p>\r\n");
    EXPECT_EQ(At(25, QAccessible::LineBoundary, &start, &end), "second words here\n");
    EXPECT_EQ(start, 19);
    EXPECT_EQ(text_->textAfterOffset(5, QAccessible::LineBoundary, &start, &end), "second words here\n");
    EXPECT_EQ(text_->textBeforeOffset(25, QAccessible::LineBoundary, &start, &end), "<p>first line</p>\r\n");
    EXPECT_EQ(start, 0);
    EXPECT_TRUE(text_->textBeforeOffset(5, QAccessible::LineBoundary, &start, &end).isEmpty());
    const QRect box = text_->characterRect(4);
    EXPECT_GT(box.width(), 0);
    EXPECT_EQ(text_->offsetAtPoint(box.center()), 4);
}

TEST_F(QtAccessibleFixture, CaretAndSelectionGoBothWays) {
    Open("alpha beta gamma\n");
    ctrl->SetSelection(8, 6);
    EXPECT_EQ(text_->cursorPosition(), 8);
    EXPECT_EQ(text_->selectionCount(), 1);
    int start = 0, end = 0;
    text_->selection(0, &start, &end);
    EXPECT_EQ(start, 6);
    EXPECT_EQ(end, 8);
    EXPECT_EQ(face->text(QAccessible::Value), "alpha beta gamma\n") << "the line at the caret";
    text_->setSelection(0, 11, 16);
    EXPECT_EQ(ctrl->GetSelectionStart(), 16);
    EXPECT_EQ(ctrl->GetSelectionEnd(), 11);
    text_->setCursorPosition(2);
    EXPECT_EQ(ctrl->GetSelectionStart(), 2);
    EXPECT_EQ(text_->selectionCount(), 0);
}

TEST_F(QtAccessibleFixture, TypingDeletingAndMovingAreHeard) {
    Open("abc\n");
    ctrl->SetSelection(1, 1);
    SetFocus(hwnd);
    heard.clear();
    SendMessage(hwnd, WM_CHAR, 'x', 1);
    const HeardEvent* typed = Find(QAccessible::TextInserted);
    ASSERT_TRUE(typed);
    EXPECT_EQ(typed->position, 1);
    EXPECT_EQ(typed->text, "x");
    ASSERT_EQ(heard.back().type, QAccessible::TextCaretMoved);
    EXPECT_EQ(heard.back().position, 2);
    heard.clear();
    SendMessage(hwnd, WM_KEYDOWN, VK_BACK, 1);
    const HeardEvent* removed = Find(QAccessible::TextRemoved);
    ASSERT_TRUE(removed);
    EXPECT_EQ(removed->position, 1);
    EXPECT_EQ(removed->text.size(), 1);
    EXPECT_FALSE(Find(QAccessible::TextInserted));
    ASSERT_TRUE(Find(QAccessible::TextCaretMoved));
    EXPECT_EQ(Find(QAccessible::TextCaretMoved)->position, 1);
    heard.clear();
    ctrl->SetSelection(3, 0);
    ASSERT_EQ(heard.size(), 2u);
    EXPECT_EQ(heard[0].type, QAccessible::TextSelectionChanged);
    EXPECT_EQ(heard[1].type, QAccessible::TextCaretMoved);
    EXPECT_EQ(heard[1].position, 3);
}

TEST_F(QtAccessibleFixture, EditsThroughTheEditableTextUnlessReadOnly) {
    Open("one two\n");
    edit->insertText(3, ",");
    edit->replaceText(5, 8, "2");
    edit->deleteText(0, 1);
    EXPECT_EQ(document->GetText(), "ne, 2\n");
    ctrl->SetOption(OPT_READONLY, TRUE);
    EXPECT_TRUE(face->state().readOnly);
    edit->insertText(0, "z");
    EXPECT_EQ(document->GetText(), "ne, 2\n");
}

}  // namespace
