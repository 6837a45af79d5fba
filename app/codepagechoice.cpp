#include "app/codepagechoice.h"

#include <algorithm>
#include <charconv>
#include <fstream>

#include "htmldoc/encodingguess.h"
#include "htmldoc/encodingsniff.h"
#include "platform/codepage/codepage.h"
#include "platform/codepage/iconvcodec.h"
#include "platform/codepage/transcode.h"

namespace {

constexpr size_t kHeadBytes = 256 << 10;

bool IsKana(char32_t ch) { return ch >= 0x3041 && ch <= 0x30FF; }
bool IsHangul(char32_t ch) { return ch >= 0xAC00 && ch <= 0xD7A3; }
bool IsHan(char32_t ch) { return ch >= 0x4E00 && ch <= 0x9FFF; }

// Whether the ideograph is one of GB 2312, the simplified characters at the core of 936, whose
// two bytes are both above 0xA0; the rest of 936 holds the traditional ones too.
bool IsGb2312(char32_t ch) {
    std::string bytes;
    size_t unmappable = 0;
    EncodeCodePoints(*EncodingOfCodePage(936), std::u32string_view(&ch, 1), &bytes, {}, &unmappable);
    return unmappable == 0 && bytes.size() == 2 && static_cast<unsigned char>(bytes[0]) > 0xA0 &&
           static_cast<unsigned char>(bytes[1]) > 0xA0;
}

// For Unicode text: Japanese by its kana, Korean by its Hangul, and Chinese as simplified or
// traditional by which code page's core holds more of its ideographs.
UINT CodePageOfText(std::u32string_view chars) {
    std::u32string han;
    for (char32_t ch : chars) {
        if (IsKana(ch)) return 932;
        if (IsHangul(ch)) return 949;
        if (IsHan(ch) && han.size() < 200 && han.find(ch) == std::u32string::npos) han += ch;
    }
    if (han.empty()) return 1252;
    size_t simplified = 0, traditional = 0;
    for (char32_t ch : han) {
        simplified += IsGb2312(ch);
        traditional += CanEncode(*EncodingOfCodePage(950), ch);
    }
    return traditional > simplified ? 950 : 936;
}

}  // namespace

std::string ReadFileHead(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    std::string head(kHeadBytes, '\0');
    file.read(head.data(), static_cast<std::streamsize>(head.size()));
    head.resize(static_cast<size_t>(std::max<std::streamsize>(0, file.gcount())));
    return head;
}

UINT ChooseCodePage(std::string_view head, std::string_view asked) {
    if (!asked.empty()) {
        UINT cp = 0;
        CPINFO info;
        const auto parsed = std::from_chars(asked.data(), asked.data() + asked.size(), cp);
        const bool number = parsed.ec == std::errc() && parsed.ptr == asked.data() + asked.size();
        return number && cp != CP_ACP && GetCPInfo(cp, &info) ? cp : 0;
    }
    const CByteOrderMark bom = DetectByteOrderMark(head);
    const CEncodingInfo* enc = bom.encoding ? bom.encoding : PrescanMetaCharset(head);
    if (!enc) enc = &GuessEncoding(head, *FindEncoding("windows-1252"));
    if (enc->nCodePage) return enc->nCodePage;
    const std::string_view name = enc->pszName;
    if (name == "EUC-JP" || name == "ISO-2022-JP") return 932;
    if (name == "gb18030") return 936;
    if (!enc->IsUnicode()) return 1252;
    std::u32string chars;
    IconvDecode(enc->pszIconv, head.substr(bom.nLength), &chars, {}, enc == &Utf8Encoding() ? 1 : 2);
    return CodePageOfText(chars);
}
