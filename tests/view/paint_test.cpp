// The busy panel over the view; what the painter draws is in tests/edit/cases/paint.cases.
#include "tests/view/viewfixture.h"

namespace {

class Painting : public ViewFixture {
protected:
    // Opens a scripted document, all of its bytes plain text.
    void OpenText(const std::string& text) {
        NewControl(400, 300);
        doc = CreateHtmlDocument();
        doc->SetText(text);
        syntax = std::make_unique<CScriptedSyntax>(doc.Get());
        ctrl->SetDocument(syntax.get());
    }
    std::unique_ptr<CScriptedSyntax> syntax;
};

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

TEST_F(Painting, ALargeReformatLeavesNeitherThePanelNorTheWaitCursorUp) {
    OpenText(std::string(400000, 'x'));
    EXPECT_EQ(platform->WaitCursorDepth(), 0);
    EXPECT_EQ(ctrl->GetBusyCount(), 0);
    EXPECT_TRUE(platform->ChildControlsOf(ctrl->GetSafeHwnd()).empty());
}

}  // namespace
