// Text of the process code page as Qt's UTF-16 text and back: where the control's multi-byte
// text meets Qt's strings.
#pragma once
#include <QString>
#include <string>
#include <string_view>

#include "platform/codepage/convert.h"

inline QString QtTextFromCodePage(std::string_view text) {
    std::u16string units;
    MultiByteToUtf16(CP_ACP, text, &units);
    return QString::fromStdU16String(units);
}

inline std::string CodePageTextFromQt(const QString& text) {
    std::string bytes;
    Utf16ToMultiByte(CP_ACP, text.toStdU16String(), &bytes);
    return bytes;
}
