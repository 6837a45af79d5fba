// A person resting the mouse on a tag in zentrel-edit on a real X display: the tip comes up below
// the mouse, a box of one colour with text in it, and goes again when the mouse moves on. The
// screen with the tip stays in the build folder (e2e/tip-screen.png).
#include <gtest/gtest.h>

#include <QImage>
#include <QRegularExpression>

#include <optional>
#include <string>

#include "tests/e2e/editordriver.h"

namespace {

using namespace e2e;

bool IsDark(QRgb px) { return qGray(px) < 96; }

class EditorTip : public EditorDriven {
protected:
    std::optional<QPoint> Mouse() {
        if (!Xdo({"getmouselocation"})) return std::nullopt;
        const QString out = QString::fromStdString(ReadLog(Path("xdotool.log")));
        const QRegularExpressionMatch m = QRegularExpression("x:(\\d+) y:(\\d+)").match(out);
        if (!m.hasMatch()) return std::nullopt;
        return QPoint(m.captured(1).toInt(), m.captured(2).toInt());
    }
    // The bounds of what differs between two shots in the band below the mouse.
    static QRect ChangedBelow(const QImage& before, const QImage& after, QPoint mouse) {
        QRect changed;
        const QRect band = QRect(0, mouse.y(), after.width(), 80) & after.rect() & before.rect();
        for (int y = band.top(); y <= band.bottom(); ++y)
            for (int x = band.left(); x <= band.right(); ++x)
                if (before.pixel(x, y) != after.pixel(x, y)) changed |= QRect(x, y, 1, 1);
        return changed;
    }
    // Waits until a box comes up below the mouse (or, with `shown` false, none is there).
    QRect WaitForTip(const QImage& before, QPoint mouse, bool shown, const char* name) {
        return Poll([&] { return ChangedBelow(before, m_last = Grab(name), mouse); },
                    [&](const QRect& box) { return (box.width() > 40) == shown; });
    }
    QImage m_last;
};

TEST_F(EditorTip, RestingOnATagShowsItsDescriptionBelowTheMouse) {
    std::string text;
    for (int i = 0; i < 30; ++i) text += "<p title=\"" + std::string(150, 'x') + "\">" + std::to_string(i) + "</p>\n";
    const std::string file = Path("tip.html");
    ASSERT_TRUE(WriteFile(file, text));
    CChild editor;
    ASSERT_NO_FATAL_FAILURE(StartEditor(editor, file, "zentrel-edit-tip.log"));
    ASSERT_TRUE(Xdo({"search", "--onlyvisible", "--name", "tip.html", "mousemove", "--window", "%1", "300", "150"}));
    const std::optional<QPoint> mouse = Mouse();
    ASSERT_TRUE(mouse.has_value());
    // The screen with the mouse away, then the mouse comes back to rest on the tag. A loaded
    // machine may take the tip's five seconds to grab the screen once, so the rest is tried again
    // when no grab caught the tip.
    ASSERT_TRUE(Xdo({"mousemove_relative", "0", "300"}));
    const QImage before = Grab("tip-before.png");
    QRect box;
    for (int rest = 0; rest < 3 && box.width() <= 40; ++rest) {
        ASSERT_TRUE(Xdo({"mousemove", std::to_string(mouse->x()), std::to_string(mouse->y())}));
        box = WaitForTip(before, *mouse, true, "tip-screen.png");
        if (box.width() <= 40) {
            ASSERT_TRUE(Xdo({"mousemove_relative", "0", "300"}));
        }
    }
    ASSERT_GT(box.width(), 40) << "no tip came up below the mouse at " << mouse->x() << "," << mouse->y();
    EXPECT_GE(box.top(), mouse->y());
    EXPECT_LT(box.top(), mouse->y() + 40);
    int ink = 0;
    for (int y = box.top() + 3; y < box.bottom() - 2; ++y)
        for (int x = box.left() + 3; x < box.right() - 2; ++x) ink += IsDark(m_last.pixel(x, y));
    EXPECT_GT(ink, 40) << "the tip shows no text";

    ASSERT_TRUE(Xdo({"mousemove_relative", "--", "-150", "60"}));
    EXPECT_LE(WaitForTip(before, *mouse, false, "tip-gone.png").width(), 40) << "the tip stayed after the mouse moved on";
    Quit(editor, "zentrel-edit-tip.log");
}

}  // namespace
