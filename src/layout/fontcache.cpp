// The font cache: the widths that all measuring reads.
#include "src/view/zentrelctrl.h"

BOOL CZentrelCtrl::RebuildFontCache() {
    // Until fonts are measured on a device, every byte is one average character wide.
    for (LONG& w : m_WrapMetrics.m_aWidth) w = m_nCharWidth;
    m_nTabPixels = m_nTabSize * m_nCharWidth;
    return TRUE;
}

void CZentrelCtrl::ClearFontCache() {
    m_nCharWidth = 1;
    m_nLineHeight = 1;
    m_nAscent = 1;
    m_nTabPixels = 40;
    m_WrapMetrics = CFontMetrics();
}
