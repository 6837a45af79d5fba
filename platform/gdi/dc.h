// The device context: where drawing goes. The base class keeps the attribute state (colours,
// alignment, background mode, selected objects, clip region) and does the text layout of
// ExtTextOut and the extents, so that every backend places text the same way; a backend
// supplies the device's bounds and a few primitives that put pixels down.
//
// Coordinates are logical units. On the screen they are MM_TEXT units, one per device pixel; a
// printer context may scale them (MM_ISOTROPIC) and move their origin, and its backend turns
// them into device pixels: everything the base keeps, clip regions included, stays logical, so a
// clip is set after the origin it belongs to and removed before the origin moves. Clipping works in two
// layers, as on the classic platform: the system region (the area a paint may touch, which the
// window layer sets for a paint context) and the application's clip region (SelectClipRgn,
// ExcludeClipRect). Drawing reaches only pixels that lie in both, and in the device.
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "platform/gdi/gdiobjects.h"
#include "platform/gdi/region.h"

// One text run as the base has laid it out, for the backend to draw.
struct TextRunPrimitive {
    POINT origin;               // the left end of the baseline of the first character
    const char* text = nullptr; // bytes in the process code page
    UINT count = 0;
    const int* advances = nullptr;  // per byte: the character's advance on its first byte, 0 on a trail byte
    LONG extent = 0;                // the sum of the advances
    const CFontImpl* font = nullptr;
    COLORREF color = 0;
    const RECT* clip = nullptr;     // ETO_CLIPPED: no ink outside this rectangle; else null
    // What was just filled with `background` under the text (empty when nothing was): the
    // opaque rectangle, or the text's cells in the opaque background mode.
    RECT filled{};
    COLORREF background = 0;
    // The backend said that its drawing of the run covers the clip (TextCoversClip).
    bool coversClip = false;
};

class CDC {
public:
    CDC();
    virtual ~CDC();
    CDC(const CDC&) = delete;
    CDC& operator=(const CDC&) = delete;

    // --- Attributes ---
    // MM_TEXT, or MM_ISOTROPIC on a context whose backend scales (a printer's); gives the
    // previous mode, 0 for a mode the context cannot take.
    int SetMapMode(int mode);
    int GetMapMode() const { return m_nMapMode; }
    // The logical extent that maps to the viewport extent in device pixels (MM_ISOTROPIC only;
    // the smaller of the two scales serves both directions). Each gives the previous extent.
    SIZE SetWindowExt(int cx, int cy);
    SIZE SetViewportExt(int cx, int cy);
    // The logical point that lands on the device's origin; gives the previous one.
    POINT SetWindowOrg(int x, int y);
    POINT GetWindowOrg() const { return m_ptWindowOrg; }
    UINT SetTextAlign(UINT align);
    UINT GetTextAlign() const { return m_nTextAlign; }
    int SetBkMode(int mode);
    int GetBkMode() const { return m_nBkMode; }
    COLORREF SetTextColor(COLORREF color);
    COLORREF GetTextColor() const { return m_crText; }
    COLORREF SetBkColor(COLORREF color);
    COLORREF GetBkColor() const { return m_crBack; }
    // Each gives the object selected before (null for the context's own default), so that
    // selecting what it gave puts the context back. A font or pen must stay alive while it is
    // selected; null selects the default (the default font, no pen, no bitmap).
    CFont* SelectObject(CFont* font);
    CPen* SelectObject(CPen* pen);
    CBitmap* SelectObject(CBitmap* bitmap);  // memory contexts: draw on this bitmap from now on
    CFont* GetCurrentFont() const { return m_pFont; }

    // --- Units: device pixels and logical units, by the map mode and the window origin; sizes
    // convert without the origin ---
    void DPtoLP(POINT* pts, int count = 1) const;
    void DPtoLP(RECT* rc) const;
    void DPtoLP(SIZE* size) const;
    void LPtoDP(POINT* pts, int count = 1) const;
    void LPtoDP(RECT* rc) const;
    void LPtoDP(SIZE* size) const;
    // Facts of the device (the *RES, LOGPIXELS* and PHYSICAL* indices); 0 for an unknown index.
    virtual int GetDeviceCaps(int index) const;

    // --- Print jobs: only a printer context takes them; elsewhere each fails (SP_ERROR) ---
    virtual int StartDoc(const DOCINFO* info) { return SP_ERROR; }
    virtual int StartPage() { return SP_ERROR; }
    virtual int EndPage() { return SP_ERROR; }
    virtual int EndDoc() { return SP_ERROR; }
    virtual int AbortDoc() { return SP_ERROR; }

    // --- Measuring, with the selected font ---
    BOOL GetTextMetrics(TEXTMETRICA* tm) const;
    // The ABC triples of byte values first..last; FALSE for a font without outline data.
    BOOL GetCharABCWidths(UINT first, UINT last, ABC* out) const;
    BOOL GetCharWidth(UINT first, UINT last, int* out) const;
    // Width of the text and the font's height. A double-byte character counts its two bytes as one.
    SIZE GetTextExtent(const char* text, int count) const;

