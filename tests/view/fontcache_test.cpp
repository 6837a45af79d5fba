// The font cache on the test backend, whose fonts follow fixed formulas (testfont.h): a cell of
// h pixels, an average width of h / 2, narrow and wide bytes, and one more pixel when bold.
#include "platform/gdi/fontdispatch.h"
#include "platform/gdi/fontobject.h"
#include "platform/window/keys.h"
#include "tests/view/viewfixture.h"

namespace {

// The default edit font (12 points) under another name, or in another size.
FontDesc EditFontAs(const char* name, long points = 12) {
    FontDesc f = DefaultEditFont();
    if (*name) f.name = name;
    f.height = points * 10000;
    return f;
}

class FontCache : public ViewFixture {};

TEST_F(FontCache, TheDefaultStylesMakeFiveRecordsAndTheViewsNumbers) {
    Open("text");
    // Font words 0, bold, italic, symbol and gutter; 12 points ask for an 18-pixel cell.
    EXPECT_EQ(ctrl->m_FontMetrics.size(), 5u);
    for (DWORD word : {0u, FONT_BOLD, FONT_ITALIC, FONT_ROLE_SYMBOL, FONT_ROLE_GUTTER})
        ASSERT_NE(ctrl->FindFontMetrics(word), nullptr) << word;
    EXPECT_EQ(ctrl->FindFontMetrics(0)->m_tm.tmHeight, 18);
    EXPECT_EQ(ctrl->m_nLineHeight, 19);
    EXPECT_EQ(ctrl->m_nAscent, 14);
    EXPECT_EQ(ctrl->m_nCharWidth, 9);
    EXPECT_EQ(ctrl->m_nTabPixels, 5 * 9);
    EXPECT_TRUE(ctrl->FindFontMetrics(0)->m_bHasABC);
    EXPECT_EQ(ctrl->FindFontMetrics(0)->m_aWidth[static_cast<unsigned char>('a')], 9);
    EXPECT_EQ(ctrl->FindFontMetrics(FONT_BOLD)->m_aWidth[static_cast<unsigned char>('a')], 10);
}

TEST_F(FontCache, WrapMetricsTakeTheWidestEditFaceAndIgnoreSymbolAndGutterFonts) {
    // A gutter font far larger than the edit font makes every line higher, but wrapping still
    // measures in the edit font's faces only.
    FontDesc big = DefaultGutterFont();
    big.height = 40 * 10000;
    Open("text");
    ctrl->m_fontGutter.InitializeFont(DefaultGutterFont(), &big);
    ctrl->RebuildFontCache();
    EXPECT_EQ(ctrl->m_nLineHeight, 47);
    EXPECT_EQ(ctrl->m_nCharWidth, 23);
    const auto w = [&](char c) { return ctrl->m_WrapMetrics.m_aWidth[static_cast<unsigned char>(c)]; };
    EXPECT_EQ(w('a'), 10);  // bold: one more than plain
    EXPECT_EQ(w('i'), 6);   // narrow, bold
    EXPECT_EQ(w('m'), 14);  // wide, bold
}

TEST_F(FontCache, TabStopsFollowTabSizeAndTheAverageWidth) {
    Open("text");
    const FontDesc small = EditFontAs("Courier New", 8);  // 8 + 6 = a 14-pixel cell, 7 pixels a character
    ctrl->m_fontGutter.InitializeFont(DefaultGutterFont(), &small);
    ctrl->m_fontSymbol.InitializeFont(DefaultSymbolFont(), &small);
    ctrl->SetEditFont(small);
    EXPECT_EQ(ctrl->m_nCharWidth, 7);
    EXPECT_EQ(ctrl->m_nTabPixels, 35);
    ctrl->SetTabSize(3);
    EXPECT_EQ(ctrl->m_nTabPixels, 21);  // at once, without a rebuild of the fonts
}

TEST_F(FontCache, FontsWithoutOutlinesGetMadeUpTriplesThatDoNotWidenSynthesisedStyles) {
    Open("text");
    ctrl->SetEditFont(EditFontAs("Raster Sans"));
    const CFontMetrics* plain = ctrl->FindFontMetrics(0);
    const CFontMetrics* bold = ctrl->FindFontMetrics(FONT_BOLD);
    const CFontMetrics* italic = ctrl->FindFontMetrics(FONT_ITALIC);
    ASSERT_TRUE(plain && bold && italic);
    EXPECT_FALSE(plain->m_bHasABC);
    const unsigned char a = 'a';
    // The device's bold width is 10 with an overhang of 1: the made-up triple takes it back.
    EXPECT_EQ(bold->m_aABC[a].abcC, -1);
    EXPECT_EQ(bold->m_aWidth[a], 9);
    EXPECT_EQ(italic->m_aABC[a].abcA, -1);
    EXPECT_EQ(italic->m_aWidth[a], 8);
    EXPECT_EQ(plain->m_aWidth[a], 9);
}

TEST_F(FontCache, AWordWithoutARecordMeasuresInThePlainFontAndWidthlessFontsUseTheAverage) {
    Open("text");
    const FontDesc missing = EditFontAs("Missing");
    ctrl->m_fontSymbol.InitializeFont(DefaultSymbolFont(), &missing);
    ctrl->RebuildFontCache();
    EXPECT_EQ(ctrl->FindFontMetrics(FONT_ROLE_SYMBOL), nullptr);
    EXPECT_EQ(ctrl->GetFontMetrics(FONT_ROLE_SYMBOL), ctrl->FindFontMetrics(0));

    ctrl->SetEditFont(EditFontAs("NoWidths"));
    EXPECT_EQ(ctrl->FindFontMetrics(0)->m_aWidth[static_cast<unsigned char>('i')], 9);
    EXPECT_EQ(ctrl->FindFontMetrics(0)->m_aWidth[static_cast<unsigned char>('m')], 9);
}

TEST_F(FontCache, AutomationReportsTheGutterFontsAverageWidthAndTheCacheGoesWithTheWindow) {
    Open("text");
    // 12 points are a 16-pixel em at 96 pixels an inch: a 20-pixel cell, 10 pixels a character.
    int32_t width = 0;
    ASSERT_TRUE(GetProperty(control.Get(), "GutterFontWidth").ToLong(&width));
    EXPECT_EQ(width, 10);
    ctrl->DestroyControlWindow();
    EXPECT_TRUE(ctrl->m_FontMetrics.empty());
    EXPECT_EQ(ctrl->m_nCharWidth, 1);
    EXPECT_EQ(ctrl->m_nLineHeight, 1);
    EXPECT_EQ(ctrl->m_nTabPixels, 40);
}

class EditFontObject : public ViewFixture {};

TEST_F(EditFontObject, TheHostReadsAndReplacesTheEditFontAsAFontObject) {
    Open("text");
    Variant got = GetProperty(control.Get(), "EditFont");
    IDispatch* font = nullptr;
    ASSERT_TRUE(got.ToDispatch(&font));
    ASSERT_NE(font, nullptr);
    FontDesc desc;
    ASSERT_TRUE(FontDescFromDispatch(font, &desc));
    EXPECT_EQ(desc.name, "Times New Roman");
    EXPECT_EQ(desc.height, 120000);

    // Another font object set on the property: a 14-pixel cell, 7 pixels a character.
    ComPtr<CFontDispatch> other;
    other.Attach(CFontDispatch::Create(EditFontAs("", 8)));
    ASSERT_EQ(PutProperty(control.Get(), "EditFont", Variant::Dispatch(other.Get())), S_OK);
    EXPECT_EQ(ctrl->GetEditFont().height, 80000);
    EXPECT_EQ(ctrl->FindFontMetrics(0)->m_tm.tmHeight, 14);
    EXPECT_TRUE(ctrl->IsModified());
    // The holder took a copy: changing the given object later changes nothing.
    other->Desc().height = 30 * 10000;
    EXPECT_EQ(ctrl->GetEditFont().height, 80000);
    // Something that is not a font gives the default font back.
    ASSERT_EQ(PutProperty(control.Get(), "EditFont", Variant::Dispatch(control.Get())), S_OK);
    EXPECT_EQ(ctrl->GetEditFont(), DefaultEditFont());
}

TEST_F(EditFontObject, ChangesThroughTheHandedOutObjectShowAtTheNextRebuild) {
    Open("text");
    Variant got = GetProperty(control.Get(), "EditFont");
    IDispatch* font = nullptr;
    ASSERT_TRUE(got.ToDispatch(&font));
    ASSERT_EQ(PutProperty(font, "Size", Variant::Currency(8 * 10000)), S_OK);
    EXPECT_EQ(ctrl->GetEditFont().height, 80000);
    EXPECT_EQ(ctrl->FindFontMetrics(0)->m_tm.tmHeight, 18);  // not measured again yet
    ctrl->RebuildFontCache();
    EXPECT_EQ(ctrl->FindFontMetrics(0)->m_tm.tmHeight, 14);
    ExcepInfo ex;
    EXPECT_EQ(PutProperty(font, "Size", Variant::Long(-3), &ex), DISP_E_EXCEPTION);
}

// Through the property and through the font object's notification alike, a new edit font is
// measured and the text wrapped again at once, and the text at the top of the window stays there.
TEST_F(EditFontObject, ANewEditFontIsMeasuredAndWrappedAtOnceAndKeepsTheTopText) {
    std::string text;
    for (int i = 0; i < 200; ++i) text += "row " + std::to_string(i) + " with\ttabs and words to wrap at the edge\n";
    Open(text, 400, 300, OPT_WORDWRAP);
    ctrl->OnVScroll(SB_THUMBPOSITION, 150);
    const long topPos = ctrl->Lines().GetLineStart(ctrl->GetTopLine());
    struct Case {
        long points, charWidth;
        bool throughObject;
    };
    // 20 points: a 26-pixel cell, 13 a character; 8 points: 7, below the 9 of the gutter font.
    for (const Case& c : {Case{20, 13, false}, Case{8, 9, true}, Case{20, 13, true}, Case{12, 9, false}}) {
        const FontDesc font = EditFontAs("", c.points);
        if (c.throughObject) {
            ctrl->m_fontEdit.FontRef() = font;
            ctrl->OnEditFontChanged();
        } else {
            ctrl->SetEditFont(font);
        }
        EXPECT_EQ(ctrl->m_nCharWidth, c.charWidth) << c.points;
        EXPECT_EQ(ctrl->m_nTabPixels, 5 * c.charWidth) << c.points;
        ASSERT_EQ(DifferenceFromWholeLayout(*ctrl), "") << c.points;
        const long top = ctrl->GetTopLine();
        EXPECT_LE(ctrl->Lines().GetLineStart(top), topPos) << c.points;
        EXPECT_GT(ctrl->Lines().GetLineStart(top + 1), topPos) << c.points;
    }
}

}  // namespace
