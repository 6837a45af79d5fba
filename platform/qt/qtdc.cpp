#include "platform/qt/qtdc.h"

#include <QGuiApplication>
#include <QScreen>
#include <QtMath>
#include <algorithm>
#include <array>
#include <cstring>
#include <utility>
#include <vector>

#include "platform/codepage/leadbyte.h"
#include "platform/qt/qtfont.h"
#include "platform/qt/qtglyphcells.h"

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

CQtBitmap::CQtBitmap(int cx, int cy, qreal ratio)
    : m_size{cx, cy}, m_image(TakePooled(qCeil(cx * ratio), qCeil(cy * ratio))) {
    m_image.setDevicePixelRatio(ratio);
}

namespace {

// Whether an image holds one pixel per logical unit, so that its rows can be copied as they are.
bool OnePixelPerUnit(const QImage& image) { return image.devicePixelRatio() == 1; }

// A logical rectangle of an image in the image's own pixels.
QRectF PixelsOf(const QImage& image, const QRect& logical) {
    const qreal r = image.devicePixelRatio();
    return QRectF(logical.x() * r, logical.y() * r, logical.width() * r, logical.height() * r);
}

// Fills an image row by row from pixels given as colour references.
void FillPixels(QImage& image, const COLORREF* pixels) {
    const int cx = image.width();
    for (int y = 0; y < image.height(); ++y) {
        auto* row = reinterpret_cast<QRgb*>(image.scanLine(y));
        for (int x = 0; x < cx; ++x) row[x] = QColorFromColorRef(pixels[static_cast<size_t>(y) * cx + x]).rgb();
    }
}

// Writes `count` copies of `pixel` from `to`: eight at a time, which the compiler makes block
// stores, where a loop of single words would store one pixel at a time.
void FillRow(QRgb* to, int count, QRgb pixel) {
    using Eight = QRgb __attribute__((vector_size(8 * sizeof(QRgb))));
    const Eight eight = {pixel, pixel, pixel, pixel, pixel, pixel, pixel, pixel};
    int x = 0;
    for (; x + 8 <= count; x += 8) std::memcpy(to + x, &eight, sizeof eight);
    for (; x < count; ++x) to[x] = pixel;
}

}  // namespace

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
    dc->m_ratio = screen ? screen->devicePixelRatio() : 1;
    dc->UpdateVisible();
    return dc;
}

CQtDC::~CQtDC() {
    if (m_painter.isActive()) m_painter.end();
}

void CQtDC::Start(QImage* image) {
    if (m_painter.isActive()) m_painter.end();
    m_pImage = image && !image->isNull() ? image : nullptr;
    if (m_pImage) m_ratio = m_pImage->devicePixelRatio();
    if (m_pImage) m_painter.begin(m_pImage);
    m_bClipDirty = true;
    m_clipState = ClipState::Unknown;
}

QRect CQtDC::TakeDrawn() { return std::exchange(m_rcDrawn, QRect()); }

std::unique_ptr<CDC> CQtDC::CreateCompatibleDC() {
    auto dc = std::make_unique<CQtDC>(nullptr);
    dc->m_ratio = m_ratio;
    return dc;
}

BOOL CQtDC::CreateCompatibleBitmap(CBitmap* bitmap, int cx, int cy) {
    if (!bitmap || cx <= 0 || cy <= 0) return FALSE;
    auto pixels = std::make_shared<CQtBitmap>(cx, cy, m_ratio);
    if (pixels->Image().isNull()) return FALSE;
    bitmap->Attach(std::move(pixels));
    return TRUE;
}

BOOL CQtDC::CreatePixelBitmap(CBitmap* bitmap, int cx, int cy, const COLORREF* pixels, const COLORREF* doubled) {
    if (!bitmap || !pixels || cx <= 0 || cy <= 0) return FALSE;
    const bool sharp = doubled && m_ratio > 1;
    auto made = std::make_shared<CQtBitmap>(cx, cy, sharp ? 2 : 1);
    QImage& image = made->Image();
    if (image.isNull()) return FALSE;
    FillPixels(image, sharp ? doubled : pixels);
    bitmap->Attach(std::move(made));
    return TRUE;
}

