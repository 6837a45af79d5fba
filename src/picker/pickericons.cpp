// The picker's icons as shapes on a 12 by 12 grid, rasterised at the scale asked for.
#include "src/picker/pickericons.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <map>
#include <string>
#include <vector>

#include "platform/gdi/mappedbitmap.h"
#include "platform/window/olecontrol.h"

namespace {

constexpr COLORREF kInk = 0x000000, kBlue = 0xC06000, kRed = 0x0000C0, kGreen = 0x008000, kGrey = 0x808080,
                   kYellow = 0x00C0E0, kWhite = 0xFFFFFF;

// r: filled rectangle, f: frame, l: line, e: filled ellipse, o: ellipse outline. Coordinates on
// the 12-unit grid, right and bottom exclusive for r, f, e and o.
struct Shape {
    char kind;
    int x0, y0, x1, y1;
    COLORREF color;
};
using Icon = std::vector<Shape>;

const std::map<UINT, Icon>& Icons() {
    static const std::map<UINT, Icon> icons = [] {
        std::map<UINT, Icon> m;
        const auto lines = [](std::initializer_list<std::pair<int, int>> rows) {
            Icon icon;
            for (auto [left, right] : rows) icon.push_back({'r', left, 0, right, 0, kInk});
            int y = 1;
            for (Shape& s : icon) {
                s.y0 = y;
                s.y1 = y + 1;
                y += 2;
            }
            return icon;
        };
        m[246] = lines({{1, 9}, {1, 6}, {1, 10}, {1, 7}, {1, 8}});     // left
        m[247] = lines({{3, 11}, {6, 11}, {2, 11}, {5, 11}, {4, 11}});  // right
        m[354] = lines({{2, 10}, {4, 8}, {1, 11}, {3, 9}, {2, 10}});    // centre
        m[301] = lines({{1, 11}, {1, 11}, {1, 11}, {1, 11}, {1, 8}});   // justify
        m[248] = {{'r', 1, 1, 11, 2, kInk}, {'f', 3, 3, 9, 9, kBlue}};   // top
        m[287] = {{'r', 1, 10, 11, 11, kInk}, {'f', 3, 3, 9, 9, kBlue}};  // bottom, baseline
        m[317] = {{'r', 1, 5, 11, 6, kInk}, {'f', 3, 2, 9, 9, kBlue}};    // middle
        m[281] = {{'l', 1, 6, 4, 9, kGreen}, {'l', 4, 9, 10, 2, kGreen}, {'l', 1, 7, 4, 10, kGreen}};  // yes
        m[352] = m[281];                                                                               // true
        m[282] = {{'r', 5, 1, 7, 11, kInk}, {'l', 3, 3, 5, 1, kInk}, {'r', 3, 10, 9, 11, kInk}};  // 1
        m[319] = {{'l', 2, 2, 9, 9, kRed}, {'l', 9, 2, 2, 9, kRed}, {'l', 3, 2, 10, 9, kRed}, {'l', 10, 2, 3, 9, kRed}};
        m[293] = m[319];                                                        // false
        m[345] = {{'o', 2, 2, 10, 10, kGrey}, {'l', 3, 8, 8, 3, kGrey}};      // none
        m[321] = m[345];                                                        // off
        m[353] = {{'o', 3, 1, 9, 11, kInk}};                                   // 0
        m[283] = {{'f', 1, 1, 11, 11, kInk}, {'r', 3, 3, 9, 9, kBlue}};       // all
        m[284] = {{'f', 1, 3, 11, 9, kInk}, {'l', 3, 6, 8, 6, kBlue}, {'l', 6, 4, 8, 6, kBlue}, {'l', 6, 8, 8, 6, kBlue}};
        m[289] = {{'o', 1, 1, 11, 11, kBlue}};                                 // circle
        m[309] = {{'e', 2, 2, 10, 10, kInk}};                                  // disc
        m[308] = {{'r', 2, 2, 10, 10, kInk}};                                  // square
        m[326] = {{'f', 1, 3, 11, 9, kBlue}};                                  // rectangle
        m[323] = {{'l', 1, 10, 6, 1, kBlue}, {'l', 6, 1, 11, 7, kBlue}, {'l', 11, 7, 1, 10, kBlue}};  // polygon
        m[288] = {{'f', 1, 1, 11, 11, kInk}, {'l', 3, 6, 5, 8, kInk}, {'l', 5, 8, 9, 3, kInk}};      // checkbox
        m[325] = {{'o', 1, 1, 11, 11, kInk}, {'e', 4, 4, 8, 8, kInk}};                              // radio
        m[350] = {{'f', 1, 3, 11, 9, kInk}, {'r', 3, 5, 4, 8, kInk}};                                // text box
        m[322] = {{'f', 1, 3, 11, 9, kInk}, {'r', 3, 5, 4, 7, kInk}, {'r', 5, 5, 6, 7, kInk}, {'r', 7, 5, 8, 7, kInk}};
        m[335] = {{'r', 1, 3, 11, 9, kGrey}, {'f', 1, 3, 11, 9, kInk}, {'r', 4, 5, 8, 7, kGreen}};  // submit
        m[329] = {{'r', 1, 3, 11, 9, kGrey}, {'f', 1, 3, 11, 9, kInk}, {'r', 4, 5, 8, 7, kRed}};    // reset
        m[299] = {{'f', 1, 3, 11, 9, kGrey}};                                                       // hidden
        m[300] = {{'f', 1, 1, 11, 11, kInk}, {'e', 2, 2, 6, 6, kYellow}, {'l', 1, 10, 5, 6, kGreen}, {'l', 5, 6, 10, 10, kGreen}};
        m[294] = {{'f', 2, 1, 10, 11, kInk}, {'l', 7, 1, 10, 4, kInk}};                             // file
        m[295] = {{'f', 1, 3, 11, 10, kYellow}, {'r', 1, 2, 5, 3, kYellow}};                        // open file
        m[297] = {{'l', 6, 1, 6, 10, kBlue}, {'l', 3, 7, 6, 10, kBlue}, {'l', 9, 7, 6, 10, kBlue}};  // get
        m[324] = {{'l', 6, 2, 6, 11, kRed}, {'l', 3, 5, 6, 2, kRed}, {'l', 9, 5, 6, 2, kRed}};       // post
        m[310] = {{'l', 1, 6, 10, 6, kInk}, {'l', 7, 3, 10, 6, kInk}, {'l', 7, 9, 10, 6, kInk}};     // ltr
        m[331] = {{'l', 1, 6, 10, 6, kInk}, {'l', 1, 6, 4, 3, kInk}, {'l', 1, 6, 4, 9, kInk}};       // rtl
        m[291] = {{'e', 3, 3, 9, 9, kGrey}};                                                        // default
        // Frames and rules of tables: which sides of a box show.
        m[336] = {{'r', 1, 1, 11, 2, kInk}, {'f', 1, 1, 11, 11, kGrey}};
        m[338] = {{'r', 1, 10, 11, 11, kInk}, {'f', 1, 1, 11, 11, kGrey}};
        m[339] = {{'f', 1, 1, 11, 11, kInk}, {'f', 2, 2, 10, 10, kInk}};
        m[340] = {{'f', 1, 1, 11, 11, kInk}};
        m[341] = {{'f', 1, 1, 11, 11, kGrey}, {'r', 4, 1, 5, 11, kInk}, {'r', 7, 1, 8, 11, kInk}};
        m[347] = {{'f', 1, 1, 11, 11, kGrey}, {'r', 1, 4, 11, 5, kInk}, {'r', 1, 7, 11, 8, kInk}};
        m[342] = {{'f', 1, 1, 11, 11, kGrey}, {'r', 1, 5, 11, 6, kInk}, {'r', 6, 1, 7, 11, kInk}};
        m[343] = {{'r', 1, 1, 11, 2, kInk}, {'r', 1, 10, 11, 11, kInk}};
        m[349] = {{'r', 1, 1, 2, 11, kInk}, {'r', 10, 1, 11, 11, kInk}};
        m[344] = {{'r', 1, 1, 2, 11, kInk}, {'f', 1, 1, 11, 11, kGrey}};
        m[346] = {{'r', 10, 1, 11, 11, kInk}, {'f', 1, 1, 11, 11, kGrey}};
        m[348] = {{'f', 1, 1, 11, 11, kGrey}};
        m[333] = {{'r', 4, 4, 8, 8, kInk}};                                      // small
        m[316] = {{'r', 3, 3, 9, 9, kInk}};                                      // medium
        // Data types of attributes.
        m[255] = {{'l', 2, 2, 2, 10, kInk}, {'l', 5, 2, 5, 10, kInk}, {'l', 1, 4, 7, 4, kInk}, {'l', 1, 8, 7, 8, kInk}};  // integer
        m[256] = {{'r', 1, 3, 3, 5, kInk}, {'r', 1, 5, 2, 7, kInk}, {'r', 5, 3, 7, 5, kInk}, {'r', 5, 5, 6, 7, kInk}};    // string
        m[257] = {{'e', 1, 1, 5, 5, kInk}, {'e', 7, 7, 11, 11, kInk}, {'l', 9, 1, 2, 10, kInk}};                        // proportional
        m[254] = {{'r', 1, 1, 4, 4, kInk}, {'r', 8, 1, 11, 4, kInk}, {'r', 1, 8, 4, 11, kInk}, {'r', 8, 8, 11, 11, kInk}};  // set
        m[258] = {{'o', 1, 1, 11, 11, kBlue}, {'l', 1, 6, 10, 6, kBlue}, {'l', 6, 1, 6, 10, kBlue}};                    // URL
        m[277] = {{'r', 1, 1, 6, 6, kRed}, {'r', 6, 1, 11, 6, kGreen}, {'r', 1, 6, 6, 11, kBlue}, {'r', 6, 6, 11, 11, kYellow}};
        m[264] = {{'l', 1, 6, 10, 6, kInk}, {'l', 1, 3, 1, 9, kInk}, {'l', 10, 3, 10, 9, kInk}};                     // pixels
        m[272] = {{'r', 1, 7, 3, 10, kInk}, {'r', 4, 5, 6, 10, kInk}, {'r', 7, 2, 10, 10, kInk}};                     // size
        m[267] = {{'f', 1, 3, 11, 10, kYellow}, {'r', 1, 2, 5, 3, kYellow}, {'f', 1, 3, 11, 10, kInk}};               // directory
        m[253] = {{'f', 2, 1, 10, 11, kInk}, {'r', 4, 4, 8, 5, kBlue}, {'r', 4, 6, 8, 7, kBlue}};                    // HTML file
        m[252] = m[300];                                                                                            // picture
        m[268] = {{'r', 1, 4, 4, 8, kInk}, {'l', 4, 4, 7, 1, kInk}, {'l', 4, 8, 7, 11, kInk}, {'l', 7, 1, 7, 11, kInk}};  // sound
        m[270] = {{'f', 1, 2, 11, 10, kInk}, {'l', 4, 4, 4, 8, kRed}, {'l', 4, 4, 8, 6, kRed}, {'l', 4, 8, 8, 6, kRed}};  // animation
        m[259] = {{'e', 2, 5, 9, 11, kInk}, {'l', 5, 1, 5, 4, kGrey}, {'l', 7, 2, 7, 4, kGrey}};                       // java
        m[262] = {{'l', 3, 1, 1, 6, kInk}, {'l', 1, 6, 3, 11, kInk}, {'l', 8, 1, 10, 6, kInk}, {'l', 10, 6, 8, 11, kInk}};  // script
        m[278] = {{'l', 2, 10, 6, 1, kInk}, {'l', 6, 1, 10, 10, kInk}, {'l', 4, 7, 8, 7, kInk}};                      // font
        m[275] = {{'f', 1, 1, 11, 11, kInk}, {'r', 3, 3, 5, 5, kInk}, {'r', 7, 7, 9, 9, kInk}};                       // GUID
        m[260] = {{'e', 4, 4, 8, 8, kGrey}};                                                                       // no value
        m[261] = {{'r', 2, 2, 10, 3, kInk}, {'r', 2, 5, 10, 6, kInk}, {'r', 2, 8, 10, 9, kInk}, {'r', 1, 2, 2, 3, kBlue}};  // enumeration
        m[250] = {{'e', 4, 4, 8, 8, kBlue}};                                                                       // default value
        m[355] = {{'l', 4, 2, 1, 6, kBlue}, {'l', 1, 6, 4, 10, kBlue}, {'l', 8, 2, 11, 6, kBlue}, {'l', 11, 6, 8, 10, kBlue}};  // tag
        m[357] = {{'e', 1, 5, 3, 7, kInk}, {'e', 5, 5, 7, 7, kInk}, {'e', 9, 5, 11, 7, kInk}};                        // more
        return m;
    }();
    return icons;
}

void Put(PixelPicture& p, int x, int y, COLORREF c) {
    if (x >= 0 && y >= 0 && x < p.cx && y < p.cy) p.pixels[static_cast<size_t>(y) * p.cx + x] = c;
}

void Raster(PixelPicture& p, const Shape& s, int k) {
    const int x0 = s.x0 * k, y0 = s.y0 * k, x1 = s.x1 * k, y1 = s.y1 * k;
    switch (s.kind) {
        case 'r':
            for (int y = y0; y < y1; ++y)
                for (int x = x0; x < x1; ++x) Put(p, x, y, s.color);
            break;
        case 'f':
            for (int t = 0; t < k; ++t) {
                for (int x = x0; x < x1; ++x) Put(p, x, y0 + t, s.color), Put(p, x, y1 - 1 - t, s.color);
                for (int y = y0; y < y1; ++y) Put(p, x0 + t, y, s.color), Put(p, x1 - 1 - t, y, s.color);
            }
            break;
        case 'e':
        case 'o': {
            const double cx = (x0 + x1 - 1) / 2.0, cy = (y0 + y1 - 1) / 2.0, rx = (x1 - x0) / 2.0, ry = (y1 - y0) / 2.0;
            for (int y = y0; y < y1; ++y)
                for (int x = x0; x < x1; ++x) {
                    const double d = (x - cx) * (x - cx) / (rx * rx) + (y - cy) * (y - cy) / (ry * ry);
                    const double inner = (rx - k) > 0 ? ((x - cx) * (x - cx) / ((rx - k) * (rx - k)) +
                                                         (y - cy) * (y - cy) / ((ry - k) * (ry - k)))
                                                      : 2;
                    if (d <= 1.0 && (s.kind == 'e' || inner > 1.0)) Put(p, x, y, s.color);
                }
            break;
        }
        default: {  // a line, k pixels thick
            const int steps = std::max(std::abs(x1 - x0), std::abs(y1 - y0));
            for (int i = 0; i <= steps; ++i) {
                const int x = steps ? x0 + (x1 - x0) * i / steps : x0, y = steps ? y0 + (y1 - y0) * i / steps : y0;
                for (int t = 0; t < k * k; ++t) Put(p, x + t % k, y + t / k, s.color);
            }
            break;
        }
    }
}

}  // namespace

