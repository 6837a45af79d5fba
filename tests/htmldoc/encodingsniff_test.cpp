// Declarations of a page's encoding, from cases/sniff.cases.
#include <gtest/gtest.h>

#include "htmldoc/encodingsniff.h"
#include "tests/platform/casefile.h"

namespace {

std::string Declared(std::string_view bytes) {
    const CEncodingInfo* found = PrescanMetaCharset(bytes);
    return found ? found->pszName : "none";
}

std::string MarkOf(std::string_view bytes) {
    const auto mark = DetectByteOrderMark(bytes);
    return mark.encoding ? mark.encoding->pszName + (" " + std::to_string(mark.nLength)) : "none";
}

TEST(EncodingSniff, ByteOrderMarksAndMetaDeclarations) {
    for (const CaseRow& row : ReadCaseRows("htmldoc/cases/sniff.cases"))
        EXPECT_EQ(row[0] == "bom" ? MarkOf(row[1]) : Declared(row[1]), row[2]) << row.where;
    // A declaration behind the first 1024 bytes counts for nothing.
    EXPECT_EQ(Declared(std::string(1020, ' ') + "<meta charset=utf-8>"), "none");
}

}  // namespace
