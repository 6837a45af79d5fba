// The edits that a range makes on its own text: typing, overtyping, deleting, block indent.
#include "htmldoc/htmldocument.h"
#include "htmldoc/sourcerange.h"
#include "htmldoc/textwalker.h"

namespace {

bool IsBreakByte(char c) { return c == '\r' || c == '\n'; }

// Whether `text` is one typed character: a single byte, or a double-byte character, and no
// line break.
bool IsOneTypedChar(const CTextWalker& walker, const char* text, long count) {
    if (count == 1) return !IsBreakByte(text[0]);
    return count == 2 && walker.IsLead(static_cast<unsigned char>(text[0])) && !IsBreakByte(text[1]);
}

// Characters in `text`, a double-byte character and a CR LF pair counting one each.
long CountChars(const CTextWalker& walker, const char* text, long count) {
    long chars = 0;
    for (long i = 0; i < count; ++chars) {
        bool pair = i + 1 < count && ((text[i] == '\r' && text[i + 1] == '\n') ||
                                      (walker.IsLead(static_cast<unsigned char>(text[i])) && !IsBreakByte(text[i + 1])));
        i += pair ? 2 : 1;
    }
    return chars;
}

// Bytes of indent that one unindent takes from a line: a tab, or else up to four spaces.
long UnindentWidth(const CGapBuffer& text, long lineStart) {
    if (lineStart < text.Length() && text.At(lineStart) == '\t') return 1;
    long n = 0;
    while (n < 4 && lineStart + n < text.Length() && text.At(lineStart + n) == ' ') ++n;
    return n;
}

}  // namespace

HRESULT CSourceRange::ReplaceText(const char* text, long count, ISourceTextSink*) {
    if (!m_pDoc) return E_UNEXPECTED;
    if (count < 0) return E_INVALIDARG;
    if (count > 0 && !text) return E_POINTER;
    if (!IsValidPos(GetActive()) || !IsValidPos(GetAnchor())) return E_INVALIDARG;
    CTextWalker walker(m_pDoc->Text());
    bool typing = GetActive() == GetAnchor() && IsOneTypedChar(walker, text, count);
    return m_pDoc->Edit({GetStart(), GetEnd() - GetStart(), std::string_view(text, static_cast<size_t>(count)),
                         SA_REPLACE, typing ? EditKind::Typing : EditKind::Replace, this});
}

HRESULT CSourceRange::OvertypeText(const char* text, long count, ISourceTextSink* sink) {
    if (!m_pDoc) return E_UNEXPECTED;
    if (count < 0) return E_INVALIDARG;
    if (count > 0 && !text) return E_POINTER;
    if (GetActive() != GetAnchor()) return ReplaceText(text, count, sink);
    if (!IsValidPos(GetActive())) return E_INVALIDARG;
    CTextWalker walker(m_pDoc->Text());
    long end = GetActive();
    for (long n = CountChars(walker, text, count); n > 0 && end < walker.Length(); --n) {
        if (IsBreakByte(static_cast<char>(walker.ByteAt(end)))) break;  // the line end is not overtyped
        end = walker.NextChar(end);
    }
    EditKind kind = IsOneTypedChar(walker, text, count) ? EditKind::Overtype : EditKind::Replace;
    return m_pDoc->Edit({GetActive(), end - GetActive(), std::string_view(text, static_cast<size_t>(count)), SA_REPLACE,
                         kind, this});
}

HRESULT CSourceRange::DeleteText(ISourceTextSink*) {
    if (!m_pDoc) return E_UNEXPECTED;
    if (!IsValidPos(GetActive()) || !IsValidPos(GetAnchor())) return E_INVALIDARG;
    if (GetActive() == GetAnchor()) return S_FALSE;
    return m_pDoc->Edit({GetStart(), GetEnd() - GetStart(), {}, SA_DELETE, EditKind::Delete, this});
}

HRESULT CSourceRange::IndentLines(ISourceTextSink*) { return Indent(true); }
HRESULT CSourceRange::UnindentLines(ISourceTextSink*) { return Indent(false); }

HRESULT CSourceRange::Indent(bool indent) {
    if (!m_pDoc) return E_UNEXPECTED;
    if (!IsValidPos(GetActive()) || !IsValidPos(GetAnchor())) return E_INVALIDARG;
    const CHardLines& lines = m_pDoc->Lines();
    const CGapBuffer& text = m_pDoc->Text();
    long first = lines.LineFromPos(GetStart());
    long last = lines.LineFromPos(GetEnd());
    // A range that ends at the start of a line does not touch that line.
    if (last > first && GetEnd() == lines.LineStart(last)) --last;

    std::vector<CEdit> edits;
    long shift = 0;  // bytes that the edits in front have added or taken
    for (long line = first; line <= last; ++line) {
        long start = lines.LineStart(line);
        long width = indent ? 0 : UnindentWidth(text, start);
        if (!indent && width == 0) continue;
        edits.push_back({start + shift, std::string(static_cast<size_t>(width), ' '), indent ? "\t" : "", {}, {}});
        shift += indent ? 1 : -width;
    }
    // Ends at the start of a touched line stay at its start, so that the range keeps whole lines.
    auto lineOfStartEnd = [&](long end) {
        long line = lines.LineFromPos(end);
        return line >= first && line <= last && lines.LineStart(line) == end ? line : -1;
    };
    long activeLine = lineOfStartEnd(GetActive());
    long anchorLine = lineOfStartEnd(GetAnchor());
    auto place = [&] {
        long active = activeLine >= 0 ? lines.LineStart(activeLine) : GetActive();
        long anchor = anchorLine >= 0 ? lines.LineStart(anchorLine) : GetAnchor();
        PlaceSilently(active, anchor);
    };
    ComPtr<CSourceRange> keep(this);  // sinks called below may drop their references
    return m_pDoc->EditBlock(std::move(edits), indent ? EditKind::Indent : EditKind::Unindent,
                             indent ? "Indenting lines" : "Unindenting lines", place);
}
