// The format of each byte: syntax classes and tokens to styles, hidden characters, the
// selection and monochrome drawing.
#include "platform/codepage/codepage.h"
#include "src/view/module.h"
#include "tests/view/viewfixture.h"

namespace {

class CharFormats : public ViewFixture {
protected:
    // "<b>x\ty</b>\r\n" with classes: < and > punctuation (4), b tag element letters (4),
    // text x and y (0), and an attribute-classed tab to show that hidden characters win.
    void OpenScripted(const std::string& text = "<b>x\ty</b>\r\n", bool offersSyntax = true) {
        NewControl(400, 300);
        doc = CreateHtmlDocument();
        doc->SetText(text);
        syntax = std::make_unique<CScriptedSyntax>(doc.Get(), offersSyntax);
        ctrl->SetDocument(syntax.get());
    }
    CharFormat At(long pos) {
        CharFormat f;
        ctrl->GetCharFormat(static_cast<BYTE>(doc->GetCharAt(pos)), pos, ctrl->GetOptionsWord(), &f);
        return f;
    }
    const FormatStyle& Style(int i) { return ctrl->GetFormatStyle(i); }
    static bool Same(const CharFormat& a, const FormatStyle& b) {
        return a.crText == b.crText && a.crBack == b.crBack && a.dwFont == b.dwFont;
    }

