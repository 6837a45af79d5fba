#include "htmldoc/unicodetext.h"

#include "platform/codepage/convert.h"

std::string TextFromUtf16Bytes(std::string_view bytes, std::vector<CLoadMark>* made) {
    std::u16string units;
    for (size_t i = 0; i + 1 < bytes.size(); i += 2) {
        const auto unit = static_cast<char16_t>(static_cast<uint8_t>(bytes[i]) | (static_cast<uint8_t>(bytes[i + 1]) << 8));
        if (unit == 0) break;
        units += unit;
    }
    std::string text;
    Utf16ToMultiByte(CP_ACP, units, &text, [made](char32_t cp, std::string& out) {
        const size_t pos = out.size();
        out += "&#" + std::to_string(static_cast<uint32_t>(cp)) + ";";
        if (made) made->push_back({static_cast<int32_t>(pos), static_cast<uint16_t>(out.size() - pos), 0, 0});
    });
    return text;
}
