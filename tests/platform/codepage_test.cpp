#include <gtest/gtest.h>
#include <iconv.h>

#include "platform/codepage/codepage.h"
#include "platform/codepage/convert.h"
#include "platform/codepage/leadbyte.h"
#include "platform/codepage/symbol.h"
#include "tests/codepagescope.h"

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

TEST(DoubleByteConversion, JapaneseTextRoundTrips) {
    const std::string text = "日本語のテキスト、カタカナとｶﾀｶﾅ。ASCII 123";
    const std::string sjis = MbFromUtf8(932, text);
    EXPECT_EQ(sjis.substr(0, 4), "\x93\xFA\x96\x7B");  // 日本
    EXPECT_NE(sjis.find("\xB6\xC0\xB6\xC5"), std::string::npos);  // half-width katakana: one byte each
    EXPECT_EQ(Utf8FromMb(932, sjis), text);

    std::u16string wide;
    ASSERT_TRUE(MultiByteToUtf16(932, sjis, &wide).Exact());
    EXPECT_EQ(wide.substr(0, 3), u"日本語");
    std::string back;
    ASSERT_TRUE(Utf16ToMultiByte(932, wide, &back).Exact());
    EXPECT_EQ(back, sjis);
}

TEST(Conversion, UnmappableCharactersAreReportedAndReplaced) {
    std::string out;
    ConvertResult r = Utf8ToMultiByte(1252, "a€日b", &out);
    EXPECT_TRUE(r.bOk);
    EXPECT_EQ(r.nUnmappable, 1u);
    EXPECT_EQ(r.nFirstUnmappable, 4u);  // byte offset of 日 in the input
    EXPECT_EQ(out, "a\x80?b");

    // A caller can choose its own replacement, here a character reference.
    auto reference = [](char32_t ch, std::string& s) { s += "&#" + std::to_string(ch) + ";"; };
    r = Utf8ToMultiByte(1252, "a€日b", &out, reference);
    EXPECT_EQ(out, "a\x80&#26085;b");

    std::u16string emoji = u"日😀本";
    r = Utf16ToMultiByte(932, emoji, &out, reference);
    EXPECT_EQ(r.nUnmappable, 1u);
    EXPECT_EQ(r.nFirstUnmappable, 1u);  // in UTF-16 code units
    EXPECT_EQ(out, "\x93\xFA&#128512;\x96\x7B");

    r = Utf16ToMultiByte(932, emoji, &out, [](char32_t, std::string&) {});
    EXPECT_EQ(out, "\x93\xFA\x96\x7B");  // an empty replacement drops the character
}

TEST(Conversion, MalformedUnicodeInputCountsAsUnmappable) {
    std::string out;
    const std::u16string loneSurrogate{u'a', char16_t(0xD800), u'b'};
    ConvertResult r = Utf16ToMultiByte(932, loneSurrogate, &out);
    EXPECT_EQ(r.nUnmappable, 1u);
    EXPECT_EQ(out, "a?b");

    char32_t seen = 0;
    r = Utf8ToMultiByte(1252, "x\xC0\xAFy\xE6\x97", &out, [&](char32_t ch, std::string& s) {
        seen = ch;
        s += '#';
    });
    EXPECT_EQ(seen, U'\uFFFD');
    EXPECT_EQ(r.nFirstUnmappable, 1u);
    EXPECT_EQ(out, "x##y##");  // an overlong form and a truncated sequence, byte by byte
}

TEST(Conversion, InvalidDoubleByteSequencesBecomeReplacementCharacters) {
    std::string out;
    ConvertResult r = MultiByteToUtf8(932, "A\x81", &out);  // a lead byte at the end
    EXPECT_EQ(r.nUnmappable, 1u);
    EXPECT_EQ(r.nFirstUnmappable, 1u);
    EXPECT_EQ(out, "A\xEF\xBF\xBD");

    r = MultiByteToUtf8(932, "\x81\x20Z", &out);  // a lead byte with no valid trail byte
    EXPECT_EQ(r.nUnmappable, 1u);
    EXPECT_EQ(out, "\xEF\xBF\xBD Z");
}

TEST(Conversion, UnknownCodePageLeavesTheOutputUntouched) {
    std::string out = "kept";
    std::u16string wide = u"kept";
    EXPECT_FALSE(Utf8ToMultiByte(437, "abc", &out).bOk);
    EXPECT_FALSE(MultiByteToUtf16(65001, "abc", &wide).bOk);
    EXPECT_FALSE(MultiByteToUtf8(1252, "abc", nullptr).bOk);
    EXPECT_EQ(out, "kept");
    EXPECT_EQ(wide, u"kept");
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
