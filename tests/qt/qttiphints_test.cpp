// The tip and the cursors on Qt: a tip that comes up where the mouse rests, in the desktop's
// tooltip colours with its text drawn; the five pictures as Qt cursors with their hot spots at
// both densities; and the cursor the widget shows as the mouse moves over text and gutter.
#include <QAbstractScrollArea>
#include <QApplication>
#include <QLabel>
#include <QMouseEvent>
#include <QPixmap>
#include <QToolTip>

#include "platform/qt/qtcursor.h"
#include "platform/qt/qtwindow.h"
#include "src/resources/cursors.h"
#include "tests/qt/processuntil.h"
#include "tests/qt/qtviewfixture.h"

namespace {

constexpr UINT kCursorIds[] = {IDC_GUTTER_ARROW, IDC_HINT_ARROW, IDC_DOC_ARROW, IDC_GUTTER_EXPAND, IDC_GUTTER_COLLAPSE};

class QtTipFixture : public QtViewFixture {
protected:
    void Open(const std::string& text) { OpenText(text, 400, 200); }
    QWidget* Viewport() { return static_cast<QAbstractScrollArea*>(QtWidgetFromHwnd(hwnd))->viewport(); }
    // The mouse comes to a client point, as the window system moves it.
    void MoveMouse(QPoint pt) {
        QCursor::setPos(Viewport()->mapToGlobal(pt));
        QMouseEvent move(QEvent::MouseMove, pt, Viewport()->mapToGlobal(pt), Qt::NoButton, Qt::NoButton, Qt::NoModifier);
        QApplication::sendEvent(Viewport(), &move);
    }
    QLabel* TipLabel() {
        for (QWidget* w : QApplication::topLevelWidgets())
            if (auto* label = qobject_cast<QLabel*>(w); label && label->windowType() == Qt::ToolTip) return label;
        return nullptr;
    }
};

TEST_F(QtTipFixture, TipComesUpBelowTheRestingMouseInTooltipColoursWithItsText) {
    Open("<p>Tom</p>\n");
    POINT pt;
    ctrl->ClientPointFromPosition(1, &pt);
    const QPoint at(pt.x + 2, pt.y + 3);
    // No key held, whatever key events the tests before left Qt with: Ctrl and Shift change the tip.
    const CQtInputState noKeys(Qt::NoModifier, Qt::NoButton);
    MoveMouse(at);
    ASSERT_TRUE(ProcessUntil([&] { return TipLabel() && TipLabel()->isVisible(); }));
    QLabel* tip = TipLabel();
    EXPECT_EQ(tip->text(), "The p element represents a paragraph.");
    EXPECT_TRUE(ctrl->m_bTipShown);
    const QPoint mouse = Viewport()->mapToGlobal(at);
    EXPECT_GE(tip->y(), mouse.y() + CToolTipCtrl::kBelowCursor - tip->height());

    const QImage image = tip->grab().toImage();
    const QColor base = QToolTip::palette().color(QPalette::ToolTipBase);
    const QColor ink = QToolTip::palette().color(QPalette::ToolTipText);
    EXPECT_EQ(QColor(image.pixel(image.width() / 2, 1)), base) << "the margin in the base colour";
    EXPECT_EQ(QColor(image.pixel(0, image.height() / 2)), ink) << "the frame in the text colour";
    int inked = 0;
    for (int y = 3; y < image.height() - 3; ++y)
        for (int x = 3; x < image.width() - 3; ++x) inked += QColor(image.pixel(x, y)) != base;
    EXPECT_GT(inked, 50) << "the text is drawn";
    EXPECT_GT(image.width(), tip->fontMetrics().horizontalAdvance("The p element") ) << "sized to its text";

    MoveMouse(at + QPoint(100, 40));
    EXPECT_FALSE(tip->isVisible());
    EXPECT_FALSE(ctrl->m_bTipShown);
}

TEST(QtCursors, EachPictureIsACursorWithItsHotSpotAtBothDensities) {
    RegisterControlCursors();
    for (UINT id : kCursorIds) {
        SCOPED_TRACE(id);
        const CursorPicture* picture = FindCursorPicture(id);
        ASSERT_TRUE(picture);
        for (qreal dpr : {1.0, 2.0}) {
            const QCursor cursor = QtCursor(id, dpr);
            const QPixmap pixmap = cursor.pixmap();
            const CursorImage& source = dpr > 1 ? picture->doubled : picture->normal;
            ASSERT_EQ(pixmap.width(), kCursorSize * static_cast<int>(dpr));
            EXPECT_EQ(pixmap.devicePixelRatio(), dpr);
            EXPECT_EQ(cursor.hotSpot(), QPoint(picture->hotSpot.x, picture->hotSpot.y));
            const QImage image = pixmap.toImage().convertToFormat(QImage::Format_ARGB32);
            int differ = 0;
            for (int y = 0; y < image.height(); ++y)
                for (int x = 0; x < image.width(); ++x) differ += image.pixel(x, y) != source.Pixel(x, y);
            EXPECT_EQ(differ, 0);
            const int s = static_cast<int>(dpr);
            EXPECT_EQ(image.pixel(picture->hotSpot.x * s, picture->hotSpot.y * s), 0xFF000000u) << "the tip is at the hot spot";
        }
    }
}

// The pictures tell their meaning apart: the marks inside the arrow, the double arrows beside
// the gutter's arrow, which is the arrow's mirror image.
TEST(QtCursors, PicturesDifferWhereTheirMeaningsDo) {
    const CursorImage hint = DrawCursorPicture(IDC_HINT_ARROW).normal, doc = DrawCursorPicture(IDC_DOC_ARROW).normal;
    const CursorImage gutter = DrawCursorPicture(IDC_GUTTER_ARROW).normal;
    const CursorImage expand = DrawCursorPicture(IDC_GUTTER_EXPAND).normal, collapse = DrawCursorPicture(IDC_GUTTER_COLLAPSE).normal;
    int marks = 0, beside = 0;
    for (int y = 0; y < kCursorSize; ++y)
        for (int x = 0; x < kCursorSize; ++x) {
            const bool opaque = hint.Pixel(x, y) >> 24;
            EXPECT_EQ(opaque, (doc.Pixel(x, y) >> 24) != 0) << "one silhouette for both tip arrows";
            marks += hint.Pixel(x, y) != doc.Pixel(x, y);
            if (x <= 10) {
                EXPECT_EQ(opaque, (gutter.Pixel(10 - x, y) >> 24) != 0) << x << "," << y;
                EXPECT_EQ(expand.Pixel(x, y), gutter.Pixel(x, y));
                EXPECT_EQ(collapse.Pixel(x, y), gutter.Pixel(x, y));
            }
            beside += x > 11 && expand.Pixel(x, y) != collapse.Pixel(x, y);
        }
    EXPECT_GT(marks, 4);
    EXPECT_GT(beside, 10);
}

TEST_F(QtTipFixture, TheWidgetShowsTheCursorTheControlChooses) {
    Open("<p>Tom</p>\n");
    RegisterControlCursors();
    POINT pt;
    ctrl->ClientPointFromPosition(5, &pt);
    MoveMouse(QPoint(pt.x + 1, pt.y + 3));
    EXPECT_EQ(Viewport()->cursor().shape(), Qt::IBeamCursor);
    MoveMouse(QPoint(4, 3));
    const QCursor gutter = Viewport()->cursor();
    ASSERT_EQ(gutter.shape(), Qt::BitmapCursor);
    EXPECT_EQ(gutter.hotSpot(), QPoint(10, 0));
    EXPECT_EQ(gutter.pixmap().toImage().convertToFormat(QImage::Format_ARGB32),
              QtCursor(IDC_GUTTER_ARROW).pixmap().toImage().convertToFormat(QImage::Format_ARGB32));
}

}  // namespace
