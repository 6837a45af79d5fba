// A print job on the recording printer: pages, columns, header and footer, what a printout
// leaves out, the failures of the job, and that the screen's layout comes back on every path.
#include <gtest/gtest.h>

#include <cmath>
#include <set>

#include "platform/testing/testprinter.h"
#include "src/print/pagesetup.h"
#include "src/print/printprogress.h"
#include "tests/platform/casefile.h"
#include "tests/view/viewfixture.h"

namespace {

// Device pixels per logical unit on the recording printer: 600 pixels per inch over the screen's 96.
constexpr double kScale = 600.0 / 96.0;

class PrintJob : public ViewFixture {
protected:
    struct Layout {
        std::vector<long> lines;
        long lineHeight, charWidth, topLine;
        bool operator==(const Layout&) const = default;
    };
    Layout ScreenLayout() const {
        Layout l{{}, ctrl->m_nLineHeight, ctrl->m_nCharWidth, ctrl->GetTopLine()};
        for (long i = 0; i < ctrl->Lines().m_nCount; ++i) l.lines.push_back(ctrl->Lines().GetAt(i));
        return l;
    }
    // Paper just tall enough for `lines` lines a column between one-inch margins.
    void PaperForLines(long lines) {
        printer().m_paper.nHeight = 1200 + static_cast<LONG>(std::ceil((lines * ctrl->m_nLineHeight + 0.5) * kScale));
    }
    CTestPrintBackend& printer() { return print.Backend(); }
    const PrintJobRecord& Job() { return *printer().m_jobs.back(); }
    // The body text of each page, column by column: runs below the header and above the footer.
    std::vector<std::string> BodyRuns(int page) {
        std::vector<std::string> texts;
        for (const PrintedRun& run : Job().runs)
            if (run.nPage == page && run.ptDevice.y > 600 && run.ptDevice.y < printer().m_paper.nHeight - 600)
                texts.push_back(run.text);
        return texts;
    }
    std::set<LONG> ColumnLefts(int page) {
        std::set<LONG> lefts;
        for (const PrintedRun& run : Job().runs)
            if (run.nPage == page && run.ptDevice.y > 600 && run.ptDevice.y < printer().m_paper.nHeight - 600)
                lefts.insert(run.ptDevice.x);
        return lefts;
    }
    CEditPageSetupDialog& Settings() { return ctrl->PageSetupObject(); }

