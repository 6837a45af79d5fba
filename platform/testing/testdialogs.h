// Dialogs and menus answered from a script: a test queues the answers, the code under test
// opens dialogs, and the test reads what was asked. A dialog with no answer queued is cancelled.
#pragma once
#include <deque>
#include <string>
#include <vector>

#include "platform/window/dialogs.h"

enum class TestDialogKind { Color, Font, File, Menu };

struct TestDialogAnswer {
    TestDialogKind kind = TestDialogKind::Color;
    bool ok = false;
    COLORREF color = 0;
    std::string text;  // a font's face or a file's path
    int menuChoice = 0;
};

// One dialog as it was opened: its kind, what it started from, and a menu's entries.
struct TestDialogCall {
    TestDialogKind kind;
    std::string start;
    std::vector<MenuEntry> entries;
    POINT at{};
};

class CTestDialogs : public IDialogBackend {
public:
    void Queue(TestDialogAnswer answer) { m_answers.push_back(std::move(answer)); }
    const std::vector<TestDialogCall>& Calls() const { return m_calls; }
    void SetFontFamilies(std::vector<std::string> names) { m_families = std::move(names); }

    bool ChooseColor(HWND owner, COLORREF* color) override;
    bool ChooseFont(HWND owner, std::string* face) override;
    bool OpenFile(HWND owner, std::string* path) override;
    int TrackPopupMenu(HWND owner, const std::vector<MenuEntry>& entries, POINT screen) override;
    std::vector<std::string> FontFamilies() override { return m_families; }

private:
    // The next answer if it is of this kind; a cancel otherwise, leaving the queue as it is.
    TestDialogAnswer Next(TestDialogKind kind);

    std::deque<TestDialogAnswer> m_answers;
    std::vector<TestDialogCall> m_calls;
    std::vector<std::string> m_families{"Liberation Mono", "Liberation Sans", "Liberation Serif"};
};
