#include "htmldoc/encodingsniff.h"

#include <cctype>
#include <string>

namespace {

bool IsSpace(char c) { return c == ' ' || c == '\t' || c == '\n' || c == '\f' || c == '\r'; }
bool IsAlpha(char c) { return std::isalpha(static_cast<unsigned char>(c)) != 0; }
char Lower(char c) { return static_cast<char>(std::tolower(static_cast<unsigned char>(c))); }

bool StartsWithNoCase(std::string_view s, size_t pos, std::string_view prefix) {
    if (s.size() - pos < prefix.size()) return false;
    for (size_t i = 0; i < prefix.size(); ++i)
        if (Lower(s[pos + i]) != prefix[i]) return false;
    return true;
}

// The value of "charset=..." inside a content attribute such as "text/html; charset=utf-8".
std::string_view CharsetFromContent(std::string_view content) {
    size_t pos = 0;
    for (;;) {
        size_t found = std::string_view::npos;
        for (size_t i = pos; found == std::string_view::npos && i < content.size(); ++i)
            if (StartsWithNoCase(content, i, "charset")) found = i;
        if (found == std::string_view::npos) return {};
        pos = found + 7;
        while (pos < content.size() && IsSpace(content[pos])) ++pos;
        if (pos >= content.size() || content[pos] != '=') continue;
        ++pos;
        while (pos < content.size() && IsSpace(content[pos])) ++pos;
        if (pos >= content.size()) return {};
        const char quote = content[pos];
        if (quote == '"' || quote == '\'') {
            const size_t close = content.find(quote, pos + 1);
            if (close == std::string_view::npos) return {};
            return content.substr(pos + 1, close - pos - 1);
        }
        size_t end = pos;
        while (end < content.size() && !IsSpace(content[end]) && content[end] != ';') ++end;
        return content.substr(pos, end - pos);
    }
}

// The encoding a declaration names. x-user-defined asks browsers to read the bytes as they are;
// windows-1252 keeps every byte as well.
const CEncodingInfo* DeclaredEncoding(std::string_view label) {
    while (!label.empty() && IsSpace(label.front())) label.remove_prefix(1);
    while (!label.empty() && IsSpace(label.back())) label.remove_suffix(1);
    return FindEncoding(label == "x-user-defined" ? "windows-1252" : label);
}

struct CAttribute {
    std::string name;
    std::string value;
};

// Walks the start of a document as browsers do before they know its encoding: over comments and
// other markup, through the attributes of each tag, and stops at the first meta element that
// declares an encoding it knows.
class CMetaPrescan {
public:
    explicit CMetaPrescan(std::string_view bytes) : m_s(bytes.substr(0, kPrescanBytes)) {}

    const CEncodingInfo* Run() {
        while (m_pos < m_s.size()) {
            if (StartsWithNoCase(m_s, m_pos, "<!--")) {
                const size_t end = m_s.find("-->", m_pos + 2);
                if (end == std::string_view::npos) return nullptr;
                m_pos = end + 3;
            } else if (StartsWithNoCase(m_s, m_pos, "<meta") && m_pos + 5 < m_s.size() &&
                       (IsSpace(m_s[m_pos + 5]) || m_s[m_pos + 5] == '/')) {
                m_pos += 6;
                if (const CEncodingInfo* found = Meta()) return found;
            } else if (IsTagStart()) {
                while (m_pos < m_s.size() && !IsSpace(m_s[m_pos]) && m_s[m_pos] != '>') ++m_pos;
                CAttribute ignored;
                while (NextAttribute(&ignored)) {}
            } else if (StartsWithNoCase(m_s, m_pos, "<!") || StartsWithNoCase(m_s, m_pos, "</") ||
                       StartsWithNoCase(m_s, m_pos, "<?")) {
                const size_t end = m_s.find('>', m_pos + 2);
                if (end == std::string_view::npos) return nullptr;
                m_pos = end + 1;
            } else {
                ++m_pos;
            }
        }
        return nullptr;
    }

private:
    bool IsTagStart() const {
        if (m_s[m_pos] != '<') return false;
        const size_t name = m_pos + (m_pos + 1 < m_s.size() && m_s[m_pos + 1] == '/' ? 2 : 1);
        return name < m_s.size() && IsAlpha(m_s[name]);
    }

