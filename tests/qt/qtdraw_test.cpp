// The Qt drawing backend on the offscreen platform, read back as pixels: real fonts, text in
// the cells the base laid out, blits, window surfaces, scrolling, the caret, scroll bars,
// child controls and the wait cursor.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QCursor>
#include <QElapsedTimer>
#include <QGuiApplication>
#include <QLabel>
#include <QScrollBar>
#include <QThread>
#include <cstring>
#include <memory>

#include "platform/gdi/mappedbitmap.h"
#include "platform/qt/qtchildcontrol.h"
#include "platform/qt/qtcontrolwidget.h"
#include "platform/qt/qtdc.h"
#include "platform/qt/qtfont.h"
#include "platform/qt/qtplatform.h"
#include "platform/qt/qtwindow.h"
#include "platform/window/caret.h"
#include "platform/window/controls.h"
#include "platform/window/paint.h"
#include "platform/window/scrollbar.h"
#include "tests/platform/fontrequest.h"
#include "tests/platform/recorder.h"
#include "tests/qt/processuntil.h"

namespace {

constexpr COLORREF kWhite = 0xFFFFFF;
constexpr COLORREF kBlack = 0x000000;

constexpr COLORREF Rgb(int r, int g, int b) { return static_cast<COLORREF>(r | g << 8 | b << 16); }

bool IsInk(QRgb px) { return qGray(px) < 160; }

// Pixels with ink inside `rc` of the image.
int InkIn(const QImage& image, const QRect& rc) {
    int n = 0;
    const QRect r = rc & image.rect();
    for (int y = r.top(); y <= r.bottom(); ++y)
        for (int x = r.left(); x <= r.right(); ++x) n += IsInk(image.pixel(x, y));
    return n;
}

class QtDrawTest : public ::testing::Test {
protected:
    QtDrawTest() : m_pPrevious(SetPlatformBackend(&platform)) {}
    ~QtDrawTest() override {
        SetPlatformBackend(m_pPrevious);
        for (int i = 0; i < 5; ++i) QCoreApplication::processEvents();
    }
    // A memory context on a white bitmap of the given size.
    std::unique_ptr<CDC> Canvas(CBitmap* bitmap, int cx, int cy) {
        std::unique_ptr<CDC> screen = GetGdiBackend()->CreateScreenDC();
        std::unique_ptr<CDC> mem = screen->CreateCompatibleDC();
        EXPECT_TRUE(mem->CreateCompatibleBitmap(bitmap, cx, cy));
        mem->SelectObject(bitmap);
        mem->FillSolidRect(RECT{0, 0, cx, cy}, kWhite);
        return mem;
    }
    static const QImage& ImageOf(const CBitmap& bitmap) { return static_cast<CQtBitmap*>(bitmap.Impl())->Image(); }
    CQtControlWidget* Widget(HWND hwnd) { return static_cast<CQtControlWidget*>(QtWidgetFromHwnd(hwnd)); }

