// One measured font: the device font, its metrics, and the advance of each of the 256 byte
// values, which is all that measuring text needs.
#pragma once
#include "platform/gdi/dc.h"

class CFontMetrics {
public:
    virtual ~CFontMetrics() = default;  // the font goes with the record

    TEXTMETRICA m_tm{};    // metrics on the device the font was built for
    CFont m_hFont;         // the device font, owned
    BOOL m_bHasABC = FALSE;  // the triples came from the device
    ABC m_aABC[256]{};
    LONG m_aWidth[256] = {};  // a + b + c of each byte value
};
