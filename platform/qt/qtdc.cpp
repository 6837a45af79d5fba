#include "platform/qt/qtdc.h"

#include <QGuiApplication>
#include <QScreen>
#include <algorithm>
#include <utility>
#include <vector>

#include "platform/codepage/leadbyte.h"
#include "platform/qt/qtfont.h"

namespace {

// The pixel format of every surface and bitmap: opaque, and the raster engine's fastest.
constexpr QImage::Format kFormat = QImage::Format_RGB32;
// Released bitmaps kept for reuse; a paint needs one, a smooth scroll one per frame.
constexpr size_t kPoolSize = 3;

std::vector<QImage>& Pool() {
    static auto* pool = new std::vector<QImage>;  // never destroyed: bitmaps may outlive statics
    return *pool;
}

QImage TakePooled(int cx, int cy) {
    auto& pool = Pool();
    auto it = std::find_if(pool.begin(), pool.end(), [&](const QImage& i) { return i.width() == cx && i.height() == cy; });
    if (it == pool.end()) return QImage(cx, cy, kFormat);
    QImage image = std::move(*it);
    pool.erase(it);
    return image;
}

void ReturnPooled(QImage&& image) {
    auto& pool = Pool();
    if (pool.size() >= kPoolSize) pool.erase(pool.begin());
    pool.push_back(std::move(image));
}

}  // namespace

CQtBitmap::CQtBitmap(int cx, int cy) : m_image(TakePooled(cx, cy)) {}

CQtBitmap::~CQtBitmap() {
    if (!m_image.isNull()) ReturnPooled(std::move(m_image));
}

CQtDC::CQtDC(QImage* image) : m_pImage(nullptr), m_bMemory(image == nullptr) {
    Start(image);
    UpdateVisible();
}

std::unique_ptr<CQtDC> CQtDC::Screen() {
    auto dc = std::make_unique<CQtDC>(nullptr);
    const QScreen* screen = QGuiApplication::primaryScreen();
    const QSize size = screen ? screen->size() : QSize(1920, 1080);
    dc->m_rcScreen = {0, 0, size.width(), size.height()};
    dc->UpdateVisible();
    return dc;
}

CQtDC::~CQtDC() {
    if (m_painter.isActive()) m_painter.end();
}

void CQtDC::Start(QImage* image) {
    if (m_painter.isActive()) m_painter.end();
    m_pImage = image && !image->isNull() ? image : nullptr;
    if (m_pImage) m_painter.begin(m_pImage);
    m_bClipDirty = true;
}

QRect CQtDC::TakeDrawn() { return std::exchange(m_rcDrawn, QRect()); }

std::unique_ptr<CDC> CQtDC::CreateCompatibleDC() { return std::make_unique<CQtDC>(nullptr); }

BOOL CQtDC::CreateCompatibleBitmap(CBitmap* bitmap, int cx, int cy) {
    if (!bitmap || cx <= 0 || cy <= 0) return FALSE;
    auto pixels = std::make_shared<CQtBitmap>(cx, cy);
    if (pixels->Image().isNull()) return FALSE;
    bitmap->Attach(std::move(pixels));
    return TRUE;
}

RECT CQtDC::DeviceRect() const {
    return m_pImage ? RECT{0, 0, m_pImage->width(), m_pImage->height()} : m_rcScreen;
}

void CQtDC::BitmapSelected(CBitmapImpl* bitmap) {
    if (!m_bMemory) return;
    auto* pixels = dynamic_cast<CQtBitmap*>(bitmap);
    std::shared_ptr<CQtBitmap> keep = pixels ? pixels->shared_from_this() : nullptr;
    Start(keep ? &keep->Image() : nullptr);
    m_pBitmap = std::move(keep);
}

