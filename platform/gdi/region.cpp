#include "platform/gdi/region.h"

#include <algorithm>

namespace {

// Appends the parts of `r` that lie outside `cut` (up to four bands) to `out`.
void AppendOutside(const RECT& r, const RECT& cut, std::vector<RECT>& out) {
    RECT in = IntersectRects(r, cut);
    if (in.IsEmpty()) {
        out.push_back(r);
        return;
    }
    if (r.top < in.top) out.push_back({r.left, r.top, r.right, in.top});
    if (in.bottom < r.bottom) out.push_back({r.left, in.bottom, r.right, r.bottom});
    if (r.left < in.left) out.push_back({r.left, in.top, in.left, in.bottom});
    if (in.right < r.right) out.push_back({in.right, in.top, r.right, in.bottom});
}

// Pixel count of a set of disjoint rectangles.
long long Area(const std::vector<RECT>& rects) {
    long long n = 0;
    for (const RECT& r : rects) n += static_cast<long long>(r.Width()) * r.Height();
    return n;
}

}  // namespace

BOOL CRgn::CreateRectRgnIndirect(const RECT& rc) {
    m_rects.clear();
    if (!rc.IsEmpty()) m_rects.push_back(rc);
    Changed();
    return TRUE;
}

int CRgn::Changed() {
    m_bounds = {};
    for (const RECT& r : m_rects) m_bounds = UnionRects(m_bounds, r);
    return Kind();
}

int CRgn::Kind() const {
    if (m_rects.empty()) return NULLREGION;
    // A region is simple when it fills its bounds exactly.
    RECT b = Bounds();
    return Area(m_rects) == static_cast<long long>(b.Width()) * b.Height() ? SIMPLEREGION : COMPLEXREGION;
}

int CRgn::Subtract(const RECT& rc) {
    if (rc.IsEmpty()) return Kind();
    std::vector<RECT> out;
    out.reserve(m_rects.size() + 4);
    for (const RECT& r : m_rects) AppendOutside(r, rc, out);
    m_rects = std::move(out);
    return Changed();
}

int CRgn::Intersect(const RECT& rc) {
    std::vector<RECT> out;
    for (const RECT& r : m_rects) {
        RECT in = IntersectRects(r, rc);
        if (!in.IsEmpty()) out.push_back(in);
    }
    m_rects = std::move(out);
    return Changed();
}

int CRgn::Intersect(const CRgn& other) {
    std::vector<RECT> out;
    for (const RECT& a : m_rects)
        for (const RECT& b : other.m_rects) {
            RECT in = IntersectRects(a, b);
            if (!in.IsEmpty()) out.push_back(in);
        }
    m_rects = std::move(out);
    return Changed();
}

int CRgn::Unite(const RECT& rc) {
    if (rc.IsEmpty()) return Kind();
    // Keep the rectangles disjoint: add only the parts of rc that are not covered yet.
    std::vector<RECT> pieces{rc};
    for (const RECT& r : m_rects) {
        std::vector<RECT> next;
        for (const RECT& p : pieces) AppendOutside(p, r, next);
        pieces = std::move(next);
        if (pieces.empty()) break;
    }
    m_rects.insert(m_rects.end(), pieces.begin(), pieces.end());
    return Changed();
}

int CRgn::Offset(LONG dx, LONG dy) {
    for (RECT& r : m_rects) r = OffsetRect(r, dx, dy);
    return Changed();
}

template <class Test>
bool CRgn::AnyRect(Test test) const {
    if (m_nHint < m_rects.size() && test(m_rects[m_nHint])) return true;
    for (size_t i = 0; i < m_rects.size(); ++i)
        if (test(m_rects[i])) {
            m_nHint = i;
            return true;
        }
    return false;
}

bool CRgn::Touches(const RECT& rc) const {
    return AnyRect([&](const RECT& r) { return !IntersectRects(r, rc).IsEmpty(); });
}

bool CRgn::Contains(POINT pt) const {
    return std::any_of(m_rects.begin(), m_rects.end(), [&](const RECT& r) { return PtInRect(r, pt); });
}

bool CRgn::InsideOneRect(const RECT& rc) const {
    return AnyRect([&](const RECT& r) { return RectInside(rc, r); });
}

bool operator==(const CRgn& a, const CRgn& b) {
    // Equal sets of pixels: each covers the other.
    if (Area(a.m_rects) != Area(b.m_rects)) return false;
    CRgn common = a;
    common.Intersect(b);
    return Area(common.m_rects) == Area(a.m_rects);
}
