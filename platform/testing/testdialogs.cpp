#include "platform/testing/testdialogs.h"

TestDialogAnswer CTestDialogs::Next(TestDialogKind kind) {
    if (m_answers.empty() || m_answers.front().kind != kind) {
        TestDialogAnswer cancel;
        cancel.kind = kind;
        return cancel;
    }
    TestDialogAnswer answer = m_answers.front();
    m_answers.pop_front();
    return answer;
}

bool CTestDialogs::ChooseColor(HWND, COLORREF* color) {
    m_calls.push_back({TestDialogKind::Color, {}, {}, {}});
    const TestDialogAnswer a = Next(TestDialogKind::Color);
    if (a.ok) *color = a.color;
    return a.ok;
}

bool CTestDialogs::ChooseFont(HWND, std::string* face) {
    m_calls.push_back({TestDialogKind::Font, *face, {}, {}});
    const TestDialogAnswer a = Next(TestDialogKind::Font);
    if (a.ok) *face = a.text;
    return a.ok;
}

bool CTestDialogs::OpenFile(HWND, std::string* path) {
    m_calls.push_back({TestDialogKind::File, *path, {}, {}});
    const TestDialogAnswer a = Next(TestDialogKind::File);
    if (a.ok) *path = a.text;
    return a.ok;
}

int CTestDialogs::TrackPopupMenu(HWND, const std::vector<MenuEntry>& entries, POINT screen) {
    m_calls.push_back({TestDialogKind::Menu, {}, entries, screen});
    const TestDialogAnswer a = Next(TestDialogKind::Menu);
    return a.ok ? a.menuChoice : 0;
}
