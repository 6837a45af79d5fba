// What the painter draws: runs of one format and their cells, tabs and hidden characters, line
// ends, the selection, the gutter, the margins, and what a paint leaves on the window's pixels.
// Widths are the test fonts' (plain 9 pixels a byte, bold 10), lines 19 pixels high with the
// baseline 14 below their top, and the text starts at the 60-pixel gutter.
#include "tests/view/viewfixture.h"

namespace {

class Painting : public ViewFixture {
protected:
    // Opens a scripted document; `tags` gives bytes the tag class (bold, blue).
    void OpenText(const std::string& text, long tagStart = 0, long tagCount = 0, LONG cx = 400) {
        NewControl(cx, 300);
        doc = CreateHtmlDocument();
        doc->SetText(text);
        syntax = std::make_unique<CScriptedSyntax>(doc.Get());
        if (tagCount) syntax->SetClass(tagStart, tagCount, SC_TAG);
        ctrl->SetDocument(syntax.get());
    }
    // The text drawn, in order, on the window or its buffer, after a repaint of everything.
    std::vector<DrawRecord> Texts() {
        ctrl->InvalidateControl();
        std::vector<DrawRecord> out;
        for (const DrawRecord& r : PaintNow())
            if (r.kind == DrawKind::Text && r.origin.x >= 60 - ctrl->m_nLeftPixel) out.push_back(r);
        return out;
    }
    // The fill that covers a cell exactly, or null.
    const DrawRecord* FillOf(const RECT& rc) {
        for (const DrawRecord& r : Window().Drawn())
            if (r.kind == DrawKind::Fill && r.rc == rc) return &r;
        return nullptr;
    }

    std::unique_ptr<CScriptedSyntax> syntax;
};

TEST_F(Painting, ALineIsDrawnInRunsOfOneFormatAndATabIsACellOfItsOwn) {
    OpenText("ab\tcd\r\nxyz\n", 0, 2);
    const auto texts = Texts();
    ASSERT_EQ(texts.size(), 3u);
    EXPECT_EQ(texts[0].text, "ab");
    EXPECT_EQ(texts[0].origin, (POINT{60, 14}));
    EXPECT_EQ(texts[0].font.lfWeight, FW_BOLD);
    EXPECT_EQ(texts[0].color, ctrl->GetFormatStyle(4).crText);
    EXPECT_EQ(texts[0].clip, (RECT{60, 0, 80, 19}));
    // The tab runs from 20 to the stop at 45: a blank cell in its own format.
    EXPECT_NE(FillOf(RECT{80, 0, 105, 19}), nullptr);
    EXPECT_EQ(texts[1].text, "cd");
    EXPECT_EQ(texts[1].origin, (POINT{105, 14}));
    EXPECT_EQ(texts[1].font.lfWeight, FW_NORMAL);
    EXPECT_EQ(texts[2].text, "xyz");
    EXPECT_EQ(texts[2].origin, (POINT{60, 19 + 14}));
}

TEST_F(Painting, HiddenCharactersShowAsArrowsInTheSymbolFont) {
    OpenText("a\tb\r\n");
    ctrl->SetOption(OPT_DISPLAYALL, TRUE);
    const auto texts = Texts();
    ASSERT_EQ(texts.size(), 4u);
    EXPECT_EQ(texts[1].text, "\xAB");
    EXPECT_STREQ(texts[1].font.lfFaceName, "Symbol");
    EXPECT_EQ(texts[1].clip, (RECT{69, 0, 105, 19}));
    // Centred in the cell: the arrow is 9 pixels wide, the cell 36.
    EXPECT_EQ(texts[1].origin.x, 69 + 18 - 4);
    EXPECT_EQ(texts[1].color, ctrl->GetFormatStyle(STYLE_INVISIBLE).crText);
    EXPECT_EQ(texts[3].text, "\xBF");
}

TEST_F(Painting, ALoneCRHidesTheRestOfItsLineUnlessItIsSelected) {
    OpenText("ab\rcd\nef\n");
    auto texts = Texts();
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0].text, "ab");
    EXPECT_EQ(texts[1].text, "ef");
    ctrl->SetSelection(1, 4);
    texts = Texts();
    ASSERT_EQ(texts.size(), 4u);
    EXPECT_EQ(texts[0].text, "a");
    EXPECT_EQ(texts[1].text, "b c");  // the selected CR is one blank cell in the selection's colours
    EXPECT_EQ(texts[1].color, ctrl->GetFormatStyle(STYLE_SELECTION).crText);
    EXPECT_EQ(texts[2].text, "d");
}

TEST_F(Painting, ASelectedLineEndShowsOneBlankCellForCRLFAndNothingForLF) {
    OpenText("ab\r\ncd\nef");
    ctrl->SetSelection(0, 7);
    const auto texts = Texts();
    ASSERT_EQ(texts.size(), 3u);
    EXPECT_EQ(texts[0].text, "ab ");
    EXPECT_EQ(texts[1].text, "cd");
    EXPECT_EQ(texts[2].text, "ef");
}

