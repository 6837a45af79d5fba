#include "htmldoc/htmllexer.h"

#include <algorithm>
#include <cstring>
#include <string_view>

namespace {

enum Mode : uint8_t {
    M_TEXT, M_LT, M_LT_SLASH, M_TAG_NAME, M_IN_TAG, M_ATTR_NAME, M_AFTER_ATTR, M_BEFORE_VALUE, M_VALUE_QUOTED,
    M_VALUE_BARE, M_BANG, M_BANG_DASH, M_BANG_BRACKET, M_COMMENT, M_BOGUS, M_CDATA, M_PI, M_RAW_END, M_REF,
    M_REF_NAMED, M_REF_HASH, M_REF_NUMBER,
};

enum Flag : uint8_t {
    F_CLOSING = 0x01,       // an end tag
    F_DECLARATION = 0x02,   // <!DOCTYPE ...> and its kin: names are free
    F_FREE = 0x04,          // a custom element or a tag inside svg or math: any attribute goes
    F_SELF_CLOSING = 0x08,  // the last byte in the tag was '/'
    F_HELD_VALUE = 0x10,    // the value's code waits for its end (an enumeration)
    F_HEX = 0x20,           // a hexadecimal character reference
    F_TOO_BIG = 0x40,       // a numeric reference beyond Unicode
};

constexpr uint8_t kMaxForeign = 15;
const char kCdata[] = "CDATA[";

bool IsSpace(unsigned char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\r' || c == '\f'; }
bool IsAlpha(unsigned char c) { return (c | 0x20) >= 'a' && (c | 0x20) <= 'z'; }
bool IsDigit(unsigned char c) { return c >= '0' && c <= '9'; }
bool IsAlnum(unsigned char c) { return IsAlpha(c) || IsDigit(c); }
char Lower(unsigned char c) { return static_cast<char>(c >= 'A' && c <= 'Z' ? c + 32 : c); }
int DigitValue(unsigned char c, bool hex) {
    if (IsDigit(c)) return c - '0';
    if (hex && (c | 0x20) >= 'a' && (c | 0x20) <= 'f') return (c | 0x20) - 'a' + 10;
    return -1;
}

// The code of a value by the attribute's data type.
uint8_t ValueCodeOfType(int type) {
    switch (type) {
    case ST_ENUM: return SK_ENUM;
    case ST_INTEGER: case ST_PROPORTIONAL: case ST_INTEGER_SET: case ST_PIXELS: case ST_FONT_SIZE: return SK_INTEGER;
    case ST_COLOR: return SK_COLOR;
    case ST_URL: case ST_DIRECTORY: case ST_HTML_FILE: case ST_PICTURE: case ST_SOUND: case ST_ANIMATION:
    case ST_JAVA_CLASS: return SK_URL;
    default: return SK_STRING;
    }
}

}  // namespace

bool CLexState::InQuotedValue() const { return mode == M_VALUE_QUOTED; }

void CHtmlLexer::Start(const CLexState& state, long pos) {
    m_state = state;
    m_nPos = m_nRunStart = m_nRunEnd = pos;
    m_nNameLen = 0;
    m_nOpenValue = -1;
}

bool CHtmlLexer::IsClean() const {
    switch (m_state.mode) {
    case M_TEXT: case M_IN_TAG: case M_AFTER_ATTR: case M_BEFORE_VALUE: case M_COMMENT: case M_BOGUS: return true;
    case M_VALUE_QUOTED: case M_VALUE_BARE: return !(m_state.flags & F_HELD_VALUE);
    case M_CDATA: case M_PI: return m_state.sub == 0;
    default: return false;
    }
}

void CHtmlLexer::Put(long pos, long count, uint8_t code) {
    if (count <= 0) return;
    if (code == m_nRunCode && pos == m_nRunEnd) {
        m_nRunEnd += count;
        return;
    }
    Flush();
    m_nRunStart = pos;
    m_nRunEnd = pos + count;
    m_nRunCode = code;
}

void CHtmlLexer::Flush() {
    if (m_nRunEnd > m_nRunStart) m_sink.Emit(m_nRunStart, m_nRunEnd, m_nRunCode);
    m_nRunStart = m_nRunEnd;
}

void CHtmlLexer::EmitNow(long start, long end, uint8_t code) { Put(start, end - start, code); }

void CHtmlLexer::HoldName(char c) {
    if (m_nNameLen < sizeof m_name) m_name[m_nNameLen] = c;
    ++m_nNameLen;
}

void CHtmlLexer::Feed(const char* bytes, long count) {
    m_nBase = m_nPos;
    long i = 0;
    while (i < count) {
        switch (m_state.mode) {
        case M_TEXT: i = Text(bytes, i, count); break;
        case M_LT: case M_LT_SLASH: i = Open(bytes, i); break;
        case M_TAG_NAME: i = TagName(bytes, i, count); break;
        case M_IN_TAG: case M_AFTER_ATTR: i = InTag(bytes, i); break;
        case M_ATTR_NAME: i = AttrName(bytes, i, count); break;
        case M_BEFORE_VALUE: i = BeforeValue(bytes, i); break;
        case M_VALUE_QUOTED: case M_VALUE_BARE: i = Value(bytes, i, count); break;
        case M_BANG: case M_BANG_DASH: case M_BANG_BRACKET: i = Markup(bytes, i); break;
        case M_COMMENT: case M_BOGUS: i = Comment(bytes, i, count); break;
        case M_CDATA: case M_PI: i = Special(bytes, i, count); break;
        case M_RAW_END: i = RawEnd(bytes, i); break;
        default: i = Reference(bytes, i); break;
        }
    }
    m_nPos = m_nBase + count;
    Flush();
}

long CHtmlLexer::Text(const char* bytes, long i, long n) {
    auto content = static_cast<ContentKind>(m_state.content);
    long start = i;
    if (content == ContentKind::PlainText) {
        i = n;
    } else if (content == ContentKind::RawText) {
        const void* lt = std::memchr(bytes + i, '<', static_cast<size_t>(n - i));
        i = lt ? static_cast<const char*>(lt) - bytes : n;
    } else {
        while (i < n && bytes[i] != '<' && bytes[i] != '&') ++i;
    }
    Put(At(start), i - start, SK_TEXT);
    if (i == n) return i;
    m_nTokenStart = At(i);
    if (bytes[i] == '&') {
        m_state.mode = M_REF;
    } else {
        m_state.mode = content == ContentKind::Normal ? M_LT : M_RAW_END;
        m_state.sub = 0;
    }
    return i + 1;
}

long CHtmlLexer::Open(const char* bytes, long i) {
    auto c = static_cast<unsigned char>(bytes[i]);
    long lt = m_nTokenStart;
    if (m_state.mode == M_LT_SLASH) {
        if (!IsAlpha(c)) {
            EmitNow(lt, lt + 2, SK_STRAY);
            m_state.mode = M_TEXT;
            return i;
        }
        EmitNow(lt, lt + 1, SK_TAG_OPEN);
        EmitNow(lt + 1, lt + 2, SK_PUNCT);
        m_state.flags = F_CLOSING;
    } else if (c == '/') {
        m_state.mode = M_LT_SLASH;
        return i + 1;
    } else if (c == '!') {
        m_state.mode = M_BANG;
        return i + 1;
    } else if (c == '?') {
        EmitNow(lt, lt + 1, SK_TAG_OPEN);
        Put(At(i), 1, SK_PUNCT);
        m_state.mode = M_PI;
        m_state.sub = 0;
        return i + 1;
    } else if (!IsAlpha(c)) {
        EmitNow(lt, lt + 1, SK_STRAY);
        m_state.mode = M_TEXT;
        return i;
    } else {
        EmitNow(lt, lt + 1, SK_TAG_OPEN);
        m_state.flags = 0;
    }
    m_state.mode = M_TAG_NAME;
    m_nTokenStart = At(i);
    m_nNameLen = 0;
    return i;
}

bool CHtmlLexer::HoldNameUpTo(const char* bytes, long* i, long n, bool stopAtEquals) {
    for (; *i < n; ++*i) {
        auto c = static_cast<unsigned char>(bytes[*i]);
        if (IsSpace(c) || c == '/' || c == '>' || (stopAtEquals && c == '=')) return true;
        HoldName(Lower(c));
    }
    return false;
}

long CHtmlLexer::TagName(const char* bytes, long i, long n) {
    if (HoldNameUpTo(bytes, &i, n, false)) {
        ResolveTagName();
        m_state.mode = M_IN_TAG;
    }
    return i;
}

void CHtmlLexer::ResolveTagName() {
    std::string_view name(m_name, std::min(m_nNameLen, sizeof m_name));
    bool closing = m_state.flags & F_CLOSING;
    uint8_t code = SK_NAME;
    m_state.tag = -1;
    bool foreignRoot = name == "svg" || name == "math";
    if (m_state.flags & F_DECLARATION) {
        // any keyword
    } else if (m_state.foreign > 0) {
        m_state.flags |= F_FREE;
        if (closing && foreignRoot) --m_state.foreign;
    } else if (m_nNameLen <= CHtmlSchema::kMaxName && (m_state.tag = static_cast<int16_t>(m_schema.FindTag(name))) >= 0) {
        // a known tag
    } else if (name.find('-') != std::string_view::npos && m_nNameLen <= CHtmlSchema::kMaxName) {
        m_state.flags |= F_FREE;  // a custom element
    } else {
        code = SK_ERROR;
    }
    EmitNow(m_nTokenStart, m_nTokenStart + static_cast<long>(m_nNameLen), code);
}

long CHtmlLexer::InTag(const char* bytes, long i) {
    auto c = static_cast<unsigned char>(bytes[i]);
    if (IsSpace(c)) {
        Put(At(i), 1, SK_PUNCT);
        return i + 1;
    }
    if (m_state.mode == M_AFTER_ATTR) {
        if (c == '=') {
            Put(At(i), 1, SK_PUNCT);
            m_state.mode = M_BEFORE_VALUE;
            return i + 1;
        }
        m_state.mode = M_IN_TAG;
    }
    m_state.flags &= static_cast<uint8_t>(~F_SELF_CLOSING);
    if (c == '>') {
        Put(At(i), 1, SK_PUNCT);
        EndOfTag();
    } else if (c == '/') {
        Put(At(i), 1, SK_PUNCT);
        m_state.flags |= F_SELF_CLOSING;
    } else if ((c == '"' || c == '\'') && (m_state.flags & F_DECLARATION)) {
        m_state.valueCode = SK_STRING;
        StartValue(At(i), c);
    } else if (c == '<' || c == '=' || c == '"' || c == '\'') {
        Put(At(i), 1, SK_ERROR);
    } else {
        m_state.mode = M_ATTR_NAME;
        m_nTokenStart = At(i);
        m_nNameLen = 0;
        return i;
    }
    return i + 1;
}

long CHtmlLexer::AttrName(const char* bytes, long i, long n) {
    if (HoldNameUpTo(bytes, &i, n, true)) {
        ResolveAttrName();
        m_state.mode = M_AFTER_ATTR;
    }
    return i;
}

void CHtmlLexer::ResolveAttrName() {
    std::string_view name(m_name, std::min(m_nNameLen, sizeof m_name));
    uint8_t code = SK_ATTR;
    m_state.attr = -1;
    m_state.valueCode = SK_STRING;
    if (m_state.flags & F_CLOSING) {
        code = SK_ERROR;
    } else if (m_state.flags & (F_DECLARATION | F_FREE)) {
        if (name == "href" || name == "xlink:href" || name == "src") m_state.valueCode = SK_URL;
    } else if (m_nNameLen <= CHtmlSchema::kMaxName && (m_state.attr = static_cast<int16_t>(m_schema.FindAttr(m_state.tag, name))) >= 0) {
        m_state.valueCode = ValueCodeOfType(m_schema.Attrs()[m_state.attr].type);
    } else if (!(name.size() > 5 && name.substr(0, 5) == "data-")) {
        code = SK_ERROR;
    }
    EmitNow(m_nTokenStart, m_nTokenStart + static_cast<long>(m_nNameLen), code);
}

long CHtmlLexer::BeforeValue(const char* bytes, long i) {
    auto c = static_cast<unsigned char>(bytes[i]);
    if (IsSpace(c)) {
        Put(At(i), 1, SK_PUNCT);
        return i + 1;
    }
    if (c == '>') {
        m_state.mode = M_IN_TAG;
        return i;
    }
    StartValue(At(i), c == '"' || c == '\'' ? c : 0);
    return m_state.quote ? i + 1 : i;
}

void CHtmlLexer::StartValue(long pos, uint8_t quote) {
    m_state.mode = quote ? M_VALUE_QUOTED : M_VALUE_BARE;
    m_state.quote = quote;
    m_state.valueStart = static_cast<int32_t>(pos);
    m_nNameLen = 0;
    if (m_state.valueCode == SK_ENUM) m_state.flags |= F_HELD_VALUE;
    if (quote && !(m_state.flags & F_HELD_VALUE)) Put(pos, 1, m_state.valueCode);
}

long CHtmlLexer::Value(const char* bytes, long i, long n) {
    bool quoted = m_state.mode == M_VALUE_QUOTED;
    char quote = static_cast<char>(m_state.quote);
    long start = i;
    bool held = m_state.flags & F_HELD_VALUE;
    for (; i < n; ++i) {
        auto c = static_cast<unsigned char>(bytes[i]);
        if (quoted ? c == static_cast<unsigned char>(quote) : (IsSpace(c) || c == '>')) break;
        if (held) {
            HoldName(static_cast<char>(c));
            if (m_nNameLen > CHtmlSchema::kMaxName) {
                // Longer than any listed value: decided now, and read on without holding back.
                ResolveValue(At(i + 1));
                held = false;
                start = i + 1;
            }
        }
    }
    if (!held) Put(At(start), i - start, m_state.valueCode);
    if (i == n) return i;
    long end = At(i) + (quoted ? 1 : 0);
    if (held) ResolveValue(end);
    else if (quoted) Put(At(i), 1, m_state.valueCode);
    m_state.mode = M_IN_TAG;
    return quoted ? i + 1 : i;
}

void CHtmlLexer::ResolveValue(long end) {
    m_state.flags &= static_cast<uint8_t>(~F_HELD_VALUE);
    std::string_view value(m_name, std::min(m_nNameLen, sizeof m_name));
    bool listed = m_nNameLen <= CHtmlSchema::kMaxName && m_schema.FindValue(m_state.attr, value) >= 0;
    uint8_t code = listed ? SK_ENUM : (m_schema.Attrs()[m_state.attr].bOpen ? SK_STRING : SK_ERROR);
    EmitNow(m_state.valueStart, end, code);
    m_state.valueCode = code;
}

void CHtmlLexer::EndOfTag() {
    m_state.mode = M_TEXT;
    uint8_t flags = m_state.flags;
    m_state.flags = 0;
    m_state.attr = -1;
    if (flags & (F_CLOSING | F_DECLARATION | F_FREE) || m_state.tag < 0) return;
    ContentKind content = m_schema.Tags()[m_state.tag].content;
    if (content == ContentKind::Foreign) {
        if (!(flags & F_SELF_CLOSING) && m_state.foreign < kMaxForeign) ++m_state.foreign;
    } else if (content != ContentKind::Normal) {
        m_state.content = static_cast<uint8_t>(content);
    }
}

long CHtmlLexer::Markup(const char* bytes, long i) {
    auto c = static_cast<unsigned char>(bytes[i]);
    long lt = m_nTokenStart;
    if (m_state.mode == M_BANG) {
        if (c == '-') {
            m_state.mode = M_BANG_DASH;
            return i + 1;
        }
        if (c == '[') {
            m_state.mode = M_BANG_BRACKET;
            m_state.sub = 0;
            return i + 1;
        }
        if (IsAlpha(c)) {
            EmitNow(lt, lt + 1, SK_TAG_OPEN);
            EmitNow(lt + 1, lt + 2, SK_PUNCT);
            m_state.flags = F_DECLARATION;
            m_state.mode = M_TAG_NAME;
            m_nTokenStart = At(i);
            m_nNameLen = 0;
            return i;
        }
    } else if (m_state.mode == M_BANG_DASH && c == '-') {
        EmitNow(lt, lt + 1, SK_COMMENT_OPEN);
        EmitNow(lt + 1, At(i + 1), SK_COMMENT);
        m_state.mode = M_COMMENT;
        m_state.sub = 2;  // "<!-->" is a whole, empty comment
        return i + 1;
    } else if (m_state.mode == M_BANG_BRACKET && c == static_cast<unsigned char>(kCdata[m_state.sub])) {
        if (++m_state.sub < sizeof kCdata - 1) return i + 1;
        EmitNow(lt, lt + 1, SK_TAG_OPEN);
        EmitNow(lt + 1, At(i + 1), SK_PUNCT);
        m_state.mode = M_CDATA;
        m_state.sub = 0;
        return i + 1;
    }
    // Anything else after "<!" is a bogus comment up to the next '>'.
    EmitNow(lt, lt + 1, SK_COMMENT_OPEN);
    EmitNow(lt + 1, At(i), SK_COMMENT);
    m_state.mode = M_BOGUS;
    m_state.sub = 0;
    return i;
}

long CHtmlLexer::Comment(const char* bytes, long i, long n) {
    long start = i;
    if (m_state.mode == M_BOGUS) {
        const void* gt = std::memchr(bytes + i, '>', static_cast<size_t>(n - i));
        i = gt ? static_cast<const char*>(gt) - bytes + 1 : n;
        if (gt) m_state.mode = M_TEXT;
    } else {
        for (; i < n; ++i) {
            char c = bytes[i];
            if (c == '>' && m_state.sub == 2) {
                m_state.mode = M_TEXT;
                ++i;
                break;
            }
            m_state.sub = c == '-' ? static_cast<uint8_t>(std::min(m_state.sub + 1, 2)) : 0;
        }
        if (m_state.mode == M_TEXT) m_state.sub = 0;
    }
    Put(At(start), i - start, SK_COMMENT);
    return i;
}

long CHtmlLexer::Special(const char* bytes, long i, long n) {
    // CDATA holds back up to two ']' that may begin "]]>"; a processing instruction holds back a
    // '?' that may begin "?>".
    bool cdata = m_state.mode == M_CDATA;
    char hold = cdata ? ']' : '?';
    uint8_t maxHeld = cdata ? 2 : 1;
    for (; i < n; ++i) {
        char c = bytes[i];
        long pos = At(i);
        if (c == '>' && (!cdata || m_state.sub == 2)) {
            Put(pos - m_state.sub, m_state.sub + 1, SK_PUNCT);
            m_state.mode = M_TEXT;
            m_state.sub = 0;
            return i + 1;
        }
        if (c == hold) {
            if (m_state.sub == maxHeld) Put(pos - m_state.sub, 1, SK_STRING);
            else ++m_state.sub;
            continue;
        }
        Put(pos - m_state.sub, m_state.sub + 1, SK_STRING);
        m_state.sub = 0;
    }
    return i;
}

long CHtmlLexer::RawEnd(const char* bytes, long i) {
    // After '<' in raw content: "/", the element's name, then white space, '/' or '>'.
    auto c = static_cast<unsigned char>(bytes[i]);
    const std::string& name = m_schema.Tags()[m_state.tag].name;
    size_t matched = m_state.sub;
    bool ok;
    if (matched == 0) ok = c == '/';
    else if (matched <= name.size()) ok = Lower(c) == name[matched - 1];
    else ok = IsSpace(c) || c == '/' || c == '>';
    if (ok && matched <= name.size()) {
        ++m_state.sub;
        return i + 1;
    }
    long lt = m_nTokenStart;
    if (!ok) {
        EmitNow(lt, At(i), SK_TEXT);
        m_state.mode = M_TEXT;
        m_state.sub = 0;
        return i;
    }
    EmitNow(lt, lt + 1, SK_TAG_OPEN);
    EmitNow(lt + 1, lt + 2, SK_PUNCT);
    EmitNow(lt + 2, At(i), SK_NAME);
    m_state.content = static_cast<uint8_t>(ContentKind::Normal);
    m_state.flags = F_CLOSING;
    m_state.mode = M_IN_TAG;
    m_state.sub = 0;
    return i;
}

long CHtmlLexer::Reference(const char* bytes, long i) {
    auto c = static_cast<unsigned char>(bytes[i]);
    switch (m_state.mode) {
    case M_REF:
        if (c == '#') {
            m_state.mode = M_REF_HASH;
            return i + 1;
        }
        if (IsAlpha(c)) {
            m_state.mode = M_REF_NAMED;
            m_nNameLen = 0;
            return i;
        }
        EmitNow(m_nTokenStart, At(i), SK_TEXT);
        m_state.mode = M_TEXT;
        return i;
    case M_REF_NAMED:
        if (IsAlnum(c) && m_nNameLen < CHtmlSchema::kMaxName) {
            HoldName(static_cast<char>(c));
            return i + 1;
        }
        ResolveReference(At(i), c == ';');
        return c == ';' ? i + 1 : i;
    case M_REF_HASH:
        m_state.flags = 0;
        m_nNameLen = 0;
        m_nNumber = 0;
        m_state.mode = M_REF_NUMBER;
        if (c == 'x' || c == 'X') {
            m_state.flags = F_HEX;
            return i + 1;
        }
        return i;
    default: {
        int digit = DigitValue(c, m_state.flags & F_HEX);
        if (digit >= 0) {
            m_nNumber = m_nNumber * ((m_state.flags & F_HEX) ? 16 : 10) + static_cast<uint32_t>(digit);
            if (m_nNumber > 0x10FFFF) {
                m_state.flags |= F_TOO_BIG;
                m_nNumber = 0x110000;
            }
            ++m_nNameLen;
            return i + 1;
        }
        ResolveReference(At(i), c == ';');
        return c == ';' ? i + 1 : i;
    }
    }
}

void CHtmlLexer::ResolveReference(long end, bool semicolon) {
    long stop = end + (semicolon ? 1 : 0);
    uint8_t code;
    if (m_state.mode == M_REF_NAMED) {
        const CSchemaEntity* e = m_schema.FindEntity(std::string_view(m_name, m_nNameLen));
        if (semicolon) code = e ? SK_NAMED_REF : SK_STRAY;
        else code = e && e->bLegacy ? SK_NAMED_REF : SK_TEXT;
    } else {
        bool valid = m_nNameLen > 0 && !(m_state.flags & F_TOO_BIG) && m_nNumber != 0;
        code = valid ? SK_NUMERIC_REF : SK_STRAY;
        if (m_nNameLen == 0 && !semicolon) stop = end;
    }
    EmitNow(m_nTokenStart, stop, code);
    m_state.mode = M_TEXT;
    m_state.flags = 0;
}

void CHtmlLexer::Finish() {
    long end = m_nPos;
    long start = m_nTokenStart;
    switch (m_state.mode) {
    case M_LT: case M_LT_SLASH: EmitNow(start, end, SK_STRAY); break;
    case M_TAG_NAME: ResolveTagName(); break;
    case M_ATTR_NAME: ResolveAttrName(); break;
    case M_VALUE_QUOTED:
        // An unterminated value: an error from its quote on.
        m_state.flags &= static_cast<uint8_t>(~F_HELD_VALUE);
        Flush();
        m_sink.Emit(m_state.valueStart, end, SK_ERROR);
        m_nRunStart = m_nRunEnd = end;
        m_nOpenValue = m_state.valueStart;
        break;
    case M_VALUE_BARE:
        if (m_state.flags & F_HELD_VALUE) ResolveValue(end);
        break;
    case M_BANG: case M_BANG_DASH: case M_BANG_BRACKET:
        EmitNow(start, start + 1, SK_COMMENT_OPEN);
        EmitNow(start + 1, end, SK_COMMENT);
        break;
    case M_CDATA: case M_PI: EmitNow(end - m_state.sub, end, SK_STRING); break;
    case M_RAW_END: EmitNow(start, end, SK_TEXT); break;
    case M_REF: EmitNow(start, end, SK_TEXT); break;
    case M_REF_NAMED: case M_REF_NUMBER: ResolveReference(end, false); break;
    case M_REF_HASH: EmitNow(start, end, SK_STRAY); break;
    default: break;
    }
    Flush();
}
