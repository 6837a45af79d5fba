// A font request for tests: a LOGFONTA with the fields tests vary.
#pragma once
#include <cstring>

#include "platform/gdi/gditypes.h"

inline LOGFONTA FontRequest(const char* face, LONG height, LONG weight = FW_NORMAL, BYTE italic = 0,
                            BYTE charset = DEFAULT_CHARSET) {
    LOGFONTA lf;
    lf.lfHeight = height;
    lf.lfWeight = weight;
    lf.lfItalic = italic;
    lf.lfCharSet = charset;
    std::strncpy(lf.lfFaceName, face, LF_FACESIZE - 1);
    return lf;
}