TEST_F(Painting, LongRunsAreDrawnInPiecesThatJoinExactly) {
    OpenText(std::string(1000, 'a') + "\n", 0, 0, 9000);
    const auto texts = Texts();
    ASSERT_EQ(texts.size(), 3u);
    EXPECT_EQ(texts[0].text.size(), 401u);
    EXPECT_EQ(texts[1].origin.x, texts[0].origin.x + 401 * 9);
    EXPECT_EQ(texts[2].origin.x, texts[1].origin.x + 401 * 9);
    EXPECT_EQ(texts[0].text.size() + texts[1].text.size() + texts[2].text.size(), 1000u);
}

TEST_F(Painting, PaintingStopsAtTheRightEdgeAndEmptyLinesDrawNoText) {
    OpenText(std::string(1000, 'a') + "\n\n\r\nb");
    const auto texts = Texts();
    ASSERT_EQ(texts.size(), 2u);
    EXPECT_EQ(texts[0].text.size(), 401u);
    EXPECT_EQ(texts[1].text, "b");
    EXPECT_EQ(texts[1].origin.y, 3 * 19 + 14);
}

// The gutter column, its margin line and blank strip, the selection's cells and the right margin
// line are checked on the Qt view's pixels (viewpixels_test); here the ground below the text.
TEST_F(Painting, BelowTheTextIsTheBackground) {
    OpenText("abc\ndef\n");
    Texts();
    EXPECT_EQ(Window().Pixel(300, 250), 0xFFFFFFu);
}

TEST_F(Painting, LineNumbersStandOnTheFirstRowOfEachTextLine) {
    OpenText("abc\nlong enough to wrap in a narrow window of two hundred pixels\nx\n", 0, 0, 260);
    ctrl->SetOption(OPT_WORDWRAP, TRUE);
    ctrl->InvalidateControl();
    std::vector<std::string> numbers;
    for (const DrawRecord& r : PaintNow())
        if (r.kind == DrawKind::Text && r.origin.x < 60) numbers.push_back(r.text);
    EXPECT_EQ(numbers, (std::vector<std::string>{"1", "2", "3", "4"}));
}

TEST_F(Painting, ANarrowGutterLeavesOnlyTheBackgroundAndAZeroGutterStartsTheTextAtTheEdge) {
    OpenText("abc");
    ctrl->SetGutterSize(9);
    Texts();
    EXPECT_EQ(Window().Pixel(3, 100), 0xFFFFFFu);
    ctrl->SetGutterSize(0);
    ctrl->InvalidateControl();
    bool atEdge = false;
    for (const DrawRecord& r : PaintNow()) atEdge |= r.kind == DrawKind::Text && r.text == "abc" && r.origin.x == 0;
    EXPECT_TRUE(atEdge);
}

TEST_F(Painting, ABusyOrDocumentlessControlPaintsAFlatFill) {
    OpenText("abc");
    ctrl->ShowBusyPanel(TRUE);
    ctrl->InvalidateControl();
    PaintNow();
    EXPECT_EQ(Window().Pixel(100, 100), GetSysColor(COLOR_BTNFACE));
    ctrl->ShowBusyPanel(FALSE);
    ctrl->SetBackColor(0x00FF00);
    ctrl->SetDocument(nullptr);
    ctrl->InvalidateControl();
    PaintNow();
    EXPECT_EQ(Window().Pixel(5, 5), 0x00FF00u);
}

TEST_F(Painting, TheBusyPanelShowsItsTextAndAnimationWhileNested) {
    OpenText("abc");
    ctrl->SetBusyText("Reformatting doumcument...");
    ctrl->ShowBusyPanel(TRUE);
    ctrl->ShowBusyPanel(TRUE);
    const auto children = platform->ChildControlsOf(ctrl->GetSafeHwnd());
    ASSERT_EQ(children.size(), 2u);
    std::string text;
    bool playing = false;
    for (HWND child : children) {
        const CTestWindowBackend& w = *TestWindow(child);
        EXPECT_TRUE(w.Shown());
        if (w.Kind() == ChildControlKind::Static) text = w.Text();
        if (w.Kind() == ChildControlKind::Animation) playing = w.AnimationPlaying() && w.AnimationResource() == 242;
    }
    EXPECT_EQ(text, "Reformatting doumcument...");
    EXPECT_TRUE(playing);
    ctrl->ShowBusyPanel(FALSE);
    EXPECT_EQ(platform->ChildControlsOf(ctrl->GetSafeHwnd()).size(), 2u);
    ctrl->ShowBusyPanel(FALSE);
    EXPECT_TRUE(platform->ChildControlsOf(ctrl->GetSafeHwnd()).empty());
}

TEST_F(Painting, ALargeReformatRaisesThePanelAndTheWaitCursorAndTakesThemDownAgain) {
    OpenText(std::string(400000, 'x'));
    EXPECT_EQ(platform->WaitCursorDepth(), 0);
    EXPECT_EQ(ctrl->GetBusyCount(), 0);
    EXPECT_TRUE(platform->ChildControlsOf(ctrl->GetSafeHwnd()).empty());
}

}  // namespace
