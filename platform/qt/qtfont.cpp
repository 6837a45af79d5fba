#include "platform/qt/qtfont.h"

#include <QFont>
#include <QCoreApplication>
#include <QFontDatabase>
#include <QHash>
#include <QtMath>
#include <algorithm>
#include <cstring>
#include <string>
#include <vector>

#include "platform/codepage/codepage.h"
#include "platform/codepage/convert.h"
#include "platform/codepage/leadbyte.h"
#include "platform/codepage/symbol.h"

namespace {

// The em size of a font asked for with lfHeight 0.
constexpr qreal kDefaultEm = 16;
// Stands in for characters that a face lacks; it has the arrows of the Symbol encoding.
const char* const kFallbackFamily = "DejaVu Sans";
// The size at which the ratios of ascent and descent to the em are read.
constexpr qreal kReferenceSize = 256;

QFontDatabase::WritingSystem WritingSystemOf(UINT codePage) {
    switch (codePage) {
        case 932: return QFontDatabase::Japanese;
        case 936: return QFontDatabase::SimplifiedChinese;
        case 949: return QFontDatabase::Korean;
        case 950: return QFontDatabase::TraditionalChinese;
        default: return QFontDatabase::Any;
    }
}

QRawFont RawFontOf(const QString& family, const LOGFONTA& lf, qreal pixelSize,
                   QFontDatabase::WritingSystem ws = QFontDatabase::Any) {
    QFont font(family);
    // For a writing system the face may come from another family that has its characters.
    const int merging = ws == QFontDatabase::Any ? QFont::NoFontMerging : 0;
    font.setStyleStrategy(QFont::StyleStrategy(merging | QFont::PreferOutline));
    font.setWeight(QFont::Weight(std::clamp<int>(lf.lfWeight ? lf.lfWeight : FW_NORMAL, 1, 1000)));
    font.setItalic(lf.lfItalic != 0);
    font.setHintingPreference(QFont::PreferFullHinting);
    font.setPixelSize(std::max(1, qRound(pixelSize)));
    QRawFont raw = QRawFont::fromFont(font, ws);
    if (raw.isValid()) raw.setPixelSize(pixelSize);
    return raw;
}

// The pixel size whose rounded ascent and descent add up to `cell`, given their ratios to the em.
qreal PixelSizeForCell(LONG cell, qreal ascentRatio, qreal descentRatio) {
    const qreal guess = cell / (ascentRatio + descentRatio);
    qreal best = guess;
    qreal bestDistance = 1e9;
    for (int step = -32; step <= 32; ++step) {
        const qreal size = guess + step / 64.0;
        if (qRound(ascentRatio * size) + qRound(descentRatio * size) != cell) continue;
        if (qAbs(size - guess) < bestDistance) {
            best = size;
            bestDistance = qAbs(size - guess);
        }
    }
    return best;
}

// The character a byte of the font's character set stands for; 0 for none.
char32_t CharOfByte(BYTE b, bool symbol) {
    if (symbol) return UnicodeFromSymbolByte(b);
    if (b < 0x20 || b == 0x7F || IsDBCSLeadByteEx(CP_ACP, b)) return 0;
    const char byte = static_cast<char>(b);
    std::u16string utf16;
    const ConvertResult r = MultiByteToUtf16(CP_ACP, std::string_view(&byte, 1), &utf16);
    return r.Exact() && utf16.size() == 1 ? utf16[0] : 0;
}

int RoundedAdvance(const QRawFont& face, quint32 glyph) {
    const QList<QPointF> advances = face.advancesForGlyphIndexes(QList<quint32>{glyph}, QRawFont::UseDesignMetrics);
    return advances.isEmpty() ? 0 : qRound(advances[0].x());
}

}  // namespace

QString CQtFont::FamilyFor(const QString& face) {
    static const QHash<QString, QString> classic{
        {"times new roman", "Liberation Serif"}, {"times", "Liberation Serif"},
        {"arial", "Liberation Sans"},            {"ms sans serif", "Liberation Sans"},
        {"helvetica", "Liberation Sans"},        {"courier new", "Liberation Mono"},
        {"courier", "Liberation Mono"},          {"symbol", kFallbackFamily},
    };
    const auto it = classic.find(face.toLower());
    return it != classic.end() ? *it : face;
}