RECT CQtDC::DeviceRect() const {
    if (!m_pImage) return m_rcScreen;
    const QSize size = m_pImage->deviceIndependentSize().toSize();
    return RECT{0, 0, size.width(), size.height()};
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

QPainter* CQtDC::Painter(const QRect& extent) {
    if (!m_painter.isActive()) return nullptr;
    const CRgn& visible = Visible();
    const RECT area = RectFromQRect(extent);
    if (!visible.Touches(area)) return nullptr;
    UseClip(visible.InsideOneRect(area) ? ClipState::None : ClipState::Region);
    return &m_painter;
}

void CQtDC::UseClip(ClipState state) {
    if (state == m_clipState && !(state == ClipState::Region && m_bClipDirty)) return;
    if (state == ClipState::None) {
        m_painter.setClipping(false);
    } else {
        QRegion region;
        for (const RECT& r : Visible().Rects()) region += QRectFromRect(r);
        // Qt's raster engine ignores a new clip region while clipping is off: switch it on first.
        m_painter.setClipping(true);
        m_painter.setClipRegion(region);
        m_bClipDirty = false;
    }
    m_clipState = state;
}

void CQtDC::Drew(const QRect& rc) { m_rcDrawn |= rc & QRectFromRect(Visible().Bounds()); }

void CQtDC::FillPrimitive(const RECT& rc, COLORREF color) {
    if (FillPixelsDirectly(rc, color)) return;
    QPainter* p = Painter(QRectFromRect(rc));
    if (!p) return;
    p->fillRect(QRectFromRect(rc), QColorFromColorRef(color));
    Drew(QRectFromRect(rc));
}

bool CQtDC::FillPixelsDirectly(const RECT& rc, COLORREF color) {
    // A solid fill of opaque pixels is a row of equal words; the painter's call around it costs
    // more than the filling itself for the small cells of tabs and margins.
    if (rc.IsEmpty() || !m_pImage || !m_painter.isActive() || m_pImage->format() != QImage::Format_RGB32 ||
        !OnePixelPerUnit(*m_pImage))
        return false;
    const QRgb pixel = QColorFromColorRef(color).rgb();
    if (Visible().InsideOneRect(rc)) {
        FillSolid(rc, pixel);
    } else {
        // What shows of it, piece by piece: the visible region's rectangles do not overlap.
        for (const RECT& r : Visible().Rects())
            if (const RECT piece = IntersectRects(rc, r); !piece.IsEmpty()) FillSolid(piece, pixel);
    }
    Drew(QRectFromRect(rc));
    return true;
}

void CQtDC::FillSolid(const RECT& rc, QRgb pixel) {
    const qsizetype stride = m_pImage->bytesPerLine();
    uchar* row = m_pImage->bits() + rc.top * stride + rc.left * static_cast<qsizetype>(sizeof(QRgb));
    for (LONG y = rc.top; y < rc.bottom; ++y, row += stride) FillRow(reinterpret_cast<QRgb*>(row), rc.Width(), pixel);
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

bool CQtDC::GlyphCellsApply(const TextRunPrimitive& run, const CQtFont& font) const {
    // Only single-byte glyphs of the font's own face whose ink starts inside their cells, in a
    // run that lies wholly over its filled background and wholly in what is visible.
    if (!run.clip || !m_pImage || !m_painter.isActive() || m_pImage->format() != QImage::Format_RGB32 ||
        !OnePixelPerUnit(*m_pImage))
        return false;
    const RECT& clip = *run.clip;
    const RECT& filled = run.filled;
    if (clip.IsEmpty() || filled.left > clip.left || filled.top > clip.top || filled.right < clip.right ||
        filled.bottom < clip.bottom)
        return false;
    if (font.LogFont().lfUnderline || font.LogFont().lfStrikeOut) return false;
    RECT shown;
    if (!ShownInOneRect(clip, &shown)) return false;
    for (UINT i = 0; i < run.count; ++i) {
        const auto c = static_cast<BYTE>(run.text[i]);
        if (font.GlyphOf(c).face != CQtFont::kPrimary || font.Abc(c).abcA < 0 || run.advances[i] <= 0 ||
            (c >= 0x80 && IsDBCSLeadByteEx(CP_ACP, c)))  // lead bytes are never ASCII
            return false;
    }
    return true;
}

bool CQtDC::ShownInOneRect(const RECT& rc, RECT* shown) const {
    *shown = IntersectRects(rc, Visible().Bounds());
    return shown->IsEmpty() || Visible().InsideOneRect(*shown);
}

bool CQtDC::TextCoversClip(const TextRunPrimitive& run) const {
    const auto* font = dynamic_cast<const CQtFont*>(run.font);
    if (!font || !GlyphCellsApply(run, *font)) return false;
    return run.origin.x <= run.clip->left && run.origin.x + run.extent >= run.clip->right;
}

namespace {

// Copies `W` pixels of each of `rows` rows. Glyph cells are a few pixels wide, and a copy of a
// width the compiler knows is a few moves, where a call of memcpy for each row costs more.
template <size_t W>
void CopyRowsOf(const QRgb* from, qsizetype fromStride, QRgb* to, qsizetype toStride, int rows) {
    for (int y = 0; y < rows; ++y, from += fromStride, to += toStride) std::memcpy(to, from, W * sizeof(QRgb));
}

using RowCopy = void (*)(const QRgb*, qsizetype, QRgb*, qsizetype, int);

template <size_t... W>
constexpr std::array<RowCopy, sizeof...(W)> RowCopies(std::index_sequence<W...>) {
    return {&CopyRowsOf<W>...};
}

// Copies of the widths that cells of text fonts have.
constexpr auto kRowCopies = RowCopies(std::make_index_sequence<24>{});

void CopyRows(const QRgb* from, qsizetype fromStride, QRgb* to, qsizetype toStride, int width, int rows) {
    if (static_cast<size_t>(width) < kRowCopies.size()) {
        kRowCopies[static_cast<size_t>(width)](from, fromStride, to, toStride, rows);
        return;
    }
    for (int y = 0; y < rows; ++y, from += fromStride, to += toStride)
        std::memcpy(to, from, static_cast<size_t>(width) * sizeof(QRgb));
}

}  // namespace

void CQtDC::CopyGlyphCells(const TextRunPrimitive& run, const CQtFont& font) {
    const RECT& clip = *run.clip;
    CQtGlyphCells& cells = GlyphCells();
    cells.Trim();
    CQtGlyphCells::Key key{font.Serial(), 0, 0, static_cast<quint16>(clip.Height()),
                           static_cast<qint16>(run.origin.y - clip.top), QColorFromColorRef(run.color).rgb(),
                           QColorFromColorRef(run.background).rgb()};
    CQtGlyphCells::Palette& palette = cells.PaletteFor(key);
    // Only the rows and columns that show are copied, from the same cells.
    RECT shown;
    ShownInOneRect(clip, &shown);
    if (shown.IsEmpty()) return;
    const int firstRow = static_cast<int>(shown.top - clip.top), rows = static_cast<int>(shown.Height());
    const qsizetype stride = m_pImage->bytesPerLine();
    const qsizetype pixelStride = stride / static_cast<qsizetype>(sizeof(QRgb));
    uchar* const top = m_pImage->bits() + shown.top * stride;
    // Ink that a glyph throws past its cell lands on the next cell once that is copied.
    const CQtGlyphCells::Cell* pending = nullptr;
    LONG x = run.origin.x, pendingAt = 0;
    for (UINT i = 0; i < run.count; ++i) {
        const auto c = static_cast<BYTE>(run.text[i]);
        const int advance = run.advances[i];
        CQtGlyphCells::Palette::Entry& entry = palette.cells[c];
        if (!entry.cell || entry.width != advance) {
            key.glyph = font.GlyphOf(c).index;
            key.width = static_cast<quint16>(advance);
            const CQtGlyphCells::Cell& made = cells.Get(font, CQtFont::kPrimary, key, std::max(0, -font.Abc(c).abcC));
            entry = {made.pixels, &made, made.width, static_cast<int>(made.stride), made.overhang};
        }
        const LONG left = std::max(x, shown.left), right = std::min(x + advance, shown.right);
        if (left < right)
            CopyRows(entry.pixels + firstRow * entry.stride + (left - x), entry.stride, reinterpret_cast<QRgb*>(top) + left,
                     pixelStride, static_cast<int>(right - left), rows);
        if (pending && pendingAt >= shown.left && pendingAt < shown.right)
            CQtGlyphCells::BlendOverhang(*pending, key.fore, top + pendingAt * static_cast<qsizetype>(sizeof(QRgb)), stride,
                                         static_cast<int>(shown.right - pendingAt), firstRow, rows);
        x += advance;
        pending = entry.overhang > 0 ? entry.cell : nullptr;
        pendingAt = x;
    }
    Drew(QRectFromRect(shown));
}

bool CQtDC::BlendInks(const TextRunPrimitive& run, const CQtFont& font) {
    if (!m_pImage || !m_painter.isActive() || m_pImage->format() != QImage::Format_RGB32 || !OnePixelPerUnit(*m_pImage) ||
        font.LogFont().lfUnderline || font.LogFont().lfStrikeOut)
        return false;
    CQtGlyphCells& cells = GlyphCells();
    cells.Trim();
    const QRgb fore = QColorFromColorRef(run.color).rgb();
    CQtGlyphCells::InkPalette& palette = cells.InkPaletteFor(font, fore);
    m_inks.clear();
    QRect reach;
    LONG x = run.origin.x;
    for (UINT i = 0; i < run.count; ++i) {
        const auto c = static_cast<BYTE>(run.text[i]);
        const CQtFont::Glyph& glyph = font.GlyphOf(c);
        if (glyph.face != CQtFont::kPrimary || (c >= 0x80 && IsDBCSLeadByteEx(CP_ACP, c))) return false;
        const CQtGlyphCells::Ink*& ink = palette.inks[c];
        if (!ink) ink = &cells.InkOf(font, glyph.index, fore);
        if (!ink->exact) return false;
        reach |= ink->box.translated(x, run.origin.y);
        m_inks.push_back(ink);
        x += run.advances[i];
    }
    const QRect limit = run.clip ? QRectFromRect(*run.clip) : m_pImage->rect();
    reach &= limit;
    if (reach.isEmpty()) return true;
    if (!Visible().InsideOneRect(RectFromQRect(reach))) return false;
    uchar* const bits = m_pImage->bits();
    const qsizetype stride = m_pImage->bytesPerLine();
    x = run.origin.x;
    for (UINT i = 0; i < run.count; ++i) {
        CQtGlyphCells::BlendInk(*m_inks[i], bits, stride, QPoint(x, run.origin.y), reach);
        x += run.advances[i];
    }
    Drew(reach);
    return true;
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
    const auto* font = dynamic_cast<const CQtFont*>(run.font);
    if (!font || run.count == 0) return;
    if (run.coversClip || GlyphCellsApply(run, *font)) {
        CopyGlyphCells(run, *font);
        return;
    }
    if (BlendInks(run, *font)) return;
    const int extent = static_cast<int>(run.extent);
    // Only the ends of a run can carry ink beyond its cells: the first glyph's left bearing
    // and the last one's right bearing.
    const TEXTMETRICA& tm = font->Metrics();
    const auto first = static_cast<BYTE>(run.text[0]);
    const auto last = static_cast<BYTE>(run.text[run.count - 1]);
    const QRect ink(QPoint(run.origin.x + std::min(0, font->Abc(first).abcA), run.origin.y - tm.tmAscent),
                    QPoint(run.origin.x + extent + std::max(0, -font->Abc(last).abcC), run.origin.y + tm.tmDescent));
    const bool clip = run.clip && !QRectFromRect(*run.clip).contains(ink);
    QPainter* p = Painter(clip ? ink & QRectFromRect(*run.clip) : ink);
    if (!p) return;
    if (clip) {
        p->setClipRect(QRectFromRect(*run.clip), m_clipState == ClipState::Region ? Qt::IntersectClip : Qt::ReplaceClip);
        m_clipState = ClipState::Run;  // the next primitive sets the clip it needs again
    }
    p->setPen(QColorFromColorRef(run.color));
    DrawGlyphs(run, *p);
    DrawTextLines(run, extent, *p);
    Drew(run.clip ? (ink & QRectFromRect(*run.clip)) : ink);
}

void CQtDC::LinePrimitive(POINT from, POINT to, const CPen& pen) {
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
    if (!band.isNull() && FillPixelsDirectly(RectFromQRect(band), pen.Color())) return;
    QPainter* p = Painter(QRect(QPoint(from.x, from.y), QPoint(to.x, to.y)).normalized().adjusted(-w, -w, w, w));
    if (!p) return;
    const QColor color = QColorFromColorRef(pen.Color());
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
    if (CopyPixels(dst, *source->m_pImage, srcRect)) return TRUE;
    QPainter* p = Painter(QRectFromRect(dst));
    if (!p) return TRUE;
    const QRect target = QRectFromRect(dst);
    // The source's part in its own pixels, which are finer than logical units on a screen of
    // high density.
    const QRect from = PixelsOf(*source->m_pImage, QRectFromRect(srcRect)).toAlignedRect();
    // A copy within one image reads from a snapshot of the part it reads.
    QImage copied = source->m_pImage == m_pImage ? m_pImage->copy(from) : QImage();
    copied.setDevicePixelRatio(m_pImage->devicePixelRatio());
    const QImage& image = copied.isNull() ? *source->m_pImage : copied;
    const QRect read = copied.isNull() ? from : QRect(QPoint(0, 0), from.size());
    p->setCompositionMode(QPainter::CompositionMode_Source);
    if (PixelsOf(*m_pImage, target).size() == QSizeF(read.size()))
        p->drawImage(target.topLeft(), image, read);
    else
        p->drawImage(QRectF(target), image, QRectF(read));
    p->setCompositionMode(QPainter::CompositionMode_SourceOver);
    Drew(target);
    return TRUE;
}

bool CQtDC::CopyPixels(const RECT& dst, const QImage& from, const RECT& srcRect) {
    // Rows are copied as they are when nothing is scaled, converted or clipped, which is how an
    // off-screen picture reaches its window.
    if (!m_pImage || &from == m_pImage || !m_painter.isActive() || m_pImage->format() != QImage::Format_RGB32 ||
        from.format() != QImage::Format_RGB32 || dst.Width() != srcRect.Width() || dst.Height() != srcRect.Height() ||
        !OnePixelPerUnit(*m_pImage) || !OnePixelPerUnit(from))
        return false;
    if (!QRect(QPoint(0, 0), from.size()).contains(QRectFromRect(srcRect)) || !Visible().InsideOneRect(dst)) return false;
    constexpr int kBytesPerPixel = 4;
    const size_t bytes = static_cast<size_t>(dst.Width()) * kBytesPerPixel;
    const uchar* in = from.constBits() + srcRect.top * from.bytesPerLine() + srcRect.left * kBytesPerPixel;
    uchar* out = m_pImage->bits() + dst.top * m_pImage->bytesPerLine() + dst.left * kBytesPerPixel;
    for (LONG y = 0; y < dst.Height(); ++y, in += from.bytesPerLine(), out += m_pImage->bytesPerLine())
        std::memcpy(out, in, bytes);
    Drew(QRectFromRect(dst));
    return true;
}

void CQtDC::InvertPrimitive(const RECT& rc) {
    QPainter* p = Painter(QRectFromRect(rc));
    if (!p) return;
    p->setCompositionMode(QPainter::CompositionMode_Difference);
    p->fillRect(QRectFromRect(rc), Qt::white);
    p->setCompositionMode(QPainter::CompositionMode_SourceOver);
    Drew(QRectFromRect(rc));
}
