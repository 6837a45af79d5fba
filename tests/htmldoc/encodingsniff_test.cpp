// Declarations of a page's encoding, found where browsers find them and nowhere else.
#include <gtest/gtest.h>

#include "htmldoc/encodingsniff.h"

namespace {

std::string Declared(std::string_view bytes) {
    const CEncodingInfo* found = PrescanMetaCharset(bytes);
    return found ? found->pszName : "none";
}

TEST(EncodingSniff, ByteOrderMarks) {
    EXPECT_STREQ(DetectByteOrderMark("\xEF\xBB\xBFx").encoding->pszName, "UTF-8");
    EXPECT_EQ(DetectByteOrderMark("\xEF\xBB\xBFx").nLength, 3u);
    EXPECT_STREQ(DetectByteOrderMark("\xFF\xFE").encoding->pszName, "UTF-16LE");
    EXPECT_STREQ(DetectByteOrderMark("\xFE\xFF<").encoding->pszName, "UTF-16BE");
    for (std::string_view none : {"", "\xEF\xBB", "\xFE", "<\xFF\xFE"}) EXPECT_EQ(DetectByteOrderMark(none).encoding, nullptr);
}

TEST(EncodingSniff, MetaDeclarationsThatCount) {
    EXPECT_EQ(Declared("<meta charset=\"utf-8\">"), "UTF-8");
    EXPECT_EQ(Declared("<!doctype html><META CHARSET='Shift_JIS'/>"), "Shift_JIS");
    EXPECT_EQ(Declared("<meta charset= euc-kr >"), "EUC-KR");
    EXPECT_EQ(Declared("<META HTTP-EQUIV=\"Content-Type\" CONTENT=\"text/html; Charset=Big5\">"), "Big5");
    EXPECT_EQ(Declared("<meta content='text/html;charset = \"gb2312\"' http-equiv=content-type>"), "GBK");
    EXPECT_EQ(Declared("<meta/charset=latin1>"), "windows-1252");
    // What follows a first declaration that names nothing known still counts.
    EXPECT_EQ(Declared("<meta charset=klingon><meta charset=koi8-r>"), "KOI8-R");
    // UTF-16 declared in ASCII bytes cannot be true: the bytes are read as UTF-8.
    EXPECT_EQ(Declared("<meta charset=utf-16>"), "UTF-8");
    EXPECT_EQ(Declared("<meta charset=x-user-defined>"), "windows-1252");
}

TEST(EncodingSniff, PlacesThatDeclareNothing) {
    // A content type without http-equiv, and http-equiv of another kind.
    EXPECT_EQ(Declared("<meta content=\"text/html; charset=utf-8\">"), "none");
    EXPECT_EQ(Declared("<meta http-equiv=refresh content=\"text/html; charset=utf-8\">"), "none");
    // Inside a comment, an attribute value of another tag, a processing instruction; a tag that
    // only begins with "meta".
    EXPECT_EQ(Declared("<!-- <meta charset=utf-8> --><p>"), "none");
    EXPECT_EQ(Declared("<div title=\"<meta charset=utf-8>\">"), "none");
    EXPECT_EQ(Declared("<?xml <meta charset=utf-8>?>"), "none");
    EXPECT_EQ(Declared("<metadata charset=utf-8>"), "none");
    // Behind the first 1024 bytes, and cut off by the end.
    EXPECT_EQ(Declared(std::string(1020, ' ') + "<meta charset=utf-8>"), "none");
    EXPECT_EQ(Declared("<meta charset=\"utf-8"), "none");
    EXPECT_EQ(Declared("<!-- <meta charset=utf-8>"), "none");
    // The first charset attribute of a tag counts, not a repeated one.
    EXPECT_EQ(Declared("<meta charset=klingon charset=utf-8>"), "none");
}

}  // namespace
