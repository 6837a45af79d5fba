// What the view counts on from the document: order and timing of notifications, references
// handed over, and the shape of the text it reads; more of it is in cases/contract.cases.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/testing/testplatform.h"
#include "tests/htmldoc/recordingsink.h"

namespace {

TEST(DocumentContract, TextPointerIsOneTerminatedArrayAlsoWhenEmpty) {
    auto doc = CreateHtmlDocument();
    char* p = nullptr;
    ASSERT_EQ(doc->GetTextPointer(&p), S_OK);
    EXPECT_EQ(p[0], '\0');
    doc->InsertText(0, "<p>hello</p>", 12, nullptr);
    doc->InsertText(3, "X", 1, nullptr);
    doc->GetTextPointerAt(3, &p);
    EXPECT_STREQ(p, "Xhello</p>");
    doc->InsertText(1, p, 3, nullptr);  // from its own text: the source moves as the gap opens
    EXPECT_EQ(doc->GetText(), "<Xhep>Xhello</p>");
}

TEST(DocumentContract, ReattachingMakesTheNewRangeTheSelectionAndDropsTheOldOne) {
    CAttachedDoc d("abcdef");
    ComPtr<ISourceRange> bookmark, second, scratch;
    d.doc->CreateRange(bookmark.Out());
    bookmark->SetRange(2, 2);
    d.doc->CreateRange(second.Out());
    second->MarkAsSelection(TRUE);
    d.sel->UnadviseRangeSink(d.cookie);
    second->AdviseRangeSink(&d.sink, &d.cookie);
    EXPECT_EQ(d.sel.Detach()->Release(), 1u);  // the old selection, released without DestroyRange
    d.sel = second;
    d.doc->CreateRange(scratch.Out());  // drops ranges that no one can reach any more
    d.doc->DestroyRange(scratch.Get());
    second->SetRange(4, 4);
    d.doc->InsertText(0, "xy", 2, nullptr);
    EXPECT_EQ(d.sink.Order(), "SCS");
    EXPECT_EQ(bookmark->GetActive(), 4);  // a range that someone holds is still tracked
    d.doc->DestroyRange(bookmark.Get());
}
TEST(DocumentContract, ChangeObjectCarriesOneReferencePerSink) {
    CAttachedDoc d("text");
    CRecordingSink second(d.doc.Get());
    d.doc->AdviseTextSink(&second);
    d.sink.keepChanges = second.keepChanges = true;
    d.sel->ReplaceText("<", 1, &d.sink);
    ASSERT_EQ(d.sink.kept.size(), 1u);
    ASSERT_EQ(second.kept, d.sink.kept);  // one object, with a reference for each sink
    EXPECT_EQ(d.sink.kept[0]->Release(), 1u);
    EXPECT_EQ(second.kept[0]->Release(), 0u);  // the last one: the object is gone now
    d.doc->UnadviseTextSink(&second);
    EXPECT_EQ(second.refs, 0);
}
TEST(DocumentContract, RangeSurvivesUntilBothReferencesAreGone) {
    auto doc = CreateHtmlDocument();
    doc->SetText("0123456789");
    ISourceRange* range = nullptr;
    ASSERT_EQ(doc->CreateRange(&range), S_OK);
    range->SetRange(4, 6);
    EXPECT_EQ(range->Release(), 1u);  // the caller's reference goes first; the document's stays
    doc->InsertText(0, "ab", 2, nullptr);
    EXPECT_EQ(range->GetStart(), 6);  // still tracked, still alive
    EXPECT_EQ(doc->DestroyRange(range), S_OK);
    EXPECT_EQ(doc->DestroyRange(nullptr), E_INVALIDARG);

    // The other order: destroy first, release after; the range no longer follows edits.
    ComPtr<ISourceRange> kept;
    doc->CreateRange(kept.Out());
    kept->SetRange(3, 3);
    doc->DestroyRange(kept.Get());
    doc->InsertText(0, "!", 1, nullptr);
    EXPECT_EQ(kept->GetActive(), 3);
    ISourceText* owner = nullptr;
    EXPECT_EQ(kept->GetDocument(&owner), S_OK);
    EXPECT_EQ(owner, static_cast<ISourceText*>(doc.Get()));
}

TEST(DocumentContract, RangesHeldPastTheDocumentStopSafely) {
    ComPtr<ISourceRange> range;
    {
        auto doc = CreateHtmlDocument();
        doc->SetText("abc");
        doc->CreateRange(range.Out());
        range->SetRange(1, 2);
    }
    ISourceText* owner = reinterpret_cast<ISourceText*>(1);
    EXPECT_EQ(range->GetDocument(&owner), E_UNEXPECTED);
    EXPECT_EQ(owner, nullptr);
    EXPECT_EQ(range->MoveToDocEnd(FALSE), E_UNEXPECTED);
    EXPECT_EQ(range->ReplaceText("x", 1, nullptr), E_UNEXPECTED);
    EXPECT_EQ(range->GetActive(), 1);
}

// Arguments that no case file can write: a null text and a negative length.
TEST(DocumentContract, NullTextAndNegativeLengthsAreRefused) {
    CAttachedDoc d("hello");
    EXPECT_EQ(d.doc->InsertText(0, nullptr, 1, nullptr), E_POINTER);
    EXPECT_EQ(d.sel->ReplaceText("x", -1, nullptr), E_INVALIDARG);
    EXPECT_EQ(d.Text(), "hello");
    EXPECT_TRUE(d.sink.events.empty());
}

TEST(DocumentContract, LongOperationsAreBracketedByBusy) {
    CAttachedDoc d;
    std::string big(CHtmlDocument::kBusyBytes + 10, 'x');
    d.doc->SetText(big);
    d.doc->SetText("small");
    const std::string length = std::to_string(big.size());
    EXPECT_EQ(d.sink.Log(), "busy RESET 0-0/0 INSERT 0-" + length + "/" + length + " done RESET 0-0/0 INSERT 0-5/5");

    std::string lines;
    for (long i = 0; i <= CHtmlDocument::kBusyLines; ++i) lines += "line\n";
    d.doc->SetText(lines);
    d.sel->SetRange(d.doc->GetLength(), 0);
    d.sink.events.clear();
    d.sel->IndentLines(&d.sink);
    EXPECT_EQ(d.sink.Order(), "BCSB");  // one change for the whole block
}

class CRepaintHandler : public IMessageHandler {
public:
    LRESULT WindowProc(HWND, UINT, WPARAM, LPARAM) override { return 0; }
};

TEST(DocumentContract, PostRepaintPostsAStyleChangeToTheSinksWindow) {
    CTestPlatformScope scope;
    CRepaintHandler handler;
    HWND hwnd = CreateWindowFor(&handler, nullptr, RECT{0, 0, 100, 100});
    ASSERT_NE(hwnd, nullptr);
    CAttachedDoc d("<p>text</p>");
    d.sink.hwnd = hwnd;
    d.doc->PostRepaint(3, 7);
    MSG msg;
    ASSERT_TRUE(PeekMessage(&msg, hwnd, WM_SOURCE_REPAINT, WM_SOURCE_REPAINT, PM_REMOVE));
    auto* carried = reinterpret_cast<IUnknown*>(msg.lParam);
    ComPtr<ISourceChange> change = QueryAs<ISourceChange>(carried, IID_ISourceChange);
    ASSERT_TRUE(change);
    ISourceChangeRange range;
    change->GetRange(&range);
    EXPECT_EQ(change->GetAction(), SA_STYLE);
    EXPECT_EQ(std::make_pair(range.nStart, range.nEnd), std::make_pair(3L, 7L));
    change.Reset();
    EXPECT_EQ(carried->Release(), 0u);  // the message carried the only reference
    EXPECT_TRUE(d.sink.events.empty());  // a repaint is no change

    // A window that is gone: nothing is posted, and the document keeps nothing (the leak
    // checker of the sanitizer build would see a lost reference).
    DestroyWindow(hwnd);
    d.doc->PostRepaint(0, 1);
    EXPECT_FALSE(PeekMessage(&msg, hwnd, 0, 0, PM_REMOVE));
}

}  // namespace
