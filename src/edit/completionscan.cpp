// The context scan of code completion, over a pointer to the text.
#include "src/edit/completionscan.h"

#include <algorithm>
#include <cctype>
#include <cstring>

namespace {

bool IsSpace(BYTE c) { return std::isspace(c) != 0; }
bool IsBracket(BYTE c) { return c == '<' || c == '>'; }

// Walks the bytes of one stretch; `last` is the byte that the latest scan or skip read last,
// -1 when it read none.
class TagScanner {
public:
    TagScanner(const char* text, long length, BOOL (*isLead)(BYTE))
        : m_text(reinterpret_cast<const BYTE*>(text)), m_length(length), m_isLead(isLead) {}

    BYTE At(long p) const { return m_text[p]; }
    long Next(long p) const {
        if (p >= m_length) return p;
        return (m_isLead && m_isLead(m_text[p]) && p + 1 < m_length) ? p + 2 : p + 1;
    }

    void Bounds(long pos, long* pStart, long* pEnd) const {
        // '<' and '>' are never the second byte of a double-byte character, so the walk back
        // may look for the bytes themselves.
        const long start = std::max(LastOf('<', 0, pos), LastOf('>', 0, pos));
        long end = pos;
        while (end < m_length) {
            const BYTE c = m_text[end];
            if (IsBracket(c)) {
                end = Next(end);
                break;
            }
            if (c == '\r') break;
            end = Next(end);
        }
        *pStart = start;
        *pEnd = end;
    }

    // Moves q over white space while q < limit.
    long SkipSpace(long q, long limit) {
        while (q < limit) {
            m_last = m_text[q];
            if (!IsSpace(m_text[q])) break;
            q = Next(q);
        }
        return q;
    }
    // Moves q up to the first byte for which stop() holds, or to limit.
    template <class Stop>
    long ScanTo(long q, long limit, Stop stop) {
        while (q < limit) {
            m_last = m_text[q];
            if (stop(m_text[q])) break;
            q = Next(q);
        }
        return q;
    }
    // Where the last c in [from, to) stands; 0 if none.
    long LastOf(char c, long from, long to) const {
        const void* at = to > from ? memrchr(m_text + from, c, static_cast<size_t>(to - from)) : nullptr;
        return at ? static_cast<long>(static_cast<const BYTE*>(at) - m_text) : 0;
    }
    // Moves q up to the first double quote or bracket, or to limit.
    long ScanToQuote(long q, long limit) {
        if (m_isLead) return ScanTo(q, limit, [](BYTE c) { return c == '"' || IsBracket(c); });
        long stop = limit;
        for (const char c : {'"', '<', '>'})
            if (const void* at = std::memchr(m_text + q, c, static_cast<size_t>(stop - q)))
                stop = static_cast<long>(static_cast<const BYTE*>(at) - m_text);
        if (stop > q) m_last = m_text[stop < limit ? stop : stop - 1];
        return stop;
    }
    void Forget() { m_last = -1; }
    int Last() const { return m_last; }

    std::string Upper(long from, long to) const {
        std::string s(reinterpret_cast<const char*>(m_text) + from, static_cast<size_t>(to - from));
        for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
        return s;
    }
    std::string Bytes(long from, long to) const {
        return std::string(reinterpret_cast<const char*>(m_text) + from, static_cast<size_t>(to - from));
    }

private:
    const BYTE* m_text;
    long m_length;
    BOOL (*m_isLead)(BYTE);
    int m_last = -1;
};

bool EndsName(BYTE c) { return IsSpace(c) || IsBracket(c); }
bool EndsAttribute(BYTE c) { return IsSpace(c) || c == '=' || IsBracket(c); }

void SetRange(TagContext* ctx, long from, long to) {
    ctx->rangeStart = from;
    ctx->rangeEnd = to;
}

// The value behind an '=' at q - 1: a double-quoted one runs to its closing quote, any other to
// white space. Gives where the scan stopped; true if pos lies on the value.
bool ScanValue(TagScanner& s, long& q, long pos, long end, TagContext* ctx) {
    s.Forget();
    q = s.SkipSpace(q, pos);
    const long v = q;
    if (q < end) {
        if (s.Last() == '"') {
            q = s.SkipSpace(s.Next(q), pos);
            q = s.ScanToQuote(q, end);
            if (q < end && s.At(q) == '"') q = s.Next(q);
        } else {
            q = s.ScanTo(q, end, EndsName);
        }
    }
    ctx->value = s.Bytes(v, q);
    if (pos < v || pos > q) return false;
    SetRange(ctx, v, q);
    return true;
}

// The attributes from q on, up to the one that pos lies on.
void ScanAttributes(TagScanner& s, long q, long pos, long end, TagContext* ctx) {
    while (q < end) {
        q = s.SkipSpace(q, pos);
        const long a = q;
        q = s.ScanTo(q, end, EndsAttribute);
        ctx->attribute = s.Upper(a, q);
        if (!ctx->attribute.empty() && pos >= a && pos <= q) {
            q = s.SkipSpace(q, end);
            if (q < end && s.At(q) == '=') q = s.SkipSpace(s.Next(q), end);
            SetRange(ctx, a, q);
            return;
        }
        q = s.SkipSpace(q, end);
        if (q < end && s.At(q) == '=') {
            ctx->context = CTX_VALUE;
            q = s.Next(q);
            if (ScanValue(s, q, pos, end, ctx)) return;
            ctx->context = CTX_ATTRIBUTE;
        }
        if (q >= pos) return;
    }
}

}  // namespace

void FindTagBoundsIn(const char* text, long length, long pos, BOOL (*isLead)(BYTE), long* pStart, long* pEnd) {
    TagScanner(text, length, isLead).Bounds(pos, pStart, pEnd);
}

TagContext AnalyzeTagIn(const char* text, long length, long pos, BOOL (*isLead)(BYTE)) {
    TagContext ctx;
    pos = pos < 0 ? 0 : (pos > length ? length : pos);
    SetRange(&ctx, pos, pos);
    TagScanner s(text, length, isLead);
    long start = 0, end = 0;
    s.Bounds(pos, &start, &end);
    if (start >= length || s.At(start) != '<') {
        ctx.context = CTX_TEXT;
        return ctx;
    }
    if (start + 4 <= length && s.Bytes(start + 1, start + 4) == "!--") {
        ctx.context = CTX_COMMENT;
        return ctx;
    }
    ctx.context = CTX_TAG;
    if (end - start < 2) return ctx;
    const long nameStart = s.Next(start);
    s.Forget();
    long q = s.ScanTo(nameStart, end, EndsName);
    ctx.tag = s.Upper(nameStart, q);
    if (pos >= nameStart && pos <= q) {
        SetRange(&ctx, nameStart, q);
        ctx.context = CTX_TAGNAME;
        return ctx;
    }
    if (s.Last() >= 0 && !IsSpace(static_cast<BYTE>(s.Last()))) return ctx;
    q = s.Next(q);
    ctx.context = CTX_ATTRIBUTE;
    if (q >= pos) return ctx;
    ScanAttributes(s, q, pos, end, &ctx);
    return ctx;
}
