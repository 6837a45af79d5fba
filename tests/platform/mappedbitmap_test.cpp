// Bitmaps made from pixels in memory with some colours replaced, on the test backend.
#include "platform/gdi/mappedbitmap.h"

#include <gtest/gtest.h>

#include "platform/testing/testdc.h"

namespace {

TEST(MappedBitmap, ListedColoursAreReplacedAndTheRestKept) {
    const PixelPicture picture{3, 2, {0xFFFFFF, 0xC0C0C0, 0x0000FF, 0xC0C0C0, 0x000000, 0xFFFFFF}, {}};
    const COLORMAP map[] = {{0xFFFFFF, 0x102030}, {0xC0C0C0, 0x405060}};
    auto dc = CTestDC::Screen(100, 100);
    CBitmap bitmap;
    ASSERT_TRUE(CreateMappedBitmap(*dc, picture, map, 2, &bitmap));
    ASSERT_EQ(bitmap.GetSize().cx, 3);
    ASSERT_EQ(bitmap.GetSize().cy, 2);
    const auto* pixels = dynamic_cast<CTestSurface*>(bitmap.Impl());
    ASSERT_NE(pixels, nullptr);
    const COLORREF want[] = {0x102030, 0x405060, 0x0000FF, 0x405060, 0x000000, 0x102030};
    for (int i = 0; i < 6; ++i) EXPECT_EQ(pixels->Pixel(i % 3, i / 3), want[i]) << i;
    // The original stays as it was, to be mapped again with other colours.
    EXPECT_EQ(picture.pixels[0], 0xFFFFFFu);
}

TEST(MappedBitmap, AMalformedPictureMakesNoBitmap) {
    auto dc = CTestDC::Screen(100, 100);
    CBitmap bitmap;
    EXPECT_FALSE(CreateMappedBitmap(*dc, PixelPicture{2, 2, {0, 0, 0}, {}}, nullptr, 0, &bitmap));
    EXPECT_FALSE(CreateMappedBitmap(*dc, PixelPicture{0, 0, {}, {}}, nullptr, 0, &bitmap));
    EXPECT_FALSE(bitmap.IsValid());
}

}  // namespace
