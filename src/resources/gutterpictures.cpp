// The pictures are drawn here once, on first use, from a few shapes each.
#include "src/resources/gutterpictures.h"

#include <array>

namespace {

constexpr COLORREF kBlack = 0x000000, kWhite = 0xFFFFFF;
constexpr COLORREF kNumberedFlag = 0x0000C0;  // red: the flags of the ten numbered bookmarks
constexpr COLORREF kNamedFlag = 0xC06000;     // blue: the flag of a named bookmark
constexpr int kFlagCount = 10;

PixelPicture Blank(int cx, int cy, COLORREF ground) {
    return PixelPicture{cx, cy, std::vector<COLORREF>(static_cast<size_t>(cx) * cy, ground)};
}

void Put(PixelPicture& p, int x, int y, COLORREF color) {
    if (x >= 0 && y >= 0 && x < p.cx && y < p.cy) p.pixels[static_cast<size_t>(y) * p.cx + x] = color;
}

void FillRect(PixelPicture& p, int left, int top, int right, int bottom, COLORREF color) {
    for (int y = top; y < bottom; ++y)
        for (int x = left; x < right; ++x) Put(p, x, y, color);
}

// A tile of soft blobs on a flat ground. The blobs wrap around the top and bottom edges, so
// that tiles stacked one under the other show no seam.
PixelPicture Tile() {
    struct Blob {
        int x, y, r;
    };
    constexpr std::array<Blob, 9> kBlobs{{{12, 10, 7}, {58, 24, 11}, {30, 52, 6}, {80, 66, 9}, {14, 92, 10},
                                          {52, 104, 5}, {76, 128, 8}, {34, 140, 7}, {88, 6, 4}}};
    PixelPicture p = Blank(kGutterTileWidth, kGutterTileHeight, kTileGround);
    for (const Blob& b : kBlobs)
        for (int dy = -b.r; dy <= b.r; ++dy)
            for (int dx = -b.r; dx <= b.r; ++dx)
                if (dx * dx + dy * dy <= b.r * b.r)
                    Put(p, b.x + dx, (b.y + dy + kGutterTileHeight) % kGutterTileHeight, kTilePattern);
    return p;
}

// A black frame around a white field, with a bar of 5 pixels across the middle, and with
// `cross` one up and down as well.
PixelPicture Box(bool cross) {
    constexpr int n = kGutterBoxSize, mid = n / 2;
    PixelPicture p = Blank(n, n, kBlack);
    FillRect(p, 1, 1, n - 1, n - 1, kWhite);
    FillRect(p, mid - 2, mid, mid + 3, mid + 1, kBlack);
    if (cross) FillRect(p, mid, mid - 2, mid + 1, mid + 3, kBlack);
    return p;
}

// The digits as 3 by 5 dots, row by row.
constexpr std::array<const char*, kFlagCount> kDigits{
    "###"
    "# #"
    "# #"
    "# #"
    "###",
    " # "
    "## "
    " # "
    " # "
    "###",
    "###"
    "  #"
    "###"
    "#  "
    "###",
    "###"
    "  #"
    " ##"
    "  #"
    "###",
    "# #"
    "# #"
    "###"
    "  #"
    "  #",
    "###"
    "#  "
    "###"
    "  #"
    "###",
    "###"
    "#  "
    "###"
    "# #"
    "###",
    "###"
    "  #"
    " # "
    " # "
    " # ",
    "###"
    "# #"
    "###"
    "# #"
    "###",
    "###"
    "# #"
    "###"
    "  #"
    "###"};

// A black pole at the left with a pennant on its upper part: red with a white digit for a
// numbered bookmark (digit 0 to 9), plain blue for a named one (digit -1). The rest is white.
PixelPicture Flag(int digit) {
    PixelPicture p = Blank(kFlagWidth, kFlagHeight, kWhite);
    FillRect(p, 0, 0, 2, kFlagHeight, kBlack);
    FillRect(p, 2, 0, kFlagWidth, 9, kBlack);
    FillRect(p, 2, 1, kFlagWidth - 1, 8, digit < 0 ? kNamedFlag : kNumberedFlag);
    if (digit < 0) return p;
    for (int i = 0; i < 15; ++i)
        if (kDigits[static_cast<size_t>(digit)][i] == '#') Put(p, 4 + i % 3, 2 + i / 3, kWhite);
    return p;
}

struct Pictures {
    PixelPicture tile = Tile();
    PixelPicture fold = Box(false);
    PixelPicture mark = Box(true);
    PixelPicture named = Flag(-1);
    std::array<PixelPicture, kFlagCount> numbered = [] {
        std::array<PixelPicture, kFlagCount> flags;
        for (int d = 0; d < kFlagCount; ++d) flags[static_cast<size_t>(d)] = Flag(d);
        return flags;
    }();
};

}  // namespace

const PixelPicture* FindGutterPicture(UINT id) {
    static const Pictures pictures;
    if (id >= IDB_FLAG_DIGIT0 && id < IDB_FLAG_DIGIT0 + kFlagCount) return &pictures.numbered[id - IDB_FLAG_DIGIT0];
    switch (id) {
        case IDB_GUTTER: return &pictures.tile;
        case IDB_FOLD: return &pictures.fold;
        case IDB_MARK: return &pictures.mark;
        case IDB_FLAG_NAMED: return &pictures.named;
        default: return nullptr;
    }
}
