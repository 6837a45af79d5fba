// A region: a set of pixels kept as disjoint rectangles. Clip regions of device contexts are
// regions; the operations are the few that clipping needs.
#pragma once
#include <vector>

#include "platform/gdi/geometry.h"
#include "platform/gdi/gditypes.h"

class CRgn {
public:
    CRgn() = default;
    explicit CRgn(const RECT& rc) { CreateRectRgnIndirect(rc); }

    // Makes the region one rectangle (nothing, for an empty one). Always TRUE.
    BOOL CreateRectRgn(LONG left, LONG top, LONG right, LONG bottom) {
        return CreateRectRgnIndirect(RECT{left, top, right, bottom});
    }
    BOOL CreateRectRgnIndirect(const RECT& rc);
    void SetEmpty() {
        m_rects.clear();
        m_bounds = {};
    }

    // Each of these gives the kind of the result: NULLREGION, SIMPLEREGION or COMPLEXREGION.
    int Subtract(const RECT& rc);
    int Intersect(const RECT& rc);
    int Intersect(const CRgn& other);
    int Unite(const RECT& rc);
    int Offset(LONG dx, LONG dy);
    int Kind() const;

    bool IsEmpty() const { return m_rects.empty(); }
    // True if any pixel of `rc` lies in the region.
    bool Touches(const RECT& rc) const;
    bool Contains(POINT pt) const;
    RECT Bounds() const { return m_bounds; }
    // True if `rc` lies wholly inside one of the region's rectangles.
    bool InsideOneRect(const RECT& rc) const;
    const std::vector<RECT>& Rects() const { return m_rects; }

    friend bool operator==(const CRgn& a, const CRgn& b);

private:
    // Recomputes the bounds after a change; gives the region's kind.
    int Changed();

    // The first of `m_rects` that satisfies `test`, looked for from the one that satisfied the
    // last query: a painter asks about neighbouring places one after another.
    template <class Test>
    bool AnyRect(Test test) const;

    std::vector<RECT> m_rects;  // disjoint, none empty
    RECT m_bounds{};
    mutable size_t m_nHint = 0;  // where the last query found its rectangle
};
