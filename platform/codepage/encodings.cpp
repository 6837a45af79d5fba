#include "platform/codepage/encodings.h"

#include <algorithm>
#include <cctype>
#include <string>

#include "platform/codepage/codepage.h"

namespace {

struct CEncodingEntry {
    CEncodingInfo info;
    const char* pszLabels;  // every label of the encoding, separated by single spaces
};

using F = EncodingForm;

// The labels that browsers accept for each encoding. Latin-1 and ASCII labels name windows-1252,
// as in browsers: pages that say latin1 routinely hold the characters of 0x80..0x9F.
const CEncodingEntry kEncodings[] = {
    {{"UTF-8", "UTF-8", 0, F::AsciiSafe},
     "unicode-1-1-utf-8 unicode11utf8 unicode20utf8 utf-8 utf8 x-unicode20utf8"},
    {{"UTF-16LE", "UTF-16LE", 0, F::Opaque},
     "csunicode iso-10646-ucs-2 ucs-2 unicode unicodefeff utf-16 utf-16le"},
    {{"UTF-16BE", "UTF-16BE", 0, F::Opaque}, "unicodefffe utf-16be"},
    {{"windows-1252", nullptr, 1252, F::AsciiSafe},
     "ansi_x3.4-1968 ascii cp1252 cp819 csisolatin1 ibm819 iso-8859-1 iso-ir-100 iso8859-1 iso88591 "
     "iso_8859-1 iso_8859-1:1987 l1 latin1 us-ascii windows-1252 x-cp1252"},
    {{"Shift_JIS", "CP932", 932, F::DoubleByte},
     "csshiftjis ms932 ms_kanji shift-jis shift_jis sjis windows-31j x-sjis"},
    {{"GBK", "CP936", 936, F::DoubleByte},
     "chinese csgb2312 csiso58gb231280 gb2312 gb_2312 gb_2312-80 gbk iso-ir-58 x-gbk"},
    {{"EUC-KR", "CP949", 949, F::DoubleByte},
     "cseuckr csksc56011987 euc-kr iso-ir-149 korean ks_c_5601-1987 ks_c_5601-1989 ksc5601 ksc_5601 "
     "windows-949"},
    {{"Big5", "BIG5-HKSCS", 950, F::DoubleByte}, "big5 big5-hkscs cn-big5 csbig5 x-x-big5"},
    {{"gb18030", "GB18030", 0, F::Opaque}, "gb18030"},
    {{"EUC-JP", "EUC-JP", 0, F::AsciiSafe}, "cseucpkdfmtjapanese euc-jp x-euc-jp"},
    {{"ISO-2022-JP", "ISO-2022-JP", 0, F::Opaque}, "csiso2022jp iso-2022-jp"},
    {{"IBM866", "IBM866", 0, F::AsciiSafe}, "866 cp866 csibm866 ibm866"},
    {{"ISO-8859-2", "ISO-8859-2", 0, F::AsciiSafe},
     "csisolatin2 iso-8859-2 iso-ir-101 iso8859-2 iso88592 iso_8859-2 iso_8859-2:1987 l2 latin2"},
    {{"ISO-8859-3", "ISO-8859-3", 0, F::AsciiSafe},
     "csisolatin3 iso-8859-3 iso-ir-109 iso8859-3 iso88593 iso_8859-3 iso_8859-3:1988 l3 latin3"},
    {{"ISO-8859-4", "ISO-8859-4", 0, F::AsciiSafe},
     "csisolatin4 iso-8859-4 iso-ir-110 iso8859-4 iso88594 iso_8859-4 iso_8859-4:1988 l4 latin4"},
    {{"ISO-8859-5", "ISO-8859-5", 0, F::AsciiSafe},
     "csisolatincyrillic cyrillic iso-8859-5 iso-ir-144 iso8859-5 iso88595 iso_8859-5 iso_8859-5:1988"},
    {{"ISO-8859-6", "ISO-8859-6", 0, F::AsciiSafe},
     "arabic asmo-708 csiso88596e csiso88596i csisolatinarabic ecma-114 iso-8859-6 iso-8859-6-e "
     "iso-8859-6-i iso-ir-127 iso8859-6 iso88596 iso_8859-6 iso_8859-6:1987"},
    {{"ISO-8859-7", "ISO-8859-7", 0, F::AsciiSafe},
     "csisolatingreek ecma-118 elot_928 greek greek8 iso-8859-7 iso-ir-126 iso8859-7 iso88597 "
     "iso_8859-7 iso_8859-7:1987 sun_eu_greek"},
    {{"ISO-8859-8", "ISO-8859-8", 0, F::AsciiSafe},
     "csiso88598e csisolatinhebrew hebrew iso-8859-8 iso-8859-8-e iso-ir-138 iso8859-8 iso88598 "
     "iso_8859-8 iso_8859-8:1988 visual"},
    {{"ISO-8859-8-I", "ISO-8859-8", 0, F::AsciiSafe}, "csiso88598i iso-8859-8-i logical"},
    {{"ISO-8859-10", "ISO-8859-10", 0, F::AsciiSafe},
     "csisolatin6 iso-8859-10 iso-ir-157 iso8859-10 iso885910 l6 latin6"},
    {{"ISO-8859-13", "ISO-8859-13", 0, F::AsciiSafe}, "iso-8859-13 iso8859-13 iso885913"},
    {{"ISO-8859-14", "ISO-8859-14", 0, F::AsciiSafe}, "iso-8859-14 iso8859-14 iso885914"},
    {{"ISO-8859-15", "ISO-8859-15", 0, F::AsciiSafe},
     "csisolatin9 iso-8859-15 iso8859-15 iso885915 iso_8859-15 l9"},
    {{"ISO-8859-16", "ISO-8859-16", 0, F::AsciiSafe}, "iso-8859-16"},
    {{"KOI8-R", "KOI8-R", 0, F::AsciiSafe}, "cskoi8r koi koi8 koi8-r koi8_r"},
    {{"KOI8-U", "KOI8-U", 0, F::AsciiSafe}, "koi8-ru koi8-u"},
    {{"macintosh", "MACINTOSH", 0, F::AsciiSafe}, "csmacintosh mac macintosh x-mac-roman"},
    {{"x-mac-cyrillic", "MAC-CYRILLIC", 0, F::AsciiSafe}, "x-mac-cyrillic x-mac-ukrainian"},
    {{"windows-874", "CP874", 0, F::AsciiSafe},
     "dos-874 iso-8859-11 iso8859-11 iso885911 tis-620 windows-874"},
    {{"windows-1250", "CP1250", 0, F::AsciiSafe}, "cp1250 windows-1250 x-cp1250"},
    {{"windows-1251", "CP1251", 0, F::AsciiSafe}, "cp1251 windows-1251 x-cp1251"},
    {{"windows-1253", "CP1253", 0, F::AsciiSafe}, "cp1253 windows-1253 x-cp1253"},
    {{"windows-1254", "CP1254", 0, F::AsciiSafe},
     "cp1254 csisolatin5 iso-8859-9 iso-ir-148 iso8859-9 iso88599 iso_8859-9 iso_8859-9:1989 l5 "
     "latin5 windows-1254 x-cp1254"},
    {{"windows-1255", "CP1255", 0, F::AsciiSafe}, "cp1255 windows-1255 x-cp1255"},
    {{"windows-1256", "CP1256", 0, F::AsciiSafe}, "cp1256 windows-1256 x-cp1256"},
    {{"windows-1257", "CP1257", 0, F::AsciiSafe}, "cp1257 windows-1257 x-cp1257"},
    {{"windows-1258", "CP1258", 0, F::AsciiSafe}, "cp1258 windows-1258 x-cp1258"},
};

bool IsAsciiSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\f' || c == '\r'; }

std::string NormalizedLabel(std::string_view label) {
    while (!label.empty() && IsAsciiSpace(label.front())) label.remove_prefix(1);
    while (!label.empty() && IsAsciiSpace(label.back())) label.remove_suffix(1);
    std::string lower(label);
    for (char& c : lower) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return lower;
}

bool HasLabel(const char* labels, std::string_view label) {
    std::string_view rest(labels);
    while (!rest.empty()) {
        const size_t space = rest.find(' ');
        if (rest.substr(0, space) == label) return true;
        if (space == std::string_view::npos) break;
        rest.remove_prefix(space + 1);
    }
    return false;
}

const CEncodingInfo& Named(const char* name) {
    for (const CEncodingEntry& entry : kEncodings)
        if (std::string_view(entry.info.pszName) == name) return entry.info;
    return kEncodings[0].info;
}

}  // namespace