const CFontImpl* CQtDC::DefaultFont() const {
    // Never destroyed: fonts may be asked for until the very end of the process.
    static auto* font = new std::shared_ptr<CQtFont>([] {
        LOGFONTA lf;
        lf.lfHeight = 16;
        lf.lfWeight = FW_NORMAL;
        return CQtFont::Create(lf);
    }());
    return font->get();
}

QPainter* CQtDC::Painter() {
    if (!m_painter.isActive()) return nullptr;
    if (m_bClipDirty) {
        m_bClipDirty = false;
        const CRgn& visible = Visible();
        m_bNothingVisible = visible.IsEmpty();
        if (visible.Rects().size() == 1 && visible.Rects()[0] == DeviceRect()) {
            m_painter.setClipping(false);
        } else if (visible.Rects().size() == 1) {
            m_painter.setClipRect(QRectFromRect(visible.Rects()[0]));
        } else if (!m_bNothingVisible) {
            QRegion region;
            for (const RECT& r : visible.Rects()) region += QRectFromRect(r);
            m_painter.setClipRegion(region);
        }
    }
    return m_bNothingVisible ? nullptr : &m_painter;
}

void CQtDC::Drew(const QRect& rc) { m_rcDrawn |= rc & QRectFromRect(Visible().Bounds()); }

void CQtDC::FillPrimitive(const RECT& rc, COLORREF color) {
    QPainter* p = Painter();
    if (!p) return;
    p->fillRect(QRectFromRect(rc), QColorFromColorRef(color));
    Drew(QRectFromRect(rc));
}

// Glyphs stand at the pen position the base laid out: each byte's advance moves it on, a
// double-byte character is centred in its cell. One glyph run per face the text needs.
void CQtDC::DrawGlyphs(const TextRunPrimitive& run, QPainter& painter) {
    const auto& font = static_cast<const CQtFont&>(*run.font);
    bool otherFaces = false;
    for (int face = CQtFont::kPrimary; face <= CQtFont::kDoubleByte; ++face) {
        if (face != CQtFont::kPrimary && !otherFaces) break;
        m_glyphs.clear();
        m_positions.clear();
        LONG x = run.origin.x;
        for (UINT i = 0; i < run.count; ++i) {
            const auto c = static_cast<BYTE>(run.text[i]);
            const bool pair = c >= 0x80 && i + 1 < run.count && IsDBCSLeadByteEx(CP_ACP, c);
            const CQtFont::Glyph glyph =
                pair ? font.GlyphOfDoubleByte(c, static_cast<BYTE>(run.text[i + 1])) : font.GlyphOf(c);
            if (glyph.face == face) {
                m_glyphs.push_back(glyph.index);
                m_positions.push_back(QPointF(x + glyph.offset, run.origin.y));
            } else if (glyph.face != CQtFont::kNoFace) {
                otherFaces = true;
            }
            x += run.advances[i];
            if (pair) ++i;
        }
        if (m_glyphs.isEmpty()) continue;
        m_run.setRawFont(font.RawFont(static_cast<CQtFont::Face>(face)));
        m_run.setGlyphIndexes(m_glyphs);
        m_run.setPositions(m_positions);
        painter.drawGlyphRun(QPointF(0, 0), m_run);
        m_run.clear();  // lets go of the lists, so that the next run reuses their memory
    }
}

void CQtDC::DrawTextLines(const TextRunPrimitive& run, int extent, QPainter& painter) {
    const auto& font = static_cast<const CQtFont&>(*run.font);
    const QColor color = QColorFromColorRef(run.color);
    const int thickness = font.LineThickness();
    if (font.LogFont().lfUnderline)
        painter.fillRect(QRect(run.origin.x, run.origin.y + font.UnderlineOffset(), extent, thickness), color);
    if (font.LogFont().lfStrikeOut)
        painter.fillRect(QRect(run.origin.x, run.origin.y + font.StrikeOutOffset(), extent, thickness), color);
}

