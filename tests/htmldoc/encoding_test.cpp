// Files in their own encodings: detection, conversion into the process code page with numeric
// references for what it cannot hold, byte-identical saves, and refusals that lose nothing.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

#include "platform/codepage/codepage.h"
#include "tests/codepagescope.h"
#include "tests/htmldoc/recordingsink.h"
#include "tests/htmldoc/tempfolder.h"

namespace {

namespace fs = std::filesystem;

// Non-Latin UTF-8: Japanese, Greek with a tonos, an en dash, Latin with diacritics and a
// character beyond the Basic Multilingual Plane.
const std::string kUtf8Page =
    "<!DOCTYPE html>\n<html><head><meta charset=\"utf-8\"><title>\xE6\x97\xA5\xE6\x9C\xAC</title></head>\r\n"
    "<body><p>\xCE\x95\xCE\xBB\xCE\xBB\xCE\xAC\xCE\xB4\xCE\xB1 \xE2\x80\x93 caf\xC3\xA9 \xC4\x89u "
    "\xF0\x9F\x98\x80</p></body></html>\n";

// windows-1252 with the bytes 0x80..0x9F that Latin-1 leaves to control characters; the em dash
// is one that the C library's CP932 converter writes but reads back as another character.
const std::string kCp1252Page =
    "<html><head><meta http-equiv=\"Content-Type\" content=\"text/html; charset=iso-8859-1\"></head>\n"
    "<p>\x93na\xEFve\x94 caf\xE9 costs \x80 5 \x96 \x97 \xA9 2024</p></html>\n";

// Shift_JIS: kanji, a katakana whose second byte is a backslash (0x83 0x5C), another whose second
// byte is 'a' (0x83 0x61), and a half-width katakana.
const std::string kShiftJisPage =
    "<html><head><meta charset=\"Shift_JIS\"></head>\n"
    "<p>\x93\xFA\x96\x7B\x8C\xEA \x83\x5C\x83\x61 \xB1 C:\\path</p></html>\n";

// 中文 in GBK and in Big5, 한국 in EUC-KR; the GBK and EUC-KR pages also hold a Latin-1 character (é, º)
// that code page 932 lacks.
const std::string kGbkPage = "<meta charset=gb2312><p>\xD6\xD0\xCE\xC4 \xA8\xA6</p>";
const std::string kEucKrPage = "<meta charset=ks_c_5601-1987><p>\xC7\xD1\xB1\xB9 \xA8\xAC</p>";
const std::string kBig5Page = "<meta charset=big5><p>\xA4\xA4\xA4\xE5</p>";

class EncodedFiles : public ::testing::TestWithParam<UINT>, protected CTempFolder {
protected:
    EncodedFiles() : CTempFolder("encoding_test") {}
    // Loads the bytes, saves them to another file and gives what that file holds.
    std::string RoundTrip(const std::string& bytes, CHtmlDocument* doc) const {
        std::string error;
        EXPECT_EQ(doc->LoadFile(Write("in.htm", bytes), &error), S_OK) << error;
        EXPECT_FALSE(doc->IsModified());
        const std::string out = (dir / "out.htm").string();
        EXPECT_EQ(doc->SaveFile(out, &error), S_OK) << error;
        return ReadAll(out);
    }
};

TEST_P(EncodedFiles, SaveGivesBackTheBytesThatWereLoaded) {
    CodePageScope cp(GetParam());
    struct Case {
        const std::string* bytes;
        const char* encoding;
    } cases[] = {{&kUtf8Page, "UTF-8"}, {&kCp1252Page, "windows-1252"}, {&kShiftJisPage, "Shift_JIS"},
                 {&kGbkPage, "GBK"},      {&kEucKrPage, "EUC-KR"},         {&kBig5Page, "Big5"}};
    for (const Case& c : cases) {
        auto doc = CreateHtmlDocument();
        EXPECT_EQ(RoundTrip(*c.bytes, doc.Get()), *c.bytes) << c.encoding;
        EXPECT_EQ(doc->Encoding(), c.encoding);
    }
}

INSTANTIATE_TEST_SUITE_P(ProcessCodePages, EncodedFiles, ::testing::Values(1252u, 932u));

TEST_F(EncodedFiles, WhatTheCodePageLacksBecomesNumericReferences) {
    auto doc = CreateHtmlDocument();
    {
        CodePageScope cp(1252);
        ASSERT_EQ(doc->LoadFile(Write("a.htm", kUtf8Page)), S_OK);
        EXPECT_NE(doc->GetText().find("<title>&#26085;&#26412;</title>"), std::string::npos);
        EXPECT_NE(doc->GetText().find("&#917;&#955;&#955;&#940;&#948;&#945; \x96 caf\xE9 &#265;u &#128512;</p>"),
                  std::string::npos);
        ASSERT_EQ(doc->LoadFile(Write("b.htm", kShiftJisPage)), S_OK);
        EXPECT_NE(doc->GetText().find("<p>&#26085;&#26412;&#35486; &#12477;&#12482; &#65393; C:\\path</p>"),
                  std::string::npos);
    }
    CodePageScope cp(932);
    ASSERT_EQ(doc->LoadFile(Write("a.htm", kUtf8Page)), S_OK);
    EXPECT_NE(doc->GetText().find("<title>\x93\xFA\x96\x7B</title>"), std::string::npos);
    // Greek without the tonos is in the code page; the accented letter, the dash, é and ĉ are not.
    EXPECT_NE(doc->GetText().find("\x83\xA3\x83\xC9\x83\xC9&#940;\x83\xC2\x83\xBF &#8211; caf&#233; &#265;u &#128512;"),
              std::string::npos);
    ASSERT_EQ(doc->LoadFile(Write("c.htm", kCp1252Page)), S_OK);
    EXPECT_NE(doc->GetText().find("<p>\x81\x67na&#239;ve\x81\x68 caf&#233; costs &#8364; 5 &#8211; &#8212; &#169; 2024</p>"),
              std::string::npos)
        << doc->GetText();
}

TEST_F(EncodedFiles, ReferencesOfTheAuthorStayAsTheyAre) {
    CodePageScope cp(1252);
    // &#233; is a character the code page holds and &#x65E5; is in hexadecimal: loading writes
    // neither form, so saving leaves both alone.
    const std::string page = "<p>&#233; &#x65E5; &#0233; \xE6\x97\xA5 &#26085</p>";
    auto doc = CreateHtmlDocument();
    EXPECT_EQ(RoundTrip(page, doc.Get()), page);
    // So does a decimal reference to a character the code page lacks, which looks the same as
    // one that loading writes, here and inside a script.
    for (const std::string other : {"<p>\xC3\xA9&#26085;</p>", "<script>var s = \"&#9776;\xE2\x98\xB0\";</script>"})
        EXPECT_EQ(RoundTrip(other, doc.Get()), other);
}

TEST_F(EncodedFiles, DetectionOrderAndTheHostsChoices) {
    CodePageScope cp(1252);
    auto doc = CreateHtmlDocument();
    // A byte order mark outweighs the declaration and the host's explicit choice.
    const std::string bom = "\xEF\xBB\xBF<meta charset=windows-1252>\xC3\xA9";
    ASSERT_EQ(doc->LoadFile(Write("bom.htm", bom), nullptr, "shift_jis"), S_OK);
    EXPECT_EQ(doc->Encoding(), "UTF-8");
    EXPECT_TRUE(doc->ByteOrderMark());
    EXPECT_EQ(doc->GetText(), "<meta charset=windows-1252>\xE9");

    // Undeclared bytes that read as UTF-8 are UTF-8; others, and plain ASCII, are the code page's.
    ASSERT_EQ(doc->LoadFile(Write("u.htm", "caf\xC3\xA9")), S_OK);
    EXPECT_EQ(doc->Encoding(), "UTF-8");
    EXPECT_FALSE(doc->ByteOrderMark());
    ASSERT_EQ(doc->LoadFile(Write("l.htm", "\x82\xA0")), S_OK);
    EXPECT_EQ(doc->Encoding(), "windows-1252");
    EXPECT_EQ(doc->GetText(), "\x82\xA0");
    ASSERT_EQ(doc->LoadFile(Write("a.htm", "plain")), S_OK);
    EXPECT_EQ(doc->Encoding(), "windows-1252");

    // The host's default applies to undeclared files only; an explicit choice outweighs a declaration.
    EXPECT_EQ(doc->SetDefaultEncoding("sjis"), S_OK);
    EXPECT_EQ(doc->DefaultEncoding(), "Shift_JIS");
    ASSERT_EQ(doc->LoadFile(Write("l.htm", "\x82\xA0")), S_OK);
    EXPECT_EQ(doc->GetText(), "&#12354;");
    ASSERT_EQ(doc->LoadFile(Write("d.htm", "<meta charset=utf-8>\xC3\xA9")), S_OK);
    EXPECT_EQ(doc->Encoding(), "UTF-8");
    ASSERT_EQ(doc->LoadFile(Write("d.htm", "<meta charset=utf-8>\xC3\xA9"), nullptr, " Latin1 "), S_OK);
    EXPECT_EQ(doc->Encoding(), "windows-1252");
    EXPECT_EQ(doc->GetText(), "<meta charset=utf-8>\xC3\xA9");
    EXPECT_EQ(doc->SetDefaultEncoding("no-such-encoding"), E_INVALIDARG);
    EXPECT_EQ(doc->DefaultEncoding(), "Shift_JIS");
    EXPECT_EQ(doc->SetDefaultEncoding(""), S_OK);
    EXPECT_EQ(doc->DefaultEncoding(), "");
}

TEST_F(EncodedFiles, Utf16WithByteOrderMarkBothWays) {
    CodePageScope cp(1252);
    const std::string le("\xFF\xFE<\0p\0>\0\xE5\x65\x2C\x67\xE9\0\x3D\xD8\x00\xDE\r\0\n\0", 22);
    const std::string be("\xFE\xFF\0<\0p\0>\x65\xE5\x67\x2C\0\xE9\xD8\x3D\xDE\x00\0\r\0\n", 22);
    for (const std::string* bytes : {&le, &be}) {
        auto doc = CreateHtmlDocument();
        EXPECT_EQ(RoundTrip(*bytes, doc.Get()), *bytes);
        EXPECT_EQ(doc->GetText(), "<p>&#26085;&#26412;\xE9&#128512;\r\n");
        EXPECT_TRUE(doc->ByteOrderMark());
    }
}

TEST_F(EncodedFiles, SavingInAnotherEncoding) {
    CodePageScope cp(932);
    auto doc = CreateHtmlDocument();
    ASSERT_EQ(doc->LoadFile(Write("j.htm", kShiftJisPage)), S_OK);
    std::string error;
    const std::string out = (dir / "out.htm").string();

    EXPECT_EQ(doc->SetEncoding("bogus"), E_INVALIDARG);
    EXPECT_FALSE(doc->IsModified());
    ASSERT_EQ(doc->SetEncoding("utf8"), S_OK);
    EXPECT_EQ(doc->Encoding(), "UTF-8");
    EXPECT_TRUE(doc->IsModified());
    doc->SetByteOrderMark(true);
    ASSERT_EQ(doc->SaveFile(out, &error), S_OK) << error;
    EXPECT_EQ(ReadAll(out).substr(0, 3), "\xEF\xBB\xBF");
    EXPECT_NE(ReadAll(out).find("<p>\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E \xE3\x82\xBD\xE3\x83\x82 \xEF\xBD\xB1 C:\\path"),
              std::string::npos);

    // What the file's encoding lacks is written as a reference, so the page still means the same.
    ASSERT_EQ(doc->SetEncoding("windows-1252"), S_OK);
    EXPECT_FALSE(doc->ByteOrderMark());
    doc->SetByteOrderMark(true);  // no such thing for windows-1252
    EXPECT_FALSE(doc->ByteOrderMark());
    ASSERT_EQ(doc->SaveFile(out, &error), S_OK) << error;
    EXPECT_NE(ReadAll(out).find("<p>&#26085;&#26412;&#35486; &#12477;&#12482; &#65393; C:\\path"), std::string::npos);

    // A shifting encoding returns to ASCII before a reference.
    doc->SetText("\x93\xFA\x96\x7B\x87\x40!");  // 日本 and a circled 1, which JIS X 0208 lacks
    ASSERT_EQ(doc->SetEncoding("iso-2022-jp"), S_OK);
    ASSERT_EQ(doc->SaveFile(out, &error), S_OK) << error;
    EXPECT_EQ(ReadAll(out), "\x1B$BF|K\\\x1B(B&#9312;!");
}

// Bytes that read as no character open all the same: each becomes the reference of the
// replacement character, is counted, and is written back as it was.
TEST_F(EncodedFiles, UndecodableBytesAreKept) {
    struct Case {
        const char* name;
        std::string bytes;
        const char* encoding;
        size_t undecodable;
        const char* text;  // the text, in code page 1252
        EncodingSource source;
    } cases[] = {
        {"overlong.htm", "<meta charset=utf-8><p>\xC0\xAF</p>", "UTF-8", 2, "<meta charset=utf-8><p>&#65533;&#65533;</p>", EncodingSource::Declared},
        {"cut.htm", "\xEF\xBB\xBF<p>\xE6\x97", "UTF-8", 2, "<p>&#65533;&#65533;", EncodingSource::ByteOrderMark},
        {"odd.htm", std::string("\xFF\xFE<\0p", 5), "UTF-16LE", 1, "<&#65533;", EncodingSource::ByteOrderMark},
        {"lone.htm", std::string("\xFE\xFF\0<\xD8\x3D\0>", 8), "UTF-16BE", 2, "<&#65533;>", EncodingSource::ByteOrderMark},
        {"sjis.htm", "<meta charset=sjis><p>\x93\xFA\x85\x20</p>", "Shift_JIS", 1, "<meta charset=sjis><p>&#26085;&#65533; </p>", EncodingSource::Declared},
        {"jis.htm", "<meta charset=iso-2022-jp>\x1B(\x1B(B", "ISO-2022-JP", 1, "<meta charset=iso-2022-jp>&#65533;(", EncodingSource::Declared},
        // A page that declares Big5 but is UTF-8 reads as UTF-8.
        {"big5.htm", "<meta charset=big5><p>\xE6\x97\xA5\xE6\x9C\xAC</p>", "UTF-8", 0, "<meta charset=big5><p>&#26085;&#26412;</p>", EncodingSource::Guessed},
    };
    CodePageScope cp(1252);
    for (const Case& c : cases) {
        auto doc = CreateHtmlDocument();
        std::vector<CLoadReport> told;
        doc->SetLoadListener([&](const CLoadReport& report) { told.push_back(report); });
        EXPECT_EQ(RoundTrip(c.bytes, doc.Get()), c.bytes) << c.name;
        EXPECT_EQ(doc->GetText(), c.text) << c.name;
        ASSERT_EQ(told.size(), 1u) << c.name;
        EXPECT_EQ(told[0].encoding, c.encoding) << c.name;
        EXPECT_EQ(told[0].nUndecodable, c.undecodable) << c.name;
        EXPECT_EQ(told[0].source, c.source) << c.name;
    }
}

// Every way a load can still fail leaves the document as it was.
TEST_F(EncodedFiles, RefusalsSayWhyAndKeepTheDocument) {
    CodePageScope cp(1252);
    CAttachedDoc d;
    ASSERT_EQ(d.doc->LoadFile(Write("good.htm", kUtf8Page)), S_OK);
    d.doc->InsertText(0, "x", 1, nullptr);
    const std::string text = d.Text();
    const std::string path = d.doc->PathName();
    d.sink.events.clear();

    std::string error;
    EXPECT_EQ(d.doc->LoadFile(Write("x.htm", "x"), &error, "klingon"), E_INVALIDARG);
    EXPECT_NE(error.find("klingon"), std::string::npos);
    EXPECT_TRUE(FAILED(d.doc->LoadFile(dir.string(), &error)));  // a directory
    EXPECT_NE(error.find(dir.string()), std::string::npos) << error;
    // A file over the limit is refused by its size: this one is sparse, and reading it would
    // take minutes.
    const std::string huge = Write("huge.htm", "");
    fs::resize_file(huge, static_cast<uintmax_t>(CHtmlDocument::kMaxLength) + 1);
    EXPECT_EQ(d.doc->LoadFile(huge, &error), E_OUTOFMEMORY);
    EXPECT_NE(error.find("too large"), std::string::npos) << error;

    EXPECT_EQ(d.Text(), text);
    EXPECT_EQ(d.doc->PathName(), path);
    EXPECT_EQ(d.doc->Encoding(), "UTF-8");
    EXPECT_TRUE(d.doc->IsModified());
    EXPECT_TRUE(d.sink.events.empty());
    long caret = 0;
    ASSERT_EQ(d.doc->Undo(nullptr, &caret), S_OK);
    EXPECT_EQ(d.Text(), text.substr(1));
}

TEST_F(EncodedFiles, TextThatCannotBeWrittenIsRefused) {
    CodePageScope cp(932);
    auto doc = CreateHtmlDocument();
    const std::string path = Write("t.htm", "old");
    ASSERT_EQ(doc->LoadFile(path), S_OK);
    doc->SetText("ok \x93");  // a lead byte with nothing behind it
    ASSERT_EQ(doc->SetEncoding("utf-8"), S_OK);
    std::string error;
    EXPECT_EQ(doc->SaveFile("", &error), HR_E_UNDECODABLE);
    EXPECT_NE(error.find("the text ends inside a character of Shift_JIS (at byte 3)"), std::string::npos) << error;
    EXPECT_EQ(ReadAll(path), "old");
    EXPECT_TRUE(doc->IsModified());
}

TEST_F(EncodedFiles, AnEscapeCharacterTravelsAsAReferenceInIso2022Jp) {
    // ISO-2022-JP shifts with escape sequences: an escape in the text cannot be written as it is.
    CodePageScope cp(932);
    auto doc = CreateHtmlDocument();
    doc->SetText("a\x1B(Bb \x93\xFA");
    ASSERT_EQ(doc->SetEncoding("iso-2022-jp"), S_OK);
    const std::string path = (dir / "jis.htm").string();
    ASSERT_EQ(doc->SaveFile(path), S_OK);
    EXPECT_EQ(ReadAll(path), "a&#27;(Bb \x1B$BF|\x1B(B");
    auto again = CreateHtmlDocument();
    std::string error;
    ASSERT_EQ(again->LoadFile(path, &error, "iso-2022-jp"), S_OK) << error;
    EXPECT_EQ(again->GetText(), "a&#27;(Bb \x93\xFA");
}

TEST(EncodingDispatch, EncodingPropertiesByName) {
    CAttachedDoc d("text");
    IDispatch* disp = d.doc.Get();
    DISPID encoding = 0, fallback = 0, bom = 0;
    ASSERT_EQ(disp->GetIDsOfNames("encoding", &encoding), S_OK);
    ASSERT_EQ(disp->GetIDsOfNames("DefaultEncoding", &fallback), S_OK);
    ASSERT_EQ(disp->GetIDsOfNames("ByteOrderMark", &bom), S_OK);
    std::vector<Variant> none, args{Variant::Str("koi8-r")};
    Variant result;
    ASSERT_EQ(disp->Invoke(encoding, DISPATCH_PROPERTYPUT, args, nullptr, nullptr), S_OK);
    ASSERT_EQ(disp->Invoke(encoding, DISPATCH_PROPERTYGET, none, &result, nullptr), S_OK);
    EXPECT_EQ(result.StrVal(), "KOI8-R");
    args = {Variant::Str("utf-7")};
    ExcepInfo excep;
    EXPECT_EQ(disp->Invoke(fallback, DISPATCH_PROPERTYPUT, args, nullptr, &excep), DISP_E_EXCEPTION);
    args = {Variant::Str("gb2312")};
    ASSERT_EQ(disp->Invoke(fallback, DISPATCH_PROPERTYPUT, args, nullptr, nullptr), S_OK);
    ASSERT_EQ(disp->Invoke(fallback, DISPATCH_PROPERTYGET, none, &result, nullptr), S_OK);
    EXPECT_EQ(result.StrVal(), "GBK");
    ASSERT_EQ(disp->Invoke(bom, DISPATCH_PROPERTYGET, none, &result, nullptr), S_OK);
    bool value = true;
    ASSERT_TRUE(result.ToBool(&value));
    EXPECT_FALSE(value);
}

}  // namespace