PixelPicture PickerIconPicture(UINT id, int scale) {
    constexpr UINT kFirstId = 246, kLastId = 357;
    auto it = Icons().find(id);
    // Values that have an id but no picture of their own yet show the plain value dot.
    if (it == Icons().end() && id >= kFirstId && id <= kLastId) it = Icons().find(IDB_PICK_DEFAULT);
    if (it == Icons().end() || scale < 1) return {};
    PixelPicture p{kPickIconSize * scale, kPickIconSize * scale,
                   std::vector<COLORREF>(static_cast<size_t>(kPickIconSize * scale) * kPickIconSize * scale, kWhite), {}};
    for (const Shape& s : it->second) Raster(p, s, scale);
    return p;
}

void DrawPickerIcon(CDC& dc, UINT id, const RECT& rc) {
    if (rc.Width() <= 0 || rc.Height() <= 0) return;
    const int scale = std::min(rc.Width(), rc.Height()) >= 2 * kPickIconSize ? 2 : 1;
    PixelPicture picture = PickerIconPicture(id, scale);
    if (picture.cx == 0) return;
    // A screen of high density keeps the icon drawn twice as fine.
    if (scale == 1) picture.doubled = PickerIconPicture(id, 2).pixels;
    const COLORMAP map{kWhite, GetSysColor(COLOR_WINDOW)};
    CBitmap bitmap;
    std::unique_ptr<CDC> mem = dc.CreateCompatibleDC();
    if (!mem || !CreateMappedBitmap(dc, picture, &map, 1, &bitmap)) return;
    mem->SelectObject(&bitmap);
    dc.StretchBlt(rc.left, rc.top, rc.Width(), rc.Height(), mem.get(), 0, 0, picture.cx, picture.cy, SRCCOPY);
}

