// Files in their own encodings: detection, conversion into the process code page with numeric
// references for what it cannot hold and byte-identical saves (the cases of cases/loads.cases),
// and loads refused without losing anything. Saves in another encoding are in cases/files.cases.
#include <gtest/gtest.h>

#include <filesystem>

#include "platform/codepage/codepage.h"
#include "tests/codepagescope.h"
#include "tests/htmldoc/recordingsink.h"
#include "tests/htmldoc/tempfolder.h"
#include "tests/platform/casefile.h"

namespace {

namespace fs = std::filesystem;

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

}  // namespace
