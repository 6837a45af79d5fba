// The editor's choice of the process code page for the file it opens.
#include <gtest/gtest.h>

#include "app/codepagechoice.h"
#include "platform/codepage/encodings.h"
#include "platform/codepage/transcode.h"

namespace {

std::string In(const char* label, std::u32string_view text) {
    std::string out;
    EncodeCodePoints(*FindEncoding(label), text, &out, {});
    return out;
}

TEST(CodePageChoice, TheCodePageThatHoldsTheFilesCharacters) {
    const std::u32string japanese = U"<p>これは日本語のページです。</p>";
    const std::u32string simplified = U"<p>这是一个中文网页，我们在这里说明它的内容。</p>";
    const std::u32string traditional = U"<p>這是一個中文網頁，我們在這裡說明它的內容。</p>";
    const std::u32string korean = U"<p>이것은 한국어로 된 페이지입니다.</p>";
    const struct {
        std::string head;
        UINT cp;
    } cases[] = {
        {In("Shift_JIS", japanese), 932},
        {In("EUC-JP", japanese), 932},
        {"<meta charset=iso-2022-jp>" + In("ISO-2022-JP", japanese), 932},
        {In("UTF-8", japanese), 932},
        {"\xFF\xFE" + In("UTF-16LE", japanese), 932},
        {In("GBK", simplified), 936},
        {In("UTF-8", simplified), 936},
        {In("Big5", traditional), 950},
        {In("UTF-8", traditional), 950},
        {In("EUC-KR", korean), 949},
        {In("UTF-8", korean), 949},
        {"<p>caf\xE9</p>", 1252},
        {"<p>caf\xC3\xA9</p>", 1252},
        {"<p>plain</p>", 1252},
        {"", 1252},
    };
    for (const auto& c : cases) EXPECT_EQ(ChooseCodePage(c.head, {}), c.cp) << c.head;
}

TEST(CodePageChoice, TheCommandLineDecides) {
    const std::string japanese = "<meta charset=shift_jis><p>\x93\xFA\x96\x7B</p>";
    EXPECT_EQ(ChooseCodePage(japanese, "1252"), 1252u);
    EXPECT_EQ(ChooseCodePage("<p>plain</p>", "949"), 949u);
    for (const char* unknown : {"0", "437", "932x", "-1", "cp932"}) EXPECT_EQ(ChooseCodePage(japanese, unknown), 0u) << unknown;
}

}  // namespace
