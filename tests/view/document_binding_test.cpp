// A host drives a control and a real document: attach, edit, undo, and what the control
// mirrors and fires after each call.
#include "platform/testing/testplatform.h"
#include "platform/testing/testwindow.h"
#include "tests/view/viewtest.h"

namespace {

class DocumentBinding : public ::testing::Test {
protected:
    void SetUp() override {
        control = MakeControlThroughFactory();
        ctrl = AsControl(control.Get());
        cookie = ctrl->AdviseEvents(&log);
        doc = CreateHtmlDocument();
        doc->SetText(SamplePage());
    }
    void TearDown() override {
        ctrl->UnadviseEvents(cookie);
        ctrl->SetDocument(nullptr);
        control = nullptr;
        EXPECT_EQ(log.refs, 0u);
    }
    // The table's total must be the document's length after every call.
    void ExpectTableMatchesDocument() {
        EXPECT_EQ(ctrl->Lines().m_nTotal, doc->GetLength());
        EXPECT_EQ(GetProperty(control.Get(), "LineCount").LongVal(), ctrl->Lines().m_nCount);
    }

    CEventLog log;
    ComPtr<IDispatch> control;
    CZentrelCtrl* ctrl = nullptr;
    DWORD cookie = 0;
    ComPtr<CHtmlDocument> doc;
};

TEST_F(DocumentBinding, EditsThroughTheDocumentReachTheTableAndTheEvents) {
    ASSERT_EQ(PutProperty(control.Get(), "Document", Variant::Dispatch(static_cast<IDispatch*>(doc.Get()))), S_OK);
    ASSERT_EQ(ctrl->GetDocumentText(), static_cast<ISourceText*>(doc.Get()));
    // Without a window the whole text is one line, adjusted by every change.
    EXPECT_EQ(ctrl->GetLineCount(), 1);
    ExpectTableMatchesDocument();

    doc->InsertText(10, "abc", 3, nullptr);
    ExpectTableMatchesDocument();
    doc->DeleteText(0, 5, nullptr);
    ExpectTableMatchesDocument();
    doc->ReplaceText(20, 4, "replacement", 11, nullptr);
    ExpectTableMatchesDocument();
    long caret = 0;
    ASSERT_EQ(doc->Undo(nullptr, &caret), S_OK);
    ExpectTableMatchesDocument();
    ASSERT_EQ(doc->Redo(nullptr, &caret), S_OK);
    ExpectTableMatchesDocument();

    auto changes = log.Of(EVENT_DOCUMENTCHANGED);
    ASSERT_GE(changes.size(), 5u);
    EXPECT_EQ(changes[0].args, (std::vector<long>{SA_INSERT, 10, 3}));
    EXPECT_EQ(changes[1].args, (std::vector<long>{SA_DELETE, 0, 5}));
    EXPECT_EQ(changes[2].args, (std::vector<long>{SA_REPLACE, 20, 11}));
    // An unfocused control fires no SelectionChanged, and without a window the mirror stays.
    EXPECT_TRUE(log.Of(EVENT_SELECTIONCHANGED).empty());
    EXPECT_EQ(ctrl->GetSelectionStart(), 0);
}

TEST_F(DocumentBinding, SelectionMirrorFollowsTheDocumentWithAWindow) {
    CTestPlatformScope platform;
    ASSERT_TRUE(ctrl->CreateControlWindow(nullptr, {0, 0, 400, 300}));
    ctrl->SetDocument(static_cast<IDispatch*>(doc.Get()));
    ExpectTableMatchesDocument();
    EXPECT_GT(ctrl->GetLineCount(), 60);  // the breaker cut the text at its line feeds
    long lines = ctrl->GetLineCount();
    doc->SetText(SamplePage());  // all the text goes and comes back
    ExpectTableMatchesDocument();
    EXPECT_EQ(ctrl->GetLineCount(), lines);

    ctrl->SetSelection(30, 12);
    EXPECT_EQ(ctrl->GetSelectionStart(), 30);
    EXPECT_EQ(ctrl->GetSelectionEnd(), 12);
    EXPECT_TRUE(log.Of(EVENT_SELECTIONCHANGED).empty());

    ctrl->m_bFocused = TRUE;
    ComPtr<IDispatch> selDisp = ComPtr<IDispatch>::Adopt(ctrl->GetSelection());
    ASSERT_TRUE(selDisp);
    ctrl->SetSelection(5, 5);
    ASSERT_EQ(log.Of(EVENT_SELECTIONCHANGED).size(), 1u);
    EXPECT_EQ(log.Of(EVENT_SELECTIONCHANGED)[0].args, (std::vector<long>{5, 5}));

    // Typing goes through the selection; the change comes before the selection move.
    log.events.clear();
    ComPtr<ISourceRange> range = QueryAs<ISourceRange>(selDisp.Get(), IID_ISourceRange);
    ASSERT_TRUE(range);
    range->ReplaceText("\nX", 2, &ctrl->m_xTextSink);
    ASSERT_EQ(log.events.size(), 2u);
    EXPECT_EQ(log.events[0].id, EVENT_DOCUMENTCHANGED);
    EXPECT_EQ(log.events[1].id, EVENT_SELECTIONCHANGED);
    EXPECT_EQ(ctrl->GetSelectionStart(), 7);
    ExpectTableMatchesDocument();
    EXPECT_FALSE(TestWindow(ctrl->GetSafeHwnd())->Invalidated().empty());

    // Swapped ends of the same span change nothing and fire nothing.
    log.events.clear();
    ctrl->OnSelectionChanged(ctrl->GetSelectionEnd(), ctrl->GetSelectionStart());
    EXPECT_TRUE(log.events.empty());
    ctrl->DestroyControlWindow();
    EXPECT_EQ(ctrl->GetDocumentText(), nullptr);
    EXPECT_EQ(ctrl->GetLineCount(), 1);
}

TEST_F(DocumentBinding, ObjectsWithoutTextLeaveTheOldDocumentInPlace) {
    ctrl->SetDocument(static_cast<IDispatch*>(doc.Get()));
    CEventLog notADocument;
    EXPECT_EQ(PutProperty(control.Get(), "Document", Variant::Dispatch(&notADocument)), S_OK);
    EXPECT_EQ(ctrl->GetDocumentText(), static_cast<ISourceText*>(doc.Get()));
    EXPECT_EQ(notADocument.refs, 0u);

    // A second document replaces the first; the first no longer reports to the control.
    ComPtr<CHtmlDocument> second = CreateHtmlDocument();
    second->SetText("<p>two</p>\n");
    ctrl->SetDocument(static_cast<IDispatch*>(second.Get()));
    EXPECT_EQ(ctrl->GetDocumentText(), static_cast<ISourceText*>(second.Get()));
    log.events.clear();
    doc->InsertText(0, "zz", 2, nullptr);
    EXPECT_TRUE(log.events.empty());
    EXPECT_EQ(ctrl->Lines().m_nTotal, second->GetLength());

    Variant got = GetProperty(control.Get(), "Document");
    EXPECT_EQ(got.DispatchVal(), static_cast<IDispatch*>(second.Get()));
    ctrl->SetDocument(nullptr);
    EXPECT_EQ(GetProperty(control.Get(), "Document").DispatchVal(), nullptr);
    EXPECT_EQ(GetProperty(control.Get(), "Selection").DispatchVal(), nullptr);
    EXPECT_EQ(ctrl->GetLineCount(), 1);
    EXPECT_EQ(ctrl->Lines().m_nTotal, 0);
}

TEST_F(DocumentBinding, GetTextAnswersOtherProgramsAndSwallowsEditMessages) {
    CTestPlatformScope platform;
    ctrl->CreateControlWindow(nullptr, {0, 0, 200, 100});
    HWND hwnd = ctrl->GetSafeHwnd();
    EXPECT_EQ(SendMessage(hwnd, WM_GETTEXTLENGTH, 0, 0), 0);
    ctrl->SetDocument(static_cast<IDispatch*>(doc.Get()));
    EXPECT_EQ(SendMessage(hwnd, WM_GETTEXTLENGTH, 0, 0), doc->GetLength());
    char buf[8] = {'x', 'x', 'x', 'x', 'x', 'x', 'x', 'x'};
    EXPECT_EQ(SendMessage(hwnd, WM_GETTEXT, 0, reinterpret_cast<LPARAM>(buf)), 0);
    EXPECT_EQ(buf[0], 'x');
    EXPECT_EQ(SendMessage(hwnd, WM_GETTEXT, 6, reinterpret_cast<LPARAM>(buf)), 6);
    EXPECT_STREQ(buf, "<!DOC");
    for (UINT m : {EM_GETSEL, EM_SETSEL, EM_SCROLLCARET, EM_GETLINECOUNT, EM_REPLACESEL, EM_GETFIRSTVISIBLELINE})
        EXPECT_EQ(SendMessage(hwnd, m, 1, 2), 0);
    // WM_DESTROY runs once: a second destroy finds the window gone and changes nothing.
    ctrl->DestroyControlWindow();
    EXPECT_FALSE(ctrl->HasWindow());
    EXPECT_EQ(ctrl->GetDocumentText(), nullptr);
}

TEST_F(DocumentBinding, BusyCallsNestAndEndWithTheLastPair) {
    ctrl->SetDocument(static_cast<IDispatch*>(doc.Get()));
    ctrl->m_xTextSink.OnBusy(TRUE, "Loading", 0);
    ctrl->m_xTextSink.OnBusy(TRUE, "Indenting", 0);
    EXPECT_EQ(ctrl->GetBusyCount(), 2);
    EXPECT_EQ(ctrl->m_strBusyText, "Indenting");
    ctrl->m_xTextSink.OnBusy(FALSE, nullptr, 0);
    EXPECT_EQ(ctrl->GetBusyCount(), 1);
    ctrl->m_xTextSink.OnBusy(FALSE, nullptr, 0);
    EXPECT_EQ(ctrl->GetBusyCount(), 0);
    // A document that loads a large text brackets the load; the panel is down again afterwards.
    doc->SetText(std::string(CHtmlDocument::kBusyBytes + 1, 'x'));
    EXPECT_EQ(ctrl->GetBusyCount(), 0);
    EXPECT_EQ(ctrl->Lines().m_nTotal, doc->GetLength());
}

}  // namespace

// A host may destroy the control's window and make it again, any number of times: each destroy
// detaches the document and stops the completion timer, and each window gets its timer anew.
TEST(WindowLifeCycle, EveryDestroyDetachesAndEveryCreateStartsAgain) {
    CTestPlatformScope platform;
    ComPtr<IDispatch> control = MakeControlThroughFactory();
    CZentrelCtrl* ctrl = AsControl(control.Get());
    ctrl->SetCodeCompletionMode(1);
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText("<p>text</p>");
    for (int round = 0; round < 3; ++round) {
        SCOPED_TRACE(round);
        ASSERT_NE(ctrl->CreateControlWindow(nullptr, {0, 0, 200, 100}), nullptr);
        EXPECT_TRUE(TestWindow(ctrl->GetSafeHwnd())->HasTimer(kCompletionTimer));
        ctrl->SetDocument(doc.Get());
        EXPECT_EQ(ctrl->GetDocumentText(), static_cast<ISourceText*>(doc.Get()));
        EXPECT_EQ(ctrl->GetLineCount(), 1);
        ctrl->DestroyControlWindow();
        EXPECT_EQ(ctrl->GetDocumentText(), nullptr);
        EXPECT_FALSE(ctrl->m_bCompletionTimer);
    }
}