CQtFont::CQtFont() {
    static uint64_t serials = 0;
    m_nSerial = ++serials;
}

namespace {

bool SameRequest(const LOGFONTA& a, const LOGFONTA& b) {
    return a.lfHeight == b.lfHeight && a.lfWidth == b.lfWidth && a.lfEscapement == b.lfEscapement &&
           a.lfOrientation == b.lfOrientation && a.lfWeight == b.lfWeight && a.lfItalic == b.lfItalic &&
           a.lfUnderline == b.lfUnderline && a.lfStrikeOut == b.lfStrikeOut && a.lfCharSet == b.lfCharSet &&
           a.lfOutPrecision == b.lfOutPrecision && a.lfClipPrecision == b.lfClipPrecision &&
           a.lfQuality == b.lfQuality && a.lfPitchAndFamily == b.lfPitchAndFamily &&
           strncmp(a.lfFaceName, b.lfFaceName, LF_FACESIZE) == 0;
}

// The fonts realised last, newest first. Realising one looks up and measures the glyph of every
// byte, which takes milliseconds, and a printout makes its header and footer fonts anew for each
// page; a realised font never changes, so the same request in the same code page gets it again.
struct RealisedFont {
    LOGFONTA request;
    UINT codePage;
    std::shared_ptr<CQtFont> font;
};
constexpr size_t kRealisedFontsKept = 16;

// Emptied when the application goes, while Qt's font engines are still there to release.
std::vector<RealisedFont>& RealisedFonts() {
    static std::vector<RealisedFont> fonts;
    static const bool emptiedAtExit = (qAddPostRoutine([] { RealisedFonts().clear(); }), true);
    (void)emptiedAtExit;
    return fonts;
}

}  // namespace

std::shared_ptr<CQtFont> CQtFont::Create(const LOGFONTA& lf) {
    std::vector<RealisedFont>& kept = RealisedFonts();
    const UINT codePage = GetProcessCodePage();
    const auto same = std::find_if(kept.begin(), kept.end(), [&](const RealisedFont& f) {
        return f.codePage == codePage && SameRequest(f.request, lf);
    });
    if (same != kept.end()) {
        std::rotate(kept.begin(), same, same + 1);
        return kept.front().font;
    }
    std::shared_ptr<CQtFont> font(new CQtFont);
    if (!font->Realise(lf)) return nullptr;
    if (kept.size() == kRealisedFontsKept) kept.pop_back();
    kept.insert(kept.begin(), RealisedFont{lf, codePage, font});
    return font;
}

bool CQtFont::Realise(const LOGFONTA& lf) {
    m_lf = lf;
    const QString face = QString::fromLatin1(lf.lfFaceName, static_cast<int>(strnlen(lf.lfFaceName, LF_FACESIZE)));
    const QString family = FamilyFor(face.isEmpty() ? QStringLiteral("Liberation Sans") : face);
    QRawFont& own = m_faces[kPrimary];
    own = RawFontOf(family, lf, kReferenceSize);
    if (!own.isValid()) return false;

    // A positive height is the cell: ascent plus descent, as integers, exactly.
    const qreal ascentRatio = own.ascent() / kReferenceSize;
    const qreal descentRatio = own.descent() / kReferenceSize;
    qreal em = kDefaultEm;
    if (lf.lfHeight > 0)
        em = PixelSizeForCell(lf.lfHeight, ascentRatio, descentRatio);
    else if (lf.lfHeight < 0)
        em = -static_cast<qreal>(lf.lfHeight);
    own.setPixelSize(em);
    m_faces[kFallback] = RawFontOf(kFallbackFamily, lf, em);
    if (const auto ws = WritingSystemOf(GetProcessCodePage()); ws != QFontDatabase::Any)
        m_faces[kDoubleByte] = RawFontOf(family, lf, em, ws);

    m_tm.tmAscent = qRound(own.ascent());
    m_tm.tmDescent = lf.lfHeight > 0 ? lf.lfHeight - m_tm.tmAscent : qRound(own.descent());
    m_tm.tmHeight = m_tm.tmAscent + m_tm.tmDescent;
    m_tm.tmInternalLeading = std::max<LONG>(0, m_tm.tmHeight - qRound(em));
    m_tm.tmExternalLeading = std::max(0, qRound(own.leading()));
    m_tm.tmAveCharWidth = std::max(1, qRound(own.averageCharWidth()));
    m_tm.tmMaxCharWidth = std::max(1, qRound(own.maxCharWidth()));
    m_tm.tmWeight = lf.lfWeight ? lf.lfWeight : FW_NORMAL;
    m_tm.tmItalic = lf.lfItalic;
    m_tm.tmUnderlined = lf.lfUnderline;
    m_tm.tmStruckOut = lf.lfStrikeOut;
    m_tm.tmCharSet = lf.lfCharSet;
    m_nLineThickness = std::max(1, qRound(own.lineThickness()));
    m_nUnderline = std::max(1, qRound(own.underlinePosition()));
    m_nStrikeOut = -std::max(1, qRound(own.xHeight() / 2));

    MeasureBytes();
    const bool fixed = m_advance['i'] == m_advance['W'] && m_advance['.'] == m_advance['M'];
    m_tm.tmPitchAndFamily = static_cast<BYTE>(TMPF_TRUETYPE | TMPF_VECTOR | (fixed ? 0 : TMPF_FIXED_PITCH));
    return true;
}