    CQtPlatform platform;
    CRecorder handler;
    IPlatformBackend* m_pPrevious;
};

TEST_F(QtDrawTest, CellHeightIsExactAndAdvancesAreWholeInkBoundTriples) {
    for (LONG height : {12 + 6, 15, 23, 40}) {
        CFont font;
        LOGFONTA lf = FontRequest("Times New Roman", height);
        ASSERT_TRUE(font.CreateFontIndirect(&lf));
        const auto* qt = static_cast<const CQtFont*>(font.Impl());
        EXPECT_EQ(qt->RawFont(CQtFont::kPrimary).familyName(), "Liberation Serif");
        const TEXTMETRICA& tm = font.Impl()->Metrics();
        EXPECT_EQ(tm.tmHeight, height);
        EXPECT_EQ(tm.tmAscent + tm.tmDescent, height);
        EXPECT_GT(tm.tmAscent, tm.tmDescent);
        EXPECT_NE(tm.tmPitchAndFamily & TMPF_FIXED_PITCH, 0);  // variable pitch
        for (int c = 0x20; c < 256; ++c) {
            const ABC& abc = font.Impl()->Abc(static_cast<BYTE>(c));
            EXPECT_EQ(abc.abcA + static_cast<int>(abc.abcB) + abc.abcC, font.Impl()->Advance(static_cast<BYTE>(c)));
        }
        EXPECT_GT(font.Impl()->Advance('W'), font.Impl()->Advance('i'));
    }
    CFont mono, em;
    LOGFONTA lf = FontRequest("Courier New", 18);
    ASSERT_TRUE(mono.CreateFontIndirect(&lf));
    EXPECT_EQ(mono.Impl()->Advance('i'), mono.Impl()->Advance('W'));
    EXPECT_EQ(mono.Impl()->Metrics().tmPitchAndFamily & TMPF_FIXED_PITCH, 0);
    lf = FontRequest("Arial", -20);  // the em size
    ASSERT_TRUE(em.CreateFontIndirect(&lf));
    EXPECT_GT(em.Impl()->Metrics().tmHeight, 20);
}

TEST_F(QtDrawTest, TextLandsInTheCellsTheBaseLaidOut) {
    CBitmap bitmap;
    std::unique_ptr<CDC> dc = Canvas(&bitmap, 240, 40);
    CFont font;
    LOGFONTA lf = FontRequest("Times New Roman", 18);
    ASSERT_TRUE(font.CreateFontIndirect(&lf));
    dc->SelectObject(&font);
    dc->SetTextAlign(TA_BASELINE);
    dc->SetTextColor(kBlack);
    dc->SetBkColor(0xE0E0E0);
    const char text[] = "Hello, Wim";
    const int n = static_cast<int>(std::strlen(text));
    const int x0 = 20, baseline = 25;
    ASSERT_TRUE(dc->ExtTextOut(x0, baseline, 0, nullptr, text, n));
    const QImage& image = ImageOf(bitmap);
    const TEXTMETRICA& tm = font.Impl()->Metrics();
    const int extent = dc->GetTextExtent(text, n).cx;
    const QRect cells(x0, baseline - tm.tmAscent, extent, tm.tmHeight);
    // Background around the cells is untouched; the cells carry the background colour.
    EXPECT_EQ(InkIn(image, QRect(0, 0, 240, 40)), InkIn(image, cells));
    EXPECT_EQ(image.pixel(x0 - 1, baseline), qRgb(255, 255, 255));
    EXPECT_EQ(image.pixel(x0 + extent, baseline), qRgb(255, 255, 255));
    EXPECT_EQ(image.pixel(x0 + extent - 1, cells.top()), qRgb(0xE0, 0xE0, 0xE0));
    // Every visible character has ink in its own cell, at the pen position the advances give.
    int x = x0;
    for (int i = 0; i < n; ++i) {
        const int advance = font.Impl()->Advance(static_cast<BYTE>(text[i]));
        if (text[i] != ' ') {
            EXPECT_GT(InkIn(image, QRect(x, cells.top(), advance, tm.tmHeight)), 0) << i;
        }
        x += advance;
    }
}

TEST_F(QtDrawTest, ClippedTextStaysInItsRectangle) {
    CBitmap bitmap;
    std::unique_ptr<CDC> dc = Canvas(&bitmap, 120, 40);
    CFont font;
    LOGFONTA lf = FontRequest("Times New Roman", 30);
    font.CreateFontIndirect(&lf);
    dc->SelectObject(&font);
    dc->SetTextAlign(TA_BASELINE);
    dc->SetBkMode(TRANSPARENT);
    RECT clip{10, 0, 30, 40};
    dc->ExtTextOut(5, 30, ETO_CLIPPED, &clip, "WWWW", 4);
    const QImage& image = ImageOf(bitmap);
    EXPECT_GT(InkIn(image, QRect(10, 0, 20, 40)), 0);
    EXPECT_EQ(InkIn(image, QRect(0, 0, 10, 40)) + InkIn(image, QRect(30, 0, 90, 40)), 0);
}

TEST_F(QtDrawTest, SymbolFontDrawsTheTabAndReturnArrows) {
    CBitmap bitmap;
    std::unique_ptr<CDC> dc = Canvas(&bitmap, 80, 30);
    CFont font;
    LOGFONTA lf = FontRequest("Symbol", 18, FW_NORMAL, 0, SYMBOL_CHARSET);
    ASSERT_TRUE(font.CreateFontIndirect(&lf));
    dc->SelectObject(&font);
    dc->SetTextAlign(TA_BASELINE);
    dc->SetBkMode(TRANSPARENT);
    const char arrows[] = "\xAB\xBF";
    const int left = font.Impl()->Advance(0xAB);
    EXPECT_GT(left, 0);
    EXPECT_GT(font.Impl()->Advance(0xBF), 0);
    dc->ExtTextOut(0, 20, 0, nullptr, arrows, 2);
    const QImage& image = ImageOf(bitmap);
    EXPECT_GT(InkIn(image, QRect(0, 0, left, 30)), 0);
    EXPECT_GT(InkIn(image, QRect(left, 0, font.Impl()->Advance(0xBF), 30)), 0);
}

TEST_F(QtDrawTest, BlitsCopyPixelsExactlyAndInvertIsTheDifferenceWithWhite) {
    CBitmap from, to;
    std::unique_ptr<CDC> src = Canvas(&from, 16, 16);
    std::unique_ptr<CDC> dst = Canvas(&to, 40, 40);
    for (int i = 0; i < 16; ++i) src->FillSolidRect(RECT{i, 0, i + 1, 16}, Rgb(i * 16, 255 - i * 16, i * 7));
    ASSERT_TRUE(dst->BitBlt(10, 20, 16, 16, src.get(), 0, 0, SRCCOPY));
    for (int i = 0; i < 16; ++i) EXPECT_EQ(ImageOf(to).pixel(10 + i, 30), ImageOf(from).pixel(i, 5)) << i;
    EXPECT_EQ(ImageOf(to).pixel(9, 30), qRgb(255, 255, 255));
    EXPECT_EQ(ImageOf(to).pixel(26, 30), qRgb(255, 255, 255));
    dst->InvertRect(RECT{10, 20, 11, 21});
    EXPECT_EQ(ImageOf(to).pixel(10, 20), qRgb(255, 0, 255));
    // A copy within one bitmap reads the pixels as they were.
    ASSERT_TRUE(dst->BitBlt(12, 20, 16, 16, dst.get(), 10, 20, SRCCOPY));
    EXPECT_EQ(ImageOf(to).pixel(12, 30), ImageOf(from).pixel(0, 5));
    // A bitmap deleted while selected lives on until its context lets go of it.
    from.DeleteObject();
    src->FillSolidRect(RECT{0, 0, 4, 4}, kBlack);
    EXPECT_TRUE(dst->BitBlt(0, 0, 4, 4, src.get(), 0, 0, SRCCOPY));
    EXPECT_EQ(ImageOf(to).pixel(1, 1), qRgb(0, 0, 0));
}

// On a surface of two pixels per unit a picture with a double-resolution variant shows that
// variant pixel for pixel, a bitmap made for it holds four pixels per unit, and a fill keeps its
// logical place.
TEST_F(QtDrawTest, DenseSurfacesDrawTheDoubleResolutionPicturesAndLogicalGeometry) {
    const PixelPicture picture = [] {
        PixelPicture p{2, 2, {kBlack, kWhite, kWhite, kBlack}, std::vector<COLORREF>(16, kWhite)};
        p.doubled[5] = p.doubled[10] = kBlack;  // a thin diagonal, unlike the normal picture doubled
        return p;
    }();
    QImage surface(40, 40, QImage::Format_RGB32);
    surface.setDevicePixelRatio(2);
    surface.fill(Qt::white);
    CQtDC dc(&surface);
    std::unique_ptr<CDC> mem = dc.CreateCompatibleDC();
    CBitmap bitmap, scratch;
    ASSERT_TRUE(CreateMappedBitmap(*mem, picture, nullptr, 0, &bitmap));
    EXPECT_EQ(bitmap.GetSize().cx, 2);
    mem->SelectObject(&bitmap);
    ASSERT_TRUE(dc.BitBlt(3, 4, 2, 2, mem.get(), 0, 0, SRCCOPY));
    for (int y = 0; y < 4; ++y)
        for (int x = 0; x < 4; ++x)
            EXPECT_EQ(surface.pixel(6 + x, 8 + y), QColorFromColorRef(picture.doubled[y * 4 + x]).rgb()) << x << "," << y;
    ASSERT_TRUE(mem->CreateCompatibleBitmap(&scratch, 10, 6));
    EXPECT_EQ(ImageOf(scratch).size(), QSize(20, 12));
    EXPECT_EQ(scratch.GetSize().cy, 6);
    dc.FillSolidRect(RECT{10, 10, 12, 11}, kBlack);
    EXPECT_EQ(InkIn(surface, QRect(20, 20, 4, 2)), 8);
    EXPECT_EQ(InkIn(surface, QRect(0, 0, 40, 40)), 8 + 2);
}

TEST_F(QtDrawTest, WindowContextsDrawOutsidePaintEventsAndScrollWindowMovesPixels) {
    HWND hwnd = CreateWindowFor(&handler, nullptr, RECT{0, 0, 100, 60});
    CQtControlWidget* widget = Widget(hwnd);
    widget->show();
    CDC* dc = GetDC(hwnd);
    ASSERT_NE(dc, nullptr);
    for (int y = 0; y < 60; ++y) dc->FillSolidRect(RECT{0, y, 100, y + 1}, Rgb(y * 4, 0, 0));
    ReleaseDC(hwnd, dc);
    EXPECT_EQ(widget->Surface().pixel(50, 10), qRgb(40, 0, 0));

    ValidateRect(hwnd, nullptr);
    ScrollWindow(hwnd, 0, -10, nullptr, nullptr);
    EXPECT_EQ(widget->Surface().pixel(50, 0), qRgb(40, 0, 0));
    EXPECT_EQ(widget->Surface().pixel(50, 49), qRgb(236, 0, 0));
    RECT update;
    ASSERT_TRUE(GetUpdateRect(hwnd, &update, FALSE));
    EXPECT_EQ(update, (RECT{0, 50, 100, 60}));
    // What the viewport shows is the surface.
    ProcessUntil([&] { return !handler.Of(WM_PAINT).empty(); });
    EXPECT_EQ(widget->viewport()->grab().toImage().pixel(50, 0), qRgb(40, 0, 0));
}

TEST_F(QtDrawTest, CaretShowsWithTheCountAndTheFocus) {
    QWidget host;
    host.resize(200, 100);
    HWND hwnd = CreateQtChildWindow(&handler, &host, RECT{0, 0, 200, 100});
    host.show();
    host.activateWindow();
    ASSERT_TRUE(ProcessUntil([&] { return host.isActiveWindow(); }));
    SetFocus(hwnd);
    ASSERT_TRUE(ProcessUntil([&] { return GetFocus() == hwnd; }));
    CQtControlWidget* widget = Widget(hwnd);
    CreateCaret(hwnd, nullptr, 2, 16);
    SetCaretPos(30, 20);
    EXPECT_FALSE(widget->CaretVisible());  // a new caret starts hidden
    ShowCaret(hwnd);
    EXPECT_TRUE(widget->CaretVisible());
    // Drawn over the surface: the white window shows a black bar there, and the surface does not.
    QImage shown = widget->viewport()->grab().toImage();
    EXPECT_EQ(shown.pixel(31, 25), qRgb(0, 0, 0));
    EXPECT_EQ(widget->Surface().pixel(31, 25), qRgb(255, 255, 255));
    HideCaret(hwnd);
    EXPECT_FALSE(widget->CaretVisible());
    ShowCaret(hwnd);
    SetFocus(nullptr);
    widget->clearFocus();
    ASSERT_TRUE(ProcessUntil([&] { return !widget->hasFocus(); }));
    EXPECT_FALSE(widget->CaretVisible());
    DestroyCaret();
}

TEST_F(QtDrawTest, ScrollBarsFollowSetScrollInfoWithoutSendingScrollMessages) {
    HWND hwnd = CreateWindowFor(&handler, nullptr, RECT{0, 0, 200, 100});
    auto* area = Widget(hwnd);
    handler.log.clear();
    SCROLLINFO si;
    si.fMask = SIF_ALL | SIF_DISABLENOSCROLL;
    si.nMax = 99;
    si.nPage = 30;
    si.nPos = 50;
    SetScrollInfo(hwnd, SB_VERT, &si, TRUE);
    QScrollBar* bar = area->verticalScrollBar();
    EXPECT_EQ(bar->minimum(), 0);
    EXPECT_EQ(bar->maximum(), 70);
    EXPECT_EQ(bar->pageStep(), 30);
    EXPECT_EQ(bar->value(), 50);
    EXPECT_TRUE(bar->isEnabled());
    EXPECT_EQ(area->verticalScrollBarPolicy(), Qt::ScrollBarAlwaysOn);
    si.nPage = 200;
    SetScrollInfo(hwnd, SB_VERT, &si, TRUE);
    EXPECT_FALSE(bar->isEnabled());
    si.fMask = SIF_ALL;
    SetScrollInfo(hwnd, SB_HORZ, &si, TRUE);
    EXPECT_EQ(area->horizontalScrollBarPolicy(), Qt::ScrollBarAlwaysOff);
    EXPECT_TRUE(handler.Of(WM_VSCROLL).empty());
    EXPECT_TRUE(handler.Of(WM_HSCROLL).empty());
}

TEST_F(QtDrawTest, ChildControlsAreALabelAndAPlayingAnimation) {
    HWND hwnd = CreateWindowFor(&handler, nullptr, RECT{0, 0, 300, 100});
    Widget(hwnd)->show();
    HWND text = CreateChildControl(ChildControlKind::Static, hwnd, 10, RECT{40, 10, 300, 42});
    HWND anim = CreateChildControl(ChildControlKind::Animation, hwnd, 11, RECT{4, 4, 36, 36});
    ASSERT_NE(text, nullptr);
    ASSERT_NE(anim, nullptr);
    QWidget* viewport = Widget(hwnd)->viewport();
    auto* label = viewport->findChild<QLabel*>();
    auto* animation = viewport->findChild<CQtAnimationWidget*>();
    ASSERT_NE(label, nullptr);
    ASSERT_NE(animation, nullptr);
    SetWindowText(text, "Reformatting doumcument...");
    EXPECT_EQ(label->text(), "Reformatting doumcument...");
    EXPECT_FALSE(label->isVisible());
    ShowWindow(text, SW_SHOW);
    ShowWindow(anim, SW_SHOW);
    EXPECT_TRUE(label->isVisible());
    AnimateOpen(anim, 242);
    AnimatePlay(anim);
    EXPECT_TRUE(animation->IsPlaying());
    EXPECT_EQ(animation->Resource(), 242u);
    ASSERT_TRUE(ProcessUntil([&] { return animation->Frame() > 1; })) << animation->Frame();
    // Its frames are drawn: some pixels of the ring are dark.
    QImage frame = animation->grab().toImage();
    int dark = 0;
    for (int y = 0; y < frame.height(); ++y)
        for (int x = 0; x < frame.width(); ++x) dark += qAlpha(frame.pixel(x, y)) > 128 && qGray(frame.pixel(x, y)) < 140;
    EXPECT_GT(dark, 0);
    AnimateStop(anim);
    EXPECT_FALSE(animation->IsPlaying());
    QPointer<QLabel> gone = label;
    DestroyWindow(hwnd);
    EXPECT_TRUE(gone.isNull());
}

TEST_F(QtDrawTest, WaitCursorNestsAsOverrideCursors) {
    BeginWaitCursor();
    BeginWaitCursor();
    ASSERT_NE(QGuiApplication::overrideCursor(), nullptr);
    EXPECT_EQ(QGuiApplication::overrideCursor()->shape(), Qt::WaitCursor);
    EndWaitCursor();
    EXPECT_NE(QGuiApplication::overrideCursor(), nullptr);
    EndWaitCursor();
    EXPECT_EQ(QGuiApplication::overrideCursor(), nullptr);
}

}  // namespace