    std::unique_ptr<CScriptedSyntax> syntax;
};

TEST_F(CharFormats, SyntaxClassesChooseStylesAndTagPunctuationPaintsAsOperator) {
    OpenScripted("<b x=1>c</b>");
    syntax->SetClass(0, 3, SC_TAG_ELEMENT);
    syntax->SetClass(3, 1, SC_ATTRIBUTE);
    syntax->SetClass(4, 1, SC_TAG_ELEMENT);
    syntax->SetClass(5, 1, SC_INTEGER_VALUE);
    syntax->SetClass(6, 1, SC_TAG_ELEMENT);
    syntax->SetClass(7, 1, SC_COMMENT);
    syntax->SetClass(8, 4, SC_URL_VALUE);
    EXPECT_TRUE(Same(At(0), Style(2)));   // '<' is punctuation
    EXPECT_TRUE(Same(At(1), Style(4)));   // 'b' is the tag
    EXPECT_TRUE(Same(At(2), Style(4)));   // a space is not punctuation
    EXPECT_TRUE(Same(At(3), Style(5)));
    EXPECT_TRUE(Same(At(4), Style(2)));   // '='
    EXPECT_TRUE(Same(At(5), Style(8)));
    EXPECT_TRUE(Same(At(7), Style(6)));
    EXPECT_TRUE(Same(At(9), Style(11)));
    syntax->SetClass(0, 1, 42);  // a class the table does not know paints plain
    EXPECT_TRUE(Same(At(0), Style(0)));
}

TEST_F(CharFormats, WithoutSyntaxOrInModesNoneAndThreeEverythingIsStyleZero) {
    OpenScripted("<b>x</b>", false);
    EXPECT_TRUE(Same(At(0), Style(0)));
    ctrl->SetHighlightStyle(2);
    EXPECT_TRUE(Same(At(1), Style(0)));
    OpenScripted();
    syntax->SetClass(0, 3, SC_TAG);
    for (SHORT mode : {0, 3}) {
        ctrl->SetHighlightStyle(mode);
        EXPECT_TRUE(Same(At(1), Style(0))) << mode;
    }
}

TEST_F(CharFormats, HiddenCharactersHaveTheirStyleInEveryModeAndSelectedOnesKeepTheSymbolFont) {
    OpenScripted();
    syntax->SetClass(0, 13, SC_ATTRIBUTE);
    ctrl->SetOption(OPT_DISPLAYALL, TRUE);
    for (SHORT mode : {0, 1, 2}) {
        ctrl->SetHighlightStyle(mode);
        EXPECT_TRUE(Same(At(4), Style(12))) << mode;   // TAB
        EXPECT_TRUE(Same(At(10), Style(12))) << mode;  // CR
        EXPECT_FALSE(Same(At(11), Style(12))) << mode; // LF is never hidden-styled
    }
    ctrl->SetSelection(3, 12);
    const CharFormat tab = At(4);
    EXPECT_EQ(tab.crBack, Style(STYLE_SELECTION).crBack);
    EXPECT_EQ(tab.crText, Style(STYLE_SELECTION).crText);
    EXPECT_EQ(tab.dwFont, FONT_ROLE_SYMBOL);
}

TEST_F(CharFormats, TheSelectionRecoloursItsBytesOnlyAndMonoDrawShowsNone) {
    OpenScripted();
    syntax->SetClass(0, 3, SC_TAG_ELEMENT);
    ctrl->SetSelection(2, 1);  // active end above the anchor: bytes 1 only
    EXPECT_EQ(At(1).crBack, Style(STYLE_SELECTION).crBack);
    EXPECT_EQ(At(1).dwFont, FONT_BOLD);  // the tag's font stays
    EXPECT_NE(At(0).crBack, Style(STYLE_SELECTION).crBack);
    EXPECT_NE(At(2).crBack, Style(STYLE_SELECTION).crBack);
    ctrl->SetOption(OPT_MONODRAW, TRUE);
    EXPECT_EQ(At(1).crText, 0x000000u);
    EXPECT_EQ(At(1).crBack, 0xFFFFFFu);
    EXPECT_EQ(At(1).dwFont, FONT_BOLD);
}

TEST_F(CharFormats, HideSelectionShowsTheSelectionOnlyWhileTheControlHasTheFocus) {
    OpenScripted();
    ctrl->SetSelection(0, 3);
    ctrl->SetOption(OPT_HIDESELECTION, TRUE);
    EXPECT_NE(At(1).crBack, Style(STYLE_SELECTION).crBack);
    Focus();
    EXPECT_EQ(At(1).crBack, Style(STYLE_SELECTION).crBack);
    // A printout's option word has no screen bit: its selection never shows.
    CharFormat f;
    ctrl->GetCharFormat('b', 1, ctrl->GetOptionsWord() & ~OPT_SCREENMETRICS, &f);
    EXPECT_NE(f.crBack, Style(STYLE_SELECTION).crBack);
}

TEST_F(CharFormats, TagHighlightColoursTagTokensByExceptionTagsOfEitherSpelling) {
    OpenScripted("<b>x</B> <i>y</i>");
    syntax->SetClass(0, 3, SC_TAG_ELEMENT);
    syntax->SetClass(4, 4, SC_TAG_ELEMENT);
    syntax->SetClass(9, 3, SC_TAG_ELEMENT);
    syntax->SetClass(13, 4, SC_TAG_ELEMENT);
    syntax->SetTagName(0, "B");
    syntax->SetTagName(4, "/B");
    syntax->SetTagName(9, "I");
    syntax->SetTagName(13, "/I");
    ctrl->SetHighlightStyle(2);
    ctrl->AddExceptionTag("b", 0x0000FF, 0x00FF00);
    for (long pos : {0L, 1L, 2L, 4L, 6L}) {
        EXPECT_EQ(At(pos).crText, 0x0000FFu) << pos;
        EXPECT_EQ(At(pos).crBack, 0x00FF00u) << pos;
        EXPECT_EQ(At(pos).dwFont, FONT_BOLD) << pos;
    }
    EXPECT_TRUE(Same(At(9), Style(4)));   // no exception for I
    EXPECT_TRUE(Same(At(3), Style(1)));   // text between the tags
    // Exception tags play no part under syntax highlighting.
    ctrl->SetHighlightStyle(1);
    EXPECT_TRUE(Same(At(1), Style(4)));
}

TEST_F(CharFormats, ALeadByteIsTwoBytesAndNeverATabOrCR) {
    ASSERT_TRUE(SetProcessCodePage(932));
    ZentrelApp().InitInstance();
    OpenScripted(std::string("a\x89\x09z"));  // 0x89 0x09 is no character, but 0x89 leads one
    ctrl->SetOption(OPT_DISPLAYALL, TRUE);
    CharFormat f;
    EXPECT_EQ(ctrl->GetCharFormat(0x89, 1, ctrl->GetOptionsWord(), &f), 2);
    EXPECT_FALSE(Same(f, Style(12)));
    EXPECT_EQ(ctrl->GetCharFormat('a', 0, ctrl->GetOptionsWord(), &f), 1);
    SetProcessCodePage(1252);
    ZentrelApp().InitInstance();
}

}  // namespace
