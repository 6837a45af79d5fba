#include "htmldoc/fileencoding.h"

#include <charconv>

#include "htmldoc/encodingsniff.h"
#include "platform/codepage/transcode.h"

namespace {

const CEncodingInfo& ProcessEncoding() { return *EncodingOfCodePage(CP_ACP); }

// The reference that loading writes for a character the code page cannot hold: decimal, no
// leading zeros. Saving turns back only references of exactly this form.
void AppendCharacterReference(char32_t ch, std::string& out) {
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, static_cast<uint32_t>(ch)).ptr;
    out += "&#";
    out.append(digits, end);
    out += ';';
}

std::string ReasonOf(const CTranscodeResult& result, const char* what, const CEncodingInfo& enc) {
    const std::string name = enc.pszName;
    const std::string offset = std::to_string(result.nBadOffset);
    switch (result.status) {
        case TranscodeStatus::BadInput:
            return std::string(what) + " is not valid " + name + ": byte " + offset + " begins no character";
        case TranscodeStatus::Truncated:
            return std::string(what) + " ends inside a character of " + name + " (at byte " + offset + ")";
        case TranscodeStatus::NoConverter:
            return "this system has no converter for " + name;
        case TranscodeStatus::Ok: break;
    }
    return {};
}

HRESULT HrOf(const CTranscodeResult& result) {
    if (result.Ok()) return S_OK;
    return result.status == TranscodeStatus::NoConverter ? HR_E_NO_CONVERTER : HR_E_UNDECODABLE;
}

// The encoding of a file that declares none: UTF-8 if its bytes read as UTF-8 and are not all
// ASCII, else the process code page's. Gives the text when the UTF-8 reading worked.
const CEncodingInfo& GuessUndeclared(std::string_view bytes, std::string* text) {
    std::string converted;
    const CTranscodeResult result = Transcode(Utf8Encoding(), ProcessEncoding(), bytes, &converted, AppendCharacterReference);
    if (!result.Ok()) return ProcessEncoding();
    *text = std::move(converted);
    return result.bNonAscii ? Utf8Encoding() : ProcessEncoding();
}

std::string_view ByteOrderMarkOf(const CEncodingInfo& enc) {
    if (&enc == &Utf8Encoding()) return "\xEF\xBB\xBF";
    if (&enc == &Utf16LeEncoding()) return "\xFF\xFE";
    if (&enc == &Utf16BeEncoding()) return "\xFE\xFF";
    return {};
}

// The character that a reference written by loading at `pos` stands for, and where it ends;
// 0 if the text there is no such reference.
char32_t ReferenceAt(std::string_view text, size_t pos, size_t* end) {
    size_t i = pos + 2;  // behind "&#"
    if (i >= text.size() || text[i] < '1' || text[i] > '9') return 0;
    uint32_t value = 0;
    const auto parsed = std::from_chars(text.data() + i, text.data() + text.size(), value);
    if (parsed.ec != std::errc() || parsed.ptr == text.data() + text.size() || *parsed.ptr != ';') return 0;
    if (value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) return 0;
    *end = static_cast<size_t>(parsed.ptr - text.data()) + 1;
    return value;
}

// Writes text of the process code page in another encoding, turning back into characters the
// references that loading wrote: those of characters the code page cannot hold.
class CTextWriter {
public:
    CTextWriter(const CEncodingInfo& to, std::string& out) : m_to(to), m_out(out) {}

    CTranscodeResult Write(std::string_view text) {
        size_t segment = 0;
        for (size_t pos = text.find("&#"); pos != std::string_view::npos && m_result.Ok(); pos = text.find("&#", pos)) {
            size_t end = 0;
            const char32_t ch = ReferenceAt(text, pos, &end);
            if (!ch || CanEncode(ProcessEncoding(), ch)) {
                pos += 2;
                continue;
            }
            WriteText(text.substr(segment, pos - segment), segment);
            m_pending += ch;
            segment = pos = end;
        }
        if (m_result.Ok()) WriteText(text.substr(segment), segment);
        return m_result;
    }

private:
    void WriteText(std::string_view text, size_t offset) {
        if (!m_pending.empty()) {
            if (!EncodeCodePoints(m_to, m_pending, &m_out, AppendCharacterReference))
                m_result.status = TranscodeStatus::NoConverter;
            m_pending.clear();
        }
        if (text.empty() || !m_result.Ok()) return;
        m_result = Transcode(ProcessEncoding(), m_to, text, &m_out, AppendCharacterReference);
        if (m_result.nBadOffset != CTranscodeResult::npos) m_result.nBadOffset += offset;
    }

    const CEncodingInfo& m_to;
    std::string& m_out;
    std::u32string m_pending;  // characters of references, written in one go before the next text
    CTranscodeResult m_result;
};

}  // namespace

const CEncodingInfo& CFileEncoding::Resolved() const {
    return encoding ? *encoding : ProcessEncoding();
}

HRESULT DecodeFileBytes(std::string_view bytes, const CDecodeOptions& options, std::string* text,
                        CFileEncoding* encoding, std::string* reason) {
    CFileEncoding found;
    std::string converted;
    const CByteOrderMark bom = DetectByteOrderMark(bytes);
    if (bom.encoding) {
        found = {bom.encoding, true};
        bytes.remove_prefix(bom.nLength);
    } else if (const CEncodingInfo* declared = options.forced ? options.forced : PrescanMetaCharset(bytes)) {
        found.encoding = declared;
    } else if (options.fallback) {
        found.encoding = options.fallback;
    } else {
        found.encoding = &GuessUndeclared(bytes, &converted);
        if (!converted.empty() || bytes.empty()) {
            *text = std::move(converted);
            *encoding = found;
            return S_OK;
        }
    }
    CTranscodeResult result = Transcode(*found.encoding, ProcessEncoding(), bytes, &converted, AppendCharacterReference);
    if (!result.Ok()) {
        if (result.nBadOffset != CTranscodeResult::npos) result.nBadOffset += bom.nLength;  // an offset in the file
        if (reason) *reason = ReasonOf(result, "the file", *found.encoding);
        return HrOf(result);
    }
    *text = std::move(converted);
    *encoding = found;
    return S_OK;
}

HRESULT EncodeFileText(std::string_view text, const CFileEncoding& encoding, std::string* bytes, std::string* reason) {
    const CEncodingInfo& target = encoding.Resolved();
    std::string out;
    if (encoding.bByteOrderMark || &target == &Utf16LeEncoding() || &target == &Utf16BeEncoding())
        out += ByteOrderMarkOf(target);
    if (&target == &ProcessEncoding()) {
        out += text;
    } else {
        const CTranscodeResult result = CTextWriter(target, out).Write(text);
        if (!result.Ok()) {
            if (reason) *reason = ReasonOf(result, "the text", ProcessEncoding());
            return HrOf(result);
        }
    }
    *bytes = std::move(out);
    return S_OK;
}
