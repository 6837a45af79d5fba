// The drawing backend of Qt: fonts over QRawFont (qtfont.h) and contexts over QImage (qtdc.h).
#pragma once
#include "platform/gdi/gdiobjects.h"

class CQtGdiBackend : public IGdiBackend {
public:
    std::shared_ptr<CFontImpl> CreateFont(const LOGFONTA& lf) override;
    std::unique_ptr<CDC> CreateScreenDC() override;
};
