// Files in their own encodings: detection, conversion into the process code page with numeric
// references for what it cannot hold and byte-identical saves (the cases of cases/loads.cases),
// saves in another encoding, and refusals that lose nothing.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <unistd.h>

#include "platform/codepage/codepage.h"
#include "tests/codepagescope.h"
#include "tests/htmldoc/recordingsink.h"
#include "tests/htmldoc/tempfolder.h"
#include "tests/platform/casefile.h"

namespace {

namespace fs = std::filesystem;

// Shift_JIS: kanji, a katakana whose second byte is a backslash (0x83 0x5C), another whose second
// byte is 'a' (0x83 0x61), and a half-width katakana.
const std::string kShiftJisPage =
    "<html><head><meta charset=\"Shift_JIS\"></head>\n"
    "<p>\x93\xFA\x96\x7B\x8C\xEA \x83\x5C\x83\x61 \xB1 C:\\path</p></html>\n";

class EncodedFiles : public ::testing::Test, protected CTempFolder {
protected:
    EncodedFiles() : CTempFolder("encoding_test") {}
};

// What a load tells the host: "ENCODING SOURCE UNDECODABLE bom|nobom".
std::string Described(const CLoadReport& report, bool bom) {
    static const char* const kSources[] = {"bom", "host", "declared", "default", "guessed"};
    return report.encoding + " " + kSources[static_cast<int>(report.source)] + " " +
           std::to_string(report.nUndecodable) + (bom ? " bom" : " nobom");
}

TEST_F(EncodedFiles, LoadsOfTheCasesSaveTheBytesThatWereLoaded) {
    for (const CaseRow& row : ReadCaseRows("htmldoc/cases/loads.cases")) {
        SCOPED_TRACE(row.where);
        CodePageScope cp(static_cast<UINT>(row.Long(1)));
        auto doc = CreateHtmlDocument();
        if (row[2] != "-") {
            ASSERT_EQ(doc->SetDefaultEncoding(row[2]), S_OK);
        }
        std::vector<CLoadReport> told;
        doc->SetLoadListener([&](const CLoadReport& report) { told.push_back(report); });
        std::string error;
        ASSERT_EQ(doc->LoadFile(Write("in.htm", row[4]), &error, row[3] == "-" ? "" : row[3]), S_OK) << error;
        ASSERT_EQ(told.size(), 1u);
        EXPECT_EQ(Described(told[0], doc->ByteOrderMark()), row[5]);
        EXPECT_EQ(doc->Encoding(), told[0].encoding);
        if (row[6] != "*") {
            EXPECT_EQ(doc->GetText(), row[6]);
        }
        EXPECT_FALSE(doc->IsModified());
        ASSERT_EQ(doc->SaveFile(PathOf("out.htm"), &error), S_OK) << error;
        EXPECT_EQ(ReadAll(PathOf("out.htm")), row[4]);
    }
}

TEST_F(EncodedFiles, TheHostsDefaultTakesKnownLabelsOnly) {
    auto doc = CreateHtmlDocument();
    EXPECT_EQ(doc->SetDefaultEncoding("sjis"), S_OK);
    EXPECT_EQ(doc->DefaultEncoding(), "Shift_JIS");
    EXPECT_EQ(doc->SetDefaultEncoding("no-such-encoding"), E_INVALIDARG);
    EXPECT_EQ(doc->DefaultEncoding(), "Shift_JIS");
    EXPECT_EQ(doc->SetDefaultEncoding(""), S_OK);
    EXPECT_EQ(doc->DefaultEncoding(), "");
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

// Every way a load can still fail leaves the document as it was.
TEST_F(EncodedFiles, RefusalsSayWhyAndKeepTheDocument) {
    CodePageScope cp(1252);
    CAttachedDoc d;
    ASSERT_EQ(d.doc->LoadFile(Write("good.htm", "<meta charset=utf-8>caf\xC3\xA9")), S_OK);
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

}  // namespace
