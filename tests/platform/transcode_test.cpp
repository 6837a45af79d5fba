// Encoding labels and the file transcoder: exact offsets across the ASCII fast path, double-byte
// characters whose second byte looks like ASCII, and a model comparison over random text.
#include <gtest/gtest.h>

#include <random>

#include "platform/codepage/iso2022jp.h"
#include "platform/codepage/transcode.h"
#include "platform/codepage/unicode.h"
#include "tests/platform/casefile.h"

namespace {

const CEncodingInfo& Enc(const char* label) {
    const CEncodingInfo* found = FindEncoding(label);
    EXPECT_NE(found, nullptr) << label;
    return found ? *found : Utf8Encoding();
}

std::string Reference(char32_t ch) { return "&#" + std::to_string(static_cast<uint32_t>(ch)) + ";"; }

const UnmappableHandler kReference = [](char32_t ch, std::string& out) { out += Reference(ch); };

// Labels, conversions both ways, failures and what each encoding holds, from cases/encodings.cases.
TEST(EncodingLabels, LabelsConversionsAndCharactersOfTheCases) {
    for (const CaseRow& row : ReadCaseRows("platform/cases/encodings.cases")) {
        SCOPED_TRACE(row.where);
        if (row[0] == "label") {
            const CEncodingInfo* found = FindEncoding(row[1]);
            EXPECT_EQ(found ? found->pszName : "none", row[2]);
        } else if (row[0] == "fails") {
            std::string out = "kept";
            const CTranscodeResult r = Transcode(Utf8Encoding(), Enc("windows-1252"), row[1], &out, kReference);
            EXPECT_EQ(r.status, row[2] == "truncated" ? TranscodeStatus::Truncated : TranscodeStatus::BadInput);
            EXPECT_EQ(r.nBadOffset, static_cast<size_t>(row.Long(3)));
            EXPECT_EQ(out, "kept");
        } else if (row[0] == "convert") {
            std::string out, back;
            ASSERT_TRUE(Transcode(Utf8Encoding(), Enc(row[1].c_str()), "<p>A</p>", &out).Ok());
            ASSERT_TRUE(Transcode(Enc(row[1].c_str()), Utf8Encoding(), out, &back).Ok());
            EXPECT_EQ(back, "<p>A</p>");
        } else {
            EXPECT_EQ(CanEncode(Enc(row[1].c_str()), static_cast<char32_t>(std::stoul(row[2], nullptr, 16))), row[3] == "1");
        }
    }
    // Each code page has its encoding, and every encoding with a converter has one here.
    for (UINT cp : {1252u, 932u, 936u, 949u, 950u}) ASSERT_EQ(EncodingOfCodePage(cp)->nCodePage, cp);
    EXPECT_EQ(EncodingOfCodePage(437), nullptr);
}

TEST(Transcoder, DoubleByteTrailsThatLookLikeAsciiStayWithTheirLead) {
    // 0x83 0x5C is a katakana whose second byte is a backslash; the long ASCII stretch between
    // the two makes the fast path copy it, and it must not start inside the character.
    const std::string stretch(40, '\\');
    const std::string sjis = "\x83\x5C" + stretch + "\x83\x5C\x83";
    std::string utf8;
    const CTranscodeResult r = Transcode(Enc("shift_jis"), Utf8Encoding(), sjis.substr(0, sjis.size() - 1), &utf8);
    ASSERT_TRUE(r.Ok());
    EXPECT_EQ(utf8, "\xE3\x82\xBD" + stretch + "\xE3\x82\xBD");
    std::string copy;
    EXPECT_EQ(Transcode(Enc("shift_jis"), Enc("shift_jis"), sjis, &copy).status, TranscodeStatus::Truncated);
    EXPECT_TRUE(Transcode(Enc("shift_jis"), Enc("sjis"), sjis.substr(0, sjis.size() - 1), &copy).Ok());
    EXPECT_EQ(copy, sjis.substr(0, sjis.size() - 1));
}

TEST(Transcoder, Cp1252RoundTripsEveryByte) {
    std::string all;
    for (int b = 0; b < 256; ++b) all += static_cast<char>(b);
    for (const char* via : {"utf-8", "utf-16be"}) {
        std::string mid, back;
        ASSERT_TRUE(Transcode(Enc("windows-1252"), Enc(via), all, &mid).Ok()) << via;
        const CTranscodeResult r = Transcode(Enc(via), Enc("windows-1252"), mid, &back, kReference);
        ASSERT_TRUE(r.Ok()) << via;
        EXPECT_EQ(r.nUnmappable, 0u);
        EXPECT_EQ(back, all) << via;
    }
}

// Random text of ASCII stretches of every length around the fast path's limit and characters
// of one, two, three and four UTF-8 bytes, against a model built a character at a time.
TEST(Transcoder, RandomTextAgreesWithAModel) {
    struct Char {
        char32_t ch;
        const char* sjis;  // nullptr: Shift_JIS lacks it
    };
    const Char kChars[] = {{U'\u00E9', nullptr}, {U'\u65E5', "\x93\xFA"}, {U'\u30BD', "\x83\x5C"},
                           {U'\uFF71', "\xB1"},  {U'\U0001F600', nullptr}, {U'\u00A7', "\x81\x98"}};
    const unsigned seed = std::random_device{}();
    std::mt19937 rng(seed);
    for (int round = 0; round < 200; ++round) {
        std::string utf8, sjis;
        const int pieces = std::uniform_int_distribution<int>(0, 12)(rng);
        for (int i = 0; i < pieces; ++i) {
            if (rng() % 2) {
                const std::string ascii(std::uniform_int_distribution<size_t>(0, 70)(rng), static_cast<char>('A' + rng() % 26));
                utf8 += ascii;
                sjis += ascii;
                continue;
            }
            const Char& c = kChars[rng() % std::size(kChars)];
            AppendUtf8(utf8, c.ch);
            sjis += c.sjis ? std::string(c.sjis) : Reference(c.ch);
        }
        std::string out;
        ASSERT_TRUE(Transcode(Utf8Encoding(), Enc("shift_jis"), utf8, &out, kReference).Ok()) << "seed " << seed;
        ASSERT_EQ(out, sjis) << "seed " << seed << " round " << round;
    }
}

}  // namespace