CQtFont::Glyph CQtFont::Lookup(char32_t ch, Face own) const {
    for (Face face : {own, kFallback}) {
        const QRawFont& raw = m_faces[face];
        if (!raw.isValid() || !raw.supportsCharacter(ch)) continue;
        const QList<quint32> glyphs = raw.glyphIndexesForString(QString::fromUcs4(&ch, 1));
        if (glyphs.size() == 1 && glyphs[0] != 0) return {glyphs[0], face, 0};
    }
    return {};
}

// Advances are whole pixels, and the ABC triples come from the glyph's ink so that a + b + c
// is the advance. A byte without a character has the advance of the missing glyph and no ink.
void CQtFont::MeasureBytes() {
    const bool symbol = m_lf.lfCharSet == SYMBOL_CHARSET;
    const int missing = RoundedAdvance(m_faces[kPrimary], 0);
    for (int c = 0; c < 256; ++c) {
        const char32_t ch = CharOfByte(static_cast<BYTE>(c), symbol);
        const Glyph glyph = ch ? Lookup(ch, kPrimary) : Glyph{};
        m_glyphs[c] = glyph;
        const QRawFont& face = m_faces[glyph.face == kNoFace ? kPrimary : glyph.face];
        const int advance = glyph.face == kNoFace ? missing : RoundedAdvance(face, glyph.index);
        const QRectF ink = glyph.face == kNoFace ? QRectF() : face.boundingRect(glyph.index);
        if (ink.isEmpty()) {
            m_abc[c] = {0, static_cast<UINT>(std::max(advance, 0)), 0};
        } else {
            const int left = qFloor(ink.left());
            const int right = qCeil(ink.right());
            m_abc[c] = {left, static_cast<UINT>(right - left), advance - right};
            m_nInkLeft = std::max(m_nInkLeft, -left);
            m_nInkRight = std::max(m_nInkRight, right - advance);
        }
    }
    AdvancesFromAbc();
    m_bHasABC = true;
    m_bHasWidths = true;
}

CQtFont::Glyph CQtFont::GlyphOfDoubleByte(BYTE lead, BYTE trail) const {
    const quint16 key = static_cast<quint16>(lead << 8 | trail);
    if (auto it = m_doubleByte.find(key); it != m_doubleByte.end()) return it->second;
    const char bytes[2] = {static_cast<char>(lead), static_cast<char>(trail)};
    std::u16string utf16;
    Glyph glyph;
    if (MultiByteToUtf16(CP_ACP, std::string_view(bytes, 2), &utf16).Exact() && !utf16.empty()) {
        const char32_t ch = QChar::isHighSurrogate(utf16[0]) && utf16.size() == 2
                                ? QChar::surrogateToUcs4(utf16[0], utf16[1])
                                : utf16[0];
        glyph = Lookup(ch, m_faces[kDoubleByte].isValid() ? kDoubleByte : kPrimary);
        if (glyph.face != kNoFace) {
            const int advance = RoundedAdvance(m_faces[glyph.face], glyph.index);
            glyph.offset = static_cast<qint16>((DoubleByteAdvance() - advance) / 2);
        }
    }
    m_doubleByte.emplace(key, glyph);
    return glyph;
}
