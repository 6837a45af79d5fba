// The drawing objects that device contexts select: fonts, pens and bitmaps, and the factory
// that a backend installs to make fonts and screen contexts.
#pragma once
#include <memory>

#include "platform/gdi/geometry.h"
#include "platform/gdi/gditypes.h"

class CDC;

// One realised font: what it is, and the horizontal extent of every byte value of the process
// code page. A backend derives from it and adds what it needs to draw (glyphs, a face).
// Fonts are device independent here: sizes are in device pixels of whatever device draws them.
class CFontImpl {
public:
    virtual ~CFontImpl() = default;

    const LOGFONTA& LogFont() const { return m_lf; }
    const TEXTMETRICA& Metrics() const { return m_tm; }
    // False for fonts without outline data: GetCharABCWidths then fails.
    bool HasABC() const { return m_bHasABC; }
    // False when not even plain widths are known: GetCharWidth then fails.
    bool HasWidths() const { return m_bHasWidths; }
    const ABC& Abc(BYTE c) const { return m_abc[c]; }
    // The advance of a single-byte character.
    int Advance(BYTE c) const { return m_advance[c]; }
    // The advance of any double-byte character: two average characters.
    int DoubleByteAdvance() const { return 2 * m_tm.tmAveCharWidth; }

protected:
    // Fills m_advance from m_abc (with ABC) or leaves what the backend set.
    void AdvancesFromAbc() {
        for (int c = 0; c < 256; ++c)
            m_advance[c] = m_abc[c].abcA + static_cast<int>(m_abc[c].abcB) + m_abc[c].abcC;
    }

    LOGFONTA m_lf{};
    TEXTMETRICA m_tm{};
    bool m_bHasABC = false;
    bool m_bHasWidths = false;
    ABC m_abc[256]{};
    int m_advance[256]{};
};

// A font object as drawing code holds it. Copies share the realised font.
class CFont {
public:
    // Realises the font through the installed backend. FALSE, with no font, when none can be made.
    BOOL CreateFontIndirect(const LOGFONTA* lf);
    BOOL DeleteObject() {
        m_impl.reset();
        return TRUE;
    }
    bool IsValid() const { return m_impl != nullptr; }
    CFontImpl* Impl() const { return m_impl.get(); }
    // For backends and tests: adopt a font made some other way.
    void Attach(std::shared_ptr<CFontImpl> impl) { m_impl = std::move(impl); }

private:
    std::shared_ptr<CFontImpl> m_impl;
};

// A pen: how lines are drawn. Width 0 means one pixel, as width 1 does.
class CPen {
public:
    CPen() = default;
    CPen(int style, int width, COLORREF color) { CreatePen(style, width, color); }
    BOOL CreatePen(int style, int width, COLORREF color) {
        m_nStyle = style;
        m_nWidth = width;
        m_color = color;
        m_bValid = true;
        return TRUE;
    }
    BOOL DeleteObject() {
        m_bValid = false;
        return TRUE;
    }
    bool IsValid() const { return m_bValid; }
    int Style() const { return m_nStyle; }
    int Width() const { return m_nWidth < 1 ? 1 : m_nWidth; }
    COLORREF Color() const { return m_color; }

private:
    int m_nStyle = PS_SOLID;
    int m_nWidth = 0;
    COLORREF m_color = 0;
    bool m_bValid = false;
};

// The pixels of a bitmap, as the backend keeps them.
class CBitmapImpl {
public:
    virtual ~CBitmapImpl() = default;
    virtual SIZE Size() const = 0;
};

// A bitmap object. Made compatible with a context (CDC::CreateCompatibleBitmap) and selected
// into a memory context to draw on it.
class CBitmap {
public:
    BOOL DeleteObject() {
        m_impl.reset();
        return TRUE;
    }
    bool IsValid() const { return m_impl != nullptr; }
    SIZE GetSize() const { return m_impl ? m_impl->Size() : SIZE{}; }
    CBitmapImpl* Impl() const { return m_impl.get(); }
    void Attach(std::shared_ptr<CBitmapImpl> impl) { m_impl = std::move(impl); }

private:
    std::shared_ptr<CBitmapImpl> m_impl;
};

// What a backend supplies to the drawing layer for the whole process.
class IGdiBackend {
public:
    virtual ~IGdiBackend() = default;
    // The installed font closest to `lf`; null when no font can be made.
    virtual std::shared_ptr<CFontImpl> CreateFont(const LOGFONTA& lf) = 0;
    // A context of the screen (the desktop window's): for measuring, and as the model of
    // compatible memory contexts. Drawing on it shows nothing.
    virtual std::unique_ptr<CDC> CreateScreenDC() = 0;
};

// Installs the backend for the process; returns the previous one. The caller keeps ownership.
IGdiBackend* SetGdiBackend(IGdiBackend* backend);
IGdiBackend* GetGdiBackend();
