#include "platform/qt/qtgdi.h"

#include "platform/qt/qtdc.h"
#include "platform/qt/qtfont.h"

std::shared_ptr<CFontImpl> CQtGdiBackend::CreateFont(const LOGFONTA& lf) { return CQtFont::Create(lf); }

std::unique_ptr<CDC> CQtGdiBackend::CreateScreenDC() { return CQtDC::Screen(); }