void CQtDC::TextPrimitive(const TextRunPrimitive& run) {
    QPainter* p = Painter();
    const auto* font = dynamic_cast<const CQtFont*>(run.font);
    if (!p || !font || run.count == 0) return;
    int extent = 0;
    for (UINT i = 0; i < run.count; ++i) extent += run.advances[i];
    // Only the ends of a run can carry ink beyond its cells: the first glyph's left bearing
    // and the last one's right bearing.
    const TEXTMETRICA& tm = font->Metrics();
    const auto first = static_cast<BYTE>(run.text[0]);
    const auto last = static_cast<BYTE>(run.text[run.count - 1]);
    const QRect ink(QPoint(run.origin.x + std::min(0, font->Abc(first).abcA), run.origin.y - tm.tmAscent),
                    QPoint(run.origin.x + extent + std::max(0, -font->Abc(last).abcC), run.origin.y + tm.tmDescent));
    const bool clip = run.clip && !QRectFromRect(*run.clip).contains(ink);
    if (clip) p->setClipRect(QRectFromRect(*run.clip), p->hasClipping() ? Qt::IntersectClip : Qt::ReplaceClip);
    p->setPen(QColorFromColorRef(run.color));
    DrawGlyphs(run, *p);
    DrawTextLines(run, extent, *p);
    if (clip) m_bClipDirty = true;  // back to the context's own clip for what comes next
    Drew(run.clip ? (ink & QRectFromRect(*run.clip)) : ink);
}

void CQtDC::LinePrimitive(POINT from, POINT to, const CPen& pen) {
    QPainter* p = Painter();
    if (!p) return;
    const QColor color = QColorFromColorRef(pen.Color());
    const int w = pen.Width();
    // Horizontal and vertical lines, the common case, are bands; the end point is not drawn.
    auto span = [](LONG a, LONG b) { return a < b ? std::pair{a, b} : std::pair{b + 1, a + 1}; };
    QRect band;
    if (from.y == to.y) {
        const auto [left, right] = span(from.x, to.x);
        band = QRect(left, from.y, right - left, w);
    } else if (from.x == to.x) {
        const auto [top, bottom] = span(from.y, to.y);
        band = QRect(from.x, top, w, bottom - top);
    }
    if (!band.isNull()) {
        p->fillRect(band, color);
        Drew(band);
        return;
    }
    p->setPen(QPen(color, w));
    p->drawLine(QPoint(from.x, from.y), QPoint(to.x, to.y));
    Drew(QRect(QPoint(from.x, from.y), QPoint(to.x, to.y)).normalized().adjusted(-w, -w, w, w));
}

BOOL CQtDC::BlitPrimitive(const RECT& dst, CDC& src, const RECT& srcRect) {
    auto* source = dynamic_cast<CQtDC*>(&src);
    if (!source || !source->m_pImage) return FALSE;
    QPainter* p = Painter();
    if (!p) return TRUE;
    const QRect target = QRectFromRect(dst);
    const QRect from = QRectFromRect(srcRect);
    // A copy within one image reads from a snapshot of the part it reads.
    const QImage copied = source->m_pImage == m_pImage ? m_pImage->copy(from) : QImage();
    const QImage& image = copied.isNull() ? *source->m_pImage : copied;
    const QRect read = copied.isNull() ? from : QRect(QPoint(0, 0), from.size());
    p->setCompositionMode(QPainter::CompositionMode_Source);
    if (target.size() == read.size())
        p->drawImage(target.topLeft(), image, read);
    else
        p->drawImage(target, image, read);
    p->setCompositionMode(QPainter::CompositionMode_SourceOver);
    Drew(target);
    return TRUE;
}

void CQtDC::InvertPrimitive(const RECT& rc) {
    QPainter* p = Painter();
    if (!p) return;
    p->setCompositionMode(QPainter::CompositionMode_Difference);
    p->fillRect(QRectFromRect(rc), Qt::white);
    p->setCompositionMode(QPainter::CompositionMode_SourceOver);
    Drew(QRectFromRect(rc));
}
