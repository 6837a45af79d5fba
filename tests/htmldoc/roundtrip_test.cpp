// A folder of pages like those found on the web, made here in every encoding the loader knows:
// author-written references, bytes that read as no character, wrong and missing declarations,
// shift sequences, CRLF and lone CR. Each loads under every process code page, says what it
// found, and saves back byte for byte; an edit of one character changes only that character's
// bytes, and undoing edits brings the file back.
#include <gtest/gtest.h>

#include <random>

#include "htmldoc/htmldocument.h"
#include "platform/codepage/iso2022jp.h"
#include "platform/com/textdataobject.h"
#include "platform/codepage/transcode.h"
#include "platform/codepage/unicode.h"
#include "tests/codepagescope.h"
#include "tests/htmldoc/tempfolder.h"
#include "tests/platform/casefile.h"

namespace {

const UINT kCodePages[] = {1252, 932, 936, 949, 950};

// Text of many scripts; a page keeps what its encoding holds.
const std::u32string kPool =
    U"é ü ß € — “quoted” 日本語のテスト 中文汉字這個 한국어 Ελληνικά Русский עברית العربية ไทย ☰ 😀 ≒ ① ¥";

struct CPage {
    std::string name;
    std::string bytes;
    std::string encoding;   // what the load reports
    size_t undecodable = 0;
    std::string where = __FILE__;  // the case row that made it, for failure messages
};

std::string Encode(const CEncodingInfo& enc, std::u32string_view text) {
    std::string out;
    EncodeCodePoints(enc, text, &out, [](char32_t, std::string&) {});
    return out;
}

std::u32string CharsOf(std::string_view utf8) {
    std::u32string chars;
    for (const CodePointAt& cp : DecodeUtf8(utf8)) chars += cp.ch;
    return chars;
}

// The pool's characters that the encoding holds.
std::u32string Held(const CEncodingInfo& enc) {
    std::u32string held;
    for (char32_t ch : kPool)
        if (ch < 0x80 || CanEncode(enc, ch)) held += ch;
    return held;
}

// A page in `label`, declared in a meta element when `declare` is set; `extra` (bytes of that
// encoding) goes into the body as it is.
std::string MakePage(const char* label, bool declare, std::string_view extra = {}) {
    const CEncodingInfo& enc = *FindEncoding(label);
    const std::u32string held = Held(enc);
    char32_t special = U'x';
    for (char32_t ch : held)
        if (ch >= 0x80) { special = ch; break; }
    std::u32string head = U"<!DOCTYPE html>\r\n<html><head>";
    if (declare) for (const char* c = label; *c; ++c) head += c == label ? std::u32string(U"<meta charset=\"") + char32_t(*c) : std::u32string(1, char32_t(*c));
    if (declare) head += U"\">";
    head += U"<title>Page</title></head>\r\n<body>\r<p class=\"text\">" + held +
            U" &#9776; &#x65E5; &amp; &#233; &#0233;</p>\n<script>var s = \"&#8201;\";</script>\n<p>";
    const std::u32string tail = U"</p>\n<p>EDIT-HERE <i>" + std::u32string(1, special) + U"</i></p>\r\n</body></html>\n";
    std::string bytes;
    if (&enc == &Utf16LeEncoding()) bytes = "\xFF\xFE";
    if (&enc == &Utf16BeEncoding()) bytes = "\xFE\xFF";
    return bytes + Encode(enc, head) + std::string(extra) + Encode(enc, tail);
}

// The pages of cases/pages.cases, and those whose bytes their rows cannot build.
std::vector<CPage> Pages() {
    std::vector<CPage> pages;
    for (const CaseRow& row : ReadCaseRows("htmldoc/cases/pages.cases")) {
        const std::string& body = row[3];
        const std::string bytes = row[0] == "raw"          ? body
                                  : row[0] == "undeclared" ? MakePage(row[2].c_str(), false, Encode(*FindEncoding(row[2]), CharsOf(body)))
                                                           : MakePage(row[2].c_str(), true, body);
        pages.push_back({row[1], bytes, row[4], static_cast<size_t>(row.Long(5)), row.where});
    }
    pages.push_back({"utf16-odd", MakePage("UTF-16LE", false) + "\x41", "UTF-16LE", 1});
    std::string wrong = MakePage("UTF-8", false);
    wrong.insert(wrong.find("<title>"), "<meta charset=big5>");
    pages.push_back({"big5-declared-utf8", wrong, "UTF-8", 0});
    pages.push_back({"ascii-with-one-ff", std::string(68 << 10, 'a') + "\xFF\n", "windows-1252", 0});
    return pages;
}

class RoundTrip : public ::testing::Test, protected CTempFolder {
protected:
    RoundTrip() : CTempFolder("roundtrip_test") {}
    std::string Saved(CHtmlDocument* doc) const {
        const std::string path = PathOf("saved.htm");
        std::string error;
        EXPECT_EQ(doc->SaveFile(path, &error), S_OK) << error;
        return ReadAll(path);
    }
};

// The bytes of ASCII text in the page's encoding.
std::string AsciiIn(const std::string& encoding, std::u32string_view text) { return Encode(*FindEncoding(encoding), text); }

TEST_F(RoundTrip, EveryPageUnderEveryCodePage) {
    for (const CPage& page : Pages()) {
        const std::string path = Write(page.name + ".htm", page.bytes);
        for (UINT cp : kCodePages) {
            CodePageScope scope(cp);
            SCOPED_TRACE(page.where + ": " + page.name + " in code page " + std::to_string(cp));
            auto doc = CreateHtmlDocument();
            std::string error;
            ASSERT_EQ(doc->LoadFile(path, &error), S_OK) << error;
            EXPECT_EQ(doc->LastLoad().encoding, page.encoding);
            EXPECT_EQ(doc->LastLoad().nUndecodable, page.undecodable);
            EXPECT_EQ(Saved(doc.Get()), page.bytes);
            // The author's references stay as written, whatever the code page holds.
            if (page.bytes.find("Page") != std::string::npos) {
                EXPECT_NE(doc->GetText().find("&#9776; &#x65E5; &amp; &#233; &#0233;"), std::string::npos);
            }
        }
    }
}

TEST_F(RoundTrip, AnEditChangesOnlyItsCharacter) {
    for (const CPage& page : Pages()) {
        const size_t edit = page.bytes.find(AsciiIn(page.encoding, U"EDIT-HERE"));
        if (edit == std::string::npos) continue;
        const std::string path = Write(page.name + ".htm", page.bytes);
        // A single-byte code page, where most characters are references, and a double-byte one.
        for (UINT cp : {1252u, 932u}) {
            CodePageScope scope(cp);
            SCOPED_TRACE(page.where + ": " + page.name + " in code page " + std::to_string(cp));
            auto doc = CreateHtmlDocument();
            ASSERT_EQ(doc->LoadFile(path), S_OK);
            // One ASCII letter: E to e.
            const auto at = static_cast<long>(doc->GetText().find("EDIT-HERE"));
            ASSERT_EQ(doc->ReplaceText(at, 1, "e", 1, nullptr), S_OK);
            std::string expected = page.bytes;
            expected.replace(edit, AsciiIn(page.encoding, U"E").size(), AsciiIn(page.encoding, U"e"));
            EXPECT_EQ(Saved(doc.Get()), expected);
            // The character in <i>, whatever the text shows for it: its bytes go and nothing else.
            const std::string text = doc->GetText();
            const size_t open = text.find("<i>", static_cast<size_t>(at)) + 3;
            ASSERT_EQ(doc->DeleteText(static_cast<long>(open), static_cast<long>(text.find("</i>", open) - open), nullptr), S_OK);
            const std::string before = AsciiIn(page.encoding, U"<i>"), after = AsciiIn(page.encoding, U"</i>");
            size_t from = expected.find(before, edit) + before.size();
            size_t to = expected.find(after, from);
            if (page.encoding == "ISO-2022-JP" && expected[from] == '\x1B') from += 3, to -= 3;  // the shifts stay
            expected.erase(from, to - from);
            EXPECT_EQ(Saved(doc.Get()), expected);
            long caret = 0;
            ASSERT_EQ(doc->Undo(nullptr, &caret), S_OK);
            ASSERT_EQ(doc->Undo(nullptr, &caret), S_OK);
            EXPECT_EQ(Saved(doc.Get()), page.bytes);
        }
    }
}

// Random edits over the marks of loading, then undoing them all, give the file back; so does
// redoing and undoing them again.
TEST_F(RoundTrip, UndoingRandomEditsGivesTheFileBack) {
    CodePageScope scope(1252);
    for (const char* name : {"utf8-bad-bytes", "jis-old-shifts", "declared-Shift_JIS"}) {
        CPage page;
        for (const CPage& p : Pages())
            if (p.name == name) page = p;
        ASSERT_FALSE(page.bytes.empty()) << "no page " << name;
        const std::string path = Write("random.htm", page.bytes);
        for (unsigned seed = 1; seed <= 20; ++seed) {
            SCOPED_TRACE(page.where + ": " + name + " seed " + std::to_string(seed));
            std::mt19937 random(seed);
            auto doc = CreateHtmlDocument();
            ASSERT_EQ(doc->LoadFile(path), S_OK);
            int edits = 0;
            for (int i = 0; i < 12; ++i) {
                const long length = doc->GetLength();
                const long pos = static_cast<long>(random() % static_cast<unsigned>(length + 1));
                const long count = std::min<long>(length - pos, static_cast<long>(random() % 12));
                const std::string text(random() % 3, "ab\n"[random() % 3]);
                if (SUCCEEDED(doc->ReplaceText(pos, count, text.data(), static_cast<long>(text.size()), nullptr)) &&
                    (count || !text.empty()))
                    ++edits;
            }
            long caret = 0;
            for (int i = 0; i < edits; ++i) ASSERT_EQ(doc->Undo(nullptr, &caret), S_OK);
            EXPECT_EQ(Saved(doc.Get()), page.bytes);
            for (int i = 0; i < edits; ++i) ASSERT_EQ(doc->Redo(nullptr, &caret), S_OK);
            for (int i = 0; i < edits; ++i) ASSERT_EQ(doc->Undo(nullptr, &caret), S_OK);
            EXPECT_EQ(Saved(doc.Get()), page.bytes);
        }
    }
}

// Text that an input method or the clipboard hands over as Unicode: a character that the code page
// lacks is a reference in the text and the character in the saved file, and undo and redo take
// it out and put it back.
TEST_F(RoundTrip, ReferencesMadeForUnicodeInputSaveAsCharacters) {
    CodePageScope scope(1252);
    const std::string page = "<meta charset=utf-8><p>caf\xC3\xA9 &#9776;</p>";
    auto doc = CreateHtmlDocument();
    ASSERT_EQ(doc->LoadFile(Write("input.htm", page)), S_OK);
    auto data = ComPtr<CDataObject>(new CDataObject);
    data->SetData(CF_UNICODETEXT, std::string("\xE5\x65\x2C\x67\x00\x00", 6));  // 日本
    const long at = static_cast<long>(doc->GetText().find("</p>"));
    long inserted = 0;
    ASSERT_EQ(doc->InsertData(at, 0, &inserted, data.Get(), nullptr), S_OK);
    EXPECT_EQ(doc->GetText().substr(static_cast<size_t>(at), static_cast<size_t>(inserted)), "&#26085;&#26412;");
    const std::string typed = "<meta charset=utf-8><p>caf\xC3\xA9 &#9776;\xE6\x97\xA5\xE6\x9C\xAC</p>";
    EXPECT_EQ(Saved(doc.Get()), typed);
    long caret = 0;
    ASSERT_EQ(doc->Undo(nullptr, &caret), S_OK);
    EXPECT_EQ(Saved(doc.Get()), page);
    ASSERT_EQ(doc->Redo(nullptr, &caret), S_OK);
    EXPECT_EQ(Saved(doc.Get()), typed);
}

}  // namespace
