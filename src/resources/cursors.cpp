#include "src/resources/cursors.h"

#include <algorithm>
#include <cmath>
#include <functional>
#include <vector>

namespace {

constexpr uint32_t kBlack = 0xFF000000;
constexpr uint32_t kWhite = 0xFFFFFFFF;

struct Pt {
    double x, y;
};
using Shape = std::function<bool(double x, double y)>;  // in the 32-pixel grid

bool InPolygon(const std::vector<Pt>& poly, double x, double y) {
    bool inside = false;
    for (size_t i = 0, j = poly.size() - 1; i < poly.size(); j = i++) {
        const Pt& a = poly[i];
        const Pt& b = poly[j];
        if ((a.y > y) != (b.y > y) && x < (b.x - a.x) * (y - a.y) / (b.y - a.y) + a.x) inside = !inside;
    }
    return inside;
}

Shape Polygon(std::vector<Pt> poly) {
    return [poly = std::move(poly)](double x, double y) { return InPolygon(poly, x, y); };
}

// A stroke of round ends along a segment, `r` thick on each side.
Shape Stroke(Pt a, Pt b, double r) {
    return [=](double x, double y) {
        const double dx = b.x - a.x, dy = b.y - a.y;
        const double len2 = dx * dx + dy * dy;
        const double t = len2 > 0 ? std::clamp(((x - a.x) * dx + (y - a.y) * dy) / len2, 0.0, 1.0) : 0;
        const double ex = a.x + t * dx - x, ey = a.y + t * dy - y;
        return ex * ex + ey * ey <= r * r;
    };
}

Shape Union(std::vector<Shape> parts) {
    return [parts = std::move(parts)](double x, double y) {
        return std::any_of(parts.begin(), parts.end(), [&](const Shape& s) { return s(x, y); });
    };
}

Shape Mirrored(Shape s, double axis) {
    return [s = std::move(s), axis](double x, double y) { return s(2 * axis - x, y); };
}

// A mask at `scale` times the grid: a pixel is in when most of its 16 samples are.
std::vector<bool> Rasterise(const Shape& shape, int scale) {
    const int side = kCursorSize * scale;
    std::vector<bool> mask(static_cast<size_t>(side * side));
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            int hits = 0;
            for (int sy = 0; sy < 4; ++sy)
                for (int sx = 0; sx < 4; ++sx)
                    hits += shape((x + (sx + 0.5) / 4) / scale, (y + (sy + 0.5) / 4) / scale);
            mask[static_cast<size_t>(y * side + x)] = hits >= 8;
        }
    return mask;
}

// Paints a shape in `body`, ringed by a border `scale` pixels wide in `border` (0: none).
void Paint(CursorImage* image, const Shape& shape, int scale, uint32_t body, uint32_t border) {
    const int side = image->width;
    const std::vector<bool> mask = Rasterise(shape, scale);
    const auto in = [&](int x, int y) { return x >= 0 && y >= 0 && x < side && y < side && mask[static_cast<size_t>(y * side + x)]; };
    for (int y = 0; y < side; ++y)
        for (int x = 0; x < side; ++x) {
            uint32_t& px = image->argb[static_cast<size_t>(y * side + x)];
            if (in(x, y)) {
                px = body;
                continue;
            }
            if (!border) continue;
            for (int dy = -scale; dy <= scale; ++dy)
                for (int dx = -scale; dx <= scale; ++dx)
                    if (dx * dx + dy * dy <= scale * scale + scale && in(x + dx, y + dy)) px = border;
        }
}

// The arrow's body: its tip one pixel in from the corner, so that the border takes the corner.
Shape ArrowBody() {
    return Polygon({{1, 0.2}, {1, 16.6}, {4.4, 13.3}, {6.9, 19.2}, {8.9, 18.3}, {6.5, 12.5}, {10, 12.5}});
}

// The gutter's arrow, pointing up to the right with its tip at column 10.
Shape GutterArrowBody() { return Mirrored(ArrowBody(), 5.5); }

Shape ExclamationMark() {
    return Union({Stroke({4.5, 6.8}, {4.5, 10.4}, 0.75), Stroke({4.5, 12.6}, {4.5, 12.6}, 0.8)});
}

Shape QuestionMark() {
    return Union({Stroke({3.0, 7.0}, {3.8, 6.0}, 0.6), Stroke({3.8, 6.0}, {5.2, 6.0}, 0.6),
                  Stroke({5.2, 6.0}, {5.8, 7.0}, 0.6), Stroke({5.8, 7.0}, {4.5, 8.8}, 0.6),
                  Stroke({4.5, 8.8}, {4.5, 10.4}, 0.6), Stroke({4.5, 12.6}, {4.5, 12.6}, 0.8)});
}

// The vertical double arrow right of the gutter's arrow: heads apart or heads together.
Shape DoubleArrow(bool apart) {
    const double x = 15.5, top = 3, bottom = 17;
    if (apart)
        return Union({Polygon({{x, top}, {x + 3.5, top + 4}, {x - 3.5, top + 4}}),
                      Polygon({{x, bottom}, {x + 3.5, bottom - 4}, {x - 3.5, bottom - 4}}),
                      Stroke({x, top + 3}, {x, bottom - 3}, 0.75)});
    const double mid = (top + bottom) / 2;
    return Union({Polygon({{x, mid - 1}, {x + 3.5, mid - 5}, {x - 3.5, mid - 5}}),
                  Polygon({{x, mid + 1}, {x + 3.5, mid + 5}, {x - 3.5, mid + 5}}),
                  Stroke({x, top}, {x, mid - 4}, 0.75), Stroke({x, mid + 4}, {x, bottom}, 0.75)});
}

CursorImage Draw(UINT id, int scale) {
    CursorImage image;
    image.width = image.height = kCursorSize * scale;
    image.argb.assign(static_cast<size_t>(image.width * image.height), 0);
    const bool gutter = id == IDC_GUTTER_ARROW || id == IDC_GUTTER_EXPAND || id == IDC_GUTTER_COLLAPSE;
    Paint(&image, gutter ? GutterArrowBody() : ArrowBody(), scale, kWhite, kBlack);
    if (id == IDC_HINT_ARROW) Paint(&image, ExclamationMark(), scale, kBlack, 0);
    if (id == IDC_DOC_ARROW) Paint(&image, QuestionMark(), scale, kBlack, 0);
    if (id == IDC_GUTTER_EXPAND || id == IDC_GUTTER_COLLAPSE)
        Paint(&image, DoubleArrow(id == IDC_GUTTER_EXPAND), scale, kBlack, kWhite);
    return image;
}

constexpr UINT kCursorIds[] = {IDC_GUTTER_ARROW, IDC_HINT_ARROW, IDC_DOC_ARROW, IDC_GUTTER_EXPAND, IDC_GUTTER_COLLAPSE};

}  // namespace

CursorPicture DrawCursorPicture(UINT id) {
    if (std::find(std::begin(kCursorIds), std::end(kCursorIds), id) == std::end(kCursorIds)) return {};
    const bool gutter = id == IDC_GUTTER_ARROW || id == IDC_GUTTER_EXPAND || id == IDC_GUTTER_COLLAPSE;
    return {Draw(id, 1), Draw(id, 2), gutter ? POINT{10, 0} : POINT{0, 0}};
}

void RegisterControlCursors() {
    for (UINT id : kCursorIds)
        if (!FindCursorPicture(id)) RegisterCursorPicture(id, DrawCursorPicture(id));
}
