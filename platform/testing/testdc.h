// The recording device context of the deterministic backend. Every primitive is kept in a log,
// in order, with its arguments and the region that drawing could reach at the time; the pixels
// change in the surface drawn on (see testsurface.h). Memory contexts made from a context write
// to the same log, so that a test sees what a buffered paint drew on its bitmap too.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "platform/gdi/dc.h"
#include "platform/testing/testsurface.h"

enum class DrawKind { Fill, Text, Line, Blit, Invert };

struct DrawRecord {
    DrawKind kind = DrawKind::Fill;
    const CTestSurface* target = nullptr;  // the surface drawn on; null for a context without one
    CRgn visible;                          // what drawing could reach
    RECT rc{};                             // Fill, Invert: the rectangle; Blit: the destination
    COLORREF color = 0;                    // Fill, Text, Line
    // Text: the bytes, the left end of the baseline, the advance of each byte (0 on a trail
    // byte), the font asked for, and the ETO_CLIPPED rectangle if there was one.
    std::string text;
    POINT origin{};
    std::vector<int> advances;
    LOGFONTA font{};
    bool clipped = false;
    RECT clip{};
    // Line: the ends (the end point is not drawn) and the pen.
    POINT from{}, to{};
    int penStyle = PS_SOLID;
    int penWidth = 1;
    // Blit: where the pixels came from.
    const CTestSurface* source = nullptr;
    RECT src{};
};
using DrawLog = std::vector<DrawRecord>;

class CTestDC : public CDC {
public:
    // Draws on `surface`; a null surface makes a memory context that draws on nothing until a
    // bitmap is selected. `log` may be shared with other contexts.
    CTestDC(std::shared_ptr<CTestSurface> surface, std::shared_ptr<DrawLog> log);
    // A screen context: a device of the given size without pixels (drawing is logged only).
    static std::unique_ptr<CTestDC> Screen(LONG cx, LONG cy);

    const DrawLog& Log() const { return *m_pLog; }
    std::shared_ptr<DrawLog> SharedLog() const { return m_pLog; }
    // The surface drawn on now: the window's, the selected bitmap's, or null.
    CTestSurface* Surface() const { return m_pTarget; }

    std::unique_ptr<CDC> CreateCompatibleDC() override;
    BOOL CreateCompatibleBitmap(CBitmap* bitmap, int cx, int cy) override;
    BOOL CreatePixelBitmap(CBitmap* bitmap, int cx, int cy, const COLORREF* pixels, const COLORREF* doubled) override;

protected:
    RECT DeviceRect() const override;
    void ClipChanged(const CRgn&) override {}
    void FillPrimitive(const RECT& rc, COLORREF color) override;
    void TextPrimitive(const TextRunPrimitive& run) override;
    void LinePrimitive(POINT from, POINT to, const CPen& pen) override;
    BOOL BlitPrimitive(const RECT& dst, CDC& src, const RECT& srcRect) override;
    void InvertPrimitive(const RECT& rc) override;
    void BitmapSelected(CBitmapImpl* bitmap) override;
    const CFontImpl* DefaultFont() const override;

private:
    DrawRecord& Record(DrawKind kind);
    void FillVisible(const RECT& rc, COLORREF color);

    std::shared_ptr<CTestSurface> m_pOwnSurface;  // a window's surface, kept alive while drawn on
    std::shared_ptr<CTestSurface> m_pBitmap;      // the selected bitmap, likewise
    CTestSurface* m_pTarget;
    RECT m_rcScreen{};  // the device of a screen context
    std::shared_ptr<DrawLog> m_pLog;
};
