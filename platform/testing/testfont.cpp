#include "platform/testing/testfont.h"

#include <cstring>
#include <string_view>

namespace {

constexpr std::string_view kNarrow = "ilIjtf.,:;'!| ";
constexpr std::string_view kWide = "mwMW@";

std::string_view FaceOf(const LOGFONTA& lf) { return {lf.lfFaceName, strnlen(lf.lfFaceName, LF_FACESIZE)}; }

bool FaceStarts(const LOGFONTA& lf, std::string_view prefix) { return FaceOf(lf).starts_with(prefix); }

bool IsFixedPitchFace(const LOGFONTA& lf) { return FaceStarts(lf, "Courier") || FaceStarts(lf, "Mono"); }

int AdvanceOf(BYTE c, int average, bool fixed, bool bold) {
    int advance = average;
    if (!fixed && kNarrow.find(static_cast<char>(c)) != std::string_view::npos)
        advance = (average + 1) / 2;
    else if (!fixed && kWide.find(static_cast<char>(c)) != std::string_view::npos)
        advance = average * 3 / 2;
    return advance + (bold ? 1 : 0);
}

}  // namespace

LONG CTestFont::CellHeight(LONG lfHeight) {
    if (lfHeight > 0) return lfHeight;
    if (lfHeight < 0) return -lfHeight * 5 / 4;
    return 16;
}

std::shared_ptr<CTestFont> CTestFont::Create(const LOGFONTA& lf) {
    if (FaceOf(lf) == "Missing") return nullptr;
    return std::make_shared<CTestFont>(lf);
}

CTestFont::CTestFont(const LOGFONTA& lf) {
    m_lf = lf;
    const bool bold = lf.lfWeight >= 600;
    const bool raster = FaceStarts(lf, "Raster");
    const bool fixed = IsFixedPitchFace(lf);
    const LONG h = CellHeight(lf.lfHeight);
    const int average = static_cast<int>(h / 2);

    m_tm.tmHeight = h;
    m_tm.tmAscent = h * 4 / 5;
    m_tm.tmDescent = h - m_tm.tmAscent;
    m_tm.tmInternalLeading = h / 5;
    m_tm.tmAveCharWidth = average;
    m_tm.tmMaxCharWidth = fixed ? average + (bold ? 1 : 0) : AdvanceOf('W', average, false, bold);
    m_tm.tmWeight = lf.lfWeight ? lf.lfWeight : FW_NORMAL;
    m_tm.tmOverhang = raster && (bold || lf.lfItalic) ? 1 : 0;
    m_tm.tmItalic = lf.lfItalic;
    m_tm.tmUnderlined = lf.lfUnderline;
    m_tm.tmStruckOut = lf.lfStrikeOut;
    m_tm.tmCharSet = lf.lfCharSet;
    m_tm.tmPitchAndFamily = static_cast<BYTE>((raster ? 0 : TMPF_TRUETYPE) | (fixed ? 0 : TMPF_FIXED_PITCH));

    m_bHasWidths = FaceOf(lf) != "NoWidths";
    m_bHasABC = m_bHasWidths && !raster;
    for (int c = 0; c < 256; ++c) {
        m_abc[c] = {0, static_cast<UINT>(AdvanceOf(static_cast<BYTE>(c), average, fixed, bold)), 0};
    }
    AdvancesFromAbc();
}
