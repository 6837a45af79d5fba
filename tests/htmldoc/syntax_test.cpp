// Classes, tokens and items of small HTML snippets, played from cases/syntax.cases; and the
// documentation items and the syntax interfaces the view asks the document for.
#include <gtest/gtest.h>

#include "htmldoc/htmldocument.h"
#include "tests/platform/casefile.h"

namespace {

ComPtr<CHtmlDocument> DocumentOf(std::string_view html) {
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText(html);
    return doc;
}

// The class of every byte, one character each: 0-9 and 'a' for 10.
std::string Classes(CHtmlDocument& doc) {
    std::string out;
    for (long i = 0; i < doc.GetLength(); ++i) out += "0123456789a"[doc.GetClassAt(i)];
    return out;
}

std::string TokenAt(CHtmlDocument& doc, long pos) {
    ISourceTokenInfo t;
    if (FAILED(doc.GetToken(pos, &t))) return "refused";
    return std::to_string(t.nKind) + " " + std::to_string(t.nStart) + " " + std::to_string(t.nLength);
}

// Kind, start and the tag name or hint of the syntax item at pos.
std::string ItemAt(CHtmlDocument& doc, long pos) {
    long start = -1;
    ComPtr<ISourceSyntaxItem> si;
    if (FAILED(doc.GetItemAt(pos, &start, si.Out())) || !si) return "none";
    std::string name;
    if (auto tag = si.As<ISourceTagItem>(IID_ISourceTagItem)) tag->GetTagName(&name);
    if (auto hint = si.As<ISourceHintItem>(IID_ISourceHintItem)) hint->GetHintText(&name);
    return std::to_string(si->GetItemKind()) + " " + std::to_string(start) + " " + name;
}

TEST(SyntaxCases, ClassesTokensAndItemsOfSnippets) {
    for (const CaseRow& row : ReadCaseRows("htmldoc/cases/syntax.cases")) {
        SCOPED_TRACE(row.where);
        ComPtr<CHtmlDocument> doc = DocumentOf(row[1]);
        const std::string& verb = row[0];
        if (verb == "classes") EXPECT_EQ(Classes(*doc), row[2]);
        else if (verb == "clean") EXPECT_EQ(Classes(*doc).find('2'), std::string::npos) << Classes(*doc);
        else if (verb == "token") EXPECT_EQ(TokenAt(*doc, row.Long(2)), row[3]);
        else if (verb == "notoken") EXPECT_EQ(TokenAt(*doc, row.Long(2)), "refused");
        else if (verb == "item") EXPECT_EQ(ItemAt(*doc, row.Long(2)), row[3]);
        else ADD_FAILURE() << "unknown verb " << verb;
    }
}

TEST(SyntaxDocItems, TagsAttributesAndEndTagLinks) {
    ComPtr<CHtmlDocument> doc = DocumentOf("<body bgcolor=white></body><foo>");
    // The item's description and the name of its source, or nothing.
    auto describe = [&](long pos, std::string* text, std::string* source) {
        ComPtr<ISourceDocItem> item;
        doc->GetDocItemAt(pos, item.Out());
        long id = 0;
        if (item) item->GetDescription(text), item->GetSourceId(&id), item->GetSourceName(id, source);
        return item;
    };
    std::string text, source;
    ASSERT_TRUE(describe(2, &text, &source));
    EXPECT_FALSE(text.empty());
    EXPECT_EQ(source, "HTML Living Standard");
    ASSERT_TRUE(describe(16, &text, &source));
    EXPECT_NE(text.find("ackground"), std::string::npos);
    EXPECT_EQ(source, "HTML 4.01");
    ComPtr<ISourceDocItem> end = describe(23, &text, &source);
    ASSERT_TRUE(end);
    auto link = end.As<ISourceDocLink>(IID_ISourceDocLink);
    ASSERT_TRUE(link);
    EXPECT_FALSE(link->IsFinal());
    ComPtr<IUnknown> target;
    EXPECT_EQ(link->GetTarget(target.Out()), S_OK);
    EXPECT_TRUE(QueryAs<ISourceDocItem>(target.Get(), IID_ISourceDocItem));
    EXPECT_FALSE(QueryAs<ISourceDocLink>(target.Get(), IID_ISourceDocLink));
    EXPECT_FALSE(describe(29, &text, &source));  // an unknown tag has no documentation
}

TEST(SyntaxContract, DocumentAnswersTheSyntaxInterfaces) {
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    ComPtr<ISourceText> text(doc.Get());
    auto syntax = text.As<ISourceSyntax>(IID_ISourceSyntax);
    ASSERT_TRUE(syntax);
    ASSERT_TRUE(text.As<ISourceTokens>(IID_ISourceTokens));
    EXPECT_EQ(syntax->GetClassAt(0), 0);  // an empty text
    doc->SetText("<b>");
    EXPECT_EQ(syntax->GetClassAt(1), 3);
    EXPECT_EQ(syntax->GetClassAt(-1), 0);
    EXPECT_EQ(syntax->GetClassAt(3), 0);
}

}  // namespace