namespace {

// ISO-2022-JP: a run of characters of one set shares one shift sequence; the Roman set holds the
// yen sign; what the file's own shift sequences leave is carried on, and the end goes back to
// ASCII only where the writer itself shifted away from it.
TEST(Iso2022Jp, ShiftsOncePerRunAndCarriesOnFromTheFilesSequences) {
    std::string out;
    ASSERT_TRUE(EncodeCodePoints(*FindEncoding("iso-2022-jp"), U"日本語 と English ¥1", &out, {}));
    EXPECT_EQ(out, "\x1B$BF|K\\8l\x1B(B \x1B$B$H\x1B(B English \x1B(J\\1\x1B(B");

    const auto written = [](std::string_view raw, std::u32string_view chars) {
        CIso2022JpWriter writer;
        std::string bytes;
        writer.WriteRaw(raw, bytes);
        writer.Write(chars, bytes, {});
        writer.Finish(bytes);
        return bytes;
    };
    EXPECT_EQ(written("\x1B$@", U"日"), "\x1B$@F|");
    EXPECT_EQ(written("\x1B(J", U"a~"), "\x1B(Ja\x1B(B~");
    EXPECT_EQ(written("", U"日"), "\x1B$BF|\x1B(B");

    std::vector<std::string> pieces;
    SplitIso2022Jp("a\x1B$BF|\x1B(Bb\x1B(x", [&](const CJisPiece& p) {
        pieces.push_back((p.bShift ? "shift " : "text ") + std::to_string(static_cast<int>(p.set)) + " " +
                         std::to_string(p.nOffset) + "+" + std::to_string(p.nLength));
    });
    EXPECT_EQ(pieces, (std::vector<std::string>{"text 0 0+1", "shift 2 1+3", "text 2 4+2", "shift 0 6+3", "text 0 9+4"}));
}

}  // namespace
