// Positions to points on a line far longer than the window; the short cases are in
// tests/edit/cases/mapping.cases.
#include "tests/view/viewfixture.h"

namespace {

class Mapping : public ViewFixture {};

TEST_F(Mapping, AClickFarRightOnALongLineWalksItWhole) {
    Open(std::string(5000, 'a') + "\nb");
    EXPECT_EQ(ctrl->FindPositionFromCoordinate(5000 * 9 + 50, 5), 5000);
    EXPECT_EQ(ctrl->FindPositionFromCoordinate(4999 * 9 + 4, 5), 4999);
}

}  // namespace
