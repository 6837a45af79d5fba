#include "platform/gdi/dc.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <utility>

#include "platform/codepage/leadbyte.h"

namespace {

IGdiBackend*& Backend() {
    static IGdiBackend* backend = nullptr;
    return backend;
}

// The lead-byte test of the process code page as a table, made again when the code page changes.
// Lead bytes all lie above the ASCII range.
bool IsLead(BYTE c) {
    if (c < 0x80) return false;
    static UINT codePage = 0;
    static bool table[256];
    if (UINT now = GetProcessCodePage(); now != codePage) {
        codePage = now;
        for (int b = 0; b < 256; ++b) table[b] = IsDBCSLeadByteEx(now, static_cast<BYTE>(b)) != 0;
    }
    return table[c];
}

}  // namespace

IGdiBackend* SetGdiBackend(IGdiBackend* backend) { return std::exchange(Backend(), backend); }
IGdiBackend* GetGdiBackend() { return Backend(); }

BOOL CFont::CreateFontIndirect(const LOGFONTA* lf) {
    m_impl.reset();
    if (!lf || !GetGdiBackend()) return FALSE;
    m_impl = GetGdiBackend()->CreateFont(*lf);
    return m_impl ? TRUE : FALSE;
}

CDC::CDC() = default;
CDC::~CDC() = default;

// --- Attributes ---

int CDC::SetMapMode(int mode) {
    if (mode != MM_TEXT && !(mode == MM_ISOTROPIC && CanScale())) return 0;
    const int old = std::exchange(m_nMapMode, mode);
    if (mode == MM_TEXT) m_szWindowExt = m_szViewportExt = SIZE{1, 1};
    MappingChanged();
    UpdateVisible();
    return old;
}

SIZE CDC::SetExtent(SIZE* extent, int cx, int cy) {
    if (m_nMapMode != MM_ISOTROPIC || cx == 0 || cy == 0) return *extent;
    const SIZE old = std::exchange(*extent, SIZE{cx, cy});
    MappingChanged();
    UpdateVisible();
    return old;
}

SIZE CDC::SetWindowExt(int cx, int cy) { return SetExtent(&m_szWindowExt, cx, cy); }
SIZE CDC::SetViewportExt(int cx, int cy) { return SetExtent(&m_szViewportExt, cx, cy); }

POINT CDC::SetWindowOrg(int x, int y) {
    const POINT old = std::exchange(m_ptWindowOrg, POINT{x, y});
    MappingChanged();
    UpdateVisible();
    return old;
}

// Isotropic: the smaller of the two scales serves both directions, each with its own sign, so
// that nothing is stretched.
double CDC::Scale(bool across) const {
    if (m_nMapMode != MM_ISOTROPIC) return 1.0;
    const double sx = static_cast<double>(m_szViewportExt.cx) / m_szWindowExt.cx;
    const double sy = static_cast<double>(m_szViewportExt.cy) / m_szWindowExt.cy;
    const double smaller = std::min(std::abs(sx), std::abs(sy));
    const double own = across ? sx : sy;
    return own < 0 ? -smaller : smaller;
}

// --- Units ---

void CDC::DPtoLP(POINT* pts, int count) const {
    for (int i = 0; i < count; ++i) {
        pts[i].x = static_cast<LONG>(std::lround(pts[i].x / ScaleX())) + m_ptWindowOrg.x;
        pts[i].y = static_cast<LONG>(std::lround(pts[i].y / ScaleY())) + m_ptWindowOrg.y;
    }
}

void CDC::LPtoDP(POINT* pts, int count) const {
    for (int i = 0; i < count; ++i) {
        pts[i].x = static_cast<LONG>(std::lround((pts[i].x - m_ptWindowOrg.x) * ScaleX()));
        pts[i].y = static_cast<LONG>(std::lround((pts[i].y - m_ptWindowOrg.y) * ScaleY()));
    }
}

void CDC::DPtoLP(RECT* rc) const { DPtoLP(reinterpret_cast<POINT*>(rc), 2); }
void CDC::LPtoDP(RECT* rc) const { LPtoDP(reinterpret_cast<POINT*>(rc), 2); }

void CDC::DPtoLP(SIZE* size) const {
    size->cx = static_cast<LONG>(std::lround(size->cx / ScaleX()));
    size->cy = static_cast<LONG>(std::lround(size->cy / ScaleY()));
}

void CDC::LPtoDP(SIZE* size) const {
    size->cx = static_cast<LONG>(std::lround(size->cx * ScaleX()));
    size->cy = static_cast<LONG>(std::lround(size->cy * ScaleY()));
}