bool CEncodingInfo::IsUnicode() const {
    return this == &Utf8Encoding() || this == &Utf16LeEncoding() || this == &Utf16BeEncoding();
}

bool CEncodingInfo::IsAsciiCompatible() const {
    return this != &Utf16LeEncoding() && this != &Utf16BeEncoding();
}

const CEncodingInfo* FindEncoding(std::string_view label) {
    const std::string wanted = NormalizedLabel(label);
    if (wanted.empty() || wanted.find(' ') != std::string::npos) return nullptr;
    for (const CEncodingEntry& entry : kEncodings)
        if (HasLabel(entry.pszLabels, wanted)) return &entry.info;
    return nullptr;
}

const CEncodingInfo* EncodingOfCodePage(UINT codePage) {
    if (codePage == CP_ACP) codePage = GetProcessCodePage();
    for (const CEncodingEntry& entry : kEncodings)
        if (entry.info.nCodePage == codePage) return &entry.info;
    return nullptr;
}

const CEncodingInfo& Utf8Encoding() {
    static const CEncodingInfo& info = Named("UTF-8");
    return info;
}

const CEncodingInfo& Utf16LeEncoding() {
    static const CEncodingInfo& info = Named("UTF-16LE");
    return info;
}

const CEncodingInfo& Utf16BeEncoding() {
    static const CEncodingInfo& info = Named("UTF-16BE");
    return info;
}
