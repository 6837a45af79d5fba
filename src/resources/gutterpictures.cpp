// The pictures are drawn here once, on first use, from a few shapes each, at their normal size
// and at double resolution.
#include "src/resources/gutterpictures.h"

#include <array>

namespace {

constexpr COLORREF kBlack = 0x000000, kWhite = 0xFFFFFF;
constexpr COLORREF kNumberedFlag = 0x0000C0;  // red: the flags of the ten numbered bookmarks
constexpr COLORREF kNamedFlag = 0xC06000;     // blue: the flag of a named bookmark
constexpr int kFlagCount = 10;

// A picture being drawn at `scale` pixels per unit: shapes are given in the units of the
// picture at its normal size, so that the same drawing makes it at double resolution too.
class Canvas {
public:
    Canvas(int cx, int cy, int scale, COLORREF ground)
        : m_scale(scale), m_picture{cx * scale, cy * scale, std::vector<COLORREF>(static_cast<size_t>(cx) * cy * scale * scale, ground), {}} {}

    void FillRect(int left, int top, int right, int bottom, COLORREF color) {
        for (int y = top * m_scale; y < bottom * m_scale; ++y)
            for (int x = left * m_scale; x < right * m_scale; ++x) Put(x, y, color);
    }
    void Dot(int x, int y, COLORREF color) { FillRect(x, y, x + 1, y + 1, color); }
    // A disc around the centre of unit (cx, cy), wrapped around the top and bottom edges; the
    // finer the scale, the rounder its rim.
    void WrappedDisc(int cx, int cy, int r, COLORREF color) {
        const int height = m_picture.cy;
        for (int y = (cy - r) * m_scale; y < (cy + r + 1) * m_scale; ++y)
            for (int x = (cx - r) * m_scale; x < (cx + r + 1) * m_scale; ++x) {
                const double dx = (x + 0.5) / m_scale - 0.5 - cx, dy = (y + 0.5) / m_scale - 0.5 - cy;
                if (dx * dx + dy * dy <= r * r) Put(x, (y + height) % height, color);
            }
    }
    PixelPicture Take() { return std::move(m_picture); }

private:
    void Put(int x, int y, COLORREF color) {
        if (x >= 0 && y >= 0 && x < m_picture.cx && y < m_picture.cy) m_picture.pixels[static_cast<size_t>(y) * m_picture.cx + x] = color;
    }

    int m_scale;
    PixelPicture m_picture;
};

// A tile of soft blobs on a flat ground. The blobs wrap around the top and bottom edges, so
// that tiles stacked one under the other show no seam.
PixelPicture Tile(int scale) {
    struct Blob {
        int x, y, r;
    };
    constexpr std::array<Blob, 9> kBlobs{{{12, 10, 7}, {58, 24, 11}, {30, 52, 6}, {80, 66, 9}, {14, 92, 10},
                                          {52, 104, 5}, {76, 128, 8}, {34, 140, 7}, {88, 6, 4}}};
    Canvas c(kGutterTileWidth, kGutterTileHeight, scale, kTileGround);
    for (const Blob& b : kBlobs) c.WrappedDisc(b.x, b.y, b.r, kTilePattern);
    return c.Take();
}

// A black frame around a white field, with a bar of 5 pixels across the middle, and with
// `cross` one up and down as well.
PixelPicture Box(bool cross, int scale) {
    constexpr int n = kGutterBoxSize, mid = n / 2;
    Canvas c(n, n, scale, kBlack);
    c.FillRect(1, 1, n - 1, n - 1, kWhite);
    c.FillRect(mid - 2, mid, mid + 3, mid + 1, kBlack);
    if (cross) c.FillRect(mid, mid - 2, mid + 1, mid + 3, kBlack);
    return c.Take();
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
PixelPicture Flag(int digit, int scale) {
    Canvas c(kFlagWidth, kFlagHeight, scale, kWhite);
    c.FillRect(0, 0, 2, kFlagHeight, kBlack);
    c.FillRect(2, 0, kFlagWidth, 9, kBlack);
    c.FillRect(2, 1, kFlagWidth - 1, 8, digit < 0 ? kNamedFlag : kNumberedFlag);
    if (digit >= 0)
        for (int i = 0; i < 15; ++i)
            if (kDigits[static_cast<size_t>(digit)][i] == '#') c.Dot(4 + i % 3, 2 + i / 3, kWhite);
    return c.Take();
}

// A picture at its normal size with its double-resolution variant.
template <class Draw>
PixelPicture WithDoubled(Draw draw) {
    PixelPicture picture = draw(1);
    picture.doubled = draw(2).pixels;
    return picture;
}

struct Pictures {
    PixelPicture tile = WithDoubled([](int s) { return Tile(s); });
    PixelPicture fold = WithDoubled([](int s) { return Box(false, s); });
    PixelPicture mark = WithDoubled([](int s) { return Box(true, s); });
    PixelPicture named = WithDoubled([](int s) { return Flag(-1, s); });
    std::array<PixelPicture, kFlagCount> numbered = [] {
        std::array<PixelPicture, kFlagCount> flags;
        for (int d = 0; d < kFlagCount; ++d) flags[static_cast<size_t>(d)] = WithDoubled([d](int s) { return Flag(d, s); });
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