    // The attributes of one meta element; its declaration if it makes one.
    const CEncodingInfo* Meta() {
        bool seenHttpEquiv = false, seenContent = false, seenCharset = false;
        bool gotPragma = false;
        enum { Unset, NoPragma, WithPragma } needPragma = Unset;
        const CEncodingInfo* charset = nullptr;
        CAttribute attr;
        while (NextAttribute(&attr)) {
            if (attr.name == "http-equiv" && !seenHttpEquiv) {
                seenHttpEquiv = true;
                gotPragma = attr.value == "content-type";
            } else if (attr.name == "content" && !seenContent) {
                seenContent = true;
                if (!charset) {
                    charset = DeclaredEncoding(CharsetFromContent(attr.value));
                    if (charset) needPragma = WithPragma;
                }
            } else if (attr.name == "charset" && !seenCharset) {
                seenCharset = true;
                charset = DeclaredEncoding(attr.value);
                needPragma = NoPragma;
            }
        }
        if (needPragma == Unset || !charset || (needPragma == WithPragma && !gotPragma)) return nullptr;
        if (charset == &Utf16LeEncoding() || charset == &Utf16BeEncoding()) return &Utf8Encoding();
        return charset;
    }

    bool AtEnd() const { return m_pos >= m_s.size(); }
    char Peek() const { return m_s[m_pos]; }
    void SkipSpace() {
        while (!AtEnd() && IsSpace(Peek())) ++m_pos;
    }

    // The next attribute of the tag being read, its name in lower case; false at the tag's end.
    bool NextAttribute(CAttribute* attr) {
        while (!AtEnd() && (IsSpace(Peek()) || Peek() == '/')) ++m_pos;
        if (AtEnd() || Peek() == '>') return false;
        attr->name.clear();
        attr->value.clear();
        for (;; ++m_pos) {
            if (AtEnd()) return false;
            const char c = Peek();
            if (c == '=' && !attr->name.empty()) break;
            if (IsSpace(c)) {
                SkipSpace();
                if (AtEnd()) return false;
                if (Peek() != '=') return true;
                break;
            }
            if (c == '/' || c == '>') return true;
            attr->name += Lower(c);
        }
        ++m_pos;  // the '='
        SkipSpace();
        return ReadValue(attr);
    }

    bool ReadValue(CAttribute* attr) {
        if (AtEnd()) return false;
        const char quote = Peek();
        if (quote == '"' || quote == '\'') {
            const size_t close = m_s.find(quote, m_pos + 1);
            if (close == std::string_view::npos) return false;
            for (size_t i = m_pos + 1; i < close; ++i) attr->value += Lower(m_s[i]);
            m_pos = close + 1;
            return true;
        }
        while (!AtEnd() && !IsSpace(Peek()) && Peek() != '>') attr->value += Lower(m_s[m_pos++]);
        return !AtEnd();
    }

    std::string_view m_s;
    size_t m_pos = 0;
};

}  // namespace

CByteOrderMark DetectByteOrderMark(std::string_view bytes) {
    if (bytes.substr(0, 3) == "\xEF\xBB\xBF") return {&Utf8Encoding(), 3};
    if (bytes.substr(0, 2) == "\xFF\xFE") return {&Utf16LeEncoding(), 2};
    if (bytes.substr(0, 2) == "\xFE\xFF") return {&Utf16BeEncoding(), 2};
    return {};
}

const CEncodingInfo* PrescanMetaCharset(std::string_view bytes) {
    return CMetaPrescan(bytes).Run();
}
