// The document's syntax services through the contract only: the input becomes the text; where the
// document answers ISourceSyntax and ISourceTokens, every position is asked for its class, token
// and item; then edits taken from the input change the text, and the positions are asked again.
// A document without those interfaces still has its edits and undo exercised.
#include <algorithm>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <string>

#include "htmldoc/htmldocument.h"
#include "platform/codepage/codepage.h"

namespace {

void Require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "broken: %s\n", what);
        std::abort();
    }
}

void AskEveryPosition(ISourceText* text, ISourceSyntax* syntax, ISourceTokens* tokens) {
    const long length = text->GetLength();
    for (long pos = 0; pos < length; ++pos) {
        if (syntax) {
            const long cls = syntax->GetClassAt(pos);
            Require(cls >= SC_TEXT && cls <= SC_URL_VALUE, "a class from the class table");
            long start = -1;
            ISourceSyntaxItem* item = nullptr;
            if (SUCCEEDED(syntax->GetItemAt(pos, &start, &item)) && item) {
                Require(start >= 0 && start <= pos, "an item starts at or before the position");
                item->GetItemKind();
                item->Release();
            }
        }
        if (tokens) {
            ISourceTokenInfo info;
            tokens->GetToken(pos, &info);
            Require(info.nKind >= SC_TEXT && info.nKind <= SC_URL_VALUE, "a token of a known class");
            Require(info.nStart >= 0 && info.nLength >= 0 && info.nStart + info.nLength <= length,
                    "a token inside the text");
        }
    }
}

// Reads the edit script at the end of the input: each edit takes four bytes.
class CEditScript {
public:
    CEditScript(const uint8_t* data, size_t size) : m_p(data), m_n(size) {}
    bool Next(uint8_t* op, long* pos, long* count, uint8_t* ch) {
        if (m_n < 4) return false;
        *op = m_p[0];
        *pos = m_p[1] | (m_p[2] << 8);
        *count = m_p[3] % 16;
        *ch = m_p[3];
        m_p += 4;
        m_n -= 4;
        return true;
    }

private:
    const uint8_t* m_p;
    size_t m_n;
};

void Edit(ISourceText* text, uint8_t op, long pos, long count, uint8_t ch) {
    const long length = text->GetLength();
    pos = length ? pos % (length + 1) : 0;
    count = std::min(count, length - pos);
    static const char kPieces[] = "<a href=\"x\">&amp;</a><!-- -->\r\n\x82\xA0";
    const char* piece = kPieces + ch % (sizeof kPieces - 1);
    const long pieceLength = std::min<long>(1 + ch % 7, static_cast<long>(kPieces + sizeof kPieces - 1 - piece));
    long caret = 0;
    switch (op % 5) {
        case 0: text->InsertText(pos, piece, pieceLength, nullptr); break;
        case 1: text->DeleteText(pos, count, nullptr); break;
        case 2: text->ReplaceText(pos, count, piece, pieceLength, nullptr); break;
        case 3: if (!text->IsUndoEmpty()) text->Undo(nullptr, &caret); break;
        default: if (!text->IsRedoEmpty()) text->Redo(nullptr, &caret); break;
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 2) return 0;
    SetProcessCodePage(data[0] % 2 ? 932 : 1252);
    // The text is the input up to the first 0xFF byte; the edits follow it.
    size_t textEnd = 1;
    while (textEnd < size && data[textEnd] != 0xFF) ++textEnd;
    auto doc = CreateHtmlDocument();
    doc->SetText(std::string(reinterpret_cast<const char*>(data + 1), textEnd - 1));

    ComPtr<ISourceText> text = QueryAs<ISourceText>(static_cast<ISourceText*>(doc.Get()), IID_ISourceText);
    Require(text != nullptr, "the document answers ISourceText");
    ComPtr<ISourceSyntax> syntax = QueryAs<ISourceSyntax>(text.Get(), IID_ISourceSyntax);
    ComPtr<ISourceTokens> tokens = QueryAs<ISourceTokens>(text.Get(), IID_ISourceTokens);
    AskEveryPosition(text.Get(), syntax.Get(), tokens.Get());

    CEditScript script(data + textEnd, size - textEnd);
    uint8_t op = 0, ch = 0;
    long pos = 0, count = 0;
    for (int edits = 0; edits < 16 && script.Next(&op, &pos, &count, &ch); ++edits) {
        Edit(text.Get(), op, pos, count, ch);
        Require(text->GetLength() == static_cast<long>(doc->GetText().size()), "the length follows the text");
    }
    AskEveryPosition(text.Get(), syntax.Get(), tokens.Get());
    return 0;
}
