// Points, sizes and rectangles in pixels, as the window and drawing services pass them.
// A rectangle includes its left and top edges and excludes its right and bottom edges.
#pragma once
#include <algorithm>

#include "platform/com/types.h"

struct RECT {
    LONG left = 0, top = 0, right = 0, bottom = 0;
    LONG Width() const { return right - left; }
    LONG Height() const { return bottom - top; }
    bool IsEmpty() const { return right <= left || bottom <= top; }
    friend bool operator==(const RECT&, const RECT&) = default;
};
struct POINT {
    LONG x = 0, y = 0;
    friend bool operator==(const POINT&, const POINT&) = default;
};
struct SIZE {
    LONG cx = 0, cy = 0;
    friend bool operator==(const SIZE&, const SIZE&) = default;
};

// The common part of two rectangles; empty (all zero) when they do not meet.
inline RECT IntersectRects(const RECT& a, const RECT& b) {
    RECT r{std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right), std::min(a.bottom, b.bottom)};
    return r.IsEmpty() ? RECT{} : r;
}
// The smallest rectangle that holds both; an empty rectangle adds nothing.
inline RECT UnionRects(const RECT& a, const RECT& b) {
    if (a.IsEmpty()) return b.IsEmpty() ? RECT{} : b;
    if (b.IsEmpty()) return a;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right), std::max(a.bottom, b.bottom)};
}
// True if every pixel of `inner` lies in `outer` (so also when `inner` has none).
inline bool RectInside(const RECT& inner, const RECT& outer) {
    return inner.IsEmpty() ||
           (inner.left >= outer.left && inner.top >= outer.top && inner.right <= outer.right && inner.bottom <= outer.bottom);
}
inline bool PtInRect(const RECT& r, POINT p) { return p.x >= r.left && p.x < r.right && p.y >= r.top && p.y < r.bottom; }
inline RECT OffsetRect(RECT r, LONG dx, LONG dy) { return {r.left + dx, r.top + dy, r.right + dx, r.bottom + dy}; }
