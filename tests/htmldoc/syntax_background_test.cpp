// Classification in the background: after a load, and behind an edit whose effect runs far, the
// document classifies in slices on a window of its own, a bit per turn of the message loop.
#include <gtest/gtest.h>

#include <string>

#include "htmldoc/htmldocument.h"
#include "platform/testing/testplatform.h"
#include "platform/testing/testwindow.h"

namespace {

std::string Page(size_t bytes) {
    std::string text;
    for (int i = 0; text.size() < bytes; ++i)
        text += "<p class=\"c" + std::to_string(i % 7) + "\">Paragraph " + std::to_string(i) + " &amp; <b>more</b></p>\n";
    return text;
}

class BackgroundSlices : public ::testing::Test {
protected:
    // Delivers the slices waiting now; gives how many ran.
    int Pump() {
        HWND hwnd = doc->Syntax().Window();
        CTestWindowBackend* window = hwnd ? TestWindow(hwnd) : nullptr;
        return window && window->IsPostWaiting() ? window->PumpPostedMessages() : 0;
    }
    // Turns of the message loop until no slice waits; gives how many it took.
    int PumpUntilIdle() {
        int turns = 0;
        while (Pump() > 0) ++turns;
        return turns;
    }

    CTestPlatformScope platform;
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
};

TEST_F(BackgroundSlices, ALoadedTextIsClassifiedInSlicesOnTheMessageLoop) {
    doc->SetText(Page(4 << 20));
    // A load does not wait for classification; the first look (a view's first paint) classifies
    // what it needs and leaves the rest to the background.
    EXPECT_EQ(doc->GetClassAt(1), SC_TAG);
    EXPECT_LT(doc->Syntax().ValidEnd(), 1 << 20);
    ASSERT_EQ(Pump(), 1);
    const long afterOne = doc->Syntax().ValidEnd();
    EXPECT_LT(afterOne, doc->GetLength());  // a slice takes a millisecond, not the whole text
    EXPECT_GT(PumpUntilIdle(), 1);
    EXPECT_EQ(doc->Syntax().ValidEnd(), doc->GetLength());
    EXPECT_EQ(Pump(), 0);
}

TEST_F(BackgroundSlices, AnEditThatRecoloursFarLeavesTheRestToTheBackground) {
    const std::string text = Page(4 << 20);
    doc->SetText(text);
    doc->GetClassAt(0);
    PumpUntilIdle();
    const long lastTagName = static_cast<long>(text.rfind('<')) + 2;  // past "</"
    ASSERT_EQ(doc->GetClassAt(lastTagName), SC_TAG);
    // An opened comment turns everything behind it into comment, far more than an edit
    // classifies at once.
    doc->InsertText(0, "<!--", 4, nullptr);
    EXPECT_LT(doc->Syntax().ValidEnd(), doc->GetLength());
    PumpUntilIdle();
    EXPECT_EQ(doc->Syntax().ValidEnd(), doc->GetLength());
    EXPECT_EQ(doc->GetClassAt(lastTagName + 4), SC_COMMENT);
}

}  // namespace
