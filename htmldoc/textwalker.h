// Stepping over the document's text: characters (a CR LF pair and a double-byte character are
// one step each), words and line breaks. Double-byte characters follow the lead bytes of the
// process code page.
#pragma once
#include "htmldoc/gapbuffer.h"

class CTextWalker {
public:
    explicit CTextWalker(const CGapBuffer& text);

    long Length() const { return m_text.Length(); }
    unsigned char ByteAt(long pos) const { return static_cast<unsigned char>(m_text.At(pos)); }
    bool IsLead(unsigned char b) const { return m_lead[b]; }

    long NextChar(long pos) const;
    long PrevChar(long pos) const;
    // `pos` itself if it starts a character, else the start of the character it falls in.
    long CharStartAt(long pos) const;

    // Word boundaries. A word is a run of letters, digits, '_' and non-ASCII characters, or a
    // run of punctuation; blanks after a word belong to it when moving right and before it when
    // moving left; a line break is a stop of its own.
    long NextWord(long pos) const;
    long PrevWord(long pos) const;

    // The line break just before `lineEnd` (two back for CR LF, one for LF). At a wrap point
    // inside a line, the start of the character in front of it, which is on the row the wrap
    // point ends; at the end of the text, the end itself.
    long LineBreakBefore(long lineEnd) const;

private:
    enum class CharKind { Blank, Break, Word, Punct };
    CharKind KindAt(long pos) const;
    bool IsBreak(long pos) const;
    // Whether the byte in front of `pos` ends a run of lead-valued bytes of odd length, which
    // makes it the first half of a double-byte character that covers `pos`.
    bool OddLeadRunBefore(long pos) const;

    const CGapBuffer& m_text;
    const bool* m_lead;
};