// A screen: 96 pixels per inch, the device's size, nothing unprintable.
int CDC::GetDeviceCaps(int index) const {
    constexpr int kScreenDpi = 96;
    const RECT device = DeviceRect();
    switch (index) {
    case LOGPIXELSX:
    case LOGPIXELSY:
        return kScreenDpi;
    case HORZRES:
    case PHYSICALWIDTH:
        return device.Width();
    case VERTRES:
    case PHYSICALHEIGHT:
        return device.Height();
    default:
        return 0;
    }
}

UINT CDC::SetTextAlign(UINT align) { return std::exchange(m_nTextAlign, align); }
int CDC::SetBkMode(int mode) { return std::exchange(m_nBkMode, mode); }
COLORREF CDC::SetTextColor(COLORREF color) { return std::exchange(m_crText, color); }
COLORREF CDC::SetBkColor(COLORREF color) { return std::exchange(m_crBack, color); }

CFont* CDC::SelectObject(CFont* font) { return std::exchange(m_pFont, font); }
CPen* CDC::SelectObject(CPen* pen) { return std::exchange(m_pPen, pen); }

CBitmap* CDC::SelectObject(CBitmap* bitmap) {
    CBitmap* old = std::exchange(m_pBitmap, bitmap);
    BitmapSelected(bitmap ? bitmap->Impl() : nullptr);
    UpdateVisible();
    return old;
}

const CFontImpl* CDC::Font() const {
    if (m_pFont && m_pFont->Impl()) return m_pFont->Impl();
    return DefaultFont();
}

// --- Measuring ---

BOOL CDC::GetTextMetrics(TEXTMETRICA* tm) const {
    const CFontImpl* font = Font();
    if (!font || !tm) return FALSE;
    *tm = font->Metrics();
    return TRUE;
}

BOOL CDC::GetCharABCWidths(UINT first, UINT last, ABC* out) const {
    const CFontImpl* font = Font();
    if (!font || !out || first > last || last > 255 || !font->HasABC()) return FALSE;
    for (UINT c = first; c <= last; ++c) *out++ = font->Abc(static_cast<BYTE>(c));
    return TRUE;
}

BOOL CDC::GetCharWidth(UINT first, UINT last, int* out) const {
    const CFontImpl* font = Font();
    if (!font || !out || first > last || last > 255 || !font->HasWidths()) return FALSE;
    for (UINT c = first; c <= last; ++c) *out++ = font->Advance(static_cast<BYTE>(c));
    return TRUE;
}

SIZE CDC::GetTextExtent(const char* text, int count) const {
    const CFontImpl* font = Font();
    if (!font) return {};
    LONG cx = 0;
    for (int i = 0; i < count; ++i) {
        const auto c = static_cast<BYTE>(text[i]);
        if (IsLead(c) && i + 1 < count) {
            cx += font->DoubleByteAdvance();
            ++i;
        } else {
            cx += font->Advance(c);
        }
    }
    return {cx, font->Metrics().tmHeight};
}

// --- Drawing ---

BOOL CDC::ExtTextOut(int x, int y, UINT options, const RECT* rc, const char* text, UINT count) {
    const CFontImpl* font = Font();
    if (!font) return FALSE;
    if (!text || count == 0) {
        if ((options & ETO_OPAQUE) && rc) FillPrimitive(*rc, m_crBack);
        return TRUE;
    }

    // Per-byte advances: a double-byte character carries its advance on its first byte.
    m_advances.assign(count, 0);
    LONG extent = 0;
    for (UINT i = 0; i < count; ++i) {
        const auto c = static_cast<BYTE>(text[i]);
        int advance = font->Advance(c);
        if (IsLead(c) && i + 1 < count) {
            advance = font->DoubleByteAdvance();
            m_advances[i++] = advance;
        } else {
            m_advances[i] = advance;
        }
        extent += advance;
    }

    const TEXTMETRICA& tm = font->Metrics();
    LONG left = x;
    if ((m_nTextAlign & TA_HORIZONTAL_MASK) == TA_CENTER)
        left = x - extent / 2;
    else if ((m_nTextAlign & TA_HORIZONTAL_MASK) == TA_RIGHT)
        left = x - extent;
    LONG top = y;
    if ((m_nTextAlign & TA_VERTICAL_MASK) == TA_BASELINE)
        top = y - tm.tmAscent;
    else if ((m_nTextAlign & TA_VERTICAL_MASK) == TA_BOTTOM)
        top = y - tm.tmHeight;

    const RECT* clip = (options & ETO_CLIPPED) && rc ? rc : nullptr;
    RECT cells{left, top, left + extent, top + tm.tmHeight};
    if (clip) cells = IntersectRects(cells, *clip);
    TextRunPrimitive run;
    run.origin = {left, top + tm.tmAscent};
    run.text = text;
    run.count = count;
    run.advances = m_advances.data();
    run.extent = extent;
    run.font = font;
    run.color = m_crText;
    run.clip = clip;
    // A later fill of the cells lies over the opaque rectangle's: both are the background colour.
    if ((options & ETO_OPAQUE) && rc)
        run.filled = *rc;
    else if (m_nBkMode == OPAQUE)
        run.filled = cells;
    run.background = m_crBack;
    // A backend that paints every pixel of the clip with the text on its background needs
    // neither fill first.
    run.coversClip = clip && run.filled == *clip && TextCoversClip(run);
    if (!run.coversClip) {
        if ((options & ETO_OPAQUE) && rc) FillPrimitive(*rc, m_crBack);
        if (m_nBkMode == OPAQUE && !cells.IsEmpty()) FillPrimitive(cells, m_crBack);
    }
    TextPrimitive(run);
    return TRUE;
}

