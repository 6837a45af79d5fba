// What the painter does with lines longer than the window, and the busy panel; the runs, cells and
// colours of short texts are cases in tests/edit/cases/paint.cases. Plain bytes are 9 pixels
// wide, lines 19 high with the baseline 14 below their top, and the text starts at the 60-pixel
// gutter.
#include "tests/view/viewfixture.h"

namespace {

class Painting : public ViewFixture {
protected:
    // Opens a scripted document, all of its bytes plain text.
    void OpenText(const std::string& text, LONG cx = 400) {
        NewControl(cx, 300);
        doc = CreateHtmlDocument();
        doc->SetText(text);
        syntax = std::make_unique<CScriptedSyntax>(doc.Get());
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

    std::unique_ptr<CScriptedSyntax> syntax;
};

TEST_F(Painting, LongRunsAreDrawnInPiecesThatJoinExactly) {
    OpenText(std::string(1000, 'a') + "\n", 9000);
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
