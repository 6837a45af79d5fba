#include <gtest/gtest.h>
#include <iconv.h>

#include <sstream>

#include "platform/codepage/codepage.h"
#include "platform/codepage/convert.h"
#include "platform/codepage/leadbyte.h"
#include "platform/codepage/symbol.h"
#include "platform/codepage/unicode.h"
#include "tests/codepagescope.h"
#include "tests/platform/casefile.h"

namespace {

constexpr UINT kDoubleBytePages[] = {932, 936, 949, 950};

std::string Utf8FromMb(UINT cp, std::string_view text) {
    std::string out;
    EXPECT_TRUE(MultiByteToUtf8(cp, text, &out).Exact()) << "code page " << cp;
    return out;
}

std::string MbFromUtf8(UINT cp, std::string_view text) {
    std::string out;
    EXPECT_TRUE(Utf8ToMultiByte(cp, text, &out).Exact()) << "code page " << cp;
    return out;
}

// The C library's own decoding of one byte of 1252, or -1 where it defines none.
long LibraryCp1252(unsigned char b) {
    iconv_t cd = iconv_open("UTF-32LE", "CP1252");
    if (cd == reinterpret_cast<iconv_t>(-1)) return -2;
    char in[1] = {static_cast<char>(b)};
    unsigned char out[4] = {};
    char* inp = in;
    char* outp = reinterpret_cast<char*>(out);
    size_t inLeft = 1, outLeft = 4;
    const size_t r = iconv(cd, &inp, &inLeft, &outp, &outLeft);
    iconv_close(cd);
    if (r == static_cast<size_t>(-1)) return -1;
    return out[0] | (out[1] << 8) | (out[2] << 16) | (long(out[3]) << 24);
}

TEST(CodePageInfo, Cp1252IsSingleByteWithNoLeadByte) {
    CPINFO info;
    ASSERT_TRUE(GetCPInfo(1252, &info));
    EXPECT_EQ(info.MaxCharSize, 1u);
    EXPECT_EQ(info.DefaultChar[0], '?');
    for (BYTE b : info.LeadByte) EXPECT_EQ(b, 0);
    for (int b = 0; b < 256; ++b) EXPECT_FALSE(IsDBCSLeadByteEx(1252, static_cast<BYTE>(b))) << b;
}

TEST(CodePageInfo, DoubleBytePagesHaveTheirLeadRanges) {
    CPINFO info;
    ASSERT_TRUE(GetCPInfo(932, &info));
    EXPECT_EQ(info.MaxCharSize, 2u);
    const BYTE expected932[12] = {0x81, 0x9F, 0xE0, 0xFC};
    EXPECT_EQ(std::vector<BYTE>(info.LeadByte, info.LeadByte + 12), std::vector<BYTE>(expected932, expected932 + 12));
    // The second range is found; the gap between the two ranges is not.
    for (int b : {0x81, 0x9F, 0xE0, 0xFC}) EXPECT_TRUE(IsDBCSLeadByteEx(932, static_cast<BYTE>(b))) << b;
    for (int b : {0x00, 0x41, 0x80, 0xA0, 0xB6, 0xDF, 0xFD, 0xFF})
        EXPECT_FALSE(IsDBCSLeadByteEx(932, static_cast<BYTE>(b))) << b;

    for (UINT cp : {936u, 949u, 950u}) {
        ASSERT_TRUE(GetCPInfo(cp, &info));
        EXPECT_EQ(info.MaxCharSize, 2u) << cp;
        EXPECT_EQ(std::vector<BYTE>(info.LeadByte, info.LeadByte + 3), (std::vector<BYTE>{0x81, 0xFE, 0})) << cp;
    }
}

// The table and the converters agree on where characters begin: no byte outside the lead
// ranges starts a two-byte character, and no lead byte is a character on its own. (Some lead
// bytes begin only unassigned or user-defined pairs, so a lead byte need not pair with anything.)
TEST(CodePageInfo, LeadRangesAgreeWithTheConverters) {
    for (UINT cp : kDoubleBytePages) {
        int pairing = 0, leads = 0;
        for (int b = 0x81; b <= 0xFE; ++b) {
            const bool lead = IsDBCSLeadByteEx(cp, static_cast<BYTE>(b)) != 0;
            bool pairs = false;
            for (int trail = 0x40; trail <= 0xFE && !pairs; ++trail) {
                const std::string two{static_cast<char>(b), static_cast<char>(trail)};
                std::u16string out;
                pairs = MultiByteToUtf16(cp, two, &out).Exact() && out.size() == 1;
            }
            pairing += pairs;
            leads += lead;
            EXPECT_TRUE(lead || !pairs) << "cp " << cp << " byte " << b;
            std::u16string alone;
            const bool single = MultiByteToUtf16(cp, std::string(1, char(b)), &alone).Exact();
            EXPECT_FALSE(lead && single) << "cp " << cp << " byte " << b;
        }
        EXPECT_GT(pairing * 2, leads) << "cp " << cp;  // most lead ranges are in use
    }
}

TEST(CodePageInfo, UnknownPagesAreRefusedAndTheProcessPageDefaultsTo1252) {
    EXPECT_EQ(GetProcessCodePage(), 1252u);
    CPINFO info;
    info.MaxCharSize = 77;
    EXPECT_FALSE(GetCPInfo(437, &info));
    EXPECT_EQ(info.MaxCharSize, 77u);
    EXPECT_FALSE(GetCPInfo(1252, nullptr));
    EXPECT_FALSE(SetProcessCodePage(65001));
    EXPECT_EQ(GetProcessCodePage(), 1252u);
    EXPECT_FALSE(IsDBCSLeadByteEx(437, 0x81));
}

TEST(CodePageInfo, AnsiCodePageFollowsTheProcessPage) {
    CPINFO info;
    ASSERT_TRUE(GetCPInfo(CP_ACP, &info));
    EXPECT_EQ(info.MaxCharSize, 1u);
    {
        CodePageScope japanese(932);
        ASSERT_TRUE(GetCPInfo(CP_ACP, &info));
        EXPECT_EQ(info.MaxCharSize, 2u);
        EXPECT_TRUE(IsDBCSLeadByteEx(CP_ACP, 0xE0));
        EXPECT_EQ(Utf8FromMb(CP_ACP, "\x93\xFA"), "日");
    }
    EXPECT_EQ(GetProcessCodePage(), 1252u);
}

TEST(Cp1252Conversion, EveryByteRoundTripsAndMatchesTheLibraryWhereItDefinesOne) {
    std::string all;
    for (int b = 0; b < 256; ++b) all += static_cast<char>(b);
    std::u16string wide;
    ASSERT_TRUE(MultiByteToUtf16(1252, all, &wide).Exact());
    ASSERT_EQ(wide.size(), 256u);
    for (int b = 0; b < 256; ++b) {
        const long library = LibraryCp1252(static_cast<unsigned char>(b));
        ASSERT_NE(library, -2) << "no CP1252 converter in the C library";
        if (library >= 0) {
            EXPECT_EQ(static_cast<long>(wide[b]), library) << "byte " << b;
        }
    }
    std::string back;
    ASSERT_TRUE(Utf16ToMultiByte(1252, wide, &back).Exact());
    EXPECT_EQ(back, all);
    EXPECT_EQ(MbFromUtf8(1252, Utf8FromMb(1252, all)), all);
}

// Every code page reads ASCII bytes as themselves, which lets ASCII text skip the converters.
TEST(Conversion, AsciiIsTheSameBytesInEveryCodePage) {
    std::string bytes;
    for (int b = 1; b < 0x80; ++b) bytes += static_cast<char>(b);
    const std::u16string units(bytes.begin(), bytes.end());
    for (UINT cp : {1252u, 932u, 936u, 949u, 950u}) {
        std::u16string read;
        std::string written;
        EXPECT_TRUE(MultiByteToUtf16(cp, bytes, &read).Exact() && read == units) << cp;
        EXPECT_TRUE(Utf16ToMultiByte(cp, units, &written).Exact() && written == bytes) << cp;
    }
}

std::string Utf8FromUtf16(std::u16string_view units) {
    std::string out;
    for (const CodePointAt& cp : DecodeUtf16(units)) AppendUtf8(out, cp.ch);
    return out;
}

// UTF-8 made UTF-16, or `u:HEX HEX...` for code units that need not make characters.
std::u16string Utf16Field(const std::string& field) {
    std::u16string units;
    if (field.starts_with("u:")) {
        std::istringstream in(field.substr(2));
        for (std::string unit; in >> unit;) units.push_back(static_cast<char16_t>(std::stoul(unit, nullptr, 16)));
        return units;
    }
    for (const CodePointAt& cp : DecodeUtf8(field)) AppendUtf16(units, cp.ch);
    return units;
}

UnmappableHandler Replacement(const std::string& name) {
    if (name == "ref") return [](char32_t ch, std::string& s) { s += "&#" + std::to_string(ch) + ";"; };
    if (name == "drop") return [](char32_t, std::string&) {};
    return {};
}

// One row of cases/conversions.cases: the output and the report of the conversion it names.
ConvertResult Convert(const CaseRow& row, std::string* out) {
    const UINT cp = static_cast<UINT>(row.Long(1));
    if (row[0] == "fromutf8") return Utf8ToMultiByte(cp, row[2], out, Replacement(row[6]));
    if (row[0] == "fromutf16") return Utf16ToMultiByte(cp, Utf16Field(row[2]), out, Replacement(row[6]));
    // To Unicode both ways: UTF-8, and UTF-16 that must say the same.
    std::u16string wide = u"kept";
    const ConvertResult viaUtf16 = MultiByteToUtf16(cp, row[2], &wide);
    const ConvertResult result = MultiByteToUtf8(cp, row[2], out);
    EXPECT_EQ(Utf8FromUtf16(wide), *out);
    EXPECT_EQ(viaUtf16.nUnmappable, result.nUnmappable);
    return result;
}

TEST(Conversion, CasesGiveTheirBytesAndReportWhatTheyCouldNotMap) {
    for (const CaseRow& row : ReadCaseRows("platform/cases/conversions.cases")) {
        SCOPED_TRACE(row.where);
        std::string out = "kept";
        const ConvertResult r = Convert(row, &out);
        EXPECT_EQ(out, row[3]);
        EXPECT_EQ(r.bOk, row[4] != "refused");
        if (row[4] == "refused") continue;
        EXPECT_EQ(r.nUnmappable, static_cast<size_t>(row.Long(4)));
        EXPECT_EQ(r.nFirstUnmappable, row[5] == "-" ? ConvertResult::npos : static_cast<size_t>(row.Long(5)));
    }
    EXPECT_FALSE(MultiByteToUtf8(1252, "abc", nullptr).bOk);
}

TEST(Conversion, LongTextCrossesTheConverterBuffer) {
    std::string text;
    for (int i = 0; i < 5000; ++i) text += "日本語abc";
    std::string sjis = MbFromUtf8(932, text);
    EXPECT_EQ(sjis.size(), 5000u * 9);
    EXPECT_EQ(Utf8FromMb(932, sjis), text);
}

}  // namespace

namespace {

TEST(SymbolEncoding, ArrowsGreekAndGapsMapAsTheEncodingHasThem) {
    EXPECT_EQ(UnicodeFromSymbolByte(0xAB), U'\u2194');  // left right arrow: a tab shown
    EXPECT_EQ(UnicodeFromSymbolByte(0xBF), U'\u21B5');  // return arrow: a CR shown
    EXPECT_EQ(UnicodeFromSymbolByte('7'), U'7');
    EXPECT_EQ(UnicodeFromSymbolByte(0x1F), 0u);
    EXPECT_EQ(UnicodeFromSymbolByte(0x90), 0u);
    EXPECT_EQ(UnicodeFromSymbolByte(0xFF), 0u);
    // The Greek capitals and small letters stand 0x20 apart in both encodings, except where the
    // small row has a variant form (theta and phi symbols, final sigma, pi symbol).
    for (BYTE b = 0x41; b <= 0x5A; ++b) {
        if (b == 0x4A || b == 0x56) continue;
        EXPECT_EQ(UnicodeFromSymbolByte(b + 0x20), UnicodeFromSymbolByte(b) + 0x20) << int(b);
    }
}

}  // namespace