UINT AttrTypeIcon(long type) {
    static constexpr UINT kByType[] = {260, 261, 256, 255, 258, 277, 257, 254, 264, 272, 267,
                                       253, 252, 268, 270, 259, 262, 278, 275, 250, 250, 250};
    return (type >= 0 && type < static_cast<long>(std::size(kByType))) ? kByType[type] : 0;
}

UINT FileKindIcon(int kind) {
    static constexpr UINT kByKind[] = {258, 253, 252, 268, 267, 270, 259};
    return (kind >= 0 && kind < static_cast<int>(std::size(kByKind))) ? kByKind[kind] : 0;
}

UINT EnumValueIcon(const std::string& rowText) {
    static const std::map<std::string, UINT> kMap = {
        {"RIGHT", 247}, {"TOP", 248}, {"YES", 281}, {"1", 282}, {"ALL", 283}, {"AUTO", 284}, {"BLEEDLEFT", 285},
        {"BLEEDRIGHT", 286}, {"BOTTOM", 287}, {"ABSBOTTOM", 287}, {"BASELINE", 287}, {"CHECK", 288},
        {"CIRCLE", 289}, {"CIRC", 289}, {"DATA", 290}, {"DEFAULT", 291}, {"NONE", 345}, {"EMBOSS", 292},
        {"FALSE", 293}, {"FILE", 294}, {"FILEOPEN", 295}, {"FIXED", 296}, {"GET", 297}, {"HARD", 298},
        {"HIDDEN", 299}, {"IMAGE", 300}, {"JUSTIFY", 301}, {"LAYERHIDDEN", 303}, {"LAYERINHERIT", 304},
        {"LAYERSHOW", 305}, {"LEFT", 246}, {"SQUARE", 308}, {"DISK", 309}, {"LTR", 310}, {"ALTERNATE", 311},
        {"SCROLL", 314}, {"SLIDE", 315}, {"MEDIUM", 316}, {"MIDDLE", 317}, {"ABSMIDDLE", 317},
        {"MOUSEOVER", 318}, {"NO", 319}, {"OBJECT", 320}, {"OFF", 321}, {"PASSWORD", 322}, {"POLY", 323},
        {"POLYGON", 323}, {"POST", 324}, {"RADIO", 325}, {"RECTANGLE", 326}, {"RECT", 326}, {"REF", 327},
        {"RELIEF", 328}, {"RESET", 329}, {"RTL", 331}, {"SHADOW", 332}, {"SMALL", 333}, {"SOFT", 334},
        {"SUBMIT", 335}, {"TEXT", 350}, {"TRUE", 352}, {"0", 353}, {"ABOVE", 336}, {"BORDER", 339},
        {"BOX", 340}, {"COLS", 341}, {"GROUPS", 342}, {"BELOW", 338}, {"HSIDES", 343}, {"LHS", 344},
        {"RHS", 346}, {"ROWS", 347}, {"VOID", 348}, {"VSIDES", 349}, {"CENTER", 354}};
    std::string key = rowText;
    if (key.size() >= 3 && key.front() == '"') key = key.substr(1, key.size() - 2);
    for (char& c : key) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    const auto it = kMap.find(key);
    return it == kMap.end() ? IDB_PICK_DEFAULT : it->second;
}
