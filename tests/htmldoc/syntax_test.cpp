// Classes, tokens and items of small HTML snippets: what painting, tag hints and the double
// click rely on.
#include <gtest/gtest.h>

#include "htmldoc/htmldocument.h"

namespace {

// The class of every byte, one character each: 0-9 and 'a' for 10.
std::string Classes(CHtmlDocument& doc) {
    std::string out;
    for (long i = 0; i < doc.GetLength(); ++i) out += "0123456789a"[doc.GetClassAt(i)];
    return out;
}

std::string ClassesOf(std::string_view html) {
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText(html);
    return Classes(*doc);
}

struct Item {
    long kind = -1;
    long start = -1;
    std::string name;  // tag name or hint
};

Item ItemAt(CHtmlDocument& doc, long pos) {
    Item item;
    ComPtr<ISourceSyntaxItem> si;
    if (FAILED(doc.GetItemAt(pos, &item.start, si.Out())) || !si) return item;
    item.kind = si->GetItemKind();
    if (auto tag = si.As<ISourceTagItem>(IID_ISourceTagItem)) tag->GetTagName(&item.name);
    if (auto hint = si.As<ISourceHintItem>(IID_ISourceHintItem)) hint->GetHintText(&item.name);
    return item;
}

TEST(SyntaxClasses, TagsAttributesAndValuesByType) {
    // <  b  >  x  <  /  b  >
    EXPECT_EQ(ClassesOf("<b>x</b>"), "43404434");
    EXPECT_EQ(ClassesOf("<font color=\"red\" size=3>"), "4333345555549999945555474");
    EXPECT_EQ(ClassesOf("<a href=x.htm>"), "43455554aaaaa4");
    EXPECT_EQ(ClassesOf("<td align=left width=50%>"), "4334555554888845555547774");
    EXPECT_EQ(ClassesOf("<td align=middle>"), "43345555542222224");
    EXPECT_EQ(ClassesOf("<p title='a b'>"), "434555554666664");
    EXPECT_EQ(ClassesOf("<input checked disabled>"), "433333455555554555555554");
    EXPECT_EQ(ClassesOf("<div data-x=1 onclick=\"f()\">"), "4333455555546455555554666664");
}

TEST(SyntaxClasses, UnknownNamesAndStrayMarkupAreErrors) {
    EXPECT_EQ(ClassesOf("<foo>"), "42224");
    EXPECT_EQ(ClassesOf("<b bogus>"), "434222224");
    EXPECT_EQ(ClassesOf("</b class=x>"), "443422222464");  // no attributes on end tags
    EXPECT_EQ(ClassesOf("a < b"), "00200");
    EXPECT_EQ(ClassesOf("</ x"), "2200");
    EXPECT_EQ(ClassesOf("<my-widget foo=1>"), "43333333334555464");
    EXPECT_EQ(ClassesOf("<a href=\"x"), "4345555422");  // unterminated value
}

// No valid attribute of modern markup is an error: inline SVG and MathML at their roots and
// inside, XML namespaces and languages on XHTML, RDFa, ARIA and data attributes.
TEST(SyntaxClasses, ModernMarkupHasNoErrors) {
    const char* const pages[] = {
        "<svg xmlns=\"http://www.w3.org/2000/svg\" viewBox=\"0 0 24 24\" width=\"16\"><path d=\"M0 0\"/></svg>"
        "<math display=\"block\">",
        "<svg xmlns:xlink=\"http://www.w3.org/1999/xlink\" fill=\"none\" stroke-width=\"2\" stroke-linecap=round "
        "preserveAspectRatio=\"xMidYMid meet\" aria-hidden=true focusable=false class=icon role=img>"
        "<use xlink:href=\"#i\" transform=\"rotate(45)\"/><circle cx=1 cy=1 r=1/></svg>",
        "<math xmlns=\"http://www.w3.org/1998/Math/MathML\" displaystyle=true mathcolor=red>"
        "<mfrac linethickness=0><mi mathvariant=normal>x</mi><mn>2</mn></mfrac></math>",
        "<html xmlns=\"http://www.w3.org/1999/xhtml\" xml:lang=\"en\" lang=\"en\" prefix=\"og: https://ogp.me/ns#\">",
        "<div vocab=\"https://schema.org/\" typeof=Person resource=\"#me\"><span property=name about=\"#me\" "
        "datatype=xsd:string content=Ann inlist>Ann</span></div>",
        "<button aria-expanded=false aria-controls=menu aria-describedby=tip data-state=closed data-x-y=1>",
    };
    for (const char* page : pages) EXPECT_EQ(ClassesOf(page).find('2'), std::string::npos) << page << "\n" << ClassesOf(page);
    // Unknown names are still errors at the roots, and the roots' attributes are not HTML's.
    EXPECT_EQ(ClassesOf("<svg bogus=1>"), "4333422222464");
    EXPECT_EQ(ClassesOf("<math viewBox=1>"), "4333342222222464");
}

TEST(SyntaxClasses, CommentsDeclarationsAndSections) {
    EXPECT_EQ(ClassesOf("<!-- a -->b"), "11111111110");
    EXPECT_EQ(ClassesOf("<!-->x"), "111110");
    EXPECT_EQ(ClassesOf("<!--[if IE]><p><![endif]-->"), std::string(27, '1'));
    EXPECT_EQ(ClassesOf("<![if !IE]>x"), "111111111110");
    EXPECT_EQ(ClassesOf("<!DOCTYPE html \"x\">"), "4433333334555546664");
    EXPECT_EQ(ClassesOf("<?xml v?>"), "446666644");
    EXPECT_EQ(ClassesOf("<![CDATA[a]]]>"), "44444444466444");
}

TEST(SyntaxClasses, CharacterReferences) {
    EXPECT_EQ(ClassesOf("&amp;&#169;&#x41;"), "88888777777777777");
    EXPECT_EQ(ClassesOf("&bogus; & &copy x"), "22222220008888800");
    EXPECT_EQ(ClassesOf("&#;&#xZ"), "2222220");
    EXPECT_EQ(ClassesOf("&#1114112;"), "2222222222");
}

TEST(SyntaxClasses, RawTextAndForeignContent) {
    // Script content is text up to its own end tag; markup inside it means nothing.
    std::string script = "<script>if (a<b) x='</p>';</script>";
    std::string c = ClassesOf(script);
    EXPECT_EQ(c.substr(0, 8), "43333334");
    EXPECT_EQ(c.substr(8, 18), std::string(18, '0'));
    EXPECT_EQ(c.substr(26), "443333334");
    EXPECT_EQ(ClassesOf("<title>a&lt;<b></title>"), "43333340888800044333334");
    // Any tag and attribute inside svg; the end of svg ends that.
    EXPECT_EQ(ClassesOf("<svg><path d=1/></svg><path>"), "4333443333454664443334422224");
}

TEST(SyntaxTokens, TagsCommentsTextAndReferences) {
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText("<p class=\"x\">one &amp; two\nthree<!-- c --></p>");
    ISourceTokenInfo t;
    doc->GetToken(5, &t);  // inside the attribute name
    EXPECT_EQ(t.nKind, 4);
    EXPECT_EQ(t.nStart, 0);
    EXPECT_EQ(t.nLength, 13);
    doc->GetToken(14, &t);
    EXPECT_EQ(t.nKind, 0);
    EXPECT_EQ(t.nStart, 13);
    EXPECT_EQ(t.nLength, 4);
    doc->GetToken(18, &t);
    EXPECT_EQ(t.nKind, 8);
    EXPECT_EQ(t.nStart, 17);
    EXPECT_EQ(t.nLength, 5);
    doc->GetToken(24, &t);  // the text runs to the end of its line, break included
    EXPECT_EQ(t.nStart, 22);
    EXPECT_EQ(t.nLength, 5);
    doc->GetToken(27, &t);
    EXPECT_EQ(t.nStart, 27);
    EXPECT_EQ(t.nLength, 5);
    doc->GetToken(35, &t);
    EXPECT_EQ(t.nKind, 1);
    EXPECT_EQ(t.nStart, 32);
    EXPECT_EQ(t.nLength, 10);
    EXPECT_EQ(doc->GetToken(doc->GetLength(), &t), E_INVALIDARG);
}

TEST(SyntaxItems, TagNamesInUpperCaseAndReferenceHints) {
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText("<Table border=1></table>&copy;&#8364;<!DOCTYPE html>");
    Item open = ItemAt(*doc, 8);
    EXPECT_EQ(open.kind, 1);
    EXPECT_EQ(open.start, 0);
    EXPECT_EQ(open.name, "TABLE");
    Item close = ItemAt(*doc, 20);
    EXPECT_EQ(close.start, 16);
    EXPECT_EQ(close.name, "/TABLE");
    Item copy = ItemAt(*doc, 26);
    EXPECT_EQ(copy.kind, 2);
    EXPECT_EQ(copy.start, 24);
    EXPECT_EQ(copy.name, "\xA9 U+00A9 &copy;");  // the character in the process code page
    Item euro = ItemAt(*doc, 31);
    EXPECT_EQ(euro.name.substr(1), " U+20AC &euro;");
    EXPECT_LT(euro.name.size(), 79u);
    EXPECT_EQ(ItemAt(*doc, 40).name, "!DOCTYPE");
}

TEST(SyntaxDocItems, TagsAttributesAndEndTagLinks) {
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText("<body bgcolor=white></body><foo>");
    auto describe = [&](long pos, std::string* text, long* source) {
        ComPtr<ISourceDocItem> item;
        doc->GetDocItemAt(pos, item.Out());
        if (!item) return ComPtr<ISourceDocItem>();
        item->GetDescription(text);
        item->GetSourceId(source);
        return item;
    };
    std::string text, name;
    long source = 0;
    ComPtr<ISourceDocItem> body = describe(2, &text, &source);
    ASSERT_TRUE(body);
    EXPECT_FALSE(text.empty());
    body->GetSourceName(source, &name);
    EXPECT_EQ(name, "HTML Living Standard");
    ComPtr<ISourceDocItem> bgcolor = describe(16, &text, &source);
    ASSERT_TRUE(bgcolor);
    EXPECT_NE(text.find("ackground"), std::string::npos);
    bgcolor->GetSourceName(source, &name);
    EXPECT_EQ(name, "HTML 4.01");
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
    auto tokens = text.As<ISourceTokens>(IID_ISourceTokens);
    ASSERT_TRUE(syntax);
    ASSERT_TRUE(tokens);
    EXPECT_EQ(syntax->GetClassAt(0), 0);  // an empty text
    doc->SetText("<b>");
    EXPECT_EQ(syntax->GetClassAt(1), 3);
    EXPECT_EQ(syntax->GetClassAt(-1), 0);
    EXPECT_EQ(syntax->GetClassAt(3), 0);
}

}  // namespace
