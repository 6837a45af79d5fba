// The editor's choice of the process code page for the file it opens.
#include <gtest/gtest.h>

#include "app/codepagechoice.h"
#include "platform/codepage/encodings.h"
#include "platform/codepage/transcode.h"
#include "platform/codepage/unicode.h"
#include "tests/platform/casefile.h"

namespace {

// A file's bytes: TEXT in the row's encoding behind a byte order mark that stands as it is.
std::string FileBytes(const CaseRow& row) {
    if (row[1] == "raw") return row[2];
    const size_t mark = row[2].starts_with("\xFF\xFE") ? 2 : 0;
    std::u32string text;
    for (const CodePointAt& cp : DecodeUtf8(std::string_view(row[2]).substr(mark))) text += cp.ch;
    std::string bytes = row[2].substr(0, mark);
    EncodeCodePoints(*FindEncoding(row[1]), text, &bytes, {});
    return bytes;
}

TEST(CodePageChoice, TheCodePageOfTheFilesCharactersUnlessTheCommandLineDecides) {
    for (const CaseRow& row : ReadCaseRows("app/cases/codepages.cases")) {
        const UINT cp = row[0] == "file" ? ChooseCodePage(FileBytes(row), {}) : ChooseCodePage(row[1], row[2]);
        EXPECT_EQ(cp, static_cast<UINT>(row.Long(row.fields.size() - 1))) << row.where;
    }
}

}  // namespace
