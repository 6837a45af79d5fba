// The device context base through the recording context of the test backend: text layout,
// opaque cells, the two clip layers, blits and lines; and the test fonts' formulas.
#include <gtest/gtest.h>

#include <cstring>
#include <memory>
#include <set>
#include <sstream>

#include "platform/codepage/codepage.h"
#include "platform/testing/testplatform.h"
#include "tests/platform/casefile.h"
#include "tests/platform/fontrequest.h"

namespace {

constexpr COLORREF kWhite = 0xFFFFFF;
constexpr COLORREF kBack = 0x00FFFF;
constexpr COLORREF kInk = 0x800000;

class DcTest : public ::testing::Test {
protected:
    DcTest() : surface(std::make_shared<CTestSurface>(200, 100)), dc(surface, nullptr) {
        dc.FillSolidRect(surface->Bounds(), kWhite);
        LOGFONTA lf = FontRequest("Times New Roman", 18);
        font.CreateFontIndirect(&lf);
        dc.SelectObject(&font);
        dc.SetTextColor(kInk);
        dc.SetBkColor(kBack);
    }
    const DrawRecord& Last(DrawKind kind) const {
        for (auto it = dc.Log().rbegin(); it != dc.Log().rend(); ++it)
            if (it->kind == kind) return *it;
        static const DrawRecord none;
        ADD_FAILURE() << "no such primitive";
        return none;
    }

