// The posted repaint: queued restyle messages merge into one invalidation, every message's
// reference is given back, and nothing else happens.
#include "htmldoc/sourcechange.h"
#include "tests/view/viewfixture.h"

namespace {

class RepaintMessage : public ViewFixture {
protected:
    void SetUp() override {
        std::string text;
        for (int i = 0; i < 30; ++i) text += "line " + std::to_string(i) + "\n";  // 7 or 8 bytes a line
        Open(text, 300, 600);
        window = &Window();
        window->ClearInvalidated();
        cookie = ctrl->AdviseEvents(&log);
    }
    void TearDown() override {
        ctrl->UnadviseEvents(cookie);
        ViewFixture::TearDown();
    }
    // Posts a change that the test watches: the returned pointer stays valid while `keep` holds it.
    CSourceChange* Post(long action, long start, long end) {
        auto* change = new CSourceChange(action, start, end);
        change->AddRef();  // the message's reference
        kept.push_back(ComPtr<CSourceChange>(change));
        EXPECT_TRUE(PostMessage(ctrl->GetSafeHwnd(), WM_SOURCE_REPAINT, 0, reinterpret_cast<LPARAM>(change->AsUnknown())));
        return change;
    }
    // References left besides the test's own.
    static ULONG Extra(CSourceChange* c) {
        c->AddRef();
        return c->Release() - 1;
    }

    CEventLog log;
    DWORD cookie = 0;
    CTestWindowBackend* window = nullptr;
    std::vector<ComPtr<CSourceChange>> kept;
};

TEST_F(RepaintMessage, MergesRestyleRunsAndStopsAtOtherMessages) {
    long lines = ctrl->GetLineCount();
    CSourceChange* a = Post(SA_STYLE, 8, 10);    // line 1
    CSourceChange* b = Post(SA_STYLE, 30, 33);   // line 4
    CSourceChange* c = Post(SA_INSERT, 60, 61);  // stops the merge, repaints on its own turn
    PostMessage(ctrl->GetSafeHwnd(), WM_SOURCE_REPAINT, 0, 0);

    // One turn of the loop delivers only the first message, which takes the second with it.
    MSG first;
    ASSERT_TRUE(PeekMessage(&first, ctrl->GetSafeHwnd(), 0, 0, PM_REMOVE));
    SendMessage(first.hwnd, first.message, first.wParam, first.lParam);
    ASSERT_EQ(window->Invalidated().size(), 1u);
    const RECT rc = window->Invalidated()[0];
    EXPECT_EQ(rc.top, 1 * ctrl->m_nLineHeight);
    EXPECT_EQ(rc.bottom, 5 * ctrl->m_nLineHeight);
    EXPECT_EQ(rc.left, 0);
    EXPECT_EQ(rc.right, 300);
    EXPECT_EQ(Extra(a), 0u);
    EXPECT_EQ(Extra(b), 0u);
    EXPECT_EQ(Extra(c), 1u);  // still queued

    window->ClearInvalidated();
    EXPECT_EQ(window->PumpPostedMessages(), 2);
    EXPECT_EQ(Extra(c), 0u);
    ASSERT_EQ(window->Invalidated().size(), 2u);  // the insert's span, then the whole control
    EXPECT_EQ(ctrl->GetLineCount(), lines);     // no relayout
    EXPECT_TRUE(log.events.empty());           // and no event
}

TEST_F(RepaintMessage, GivesBackReferencesOfMessagesThatAreNeverDelivered) {
    CSourceChange* pending = Post(SA_STYLE, 0, 5);
    EXPECT_EQ(Extra(pending), 1u);
    ctrl->DestroyControlWindow();
    EXPECT_EQ(Extra(pending), 0u);
}

TEST_F(RepaintMessage, ObjectsThatAreNoChangeAreReleasedAndIgnored) {
    CEventLog notAChange;
    notAChange.AddRef();  // the message's reference
    PostMessage(ctrl->GetSafeHwnd(), WM_SOURCE_REPAINT, 0, reinterpret_cast<LPARAM>(static_cast<IUnknown*>(&notAChange)));
    window->PumpPostedMessages();
    EXPECT_EQ(notAChange.refs, 0u);
    EXPECT_TRUE(window->Invalidated().empty());
}

}  // namespace
