// Fonts of the deterministic backend: metrics from fixed formulas, so that a test can predict
// every number without a font file.
//
// With h the cell height (tmHeight):
//   h = lfHeight when positive (a 12-point font asked for with lfHeight 12 + 6 gives 18),
//       -lfHeight * 5 / 4 when negative (the em size is four fifths of the cell), 16 for 0.
//   tmAscent = h * 4 / 5, tmDescent = h - tmAscent, tmInternalLeading = h / 5,
//   tmExternalLeading = 0, tmAveCharWidth = w = h / 2, tmMaxCharWidth = the wide advance.
// Advance of a byte:
//   w for most bytes;
//   (w + 1) / 2 for the narrow set  i l I j t f . , : ; ' ! |  and space;
//   w * 3 / 2 for the wide set  m w M W @;
//   w for every byte in a fixed-pitch face (a face name starting with "Courier" or "Mono");
//   plus 1 on every byte when bold (lfWeight >= 600).
// Face names with a meaning of their own:
//   "Raster..." (any name starting so): no ABC data, so GetCharABCWidths fails and GetCharWidth
//       works; tmOverhang is 1 when bold or italic, and TMPF_TRUETYPE is not set;
//   "NoWidths": neither GetCharABCWidths nor GetCharWidth works;
//   "Missing": the font cannot be created.
// Every other face has ABC triples (0, advance, 0) and tmOverhang 0.
// tmPitchAndFamily: TMPF_TRUETYPE (not for Raster faces), and TMPF_FIXED_PITCH for variable pitch.
#pragma once
#include <memory>

#include "platform/gdi/gdiobjects.h"

class CTestFont : public CFontImpl {
public:
    // Null for the face "Missing".
    static std::shared_ptr<CTestFont> Create(const LOGFONTA& lf);
    explicit CTestFont(const LOGFONTA& lf);

    // The cell height that the formulas give for a requested lfHeight.
    static LONG CellHeight(LONG lfHeight);
};
