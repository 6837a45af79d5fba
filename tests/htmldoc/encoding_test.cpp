// Files in their own encodings: detection, conversion into the process code page with numeric
// references for what it cannot hold, and byte-identical saves, from cases/loads.cases. Saves in
// another encoding and refused loads are in cases/files.cases.
#include <gtest/gtest.h>

#include "htmldoc/htmldocument.h"
#include "tests/codepagescope.h"
#include "tests/htmldoc/tempfolder.h"
#include "tests/platform/casefile.h"

namespace {

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

}  // namespace
