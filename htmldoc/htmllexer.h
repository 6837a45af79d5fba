// The HTML lexer of the document's syntax classes: a state machine that reads the text one byte
// after the other, in pieces of any size, and reports the syntax code of every byte. Its whole
// state lives in CLexState and a few pending bytes, so that classification can stop anywhere
// and go on later from a saved state.
//
// Codes are the eleven syntax classes and five variants that tell tokens apart (see the list
// below); GetClassAt maps them to classes with kClassOfCode. The rules:
// - Text is class 0. A '<' that opens no tag (followed by a character that no tag, end tag,
//   comment, declaration or processing instruction starts with) is an error (2); so is "</"
//   that is not followed by a letter.
// - A tag: '<' and "</", white space, '=', '/', '>' are punctuation (4); the tag name is class 3
//   if the schema knows it, or if it is a custom element name (with a '-'), else an error (2).
//   Attribute names are class 5 if the tag or every tag takes them (and data-* always), else
//   errors; every attribute of an end tag is an error. A '<', '=' or quote where an attribute
//   name should start is an error.
// - Attribute values, quotes included, by the attribute's type: strings 6; integers, pixel
//   widths, font size steps and the other numeric types 7; enumerations 8 when the value is
//   listed, an error when it is not (or a string when the list gives examples only); colours 9;
//   URLs, directories and the file types 10. A quoted value that runs to the end of the text is
//   an error as a whole.
// - Comments, "<!--" to "-->" (an empty "<!-->" included), are class 1, and so are the bogus
//   comments of HTML: "<!" not followed by a name, "--" or "[CDATA[", which covers the
//   down-level conditional comments "<![if ...]>".
// - A declaration ("<!DOCTYPE html ...>") reads as a tag: its keyword is class 3, its words 5,
//   its quoted strings 6. A processing instruction "<?...>" has "<?" and "?>" as punctuation
//   and a body of class 6. A CDATA section has "<![CDATA[" and "]]>" as punctuation and its
//   content as class 6; it is one tag token.
// - Character references in text: a known named reference (with ';', or one of the legacy
//   names without it) is class 8, a numeric one (decimal or hex) class 7; an unknown name with
//   ';', "&#" without digits and numbers outside Unicode are errors; an '&' that starts no
//   reference is text. Inside attribute values references take the value's class.
// - The content of script, style, xmp, iframe, noembed and noframes is text (0) up to the
//   element's own end tag; title and textarea likewise, with character references; plaintext
//   runs to the end. Inside svg and math every tag and attribute name is accepted (3 and 5),
//   and their values are strings (href a URL).
#pragma once
#include <cstdint>

#include "htmldoc/htmlschema.h"

// Syntax codes: the classes 0 to 10 and variants of them.
enum SyntaxCode : uint8_t {
    SK_TEXT = 0, SK_COMMENT = 1, SK_ERROR = 2, SK_NAME = 3, SK_PUNCT = 4, SK_ATTR = 5, SK_STRING = 6,
    SK_INTEGER = 7, SK_ENUM = 8, SK_COLOR = 9, SK_URL = 10,
    SK_NAMED_REF = 11,     // class 8, a named character reference in text
    SK_NUMERIC_REF = 12,   // class 7, a numeric character reference in text
    SK_STRAY = 13,         // class 2, an error outside of tags
    SK_COMMENT_OPEN = 14,  // class 1, the '<' that opens a comment
    SK_TAG_OPEN = 15,      // class 4, the '<' that opens a tag, declaration or CDATA section
};
inline constexpr uint8_t kClassOfCode[16] = {0, 1, 2, 3, 4, 5, 6, 7, 8, 9, 10, 8, 7, 2, 1, 4};
// Codes that only stand inside a tag token, after its opening '<'.
inline bool IsInTagCode(uint8_t code) { return code >= SK_ERROR && code <= SK_URL; }

struct CLexState {
    uint8_t mode = 0;
    uint8_t sub = 0;        // progress through a fixed sequence, or bytes held back
    uint8_t quote = 0;      // the quote of a quoted value
    uint8_t valueCode = 0;  // the code of the current attribute's value
    uint8_t content = 0;    // ContentKind of the text being read
    uint8_t foreign = 0;    // depth of svg and math elements
    uint8_t flags = 0;
    int16_t tag = -1;       // the tag being read, or the element of raw content
    int16_t attr = -1;      // the attribute being read
    int32_t valueStart = 0; // where the current value started; not part of the comparison

    bool SameAs(const CLexState& o) const {
        return mode == o.mode && sub == o.sub && quote == o.quote && valueCode == o.valueCode &&
               content == o.content && foreign == o.foreign && flags == o.flags && tag == o.tag && attr == o.attr;
    }
    bool InQuotedValue() const;
};

// Receives the codes: spans in increasing order, each span set once.
class ISyntaxCodeSink {
public:
    virtual void Emit(long start, long end, uint8_t code) = 0;

protected:
    ~ISyntaxCodeSink() = default;
};

class CHtmlLexer {
public:
    explicit CHtmlLexer(ISyntaxCodeSink& sink) : m_sink(sink), m_schema(CHtmlSchema::Get()) {}

    void Start(const CLexState& state, long pos);
    // Reads the next `count` bytes of the text.
    void Feed(const char* bytes, long count);
    // The text ends here: codes held back are decided.
    void Finish();
    // Every code in front of Pos() has been reported, and nothing behind it will change them.
    bool IsClean() const;
    const CLexState& State() const { return m_state; }
    long Pos() const { return m_nPos; }
    // The start of a quoted value that Finish found unterminated, or -1.
    long OpenValueStart() const { return m_nOpenValue; }

private:
    void Put(long pos, long count, uint8_t code);
    void Flush();
    void EmitNow(long start, long end, uint8_t code);
    // Each handles the byte at bytes[i] in its mode and gives the index of the next byte to read.
    long Text(const char* bytes, long i, long n);
    long Open(const char* bytes, long i);
    long TagName(const char* bytes, long i, long n);
    long InTag(const char* bytes, long i);
    long AttrName(const char* bytes, long i, long n);
    long BeforeValue(const char* bytes, long i);
    long Value(const char* bytes, long i, long n);
    long Markup(const char* bytes, long i);
    long Comment(const char* bytes, long i, long n);
    long Special(const char* bytes, long i, long n);
    long RawEnd(const char* bytes, long i);
    long Reference(const char* bytes, long i);
    void ResolveTagName();
    void ResolveAttrName();
    void ResolveValue(long end);
    void ResolveReference(long end, bool semicolon);
    void EndOfTag();
    void StartValue(long pos, uint8_t quote);
    void HoldName(char c);
    // Holds the bytes of a tag or attribute name; true when its end was reached.
    bool HoldNameUpTo(const char* bytes, long* i, long n, bool stopAtEquals);
    long At(long i) const { return m_nBase + i; }

    ISyntaxCodeSink& m_sink;
    const CHtmlSchema& m_schema;
    CLexState m_state;
    long m_nPos = 0;
    long m_nBase = 0;
    // Pending: the token whose codes wait for what follows.
    long m_nTokenStart = 0;
    char m_name[CHtmlSchema::kMaxName + 1] = {};
    size_t m_nNameLen = 0;
    uint32_t m_nNumber = 0;
    // The run of equal codes not yet reported.
    long m_nRunStart = 0, m_nRunEnd = 0;
    uint8_t m_nRunCode = 0;
    long m_nOpenValue = -1;
};
