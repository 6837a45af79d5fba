#include "platform/testing/testclipboard.h"

bool CTestClipboard::Write(const ClipboardFormats& formats) {
    if (m_bRefusing) return false;
    m_formats = formats;
    ++m_nWrites;
    return true;
}