    CTestPlatformScope scope;
    std::shared_ptr<CTestSurface> surface;
    CTestDC dc;
    CFont font;
};

// What a font says of itself, as the facts of cases/fonts.cases.
std::set<std::string> FactsOf(CDC& dc, const LOGFONTA& request) {
    CFont font;
    if (!font.CreateFontIndirect(&request)) return {font.IsValid() ? "valid" : "missing"};
    CFont* before = dc.SelectObject(&font);
    const TEXTMETRICA& tm = font.Impl()->Metrics();
    std::set<std::string> facts{"height=" + std::to_string(tm.tmHeight), "ascent=" + std::to_string(tm.tmAscent),
                                "descent=" + std::to_string(tm.tmDescent), "ave=" + std::to_string(tm.tmAveCharWidth),
                                "overhang=" + std::to_string(tm.tmOverhang), "pitch=" + std::to_string(tm.tmPitchAndFamily),
                                "truetype=" + std::to_string((tm.tmPitchAndFamily & TMPF_TRUETYPE) != 0),
                                "fixedbit=" + std::to_string(tm.tmPitchAndFamily & TMPF_FIXED_PITCH)};
    for (const char c : std::string("aimW ")) {
        const std::string name = c == ' ' ? "space" : std::string(1, c);
        facts.insert("adv(" + name + ")=" + std::to_string(font.Impl()->Advance(static_cast<BYTE>(c))));
        int width = 0;
        facts.insert(dc.GetCharWidth(c, c, &width) ? "w(" + name + ")=" + std::to_string(width) : "w=none");
    }
    std::vector<ABC> abc(256);
    const ABC& m = abc['m'];
    facts.insert(dc.GetCharABCWidths(0, 255, abc.data())
                     ? "abc(m)=" + std::to_string(m.abcA) + "/" + std::to_string(m.abcB) + "/" + std::to_string(m.abcC)
                     : "abc=none");
    dc.SelectObject(before);
    return facts;
}

TEST_F(DcTest, TestFontsFollowTheirFormulas) {
    for (const CaseRow& row : ReadCaseRows("platform/cases/fonts.cases")) {
        const std::set<std::string> facts = FactsOf(dc, FontRequest(row[1].c_str(), row.Long(2), row.Long(3)));
        std::istringstream wanted(row[4]);
        for (std::string fact; wanted >> fact;) EXPECT_EQ(facts.count(fact), 1u) << row.where << ": " << fact;
    }
}

TEST_F(DcTest, BaselineAlignmentPlacesTextAndFillsItsCellsInOpaqueMode) {
    dc.SetTextAlign(TA_BASELINE);
    ASSERT_TRUE(dc.ExtTextOut(10, 30, 0, nullptr, "ami", 3));
    const DrawRecord& run = Last(DrawKind::Text);
    EXPECT_EQ(run.text, "ami");
    EXPECT_EQ(run.origin, (POINT{10, 30}));
    EXPECT_EQ(run.advances, (std::vector<int>{9, 13, 5}));
    EXPECT_EQ(run.color, kInk);
    EXPECT_STREQ(run.font.lfFaceName, "Times New Roman");
    EXPECT_FALSE(run.clipped);
    // The cells: 27 wide, from ascent above the baseline to descent below it.
    EXPECT_EQ(Last(DrawKind::Fill).rc, (RECT{10, 16, 37, 34}));
    EXPECT_EQ(surface->Pixel(10, 16), kBack);
    EXPECT_EQ(surface->Pixel(36, 33), kBack);
    EXPECT_EQ(surface->Pixel(37, 20), kWhite);
    EXPECT_EQ(surface->Pixel(20, 34), kWhite);

    const size_t before = dc.Log().size();
    dc.SetBkMode(TRANSPARENT);
    dc.ExtTextOut(10, 60, 0, nullptr, "a", 1);
    ASSERT_EQ(dc.Log().size(), before + 1);  // text only, no cell fill
    EXPECT_EQ(surface->Pixel(12, 55), kWhite);
}

TEST_F(DcTest, HorizontalAndVerticalAlignmentMoveTheOrigin) {
    dc.SetTextAlign(TA_CENTER | TA_BASELINE);
    dc.ExtTextOut(100, 50, 0, nullptr, "ab", 2);  // 18 wide
    EXPECT_EQ(Last(DrawKind::Text).origin, (POINT{91, 50}));
    dc.SetTextAlign(TA_RIGHT | TA_TOP);
    dc.ExtTextOut(100, 50, 0, nullptr, "ab", 2);
    EXPECT_EQ(Last(DrawKind::Text).origin, (POINT{82, 64}));
    dc.SetTextAlign(TA_LEFT | TA_BOTTOM);
    dc.ExtTextOut(100, 50, 0, nullptr, "ab", 2);
    EXPECT_EQ(Last(DrawKind::Text).origin, (POINT{100, 46}));
    EXPECT_EQ(Last(DrawKind::Fill).rc, (RECT{100, 32, 118, 50}));
}

TEST_F(DcTest, OpaqueAndClippedOptionsUseTheGivenRectangle) {
    dc.SetTextAlign(TA_BASELINE);
    dc.SetBkMode(TRANSPARENT);
    RECT cell{10, 10, 40, 30};
    dc.ExtTextOut(20, 24, ETO_OPAQUE, &cell, nullptr, 0);  // a fill, no text
    EXPECT_EQ(Last(DrawKind::Fill).rc, cell);
    EXPECT_EQ(dc.Log().back().kind, DrawKind::Fill);
    EXPECT_EQ(surface->Pixel(10, 10), kBack);
    EXPECT_EQ(surface->Pixel(40, 10), kWhite);

    dc.SetBkMode(OPAQUE);
    RECT narrow{50, 10, 60, 30};
    dc.ExtTextOut(50, 24, ETO_CLIPPED, &narrow, "mmm", 3);
    const DrawRecord& run = Last(DrawKind::Text);
    EXPECT_TRUE(run.clipped);
    EXPECT_EQ(run.clip, narrow);
    EXPECT_EQ(Last(DrawKind::Fill).rc, (RECT{50, 10, 60, 28}));  // the cells, cut to the clip
    EXPECT_EQ(surface->Pixel(60, 20), kWhite);
}

TEST_F(DcTest, DrawingReachesOnlyTheSystemRegionLessWhatTheClipExcludes) {
    CRgn system(RECT{0, 0, 100, 100});
    dc.SetSystemRegion(system);
    EXPECT_FALSE(dc.RectVisible(RECT{100, 0, 200, 100}));
    CRgn clip;
    EXPECT_EQ(dc.GetClipRgn(&clip), 0);
    EXPECT_EQ(dc.ExcludeClipRect(RECT{0, 0, 20, 100}), SIMPLEREGION);
    ASSERT_EQ(dc.GetClipRgn(&clip), 1);
    EXPECT_EQ(clip, CRgn(RECT{20, 0, 100, 100}));  // starts from what the context could reach
    EXPECT_EQ(dc.ExcludeClipRect(RECT{40, 40, 60, 60}), COMPLEXREGION);
    EXPECT_FALSE(dc.RectVisible(RECT{45, 45, 55, 55}));
    EXPECT_TRUE(dc.RectVisible(RECT{45, 45, 75, 55}));
    RECT box;
    EXPECT_EQ(dc.GetClipBox(&box), COMPLEXREGION);
    EXPECT_EQ(box, (RECT{20, 0, 100, 100}));

    dc.FillSolidRect(RECT{0, 0, 200, 100}, 0x123456);
    EXPECT_EQ(surface->Pixel(10, 50), kWhite);
    EXPECT_EQ(surface->Pixel(50, 50), kWhite);
    EXPECT_EQ(surface->Pixel(30, 50), 0x123456u);
    EXPECT_EQ(surface->Pixel(150, 50), kWhite);
    CRgn expected(RECT{20, 0, 100, 100});
    expected.Subtract(RECT{40, 40, 60, 60});
    EXPECT_EQ(Last(DrawKind::Fill).visible, expected);

    EXPECT_EQ(dc.SelectClipRgn(nullptr), SIMPLEREGION);  // back to the system region
    EXPECT_EQ(dc.GetClipRgn(&clip), 0);
    EXPECT_EQ(dc.IntersectClipRect(RECT{90, 90, 150, 150}), SIMPLEREGION);
    EXPECT_EQ(dc.GetClipBox(&box), SIMPLEREGION);
    EXPECT_EQ(box, (RECT{90, 90, 100, 100}));
    CRgn far(RECT{150, 0, 160, 10});
    EXPECT_EQ(dc.SelectClipRgn(&far), NULLREGION);
}

TEST_F(DcTest, DoubleByteCharactersAdvanceByTwoAverageCharactersUnderCodePage932) {
    const UINT before = GetProcessCodePage();
    ASSERT_TRUE(SetProcessCodePage(932));
    dc.SetTextAlign(TA_BASELINE);
    const char text[] = "a\x82\xa0i";  // a, HIRAGANA A, i
    EXPECT_EQ(dc.GetTextExtent(text, 4).cx, 9 + 18 + 5);
    dc.ExtTextOut(0, 20, 0, nullptr, text, 4);
    EXPECT_EQ(Last(DrawKind::Text).advances, (std::vector<int>{9, 18, 0, 5}));
    // A lead byte at the very end stands alone.
    EXPECT_EQ(dc.GetTextExtent(text, 2).cx, 9 + 9);
    SetProcessCodePage(before);
    EXPECT_EQ(dc.GetTextExtent(text, 4).cx, 9 + 9 + 9 + 5);
}

TEST_F(DcTest, BlitsCopyPixelsBetweenContextsAndLinesStopShortOfTheirEnd) {
    std::unique_ptr<CDC> mem = dc.CreateCompatibleDC();
    CBitmap bitmap;
    ASSERT_TRUE(mem->CreateCompatibleBitmap(&bitmap, 20, 10));
    EXPECT_EQ(bitmap.GetSize(), (SIZE{20, 10}));
    mem->SelectObject(&bitmap);
    mem->FillSolidRect(RECT{0, 0, 20, 10}, 0x0000AA);
    mem->FillSolidRect(RECT{10, 0, 20, 10}, 0x00AA00);
    EXPECT_EQ(dc.Log().back().target, static_cast<const CTestSurface*>(bitmap.Impl()));  // one log

    ASSERT_TRUE(dc.BitBlt(100, 50, 20, 10, mem.get(), 0, 0, SRCCOPY));
    EXPECT_EQ(surface->Pixel(100, 50), 0x0000AAu);
    EXPECT_EQ(surface->Pixel(119, 59), 0x00AA00u);
    EXPECT_EQ(surface->Pixel(120, 59), kWhite);
    ASSERT_TRUE(dc.StretchBlt(0, 0, 40, 10, mem.get(), 0, 0, 20, 10, SRCCOPY));
    EXPECT_EQ(surface->Pixel(19, 5), 0x0000AAu);
    EXPECT_EQ(surface->Pixel(20, 5), 0x00AA00u);
    EXPECT_FALSE(dc.BitBlt(0, 0, 5, 5, mem.get(), 0, 0, 0x00EE0086));  // only SRCCOPY

    CPen pen(PS_SOLID, 1, 0x0000FF);
    dc.SelectObject(&pen);
    dc.MoveTo(150, 10);
    dc.LineTo(150, 20);
    EXPECT_EQ(surface->Pixel(150, 10), 0x0000FFu);
    EXPECT_EQ(surface->Pixel(150, 19), 0x0000FFu);
    EXPECT_EQ(surface->Pixel(150, 20), kWhite);
    dc.LineTo(140, 20);  // leftwards from the end of the last line
    EXPECT_EQ(surface->Pixel(150, 20), 0x0000FFu);
    EXPECT_EQ(surface->Pixel(141, 20), 0x0000FFu);
    EXPECT_EQ(surface->Pixel(140, 20), kWhite);
}

}  // namespace