void CDC::FillSolidRect(const RECT& rc, COLORREF color) {
    if (!rc.IsEmpty()) FillPrimitive(rc, color);
}

POINT CDC::MoveTo(int x, int y) { return std::exchange(m_ptCurrent, POINT{x, y}); }

BOOL CDC::LineTo(int x, int y) {
    POINT to{x, y};
    if (m_pPen && m_pPen->IsValid() && m_pPen->Style() != PS_NULL) LinePrimitive(m_ptCurrent, to, *m_pPen);
    m_ptCurrent = to;
    return TRUE;
}

BOOL CDC::BitBlt(int x, int y, int cx, int cy, CDC* src, int xSrc, int ySrc, DWORD rop) {
    return StretchBlt(x, y, cx, cy, src, xSrc, ySrc, cx, cy, rop);
}

BOOL CDC::StretchBlt(int x, int y, int cx, int cy, CDC* src, int xSrc, int ySrc, int cxSrc, int cySrc, DWORD rop) {
    if (!src || rop != SRCCOPY || cx <= 0 || cy <= 0 || cxSrc <= 0 || cySrc <= 0) return FALSE;
    return BlitPrimitive(RECT{x, y, x + cx, y + cy}, *src, RECT{xSrc, ySrc, xSrc + cxSrc, ySrc + cySrc});
}

// --- DrawText ---

namespace {

// The lines of a text: broken at LF (a CR in front of it goes), and with word breaks between
// words wherever the next word would pass `width`. A word wider than the width stands alone.
template <class Measure>
std::vector<std::string> BreakText(const std::string& text, bool wordBreak, LONG width, Measure measure) {
    std::vector<std::string> lines;
    size_t from = 0;
    for (;;) {
        size_t lf = text.find('\n', from);
        std::string hard = text.substr(from, lf == std::string::npos ? std::string::npos : lf - from);
        if (!hard.empty() && hard.back() == '\r') hard.pop_back();
        if (!wordBreak) {
            lines.push_back(hard);
        } else {
            std::string line;
            size_t pos = 0;
            while (pos < hard.size()) {
                size_t end = hard.find(' ', pos);
                end = end == std::string::npos ? hard.size() : end;
                const std::string word = hard.substr(pos, end - pos);
                const std::string joined = line.empty() ? word : line + " " + word;
                if (!line.empty() && measure(joined) > width) {
                    lines.push_back(line);
                    line = word;
                } else {
                    line = joined;
                }
                pos = end + 1;
            }
            lines.push_back(line);
        }
        if (lf == std::string::npos) break;
        from = lf + 1;
    }
    return lines;
}

}  // namespace

