// Fonts of the Qt backend: a realised font over QRawFont, with integer advances per byte of the
// process code page, so that what the layout measures is exactly where glyphs are drawn.
#pragma once
#include <QRawFont>
#include <cstdint>
#include <memory>
#include <unordered_map>

#include "platform/gdi/gdiobjects.h"

class CQtFont : public CFontImpl {
public:
    // Where a character's glyph comes from: the font's own face, or the face that stands in
    // for characters the own face lacks. An invalid glyph draws nothing.
    enum Face : quint8 { kPrimary = 0, kFallback = 1, kDoubleByte = 2, kNoFace = 3 };
    struct Glyph {
        quint32 index = 0;
        Face face = kNoFace;
        // Where the glyph stands in its cell: 0 for single bytes; double-byte glyphs are centred.
        qint16 offset = 0;
    };

    // Null when no installed face can stand for the request.
    static std::shared_ptr<CQtFont> Create(const LOGFONTA& lf);

    const QRawFont& RawFont(Face face) const { return m_faces[face]; }
    const Glyph& GlyphOf(BYTE c) const { return m_glyphs[c]; }
    // The glyph of a double-byte character of the process code page (looked up once, then kept).
    Glyph GlyphOfDoubleByte(BYTE lead, BYTE trail) const;
    // Underline and strikeout: offset of the line's top below the baseline (negative: above),
    // and its thickness, in pixels.
    int UnderlineOffset() const { return m_nUnderline; }
    int StrikeOutOffset() const { return m_nStrikeOut; }
    int LineThickness() const { return m_nLineThickness; }
    // The widest ink beyond a cell, left and right, over all bytes: text whose cells lie
    // inside a clip rectangle by this much needs no clipping.
    int InkOverhangLeft() const { return m_nInkLeft; }
    int InkOverhangRight() const { return m_nInkRight; }

    // The family that a classic face name stands for here (metric-compatible faces).
    static QString FamilyFor(const QString& face);
    // A number no other font of the process has, for caches keyed by font.
    uint64_t Serial() const { return m_nSerial; }

private:
    CQtFont();
    bool Realise(const LOGFONTA& lf);
    void MeasureBytes();
    // The glyph of a character in the face `own`, else in the fallback face.
    Glyph Lookup(char32_t ch, Face own) const;

    QRawFont m_faces[3];
    Glyph m_glyphs[256];
    mutable std::unordered_map<quint16, Glyph> m_doubleByte;
    int m_nUnderline = 1;
    int m_nStrikeOut = -4;
    int m_nLineThickness = 1;
    int m_nInkLeft = 0;
    int m_nInkRight = 0;
    uint64_t m_nSerial;
};
