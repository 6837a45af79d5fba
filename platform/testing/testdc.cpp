#include "platform/testing/testdc.h"

#include <algorithm>
#include <cstdlib>
#include <utility>

#include "platform/testing/testfont.h"

CTestDC::CTestDC(std::shared_ptr<CTestSurface> surface, std::shared_ptr<DrawLog> log)
    : m_pOwnSurface(std::move(surface)), m_pTarget(m_pOwnSurface.get()), m_pLog(std::move(log)) {
    if (!m_pLog) m_pLog = std::make_shared<DrawLog>();
    UpdateVisible();
}

std::unique_ptr<CTestDC> CTestDC::Screen(LONG cx, LONG cy) {
    auto dc = std::make_unique<CTestDC>(nullptr, nullptr);
    dc->m_rcScreen = {0, 0, cx, cy};
    dc->UpdateVisible();
    return dc;
}

std::unique_ptr<CDC> CTestDC::CreateCompatibleDC() { return std::make_unique<CTestDC>(nullptr, m_pLog); }

BOOL CTestDC::CreateCompatibleBitmap(CBitmap* bitmap, int cx, int cy) {
    if (!bitmap || cx <= 0 || cy <= 0) return FALSE;
    bitmap->Attach(std::make_shared<CTestSurface>(cx, cy));
    return TRUE;
}

BOOL CTestDC::CreatePixelBitmap(CBitmap* bitmap, int cx, int cy, const COLORREF* pixels, const COLORREF*) {
    if (!bitmap || !pixels || cx <= 0 || cy <= 0) return FALSE;
    auto surface = std::make_shared<CTestSurface>(cx, cy);
    for (LONG y = 0; y < cy; ++y)
        for (LONG x = 0; x < cx; ++x) surface->Fill({x, y, x + 1, y + 1}, pixels[static_cast<size_t>(y) * cx + x]);
    bitmap->Attach(std::move(surface));
    return TRUE;
}

RECT CTestDC::DeviceRect() const { return m_pTarget ? m_pTarget->Bounds() : m_rcScreen; }

void CTestDC::BitmapSelected(CBitmapImpl* bitmap) {
    // A memory context draws on its bitmap; a window's context keeps its window.
    if (m_pOwnSurface) return;
    auto* surface = dynamic_cast<CTestSurface*>(bitmap);
    m_pBitmap = surface ? surface->shared_from_this() : nullptr;
    m_pTarget = m_pBitmap.get();
}

const CFontImpl* CTestDC::DefaultFont() const {
    static const std::shared_ptr<CTestFont> font = [] {
        LOGFONTA lf;
        lf.lfHeight = 16;
        lf.lfWeight = FW_NORMAL;
        return CTestFont::Create(lf);
    }();
    return font.get();
}

DrawRecord& CTestDC::Record(DrawKind kind) {
    DrawRecord& r = m_pLog->emplace_back();
    r.kind = kind;
    r.target = m_pTarget;
    r.visible = Visible();
    return r;
}

void CTestDC::FillVisible(const RECT& rc, COLORREF color) {
    if (!m_pTarget) return;
    for (const RECT& part : Visible().Rects()) m_pTarget->Fill(IntersectRects(part, rc), color);
}

void CTestDC::FillPrimitive(const RECT& rc, COLORREF color) {
    DrawRecord& r = Record(DrawKind::Fill);
    r.rc = rc;
    r.color = color;
    FillVisible(rc, color);
}

void CTestDC::TextPrimitive(const TextRunPrimitive& run) {
    DrawRecord& r = Record(DrawKind::Text);
    r.text.assign(run.text, run.count);
    r.origin = run.origin;
    r.advances.assign(run.advances, run.advances + run.count);
    r.font = run.font->LogFont();
    r.color = run.color;
    r.clipped = run.clip != nullptr;
    if (run.clip) r.clip = *run.clip;
}

// Horizontal and vertical lines are bands of the pen's width; others are stepped pixel by pixel.
void CTestDC::LinePrimitive(POINT from, POINT to, const CPen& pen) {
    DrawRecord& r = Record(DrawKind::Line);
    r.from = from;
    r.to = to;
    r.color = pen.Color();
    r.penStyle = pen.Style();
    r.penWidth = pen.Width();
    const LONG w = pen.Width();
    // The pixels from `a` up to `b`, `b` itself excluded, in either direction.
    auto span = [](LONG a, LONG b) { return a < b ? std::pair{a, b} : std::pair{b + 1, a + 1}; };
    if (from.y == to.y) {
        const auto [left, right] = span(from.x, to.x);
        FillVisible({left, from.y, right, from.y + w}, pen.Color());
        return;
    }
    if (from.x == to.x) {
        const auto [top, bottom] = span(from.y, to.y);
        FillVisible({from.x, top, from.x + w, bottom}, pen.Color());
        return;
    }
    const LONG steps = std::max(std::abs(to.x - from.x), std::abs(to.y - from.y));
    for (LONG i = 0; i < steps; ++i) {
        const LONG x = from.x + (to.x - from.x) * i / steps;
        const LONG y = from.y + (to.y - from.y) * i / steps;
        FillVisible({x, y, x + 1, y + 1}, pen.Color());
    }
}

BOOL CTestDC::BlitPrimitive(const RECT& dst, CDC& src, const RECT& srcRect) {
    auto* source = dynamic_cast<CTestDC*>(&src);
    if (!source) return FALSE;
    DrawRecord& r = Record(DrawKind::Blit);
    r.rc = dst;
    r.source = source->m_pTarget;
    r.src = srcRect;
    if (m_pTarget && source->m_pTarget)
        for (const RECT& part : Visible().Rects()) m_pTarget->CopyFrom(*source->m_pTarget, srcRect, dst, part);
    return TRUE;
}

void CTestDC::InvertPrimitive(const RECT& rc) {
    Record(DrawKind::Invert).rc = rc;
    if (!m_pTarget) return;
    for (const RECT& part : Visible().Rects()) m_pTarget->Invert(IntersectRects(part, rc));
}
