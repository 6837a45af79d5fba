// The editor on a real X display: a private Xvfb server on a free display number, zentrel-edit
// showing its bundled sample page there and saving what the server shows of its window, and
// checks of that picture. The picture stays in the build folder (e2e/) for people and CI to see.
#include <gtest/gtest.h>

#include <QFile>
#include <QImage>

#include <algorithm>
#include <functional>
#include <map>
#include <string>

#include "tests/e2e/xdisplay.h"

namespace {

using namespace e2e;

// --- Reading the picture ---

constexpr QRgb kButtonFace = 0xFFF0F0F0;
constexpr QRgb kWhite = 0xFFFFFFFF;

bool IsInk(QRgb px) { return qGray(px) < 128; }
bool IsWhite(QRgb px) { return px == kWhite; }

int CountIn(const QImage& image, const QRect& area, const std::function<bool(QRgb)>& test) {
    int n = 0;
    const QRect r = area & image.rect();
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x) n += test(image.pixel(x, y));
    return n;
}

// The colour that most pixels of row y have.
QRgb MajorityOfRow(const QImage& image, int y) {
    std::map<QRgb, int> counts;
    for (int x = 0; x < image.width(); ++x) ++counts[image.pixel(x, y)];
    return std::max_element(counts.begin(), counts.end(), [](auto& a, auto& b) { return a.second < b.second; })->first;
}

// The rows of the view: the longest run of rows with some of the page's white in them. The
// window's own surfaces have none.
std::pair<int, int> ViewRows(const QImage& image) {
    int best = 0, bestTop = 0;
    for (int y = 0, top = 0; y <= image.height(); ++y) {
        if (y < image.height() && CountIn(image, QRect(0, y, image.width(), 1), IsWhite) * 10 > image.width()) continue;
        if (y - top > best) best = y - top, bestTop = top;
        top = y + 1;
    }
    return {bestTop, bestTop + best};
}

// The width of the band of columns at the left that are button face over half the rows or more.
int GutterWidth(const QImage& image, std::pair<int, int> rows) {
    int x = 0;
    for (; x < image.width(); ++x) {
        int face = 0;
        for (int y = rows.first; y < rows.second; ++y) face += image.pixel(x, y) == kButtonFace;
        // The column's watermark puts a lighter shade on part of it: half the column is face.
        if (face * 2 < rows.second - rows.first) break;
    }
    return x;
}

// The longest horizontal run of one colour in the area.
int LongestRun(const QImage& image, const QRect& area, QRgb color) {
    int best = 0;
    const QRect r = area & image.rect();
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(), run = 0; x <= r.right(); ++x) {
            run = image.pixel(x, y) == color ? run + 1 : 0;
            best = std::max(best, run);
        }
    return best;
}

// The rows at the bottom of the window that have the window's own background: the status line.
QRect StatusLine(const QImage& image) {
    const QRgb ground = MajorityOfRow(image, image.height() - 1);
    int top = image.height() - 1;
    while (top > 0 && MajorityOfRow(image, top - 1) == ground) --top;
    return QRect(0, top, image.width(), image.height() - top);
}

TEST_F(EditorOnXDisplay, ShowsTheSamplePageInSyntaxColoursWithGutterAndStatusLine) {
    const int display = StartServer();
    ASSERT_GE(display, 0) << "Xvfb did not start:\n" << ReadLog(Path("xvfb.log"));

    const std::string shot = Path("zentrel-edit-screenshot.png");
    QFile::remove(QString::fromStdString(shot));
    CChild editor;
    ASSERT_TRUE(editor.Start({ZENTREL_EDIT, "--screenshot", shot}, DisplayEnvironment(display), Path("zentrel-edit.log")));
    const CChild::Ending ending = editor.Wait(kEditorMs);
    ASSERT_TRUE(ending.finished) << "zentrel-edit did not finish within " << kEditorMs << " ms:\n"
                                 << ReadLog(Path("zentrel-edit.log"));
    ASSERT_EQ(ending.signal, 0) << "zentrel-edit ended by signal " << ending.signal << ":\n" << ReadLog(Path("zentrel-edit.log"));
    ASSERT_EQ(ending.code, 0) << "zentrel-edit failed:\n" << ReadLog(Path("zentrel-edit.log"));
    m_server.Stop();

    QImage image(QString::fromStdString(shot));
    ASSERT_FALSE(image.isNull()) << "no picture at " << shot;
    image = image.convertToFormat(QImage::Format_RGB32);
    EXPECT_EQ(image.size(), QSize(1000, 800));

    // The view: a white page with the gutter's button-face column at its left, and line
    // numbers in the column.
    const auto rows = ViewRows(image);
    ASSERT_GT(rows.second - rows.first, 400) << "no white page of the view in the picture";
    const int gutter = GutterWidth(image, rows);
    EXPECT_GE(gutter, 30);
    EXPECT_LT(gutter, 60);
    const QRect gutterArea(0, rows.first, gutter, rows.second - rows.first);
    EXPECT_GT(CountIn(image, gutterArea, IsInk), 100) << "no line numbers in the gutter";

    // The sample page in the editor's own palette, right of the gutter: green tag names, brown
    // attribute names, dark blue string values, grey comment text and the pale red band of the
    // unknown tag.
    const QRect text(gutter, rows.first, image.width() - gutter, rows.second - rows.first);
    auto exactly = [](QRgb c) { return [c](QRgb px) { return px == (c | 0xFF000000); }; };
    EXPECT_GT(CountIn(image, text, exactly(qRgb(0x11, 0x63, 0x29))), 200) << "no green tag names";
    EXPECT_GT(CountIn(image, text, exactly(qRgb(0x95, 0x38, 0x00))), 100) << "no brown attributes";
    EXPECT_GT(CountIn(image, text, exactly(qRgb(0x0A, 0x30, 0x69))), 100) << "no dark blue string values";
    EXPECT_GT(CountIn(image, text, exactly(qRgb(0x6E, 0x77, 0x81))), 100) << "no grey comments";
    EXPECT_GT(LongestRun(image, text, qRgb(0xFF, 0xEB, 0xE9)), 20) << "no pale red error band";
    EXPECT_EQ(CountIn(image, gutterArea, exactly(qRgb(0x11, 0x63, 0x29))), 0) << "text spilled into the gutter";

    // The status line below the view reports the page.
    const QRect status = StatusLine(image);
    EXPECT_GE(status.top(), rows.second);
    EXPECT_GE(status.height(), 10);
    EXPECT_GT(CountIn(image, status, IsInk), 100) << "the status line has no text";
}

}  // namespace
