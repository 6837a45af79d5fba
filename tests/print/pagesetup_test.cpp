// The page setup dialog as a user drives it, answered by the scripted dialog backend: the inch
// edits and their tidy-up, the enabling, the page picture's text area, OK and Cancel.
#include <gtest/gtest.h>

#include "platform/testing/testprinter.h"
#include "src/print/pagesetup.h"
#include "tests/platform/casefile.h"
#include "tests/view/viewfixture.h"

namespace {

class PageSetup : public ViewFixture {
protected:
    void SetUp() override { Open("<p>x</p>"); }
    CEditPageSetupDialog& Settings() { return ctrl->PageSetupObject(); }
    CTestPrintScope print;
};

TEST(InchEdit, TextAndThousandthsBothWays) {
    for (const CaseRow& row : ReadCaseRows("print/cases/texts.cases")) {
        if (row[0] != "inch") continue;
        EXPECT_EQ(CInchEdit::ValueFromText(row[1]), row.Long(2)) << row.where;
        EXPECT_EQ(CInchEdit::TextFromValue(CInchEdit::ValueFromText(row[1])), row[3]) << row.where;
    }
    for (unsigned ch : {'-', 'a', ',', ' '}) EXPECT_FALSE(CInchEdit::AcceptsChar(ch)) << char(ch);
    for (unsigned ch : {'0', '9', '.', '"', '\b'}) EXPECT_TRUE(CInchEdit::AcceptsChar(ch)) << ch;
}

TEST_F(PageSetup, CancelChangesNothingAndOkKeepsWhatWasTyped) {
    print.Backend().m_pageSetupScript = [](CTestDialogItems& items, PageSetupRecord&) {
        items.Type(IDC_HEADER_DISTANCE, "-0.5");  // the minus is refused
        items.Leave(IDC_HEADER_DISTANCE);
        EXPECT_EQ(items.GetItemText(IDC_HEADER_DISTANCE), "0.500\"");
        EXPECT_EQ(items.m_nBeeps, 1);
        return false;
    };
    EXPECT_FALSE(ctrl->PageSetup());
    EXPECT_EQ(Settings().m_nHeaderDistance, 500);

    print.Backend().m_pageSetupScript = [](CTestDialogItems& items, PageSetupRecord& record) {
        items.Type(IDC_FOOTER_DISTANCE, "0.75");
        items.Type(IDC_COLUMNS, "2");
        items.Click(IDC_LINE_NUMBERS);
        items.SetItemText(IDC_HEADER, "");
        record.rtMargin = RECT{500, 600, 700, 800};
        return true;
    };
    EXPECT_TRUE(ctrl->PageSetup());
    EXPECT_EQ(Settings().m_nFooterDistance, 750);
    EXPECT_EQ(Settings().m_nColumns, 2);
    EXPECT_TRUE(Settings().m_bLineNumbers);
    EXPECT_EQ(Settings().m_strHeader, "");
    EXPECT_EQ(Settings().m_psd.rtMargin, (RECT{500, 600, 700, 800}));
}

TEST_F(PageSetup, ColumnsOutOfRangeKeepTheDialogOpen) {
    print.Backend().m_pageSetupScript = [](CTestDialogItems& items, PageSetupRecord&) {
        items.Type(IDC_COLUMNS, "4");
        return true;
    };
    EXPECT_FALSE(ctrl->PageSetup());
    EXPECT_EQ(Settings().m_nColumns, 1);
}

TEST_F(PageSetup, EnablingFollowsTheColumnsAndTheLineNumbers) {
    print.Backend().m_pageSetupScript = [](CTestDialogItems& items, PageSetupRecord&) {
        EXPECT_FALSE(items.IsItemEnabled(IDC_COLUMN_GAP)) << "one column";
        EXPECT_FALSE(items.IsItemEnabled(IDC_LINE_NUMBER_WIDTH));
        items.Type(IDC_COLUMNS, "2");
        EXPECT_TRUE(items.IsItemEnabled(IDC_COLUMN_GAP));
        items.Type(IDC_COLUMNS, "99999999999999999999");
        EXPECT_FALSE(items.IsItemEnabled(IDC_COLUMN_GAP)) << "an overflow";
        items.Click(IDC_LINE_NUMBERS);
        EXPECT_TRUE(items.IsItemEnabled(IDC_LINE_NUMBER_WIDTH));
        const int before = items.m_nPreviewInvalidated;
        items.Click(IDC_COLOR_PRINTING);
        EXPECT_GT(items.m_nPreviewInvalidated, before);
        return false;
    };
    ctrl->PageSetup();
}

TEST_F(PageSetup, ThePreviewHasANumberStripOnlyWithLineNumbers) {
    auto digitRuns = [&](bool numbers, int columns) {
        int digits = 0, lines = 0;
        print.Backend().m_pageSetupScript = [&](CTestDialogItems& items, PageSetupRecord&) {
            if (numbers) items.Click(IDC_LINE_NUMBERS);
            items.Type(IDC_COLUMNS, std::to_string(columns));
            auto dc = CTestDC::Screen(400, 400);
            Settings().PaintTextArea(items, dc.get(), RECT{0, 0, 170, 220}, 8500);
            for (const DrawRecord& r : dc->Log()) {
                if (r.kind == DrawKind::Text && r.text.find_first_not_of("0123456789") == std::string::npos) ++digits;
                if (r.kind == DrawKind::Line) ++lines;
            }
            return false;
        };
        ctrl->PageSetup();
        return std::pair{digits, lines};
    };
    EXPECT_EQ(digitRuns(false, 1), (std::pair{0, 0}));
    const auto [one, oneLine] = digitRuns(true, 1);
    EXPECT_GT(one, 3);
    EXPECT_EQ(oneLine, 1);
    const auto [three, threeLines] = digitRuns(true, 3);
    EXPECT_EQ(three, 3 * one);
    EXPECT_EQ(threeLines, 3);
}

TEST_F(PageSetup, ThePrintersChoiceShowsInTheNextPageSetup) {
    print.Backend().m_strChooseDevice = "Office";
    ASSERT_TRUE(ctrl->PrintDocument(""));
    std::string device;
    print.Backend().m_pageSetupScript = [&](CTestDialogItems&, PageSetupRecord& record) {
        device = record.device.hDevNames ? record.device.hDevNames->strDevice : "";
        return false;
    };
    ctrl->PageSetup();
    EXPECT_EQ(device, "Office");
    ASSERT_TRUE(ctrl->PrintDocument(""));
    EXPECT_EQ(print.Backend().m_lastDialogChoice.hDevNames->strDevice, "Office");
}

}  // namespace