int CDC::DrawText(const char* text, int count, RECT* rc, UINT format) {
    if (!text || !rc) return 0;
    std::string all(text, count < 0 ? std::strlen(text) : static_cast<size_t>(count));
    if (format & DT_EXPANDTABS) {
        // Tabs stop every eight average characters; the text is measured as it will be drawn.
        TEXTMETRICA tm;
        const LONG stop = GetTextMetrics(&tm) ? std::max<LONG>(1, 8 * tm.tmAveCharWidth) : 64;
        std::string expanded;
        for (char c : all) {
            if (c != '\t') {
                expanded += c;
                continue;
            }
            const size_t lineStart = expanded.rfind('\n') == std::string::npos ? 0 : expanded.rfind('\n') + 1;
            const LONG x = GetTextExtent(expanded.data() + lineStart, static_cast<int>(expanded.size() - lineStart)).cx;
            const LONG next = (x / stop + 1) * stop;
            do expanded += ' ';
            while (GetTextExtent(expanded.data() + lineStart, static_cast<int>(expanded.size() - lineStart)).cx < next);
        }
        all = expanded;
    }
    TEXTMETRICA tm;
    const LONG height = GetTextMetrics(&tm) ? tm.tmHeight : 0;
    const auto measure = [this](const std::string& s) { return GetTextExtent(s.data(), static_cast<int>(s.size())).cx; };
    const std::vector<std::string> lines = BreakText(all, (format & DT_WORDBREAK) != 0, rc->Width(), measure);
    const int total = static_cast<int>(height * static_cast<LONG>(lines.size()));
    if (format & DT_CALCRECT) {
        rc->bottom = rc->top + total;
        return total;
    }
    LONG y = rc->top;
    for (const std::string& line : lines) {
        if (y >= rc->bottom && !(format & DT_NOCLIP)) break;
        DrawTextLine(line, *rc, y, format);
        y += height;
    }
    return total;
}

void CDC::DrawTextLine(const std::string& line, const RECT& rc, LONG y, UINT format) {
    if (line.empty()) return;
    const UINT align = SetTextAlign(TA_LEFT | TA_TOP);
    const LONG cx = GetTextExtent(line.data(), static_cast<int>(line.size())).cx;
    const LONG x = (format & DT_CENTER) ? rc.left + (rc.Width() - cx) / 2 : rc.left;
    ExtTextOut(static_cast<int>(x), static_cast<int>(y), (format & DT_NOCLIP) ? 0 : ETO_CLIPPED, &rc, line.data(),
               static_cast<UINT>(line.size()));
    SetTextAlign(align);
}

BOOL CDC::InvertRect(const RECT& rc) {
    if (!rc.IsEmpty()) InvertPrimitive(rc);
    return TRUE;
}

// --- Clipping ---

void CDC::SetSystemRegion(const CRgn& rgn) {
    m_rgnSystem = rgn;
    m_bHasSystem = true;
    UpdateVisible();
}

void CDC::UpdateVisible() {
    // Under one rectangle of the device and the system region that holds all of the clip, the
    // clip is what is visible, rectangle for rectangle: the common case of a paint that excludes
    // one part after another.
    RECT reach = DeviceRect();
    const bool oneRect = !m_bHasSystem || m_rgnSystem.Rects().size() == 1;
    if (m_bHasSystem && oneRect) reach = IntersectRects(reach, m_rgnSystem.Bounds());
    if (m_bHasClip && oneRect && RectInside(m_rgnClip.Bounds(), reach)) {
        m_rgnVisible = m_rgnClip;
    } else {
        m_rgnVisible = CRgn(DeviceRect());
        if (m_bHasSystem) m_rgnVisible.Intersect(m_rgnSystem);
        if (m_bHasClip) m_rgnVisible.Intersect(m_rgnClip);
    }
    ClipChanged(m_rgnVisible);
}

int CDC::SelectClipRgn(const CRgn* rgn) {
    m_bHasClip = rgn != nullptr;
    if (rgn) m_rgnClip = *rgn;
    UpdateVisible();
    return m_rgnVisible.Kind();
}

int CDC::ExcludeClipRect(const RECT& rc) {
    if (!m_bHasClip) {
        // Without a clip region of its own, the context starts from what it can reach now.
        m_rgnClip = CRgn(DeviceRect());
        if (m_bHasSystem) m_rgnClip.Intersect(m_rgnSystem);
        m_bHasClip = true;
    }
    m_rgnClip.Subtract(rc);
    UpdateVisible();
    return m_rgnVisible.Kind();
}

int CDC::IntersectClipRect(const RECT& rc) {
    if (!m_bHasClip) {
        m_rgnClip = CRgn(rc);
        m_bHasClip = true;
    } else {
        m_rgnClip.Intersect(rc);
    }
    UpdateVisible();
    return m_rgnVisible.Kind();
}

int CDC::GetClipRgn(CRgn* rgn) const {
    if (!rgn) return -1;
    if (!m_bHasClip) return 0;
    *rgn = m_rgnClip;
    return 1;
}

int CDC::GetClipBox(RECT* rc) const {
    if (rc) *rc = m_rgnVisible.Bounds();
    return m_rgnVisible.Kind();
}

BOOL CDC::RectVisible(const RECT& rc) const { return m_rgnVisible.Touches(rc) ? TRUE : FALSE; }
