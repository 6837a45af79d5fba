#include "htmldoc/tagmatch.h"

#include <cctype>
#include <cstring>

namespace {

constexpr char kOpeners[] = "([{";
constexpr char kClosers[] = ")]}";

bool IsNameByte(char c) {
    return std::isalnum(static_cast<unsigned char>(c)) || c == '-' || c == ':' || c == '_' || c == '.';
}

}  // namespace

bool CTagMatcher::At(long pos, const char* what) const {
    long n = static_cast<long>(std::strlen(what));
    if (pos < 0 || pos + n > m_text.Length()) return false;
    for (long i = 0; i < n; ++i)
        if (m_text.At(pos + i) != what[i]) return false;
    return true;
}

long CTagMatcher::Find(long from, const char* what) const {
    for (long p = from; p < m_text.Length(); ++p)
        if (At(p, what)) return p;
    return -1;
}

long CTagMatcher::FindBack(long before, const char* what) const {
    for (long p = before - 1; p >= 0; --p)
        if (At(p, what)) return p;
    return -1;
}

bool CTagMatcher::IsTagStart(long pos) const {
    if (pos < 0 || pos + 1 >= m_text.Length() || m_text.At(pos) != '<') return false;
    char c = m_text.At(pos + 1);
    return std::isalpha(static_cast<unsigned char>(c)) || c == '/' || c == '!' || c == '?';
}

CTagInfo CTagMatcher::ParseTag(long lt) const {
    CTagInfo tag;
    tag.start = lt;
    long len = m_text.Length();
    long p = lt + 1;
    if (At(lt, "<!--")) {
        long close = Find(lt + 4, "-->");
        tag.special = true;
        tag.end = close < 0 ? len : close + 3;
        return tag;
    }
    char first = p < len ? m_text.At(p) : '\0';
    tag.special = first == '!' || first == '?';
    if (first == '/') {
        tag.closing = true;
        ++p;
    }
    if (!tag.special) {
        while (p < len && IsNameByte(m_text.At(p)))
            tag.name.push_back(static_cast<char>(std::tolower(static_cast<unsigned char>(m_text.At(p++)))));
    }
    // The end is the first '>' outside quoted attribute values.
    char quote = 0;
    for (; p < len; ++p) {
        char c = m_text.At(p);
        if (quote) {
            if (c == quote) quote = 0;
        } else if (c == '"' || c == '\'') {
            quote = c;
        } else if (c == '>') {
            tag.selfClosing = m_text.At(p - 1) == '/';
            tag.end = p + 1;
            return tag;
        } else if (c == '<') {
            break;  // a new tag begins: this one was never closed
        }
    }
    tag.end = p;
    return tag;
}

long CTagMatcher::FindMatch(long pos) const {
    long found = MatchBracket(pos);
    if (found < 0) found = MatchTag(pos);
    if (found < 0 && pos > 0) {
        // A bracket just in front of the caret, as after typing it.
        long before = MatchBracket(pos - 1);
        if (before >= 0) found = before;
    }
    return found;
}

long CTagMatcher::MatchBracket(long pos) const {
    if (pos < 0 || pos >= m_text.Length()) return -1;
    char c = m_text.At(pos);
    const char* open = std::strchr(kOpeners, c);
    const char* close = std::strchr(kClosers, c);
    if (c == '\0' || (!open && !close)) return -1;
    char opener = open ? c : kOpeners[close - kClosers];
    char closer = open ? kClosers[open - kOpeners] : c;
    int step = open ? 1 : -1;
    long depth = 0;
    for (long p = pos; p >= 0 && p < m_text.Length(); p += step) {
        char b = m_text.At(p);
        if (b == opener) depth += step;
        else if (b == closer) depth -= step;
        if (depth == 0) return p;
    }
    return -1;
}

long CTagMatcher::TagAround(long pos) const {
    if (pos < 0 || pos >= m_text.Length()) return -1;
    if (IsTagStart(pos)) return pos;
    // The nearest '<' in front decides; a '>' on the way may stand in a quoted value.
    for (long p = pos - 1; p >= 0; --p) {
        if (m_text.At(p) == '<') return IsTagStart(p) && ParseTag(p).end > pos ? p : -1;
    }
    return -1;
}

long CTagMatcher::MatchTag(long pos) const {
    long lt = TagAround(pos);
    if (lt < 0) return -1;
    CTagInfo tag = ParseTag(lt);
    long nameEnd = lt + 1 + (tag.closing ? 1 : 0) + static_cast<long>(tag.name.size());
    bool element = !tag.special && !tag.name.empty() && !tag.selfClosing;
    if (element && pos < nameEnd) {
        long partner = tag.closing ? FindOpening(tag) : FindClosing(tag);
        if (partner >= 0) return partner;
    }
    if (pos == lt && tag.Terminated(m_text)) return tag.end - 1;
    if (m_text.At(pos) == '>' && pos == tag.end - 1) return lt;
    return -1;
}

long CTagMatcher::FindClosing(const CTagInfo& tag) const {
    long depth = 1;
    long p = tag.end;
    while ((p = Find(p, "<")) >= 0) {
        if (!IsTagStart(p)) {
            ++p;
            continue;
        }
        CTagInfo t = ParseTag(p);
        if (!t.special && t.name == tag.name) {
            if (t.closing) {
                if (--depth == 0) return p;
            } else if (!t.selfClosing) {
                ++depth;
            }
        }
        p = t.end > p ? t.end : p + 1;
    }
    return -1;
}

long CTagMatcher::PrevTagStartSkippingComments(long pos) const {
    for (long p = pos - 1; p >= 0; --p) {
        if (p >= 2 && At(p - 2, "-->")) {
            long open = FindBack(p - 2, "<!--");
            if (open < 0) return -1;
            p = open;  // the loop steps in front of the comment
            continue;
        }
        if (IsTagStart(p)) return p;
    }
    return -1;
}

long CTagMatcher::FindOpening(const CTagInfo& tag) const {
    long depth = 1;
    long p = tag.start;
    while ((p = PrevTagStartSkippingComments(p)) >= 0) {
        CTagInfo t = ParseTag(p);
        if (t.special || t.name != tag.name) continue;
        if (t.closing) {
            ++depth;
        } else if (!t.selfClosing && --depth == 0) {
            return p;
        }
    }
    return -1;
}

long CTagMatcher::NextTagStart(long pos) const {
    for (long p = pos + 1; p < m_text.Length(); ++p)
        if (IsTagStart(p)) return p;
    return -1;
}

long CTagMatcher::PrevTagStart(long pos) const {
    for (long p = pos - 1; p >= 0; --p)
        if (IsTagStart(p)) return p;
    return -1;
}