    // --- Drawing ---
    // Draws text with its reference point at (x, y) as the text alignment says. ETO_OPAQUE fills
    // `rc` with the background colour first; ETO_CLIPPED keeps the text inside `rc`. In OPAQUE
    // background mode the text's own character cells are filled with the background colour too.
    BOOL ExtTextOut(int x, int y, UINT options, const RECT* rc, const char* text, UINT count);
    void FillSolidRect(const RECT& rc, COLORREF color);
    // Lines with the selected pen; the end point is not drawn.
    POINT MoveTo(int x, int y);
    BOOL LineTo(int x, int y);
    BOOL BitBlt(int x, int y, int cx, int cy, CDC* src, int xSrc, int ySrc, DWORD rop);
    BOOL StretchBlt(int x, int y, int cx, int cy, CDC* src, int xSrc, int ySrc, int cxSrc, int cySrc, DWORD rop);
    BOOL InvertRect(const RECT& rc);
    // Text in a rectangle with the selected font, colour and background mode: lines broken at
    // line feeds and, with DT_WORDBREAK, between words at the rectangle's width; each centred
    // with DT_CENTER; tabs expanded to eight average characters with DT_EXPANDTABS; clipped to
    // the rectangle unless DT_NOCLIP. DT_CALCRECT measures only: the rectangle's bottom becomes
    // that of the text. Gives the text's height.
    int DrawText(const char* text, int count, RECT* rc, UINT format);

    // --- Clipping, in device pixels ---
    // Null removes the application's clip region.
    int SelectClipRgn(const CRgn* rgn);
    int ExcludeClipRect(const RECT& rc);
    int IntersectClipRect(const RECT& rc);
    // 1 and a copy of the application's clip region, or 0 when there is none (rgn untouched).
    int GetClipRgn(CRgn* rgn) const;
    // Bounds of what drawing can reach now; gives the region kind.
    int GetClipBox(RECT* rc) const;
    BOOL RectVisible(const RECT& rc) const;

    // --- Companions ---
    // A memory context like this one, drawing on nothing until a bitmap is selected; null on failure.
    virtual std::unique_ptr<CDC> CreateCompatibleDC() = 0;
    // A bitmap of this device's kind; FALSE on failure.
    virtual BOOL CreateCompatibleBitmap(CBitmap* bitmap, int cx, int cy) = 0;
    // A bitmap of this device's kind holding cx times cy pixels, row by row; FALSE on failure.
    // `doubled`, when not null, is the same picture at twice the resolution (2cx by 2cy pixels),
    // which a device of high density keeps instead, to draw it sharp at the same logical size.
    virtual BOOL CreatePixelBitmap(CBitmap* bitmap, int cx, int cy, const COLORREF* pixels, const COLORREF* doubled) = 0;
    virtual bool IsPrinting() const { return false; }
    // Whether what is drawn here stays out of sight until the drawing is done (a window's back
    // buffer, a bitmap), so that a picture built in steps on it never shows half made.
    virtual bool DrawsOffScreen() const { return false; }
    // Whether drawing writes the pixels of an image in memory, where a pixel written twice costs
    // twice: a painter then leaves to opaque text cells what they cover instead of filling first.
    virtual bool WritesPixelsInMemory() const { return false; }

    // --- For the window layer ---
    // The area a paint may touch; the whole device when not set.
    void SetSystemRegion(const CRgn& rgn);

protected:
    // The device's own area: the window's client rectangle, the bitmap's, the page's.
    virtual RECT DeviceRect() const = 0;
    // Drawing reaches only `visible` from now on (system region, clip region and device together).
    virtual void ClipChanged(const CRgn& visible) = 0;
    virtual void FillPrimitive(const RECT& rc, COLORREF color) = 0;
    virtual void TextPrimitive(const TextRunPrimitive& run) = 0;
    // True if TextPrimitive will paint every pixel of `run.clip`, text and background both, so
    // that the background need not be filled first.
    virtual bool TextCoversClip(const TextRunPrimitive& run) const { return false; }
    virtual void LinePrimitive(POINT from, POINT to, const CPen& pen) = 0;
    // Copies pixels of `src` (which the caller has checked is a context of the same backend).
    virtual BOOL BlitPrimitive(const RECT& dst, CDC& src, const RECT& srcRect) = 0;
    virtual void InvertPrimitive(const RECT& rc) = 0;
    // A memory context now draws on `bitmap` (null: on nothing). The device rect changes with it.
    virtual void BitmapSelected(CBitmapImpl* bitmap) {}
    // The font to use when none is selected: each backend keeps its own.
    virtual const CFontImpl* DefaultFont() const = 0;
    // Whether the backend turns logical units into device pixels by a scale (MM_ISOTROPIC).
    virtual bool CanScale() const { return false; }
    // The map mode, an extent or the window origin changed; a scaling backend follows it.
    virtual void MappingChanged() {}
    // Device pixels per logical unit across and down: 1 in MM_TEXT.
    double ScaleX() const { return Scale(true); }
    double ScaleY() const { return Scale(false); }

    // The region drawing reaches now.
    const CRgn& Visible() const { return m_rgnVisible; }
    // Recomputes the visible region after the device, system region or clip changed.
    void UpdateVisible();

private:
    const CFontImpl* Font() const;

    double Scale(bool across) const;
    SIZE SetExtent(SIZE* extent, int cx, int cy);
    // One line of DrawText: its bytes with the tabs expanded.
    void DrawTextLine(const std::string& line, const RECT& rc, LONG y, UINT format);

    int m_nMapMode = MM_TEXT;
    SIZE m_szWindowExt{1, 1};
    SIZE m_szViewportExt{1, 1};
    POINT m_ptWindowOrg{};
    UINT m_nTextAlign = TA_LEFT | TA_TOP;
    int m_nBkMode = OPAQUE;
    COLORREF m_crText = 0x000000;
    COLORREF m_crBack = 0xFFFFFF;
    CFont* m_pFont = nullptr;
    CPen* m_pPen = nullptr;
    CBitmap* m_pBitmap = nullptr;
    POINT m_ptCurrent{};
    bool m_bHasSystem = false;
    CRgn m_rgnSystem;
    bool m_bHasClip = false;
    CRgn m_rgnClip;
    CRgn m_rgnVisible;
    std::vector<int> m_advances;  // scratch of ExtTextOut
};
