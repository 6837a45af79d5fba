// Positions to points and back, with the test fonts: plain text is 9 pixels a byte, 5 for
// narrow bytes, 13 for wide ones; tab stops every 45 pixels; lines 19 pixels high; a 60-pixel
// gutter in front of the text.
#include "tests/view/viewfixture.h"

namespace {

class Mapping : public ViewFixture {
protected:
    void SetUp() override { Open("abc\r\ndef\n\tb\n\n"); }  // lines: 5, 4, 3, 1, 0 bytes
    long At(long x, long y) { return ctrl->FindPositionFromCoordinate(x, y); }
    POINT Point(long pos) {
        POINT pt;
        ctrl->DocPointFromPosition(pos, &pt);
        return pt;
    }
};

TEST_F(Mapping, AClickGoesInFrontOfOrBehindTheCharacterByWhichHalfItHits) {
    // 'a' covers 0..8; its middle, 5, still counts as the left half.
    EXPECT_EQ(At(0, 0), 0);
    EXPECT_EQ(At(5, 0), 0);
    EXPECT_EQ(At(6, 0), 1);
    EXPECT_EQ(At(9, 0), 1);
    EXPECT_EQ(At(14, 0), 1);
    EXPECT_EQ(At(15, 0), 2);
    // A tab is 45 pixels: 23 of them on the left.
    EXPECT_EQ(At(23, 2 * 19), 9);
    EXPECT_EQ(At(24, 2 * 19), 10);
}

TEST_F(Mapping, FarRightStaysInFrontOfTheLineBreakAndAnEmptyLastLineGivesTheEnd) {
    EXPECT_EQ(At(1000, 0), 3);         // in front of CR LF
    EXPECT_EQ(At(1000, 19), 8);        // in front of LF
    EXPECT_EQ(At(1000, 3 * 19), 12);   // a line of just LF
    for (long x : {-5L, 0L, 40L, 900L}) EXPECT_EQ(At(x, 4 * 19 + 3), 13) << x;
}

TEST_F(Mapping, PointsAboveAndBelowTheTextAndInTheGutter) {
    EXPECT_EQ(At(6, -5), 1);     // less than a line above: line 0
    EXPECT_EQ(At(6, -19), 0);    // a whole line above: the start
    EXPECT_EQ(At(6, 5000), 13);  // below the last line: the end
    // A client point in the gutter is left of the text: the line's start.
    EXPECT_EQ(ctrl->FindPositionFromPoint(10, 19 + 4), 5);
    EXPECT_EQ(ctrl->FindPositionFromPoint(60 + 6, 19 + 4), 6);
}

TEST_F(Mapping, PositionsBecomePointsWhereTheCaretShowsThem) {
    EXPECT_EQ(Point(0), (POINT{0, 0}));
    EXPECT_EQ(Point(2), (POINT{18, 0}));
    // Behind the CR and between CR and LF the caret stands at the CR.
    EXPECT_EQ(Point(3), (POINT{27, 0}));
    EXPECT_EQ(Point(4), (POINT{27, 0}));
    EXPECT_EQ(Point(10), (POINT{45, 2 * 19}));
    // The end of a text that ends in LF is at the left of the empty last line.
    EXPECT_EQ(Point(13), (POINT{0, 4 * 19}));
    doc->SetText("abc");
    EXPECT_EQ(Point(3), (POINT{27, 0}));
    // Client points add the gutter and the scroll position.
    POINT client;
    ctrl->ClientPointFromPosition(1, &client);
    EXPECT_EQ(client, (POINT{69, 0}));
}

TEST_F(Mapping, ColumnsCountTabStopsOfTabSizeColumns) {
    doc->SetText("ab\tc\n\td");
    long column = -1, row = -1;
    ctrl->FindCoordinateFromPosition(3, &column, &row);
    EXPECT_EQ(column, 5);
    EXPECT_EQ(row, 0);
    ctrl->FindCoordinateFromPosition(4, &column, &row);
    EXPECT_EQ(column, 6);
    ctrl->FindCoordinateFromPosition(6, &column, &row);  // a tab on a stop runs a whole stop
    EXPECT_EQ(column, 5);
    EXPECT_EQ(row, 1);
}

// The automation face of these calls, its errors and the control without a document are in
// document.walk; here what a refusal leaves in the out values.
TEST_F(Mapping, PositionsOutsideTheTextAreRefusedAndLeaveTheOutValues) {
    long x = 77, y = 77;
    EXPECT_FALSE(ctrl->FindPointFromPosition(14, &x, &y));
    EXPECT_FALSE(ctrl->FindPointFromPosition(-1, &x, &y));
    EXPECT_EQ(x, 77);
    EXPECT_TRUE(ctrl->FindPointFromPosition(13, &x, &y));
    EXPECT_EQ(x, 60);
    EXPECT_EQ(y, 4 * 19);
}

TEST_F(Mapping, AClickFarRightOnALongLineWalksItWhole) {
    doc->SetText(std::string(5000, 'a') + "\nb");
    EXPECT_EQ(At(5000 * 9 + 50, 5), 5000);
    EXPECT_EQ(At(4999 * 9 + 4, 5), 4999);
}

}  // namespace
