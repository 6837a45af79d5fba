// The clipboard through Qt, as another program sees it: the view's code page text goes out as
// Unicode text, and Unicode text from elsewhere comes in with every character kept.
#include <gtest/gtest.h>

#include <QClipboard>
#include <QGuiApplication>
#include <QMimeData>

#include "platform/qt/qtclipboard.h"
#include "tests/qt/qtviewfixture.h"

namespace {

class QtClipboard : public QtViewFixture {
protected:
    void Open(const std::string& text, UINT cp) {
        UseCodePage(cp);
        OpenText(text, 300, 100);
    }
};

TEST_F(QtClipboard, CopiedTextReachesOtherProgramsAsUnicode) {
    Open("caf\xE9 \x80 \x93x\x94", 1252);
    ctrl->SetSelection(0, document->GetLength());
    ASSERT_TRUE(ctrl->Copy());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QString::fromUtf8("café € “x”"));
}

TEST_F(QtClipboard, DoubleByteTextReachesOtherProgramsAsUnicode) {
    Open("\x82\xA0\x82\xA2", 932);
    ctrl->SetSelection(0, 4);
    ASSERT_TRUE(ctrl->Cut());
    EXPECT_EQ(QGuiApplication::clipboard()->text(), QString::fromUtf8("あい"));
    EXPECT_EQ(document->GetText(), "");
}

TEST_F(QtClipboard, TextFromElsewhereKeepsEveryCharacter) {
    Open("<p></p>", 1252);
    ctrl->SetSelection(3, 3);
    QGuiApplication::clipboard()->setText(QString::fromUtf8("é€ あ 😀"));
    ctrl->Paste();
    EXPECT_EQ(document->GetText(), "<p>\xE9\x80 &#12354; &#128512;</p>");
}

TEST_F(QtClipboard, TextTheCodePageHoldsIsAlsoOfferedAsItsOwnText) {
    Open("", 1252);
    auto* mime = new QMimeData;
    mime->setText(QString::fromUtf8("na\u00EFve"));
    const ClipboardFormats offered = FormatsFromMimeData(*mime);
    delete mime;
    ASSERT_EQ(offered.size(), 2u);
    EXPECT_EQ(offered[0], (std::pair<CLIPFORMAT, std::string>(CF_TEXT, std::string("na\xEFve\0", 6))));
    EXPECT_EQ(offered[1].first, CF_UNICODETEXT);
}

TEST_F(QtClipboard, NamedFormatsTravelUnderTheirOwnType) {
    const CLIPFORMAT marker = RegisterClipboardFormat("Zentrel Marker");
    std::unique_ptr<QMimeData> mime(MimeDataFromFormats({{marker, std::string("a.htm\0", 6)}}));
    EXPECT_FALSE(mime->hasText());
    const ClipboardFormats back = FormatsFromMimeData(*mime);
    ASSERT_EQ(back.size(), 1u);
    EXPECT_EQ(back[0].first, marker);
    EXPECT_EQ(back[0].second, std::string("a.htm\0", 6));
}

}  // namespace
