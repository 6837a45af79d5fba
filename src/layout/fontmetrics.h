// One measured font: the advance of each of the 256 byte values, which is all that measuring
// text needs.
#pragma once
#include "platform/com/types.h"

class CFontMetrics {
public:
    virtual ~CFontMetrics() = default;
    LONG m_aWidth[256] = {};
};
