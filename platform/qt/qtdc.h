// The device context of the Qt backend: a QPainter on a QImage (a window's surface or a
// memory bitmap). Text is drawn as glyph runs at exactly the integer positions the base laid
// out; nothing is shaped or kerned. Drawing code sees only the painter, so a context over
// another paint device (a printer) can derive from this class and give its own device.
#pragma once
#include <QGlyphRun>
#include <QImage>
#include <QPainter>
#include <memory>

#include "platform/gdi/dc.h"
#include "platform/qt/qtglyphcells.h"

// A bitmap's pixels: cx by cy in logical units, held at `ratio` pixels per unit for screens of
// high density. Pixels of a released bitmap go back to a small pool, so that the off-screen
// bitmap of every paint does not allocate (and fault in) megabytes anew.
class CQtBitmap : public CBitmapImpl, public std::enable_shared_from_this<CQtBitmap> {
public:
    CQtBitmap(int cx, int cy, qreal ratio = 1);
    ~CQtBitmap() override;
    CQtBitmap(const CQtBitmap&) = delete;
    CQtBitmap& operator=(const CQtBitmap&) = delete;
    SIZE Size() const override { return m_size; }
    QImage& Image() { return m_image; }

private:
    SIZE m_size;
    QImage m_image;
};

class CQtDC : public CDC {
public:
    // Draws on `image` (which must outlive the context); null makes a memory context that
    // draws on nothing until a bitmap is selected.
    explicit CQtDC(QImage* image);
    // A context of the screen: measuring only, drawing reaches nothing.
    static std::unique_ptr<CQtDC> Screen();
    ~CQtDC() override;

    QImage* Image() const { return m_pImage; }
    // Bounds of the pixels drawn since the last call; for windows, what needs showing.
    QRect TakeDrawn();

    std::unique_ptr<CDC> CreateCompatibleDC() override;
    BOOL CreateCompatibleBitmap(CBitmap* bitmap, int cx, int cy) override;
    BOOL CreatePixelBitmap(CBitmap* bitmap, int cx, int cy, const COLORREF* pixels, const COLORREF* doubled) override;
    // A window's surface is shown only once a paint is over, and a bitmap only when copied.
    bool DrawsOffScreen() const override { return m_pImage != nullptr; }
    bool WritesPixelsInMemory() const override { return m_pImage != nullptr; }

protected:
    // For a context over another device: the painter that the derived class begins on it, and
    // a word that the painter's state (device, transform) changed under the context.
    QPainter& PainterObject() { return m_painter; }
    void PainterChanged() {
        m_bClipDirty = true;
        m_clipState = ClipState::Unknown;
    }

    RECT DeviceRect() const override;
    void ClipChanged(const CRgn&) override { m_bClipDirty = true; }
    void FillPrimitive(const RECT& rc, COLORREF color) override;
    void TextPrimitive(const TextRunPrimitive& run) override;
    bool TextCoversClip(const TextRunPrimitive& run) const override;
    void LinePrimitive(POINT from, POINT to, const CPen& pen) override;
    BOOL BlitPrimitive(const RECT& dst, CDC& src, const RECT& srcRect) override;
    void InvertPrimitive(const RECT& rc) override;
    void BitmapSelected(CBitmapImpl* bitmap) override;
    const CFontImpl* DefaultFont() const override;

private:
    // The painter for drawing within `extent`, clipped to what is visible; null when nothing
    // of `extent` is. A primitive inside one rectangle of the visible region draws with no clip
    // at all: changing the painter's clip region costs far more than the drawing itself.
    QPainter* Painter(const QRect& extent);
    enum class ClipState { Unknown, None, Region, Run };
    void UseClip(ClipState state);
    void Start(QImage* image);
    void Drew(const QRect& rc);
    void DrawGlyphs(const TextRunPrimitive& run, QPainter& painter);
    // Whether a run is drawn by copying ready-made glyph cells (see qtglyphcells.h): text over
    // an opaque cell of one colour, wholly visible, its ink inside its cells; and the copying.
    bool GlyphCellsApply(const TextRunPrimitive& run, const class CQtFont& font) const;
    void CopyGlyphCells(const TextRunPrimitive& run, const class CQtFont& font);
    // What shows of `rc` (the part inside the visible region's bounds), and whether that lies
    // in one rectangle of the visible region or is empty.
    bool ShownInOneRect(const RECT& rc, RECT* shown) const;
    // Draws a run of text over what lies beneath by blending glyph inks (see qtglyphcells.h);
    // false, having drawn nothing, when the run needs the painter: glyphs of other faces or
    // inks the probe found inexact, lines under or through it, ink outside one visible rectangle.
    bool BlendInks(const TextRunPrimitive& run, const class CQtFont& font);
    // Fills with one colour by writing the pixels; false when the fill needs the painter.
    bool FillPixelsDirectly(const RECT& rc, COLORREF color);
    // Writes `pixel` over `rc`, which lies in the image.
    void FillSolid(const RECT& rc, QRgb pixel);
    // Copies pixels of another image row by row; false when the copy needs the painter.
    bool CopyPixels(const RECT& dst, const QImage& from, const RECT& srcRect);
    void DrawTextLines(const TextRunPrimitive& run, int extent, QPainter& painter);

    QImage* m_pImage;
    // Pixels per logical unit of what the context draws on: 1, or more on a screen of high
    // density. A memory context keeps its model's and makes its bitmaps at it.
    qreal m_ratio = 1;
    std::shared_ptr<CQtBitmap> m_pBitmap;  // the selected bitmap stays alive while drawn on
    const bool m_bMemory;  // draws on the bitmap selected into it
    RECT m_rcScreen{};
    QPainter m_painter;
    bool m_bClipDirty = true;  // the visible region changed since the painter's clip was set
    ClipState m_clipState = ClipState::Unknown;
    QRect m_rcDrawn;
    // Kept between runs so that drawing a run allocates nothing.
    QGlyphRun m_run;
    QList<quint32> m_glyphs;
    QList<QPointF> m_positions;
    std::vector<const CQtGlyphCells::Ink*> m_inks;
};

// Colours of the drawing layer as Qt has them.
inline QColor QColorFromColorRef(COLORREF c) { return QColor(c & 0xFF, (c >> 8) & 0xFF, (c >> 16) & 0xFF); }
inline QRect QRectFromRect(const RECT& rc) { return QRect(rc.left, rc.top, rc.Width(), rc.Height()); }
inline RECT RectFromQRect(const QRect& rc) { return {rc.left(), rc.top(), rc.right() + 1, rc.bottom() + 1}; }