    CTestPrintScope print;
};

TEST_F(PrintJob, ColumnsFillLeftToRightAndPagesStopWhereTheTextEnds) {
    // Seven lines in three columns of two: two pages, the second with its first column only.
    Open("a1\nb2\nc3\nd4\ne5\nf6\ng7");
    Settings().m_nColumns = 3;
    Settings().m_strHeader = Settings().m_strFooter = "";
    PaperForLines(2);
    const Layout before = ScreenLayout();
    ASSERT_TRUE(ctrl->PrintDocument("doc"));
    EXPECT_EQ(Job().nPages, 2);
    EXPECT_TRUE(Job().bEnded);
    EXPECT_EQ(Job().strName, "doc");
    EXPECT_EQ(BodyRuns(1), (std::vector<std::string>{"a1", "b2", "c3", "d4", "e5", "f6"}));
    EXPECT_EQ(BodyRuns(2), (std::vector<std::string>{"g7"}));
    EXPECT_EQ(ColumnLefts(1).size(), 3u);
    EXPECT_EQ(*ColumnLefts(1).begin(), 600);  // the left margin, one inch
    EXPECT_EQ(ScreenLayout(), before);
}

TEST_F(PrintJob, EdgePagesOfTheLayout) {
    // An empty document is one page with header and footer.
    Open("");
    Settings().m_strHeader = "top";
    Settings().m_strFooter = "Page <PAGE>";
    ASSERT_TRUE(ctrl->PrintDocument(""));
    EXPECT_EQ(Job().nPages, 1);
    std::vector<std::string> texts;
    for (const PrintedRun& run : Job().runs) texts.push_back(run.text);
    EXPECT_EQ(texts, (std::vector<std::string>{"top", "Page 1"}));

    // A page lower than a line still holds one line a column.
    Open("one\ntwo\nthree");
    Settings().m_strHeader = Settings().m_strFooter = "";
    printer().m_paper.nHeight = 1200 + 10;
    ASSERT_TRUE(ctrl->PrintDocument(""));
    EXPECT_EQ(Job().nPages, 3);
}

TEST_F(PrintJob, HeaderAndFooterCarryTheirTokensOnEveryPage) {
    Open("x\ny\nz\n");
    Settings().m_strHeader = "Title\r\n<DOCPATHNAME>\r\n<DATETIME>";
    Settings().m_strFooter = "Page <page> <nothing>end";
    // Margins of 1.5 inches (900 pixels) with a header box of one inch above the text.
    Settings().m_psd.rtMargin = RECT{1000, 1500, 1000, 1500};
    Settings().m_nHeaderDistance = 1000;
    PaperForLines(1);
    printer().m_paper.nHeight += 600;
    ASSERT_TRUE(ctrl->PrintDocument("/tmp/file.html"));
    ASSERT_EQ(Job().nPages, 4);
    std::map<int, std::vector<std::string>> outside;  // header and footer lines by page
    for (const PrintedRun& run : Job().runs)
        if (run.ptDevice.y <= 900 || run.ptDevice.y >= printer().m_paper.nHeight - 900) outside[run.nPage].push_back(run.text);
    for (int page = 1; page <= 4; ++page) {
        ASSERT_EQ(outside[page].size(), 4u) << page;
        EXPECT_EQ(outside[page][0], "Title");
        EXPECT_EQ(outside[page][1], "/tmp/file.html");
        EXPECT_EQ(outside[page][2], outside[1][2]) << "one time on every page";
        EXPECT_EQ(outside[page][3], "Page " + std::to_string(page) + " end");
    }
    // Centred lines: the short title stands right of the long path.
    const auto& runs = Job().runs;
    EXPECT_GT(runs[0].ptDevice.x, runs[1].ptDevice.x);
}

TEST_F(PrintJob, TemplatesExpandTokensAndDropWhatIsNotOne) {
    std::tm now{};
    now.tm_year = 126;
    now.tm_mon = 10;
    now.tm_mday = 24;
    now.tm_hour = 3;
    now.tm_min = 4;
    now.tm_sec = 5;
    for (const CaseRow& row : ReadCaseRows("print/cases/texts.cases")) {
        if (row[0] != "template") continue;
        std::string out = "stale";
        CZentrelCtrl::ExpandTemplate(&out, row[1], "name.html", 7, now);
        EXPECT_EQ(out, row[2]) << row.where;
    }
}

TEST_F(PrintJob, APrintoutHasNoSelectionNoGutterPicturesAndItsChosenColours) {
    Open("<p>hello</p>\n<b>x</b>\n");
    ctrl->SetSelection(0, 8);
    ctrl->SetFormatBackColor(1, 0x00FFFF);
    ASSERT_TRUE(ctrl->PrintDocument(""));
    const COLORREF selection = ctrl->GetFormatStyle(13).crBack;
    std::set<COLORREF> colors;
    for (const PrintedRun& run : Job().runs) colors.insert(run.color), colors.insert(run.background);
    EXPECT_EQ(colors, (std::set<COLORREF>{0x000000, 0xFFFFFF})) << "no colours by default";
    EXPECT_FALSE(colors.count(selection) && selection != 0xFFFFFF && selection != 0);

    Settings().m_bColorPrinting = TRUE;
    ASSERT_TRUE(ctrl->PrintDocument(""));
    std::set<COLORREF> inColour;
    for (const PrintedRun& run : Job().runs) inColour.insert(run.color);
    EXPECT_GT(inColour.size(), 1u) << "syntax colours";
    for (const PrintedRun& run : Job().runs) EXPECT_NE(run.background, selection) << run.text;
}

TEST_F(PrintJob, ACollapsedBlockPrintsAsOneRowAndLineNumbersCountTextLines) {
    Open("l1\nl2\nl3\nl4\nl5\n");
    ASSERT_TRUE(ctrl->CollapseRange(3, 9));  // l2 .. l3 folded
    Settings().m_strHeader = Settings().m_strFooter = "";
    Settings().m_bLineNumbers = TRUE;
    ASSERT_TRUE(ctrl->PrintDocument(""));
    std::vector<std::string> texts;
    for (const PrintedRun& run : Job().runs) texts.push_back(run.text);
    EXPECT_EQ(texts, (std::vector<std::string>{"1", "l1", "2", "l2l3", "4", "l4", "5", "l5", "6"}));
}

TEST_F(PrintJob, FailuresEndTheJobAndTheScreenComesBack) {
    Open("line one\nline two\n");
    ctrl->SetOption(OPT_WORDWRAP, TRUE);
    const Layout before = ScreenLayout();

    printer().m_bPrintOK = false;  // the dialog cancelled
    EXPECT_FALSE(ctrl->PrintDocument(""));
    EXPECT_TRUE(printer().m_jobs.empty());
    printer().m_bPrintOK = true;

    printer().m_strChooseDevice = "missing";  // a printer that cannot be opened
    EXPECT_FALSE(ctrl->PrintDocument(""));
    EXPECT_EQ(printer().m_messages, std::vector<std::string>{"Error occured at printing document."});
    printer().m_strChooseDevice = "Test Printer";

    printer().m_bFailStartDoc = true;  // the spooler refuses: nothing printed, no word
    EXPECT_TRUE(ctrl->PrintDocument(""));
    EXPECT_EQ(Job().nPages, 0);
    printer().m_bFailStartDoc = false;

    printer().m_nFailAtPage = 1;  // the device fails in the middle
    EXPECT_FALSE(ctrl->PrintDocument(""));
    EXPECT_FALSE(Job().bEnded);
    printer().m_nFailAtPage = 0;

    for (int columns : {0, -2, 4}) {
        Settings().m_nColumns = columns;
        EXPECT_FALSE(ctrl->PrintDocument("")) << columns;
    }
    Settings().m_nColumns = 1;
    Settings().m_psd.rtMargin = RECT{5000, 1000, 5000, 1000};  // no room between the margins
    EXPECT_FALSE(ctrl->PrintDocument(""));
    EXPECT_EQ(printer().m_messages.back(), "The margins leave no room for text on the page.");
    Settings().m_psd.rtMargin = RECT{0, 0, -500, 0};  // zero and negative margins print
    EXPECT_TRUE(ctrl->PrintDocument(""));
    EXPECT_EQ(ScreenLayout(), before);

    Close();
    NewControl(200, 100);  // no document: nothing to print, no dialog
    EXPECT_FALSE(ctrl->PrintDocument(""));
}

TEST_F(PrintJob, ALongJobNeverPaintsTheScreenInTheMiddle) {
    std::string text;
    for (int i = 0; i < 100000; ++i) text += "<td>row " + std::to_string(i) + "</td>\n";
    Open(text);
    PaintNow();
    Settings().m_nColumns = 2;
    std::vector<size_t> drawnAtPage;
    printer().m_onProgress = [&](int) { drawnAtPage.push_back(Window().Drawn().size()); };
    Window().ClearDrawn();
    ASSERT_TRUE(ctrl->PrintDocument(""));
    ASSERT_GT(drawnAtPage.size(), 100u);
    EXPECT_EQ(drawnAtPage.front(), 0u);
    EXPECT_EQ(drawnAtPage.back(), 0u);
    EXPECT_EQ(printer().m_progressTexts.back(), "Page " + std::to_string(drawnAtPage.size()) + " of " +
                                                    std::to_string(drawnAtPage.size()) + " page(s)");
}

TEST_F(PrintJob, TheProgressAnimationMovesOnWithTheClockWhilePagesPrint) {
    std::string text;
    for (int i = 0; i < 100; ++i) text += "line " + std::to_string(i) + "\n";
    Open(text);
    Settings().m_strHeader = Settings().m_strFooter = "";
    PaperForLines(2);
    const std::vector<std::string>& pictures = printer().m_animationPictures;

    // The clock stands still: every page shows the same frame.
    ASSERT_TRUE(ctrl->PrintDocument(""));
    ASSERT_EQ(pictures.size(), 51u) << "one picture a page";
    EXPECT_EQ(std::set<std::string>(pictures.begin(), pictures.end()).size(), 1u);

    // A frame's time passes with each page: each shows the next frame, and a flight later the first again.
    printer().m_animationPictures.clear();
    printer().m_onProgress = [&](int) { platform->AdvanceClock(CPrintAnimation::kFrameMs); };
    ASSERT_TRUE(ctrl->PrintDocument(""));
    constexpr size_t kFrames = CPrintAnimation::kFrames;
    ASSERT_GT(pictures.size(), kFrames);
    EXPECT_EQ(std::set<std::string>(pictures.begin(), pictures.end()).size(), kFrames);
    for (size_t i = 1; i < pictures.size(); ++i) EXPECT_NE(pictures[i], pictures[i - 1]) << i;
    EXPECT_EQ(pictures[kFrames], pictures[0]);
}

}  // namespace
