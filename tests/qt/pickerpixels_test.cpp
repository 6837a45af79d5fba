// The picker as Qt shows it: a frameless window beside the caret that flips above or to the left
// at the screen's edges, colour swatches and icons in its rows, and help text in its pane.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QGuiApplication>
#include <QImage>
#include <QPixmap>
#include <QScreen>
#include <QWidget>

#include "platform/window/input.h"
#include "src/picker/pickerwindow.h"
#include "tests/qt/qtviewfixture.h"

namespace {

constexpr LONG kWidth = 300, kHeight = 200;

class PickerPixels : public QtViewFixture {
protected:
    // The view over `text`, focused, with the caret at the end and the picker shown.
    void ShowPickerOver(const std::string& text, QPoint windowAt = {0, 0}) {
        OpenText(text, kWidth, kHeight);
        QtWidgetFromHwnd(hwnd)->window()->move(windowAt);
        for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
        SendMessage(hwnd, WM_SETFOCUS, 0, 0);
        ctrl->SetOption(OPT_CODECOMPLETION, TRUE);
        ctrl->SetSelection(static_cast<long>(text.size()), static_cast<long>(text.size()));
        ctrl->ShowPicker();
        ASSERT_TRUE(ctrl->IsPickerVisible());
        popup = QtWidgetFromHwnd(ctrl->PickerIfAny()->GetSafeHwnd());
        ASSERT_NE(popup, nullptr);
        for (int i = 0; i < 3; ++i) QCoreApplication::processEvents();
        image = popup->grab().toImage();
    }
    // The caret's top left and the bottom of its line, on the screen.
    QPoint CaretOnScreen(bool bottom) {
        POINT pt{};
        ctrl->ClientPointFromPosition(ctrl->GetSelectionStart(), &pt);
        if (bottom) pt.y += ctrl->m_nLineHeight;
        ClientToScreen(hwnd, &pt);
        return {static_cast<int>(pt.x), static_cast<int>(pt.y)};
    }
    // The colour in the middle of a row's icon.
    QRgb IconMiddle(int row) {
        const POINT pt = ctrl->PickerIfAny()->RowPoint(row);
        const int rowHeight = ctrl->PickerIfAny()->RowPoint(row + 1).y - pt.y;
        return image.pixel(1 + 2 + (rowHeight - 4) / 2, static_cast<int>(pt.y) - 1 + rowHeight / 2);
    }

    QWidget* popup = nullptr;
    QImage image;
};

TEST_F(PickerPixels, StandsBelowTheTokenWithoutTakingTheFocus) {
    ShowPickerOver("<p>\r\n<ta");
    const QPoint token = CaretOnScreen(true);
    // The token begins behind the '<': the window's left edge is there, under the line.
    POINT start{};
    ctrl->ClientPointFromPosition(6, &start);
    ClientToScreen(hwnd, &start);
    EXPECT_EQ(popup->geometry().topLeft(), QPoint(static_cast<int>(start.x), token.y()));
    EXPECT_TRUE(popup->isVisible());
    EXPECT_TRUE(popup->windowFlags() & Qt::WindowDoesNotAcceptFocus);
    EXPECT_EQ(image.size(), QSize(kPickerWidth, kPickerHeight));
}

TEST_F(PickerPixels, FlipsLeftAndAboveAtTheScreensEdges) {
    const QRect screen = QGuiApplication::primaryScreen()->geometry();
    // The token stands near the window's bottom right corner, and the window at the screen's.
    std::string lines;
    for (int i = 0; i < 8; ++i) lines += "\r\n";
    const std::string before = "<p>" + lines + std::string(25, ' ') + "<";
    ShowPickerOver(before + "ta", QPoint(screen.right() - kWidth + 1, screen.bottom() - kHeight + 1));
    POINT start{};
    ctrl->ClientPointFromPosition(static_cast<long>(before.size()), &start);
    ClientToScreen(hwnd, &start);
    EXPECT_EQ(popup->geometry().right() + 1, start.x);
    EXPECT_EQ(popup->geometry().bottom() + 1, start.y);
    EXPECT_TRUE(screen.contains(popup->geometry()));
}

TEST_F(PickerPixels, ColourRowsShowTheirSwatches) {
    ShowPickerOver("<body bgcolor=");
    ASSERT_EQ(ctrl->PickerIfAny()->PageIndex(), PAGE_COLOR);
    // Row 0 is More..., then the user-defined colours: black, then red (0x0000FF).
    EXPECT_EQ(IconMiddle(1), qRgb(0, 0, 0));
    EXPECT_EQ(IconMiddle(2), qRgb(0xFF, 0, 0));
    EXPECT_EQ(IconMiddle(3), qRgb(0xFF, 0xFF, 0));
}

TEST_F(PickerPixels, TagRowsShowTheTagIconAndTheHelpPaneItsText) {
    ShowPickerOver("<tabl");
    ASSERT_EQ(ctrl->PickerIfAny()->PageIndex(), PAGE_TAG);
    const int row = ctrl->PickerIfAny()->ActivePage()->GetCurSel();
    ASSERT_GE(row, 0);
    // The icon has the tag picture's blue; the row is selected, so its text area is highlighted.
    const POINT pt = ctrl->PickerIfAny()->RowPoint(row);
    bool blue = false;
    for (int x = 3; x < 16; ++x)
        for (int y = static_cast<int>(pt.y); y < pt.y + 12; ++y) blue |= image.pixel(x, y) == qRgb(0x00, 0x60, 0xC0);
    EXPECT_TRUE(blue);
    ASSERT_FALSE(ctrl->PickerIfAny()->StatusText().empty());
    // The help pane under the list: button face with dark text in it.
    const int paneTop = static_cast<int>(ctrl->PickerIfAny()->ListRect().bottom) + 2;
    int ink = 0;
    for (int y = paneTop; y < image.height() - 2; ++y)
        for (int x = 4; x < image.width() - 4; ++x) ink += qGray(image.pixel(x, y)) < 100;
    EXPECT_GT(ink, 20);
}

TEST_F(PickerPixels, TheHelpPageDrawsItsTitleAndText) {
    ShowPickerOver("<td char=");
    ASSERT_EQ(ctrl->PickerIfAny()->PageIndex(), PAGE_HELP);
    // The title row is on the shadow colour, the text under it on the window colour with ink.
    const COLORREF shadow = GetSysColor(COLOR_BTNSHADOW);
    EXPECT_EQ(image.pixel(kPickerWidth - 4, 4), qRgb(shadow & 0xFF, (shadow >> 8) & 0xFF, (shadow >> 16) & 0xFF));
    int ink = 0;
    for (int y = 20; y < 50; ++y)
        for (int x = 4; x < image.width() - 4; ++x) ink += qGray(image.pixel(x, y)) < 100;
    EXPECT_GT(ink, 20);
}

}  // namespace
