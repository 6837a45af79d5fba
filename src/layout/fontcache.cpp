// The font cache: every font word of the style table measured once on a device, so that all
// measuring in the view (wrapping, mapping, the caret) is table lookup.
#include <algorithm>
#include <cstring>

#include "platform/gdi/fontobject.h"
#include "platform/window/paint.h"
#include "src/view/zentrelctrl.h"

namespace {

// The view's numbers when the cache is empty.
constexpr long kClearedTabPixels = 40;
// A font object's size is a number of points; the device font asks for that many pixels plus
// this as its cell height.
constexpr long kCellHeightExtra = 6;

// Metrics of a font object selected into the context; false if it cannot be realised.
bool ObjectMetrics(CDC* pDC, const FontDesc& desc, TEXTMETRICA* tm) {
    CFont font;
    if (!CreateFontFromDesc(desc, &font)) return false;
    CFont* old = pDC->SelectObject(&font);
    BOOL ok = pDC->GetTextMetrics(tm);
    pDC->SelectObject(old);
    return ok != FALSE;
}

// The device font of one font word: face, size and charset from the font object, the rest from
// the word. The object's own weight and slant are not looked at.
LOGFONTA FontForWord(const FontDesc& desc, DWORD word, BYTE objectPitch, BOOL bPrinter) {
    LOGFONTA lf;
    lf.lfOutPrecision = bPrinter ? OUT_OUTLINE_PRECIS : OUT_DEFAULT_PRECIS;
    lf.lfHeight = FontDescWholePoints(desc) + kCellHeightExtra;
    lf.lfWeight = (word & FONT_BOLD) ? FW_BOLD : FW_NORMAL;
    lf.lfItalic = (word & FONT_ITALIC) ? 1 : 0;
    lf.lfUnderline = (word & FONT_UNDERLINE) ? 1 : 0;
    lf.lfStrikeOut = (word & FONT_STRIKEOUT) ? 1 : 0;
    lf.lfCharSet = static_cast<BYTE>(desc.charset);
    lf.lfClipPrecision = CLIP_CHARACTER_PRECIS;
    lf.lfQuality = PROOF_QUALITY;
    lf.lfPitchAndFamily = (objectPitch & TMPF_FIXED_PITCH) ? VARIABLE_PITCH : FIXED_PITCH;
    std::strncpy(lf.lfFaceName, desc.name.c_str(), LF_FACESIZE - 1);
    return lf;
}

// Reads the 256 widths of the selected font: the device's triples where it has them, else plain
// widths (or the average) with a synthesised bold or italic not widening the text.
void MeasureBytes(CDC* pDC, DWORD word, CFontMetrics* rec) {
    if (pDC->GetCharABCWidths(0, 255, rec->m_aABC)) {
        rec->m_bHasABC = TRUE;
    } else {
        int widths[256];
        if (!pDC->GetCharWidth(0, 255, widths)) std::fill(std::begin(widths), std::end(widths), rec->m_tm.tmAveCharWidth);
        for (int c = 0; c < 256; ++c) {
            rec->m_aABC[c].abcA = (word & FONT_ITALIC) ? -rec->m_tm.tmOverhang : 0;
            rec->m_aABC[c].abcB = static_cast<UINT>(widths[c]);
            rec->m_aABC[c].abcC = (word & FONT_BOLD) ? -rec->m_tm.tmOverhang : 0;
        }
        rec->m_bHasABC = FALSE;
    }
    for (int c = 0; c < 256; ++c)
        rec->m_aWidth[c] = rec->m_aABC[c].abcA + static_cast<LONG>(rec->m_aABC[c].abcB) + rec->m_aABC[c].abcC;
}

}  // namespace

void CZentrelCtrl::BuildFontCache(CDC* pDC, BOOL bPrinter) {
    ClearFontCache();
    for (const FormatStyle& style : m_Styles) {
        const DWORD word = style.dwFont;
        if (m_FontMetrics.count(word)) continue;
        const DWORD role = word & FONT_ROLE_MASK;
        const CFontHolder& holder = role == FONT_ROLE_GUTTER   ? m_fontGutter
                                    : role == FONT_ROLE_SYMBOL ? m_fontSymbol
                                                               : m_fontEdit;
        const FontDesc& desc = holder.GetFontDesc();
        TEXTMETRICA objectTm;
        BYTE objectPitch = ObjectMetrics(pDC, desc, &objectTm) ? objectTm.tmPitchAndFamily : 0;

        auto rec = std::make_unique<CFontMetrics>();
        LOGFONTA lf = FontForWord(desc, word, objectPitch, bPrinter);
        if (!rec->m_hFont.CreateFontIndirect(&lf)) continue;
        CFont* old = pDC->SelectObject(&rec->m_hFont);
        pDC->GetTextMetrics(&rec->m_tm);
        m_nLineHeight = std::max<long>(m_nLineHeight, rec->m_tm.tmHeight + 1);
        m_nAscent = std::max<long>(m_nAscent, rec->m_tm.tmAscent);
        m_nCharWidth = std::max<long>(m_nCharWidth, rec->m_tm.tmAveCharWidth);
        MeasureBytes(pDC, word, rec.get());
        if (role != FONT_ROLE_GUTTER && role != FONT_ROLE_SYMBOL) {
            for (int c = 0; c < 256; ++c) m_WrapMetrics.m_aWidth[c] = std::max(m_WrapMetrics.m_aWidth[c], rec->m_aWidth[c]);
        }
        pDC->SelectObject(old);
        m_FontMetrics.emplace(word, std::move(rec));
    }
    m_nTabPixels = m_nTabSize * m_nCharWidth;
}

BOOL CZentrelCtrl::RebuildFontCache() {
    CDC* dc = GetDC(nullptr);
    if (!dc) return TRUE;
    PrepareDC(dc);
    BuildFontCache(dc, FALSE);
    ReleaseDC(nullptr, dc);
    return TRUE;
}

void CZentrelCtrl::ClearFontCache() {
    m_RowCheckpoints.Clear();
    m_FontMetrics.clear();
    m_nCharWidth = 1;
    m_nLineHeight = 1;
    m_nAscent = 1;
    m_nTabPixels = kClearedTabPixels;
    m_WrapMetrics = CFontMetrics();
}

long CZentrelCtrl::GetGutterFontWidth() {
    CDC* dc = GetDC(nullptr);
    if (!dc) return 0;
    TEXTMETRICA tm;
    long width = ObjectMetrics(dc, m_fontGutter.GetFontDesc(), &tm) ? tm.tmAveCharWidth : 0;
    ReleaseDC(nullptr, dc);
    return width;
}

CFontMetrics* CZentrelCtrl::FindFontMetrics(DWORD dwFont) const {
    auto it = m_FontMetrics.find(dwFont);
    return it != m_FontMetrics.end() ? it->second.get() : nullptr;
}

CFontMetrics* CZentrelCtrl::GetFontMetrics(DWORD dwFont) const {
    // A word without a record (a style changed since the last build, or a font that could not
    // be made) measures in the plain edit font.
    if (CFontMetrics* metrics = FindFontMetrics(dwFont)) return metrics;
    if (CFontMetrics* metrics = FindFontMetrics(0)) return metrics;
    return m_FontMetrics.empty() ? nullptr : m_FontMetrics.begin()->second.get();
}
