// What the view counts on from the document: order and timing of notifications, references
// handed over, and the shape of the text it reads.
#include <gtest/gtest.h>

#include <cstring>

#include "platform/com/textdataobject.h"
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

TEST(DocumentContract, SelectionReportFollowsTheChangeOfTheSameEdit) {
    CAttachedDoc d("abc\r\ndef");
    d.sel->SetRange(5, 5);
    d.sink.events.clear();
    d.sel->ReplaceText("X", 1, &d.sink);
    EXPECT_EQ(d.sink.Log(), "REPLACE 5-6/9 sel 6,6");
    // An edit in front of the selection moves it too, reported after the change.
    d.sink.events.clear();
    d.doc->DeleteText(0, 2, &d.sink);
    EXPECT_EQ(d.sink.Log(), "DELETE 0-2/7 sel 4,4");
    // An edit behind it does not report the selection, nor does a range that is not it.
    d.sink.events.clear();
    d.doc->InsertText(d.doc->GetLength(), "!", 1, &d.sink);
    ComPtr<ISourceRange> other;
    d.doc->CreateRange(other.Out());
    DWORD cookie;
    other->AdviseRangeSink(&d.sink, &cookie);
    other->SetRange(2, 4);
    other->UnadviseRangeSink(cookie);
    // The ends keep their order, active behind anchor; setting them again reports nothing.
    d.sel->SetRange(6, 1);
    d.sel->SetRange(6, 1);
    EXPECT_EQ(d.sink.Log(), "INSERT 7-8/8 sel 6,1");
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

TEST(DocumentContract, BadArgumentsAreRefusedAndChangeNothing) {
    CAttachedDoc d("hello");
    EXPECT_EQ(d.doc->InsertText(6, "x", 1, nullptr), E_INVALIDARG);
    EXPECT_EQ(d.doc->InsertText(0, nullptr, 1, nullptr), E_POINTER);
    EXPECT_EQ(d.doc->DeleteText(3, 3, nullptr), E_INVALIDARG);
    EXPECT_EQ(d.doc->ReplaceText(0, -1, "x", 1, nullptr), E_INVALIDARG);
    EXPECT_EQ(d.sel->SetRange(0, 6), E_INVALIDARG);
    EXPECT_EQ(d.sel->ReplaceText("x", -1, nullptr), E_INVALIDARG);
    char buf[8];
    EXPECT_EQ(d.doc->CopyText(buf, 4, 2), E_INVALIDARG);
    long out;
    EXPECT_EQ(d.doc->GetTextLineStart(1, &out), E_INVALIDARG);
    EXPECT_EQ(d.doc->GetCharAt(5), 0);
    EXPECT_EQ(d.Text(), "hello");
    EXPECT_TRUE(d.sink.events.empty());
    EXPECT_TRUE(d.doc->IsUndoEmpty());
}

TEST(DocumentContract, InsertDataTakesClipboardTextUpToItsNul) {
    CAttachedDoc d("<b></b>");
    d.sel->SetRange(3, 3);
    long inserted = 0;
    auto data = CreateTextDataObject("bold");
    EXPECT_EQ(d.doc->InsertData(3, 0, &inserted, data.Get(), &d.sink), S_OK);
    EXPECT_EQ(inserted, 4);
    EXPECT_EQ(d.Text(), "<b>bold</b>");
    EXPECT_EQ(d.sink.Log(), "sel 3,3 INSERT 3-7/11 sel 7,7");  // a paste at the caret leaves it behind the text

    // Replacing a selection: reported as a replacement of the new span.
    d.sel->SetRange(3, 7);
    d.sink.events.clear();
    auto other = CreateTextDataObject("it");
    d.doc->InsertData(3, 4, &inserted, other.Get(), &d.sink);
    EXPECT_EQ(d.Text(), "<b>it</b>");
    EXPECT_EQ(inserted, 2);
    EXPECT_EQ(d.sink.Log(), "REPLACE 3-5/9 sel 5,5");

    // No text offered: failure, nothing changes.
    ComPtr<CDataObject> files(new CDataObject);
    files->SetData(RegisterClipboardFormat("FileName"), std::string("a.htm\0", 6));
    inserted = 0;
    EXPECT_TRUE(FAILED(d.doc->InsertData(0, 2, &inserted, files.Get(), &d.sink)));
    EXPECT_EQ(inserted, 0);
    EXPECT_EQ(d.Text(), "<b>it</b>");
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
