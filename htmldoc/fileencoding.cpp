#include "htmldoc/fileencoding.h"

#include <charconv>

#include "htmldoc/encodingguess.h"
#include "htmldoc/encodingsniff.h"
#include "platform/codepage/iconvcodec.h"
#include "platform/codepage/iso2022jp.h"
#include "platform/codepage/transcode.h"

namespace {

const CEncodingInfo& ProcessEncoding() { return *EncodingOfCodePage(CP_ACP); }

bool IsIso2022Jp(const CEncodingInfo& enc) { return enc.pszIconv && std::string_view(enc.pszIconv) == "ISO-2022-JP"; }

bool HasConverter(const CEncodingInfo& enc) { return !enc.pszIconv || IconvAvailable(enc.pszIconv); }

// The reference that loading writes for a character the code page cannot hold: decimal, no
// leading zeros.
void AppendCharacterReference(char32_t ch, std::string& out) {
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, static_cast<uint32_t>(ch)).ptr;
    out += "&#";
    out.append(digits, end);
    out += ';';
}

// The character of a reference as loading writes it, spanning all of `text`; 0 if it is none.
char32_t ReferenceOf(std::string_view text) {
    if (text.size() < 4 || text.substr(0, 2) != "&#" || text.back() != ';' || text[2] < '1' || text[2] > '9') return 0;
    uint32_t value = 0;
    const char* last = text.data() + text.size() - 1;
    const auto parsed = std::from_chars(text.data() + 2, last, value);
    if (parsed.ec != std::errc() || parsed.ptr != last) return 0;
    if (value > 0x10FFFF || (value >= 0xD800 && value <= 0xDFFF)) return 0;
    return value;
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

std::string_view ByteOrderMarkOf(const CEncodingInfo& enc) {
    if (&enc == &Utf8Encoding()) return "\xEF\xBB\xBF";
    if (&enc == &Utf16LeEncoding()) return "\xFF\xFE";
    if (&enc == &Utf16BeEncoding()) return "\xFE\xFF";
    return {};
}

// Writes the stand-ins of loading into the text and marks them.
class CMarkingSink final : public CKeepSink {
public:
    explicit CMarkingSink(CDecodedFile& file) : m_file(file) {}

    void Unmappable(char32_t ch, std::string& out) override {
        const size_t pos = out.size();
        AppendCharacterReference(ch, out);
        Mark(pos, out, {});
    }
    void Undecodable(std::string_view bytes, std::string& out) override {
        const size_t pos = out.size();
        AppendCharacterReference(kReplacement, out);
        Mark(pos, out, bytes);
        m_file.report.nUndecodable += bytes.size();
    }
    void Inexact(std::string_view bytes, std::u32string_view chars, std::string& out) override {
        const size_t pos = out.size();
        EncodeCodePoints(ProcessEncoding(), chars, &out, AppendCharacterReference);
        Mark(pos, out, bytes);
    }
    void Shift(std::string_view bytes, std::string& out) override { Mark(out.size(), out, bytes); }

private:
    static constexpr char32_t kReplacement = 0xFFFD;
    void Mark(size_t pos, const std::string& out, std::string_view raw) {
        m_file.marks.Append(static_cast<long>(pos), static_cast<long>(out.size() - pos), raw);
    }
    CDecodedFile& m_file;
};

// Reads the bytes in `enc` into the file's text; false where there is no converter.
bool DecodeIn(const CEncodingInfo& enc, std::string_view bytes, CDecodedFile* file) {
    file->text.clear();
    file->marks.Reset(0);
    file->report.nUndecodable = 0;
    CMarkingSink sink(*file);
    if (!TranscodeKeeping(enc, ProcessEncoding(), bytes, &file->text, sink).Ok()) return false;
    file->marks.EndText(static_cast<long>(file->text.size()));
    return true;
}

// The encoding that a file names, with what named it; nullptr where nothing does.
const CEncodingInfo* NamedEncoding(std::string_view bytes, const CDecodeOptions& options, EncodingSource* source) {
    const CEncodingInfo* named = options.forced;
    *source = EncodingSource::Host;
    if (!named) {
        named = PrescanMetaCharset(bytes);
        *source = EncodingSource::Declared;
    }
    if (!named) {
        named = options.fallback;
        *source = EncodingSource::Default;
    }
    return named && HasConverter(*named) ? named : nullptr;
}

// Writes text of the process code page in another encoding, putting back what the marks of
// loading stand for.
class CTextWriter {
public:
    CTextWriter(const CEncodingInfo& to, bool keepBytes, std::string& out)
        : m_to(to), m_bKeepBytes(keepBytes), m_bJis(IsIso2022Jp(to)), m_out(out) {}

    CTranscodeResult Write(std::string_view text, const CLoadMarks* marks) {
        size_t last = 0;
        if (marks) {
            marks->ForEach([&](const CLoadMark& mark) {
                const auto pos = static_cast<size_t>(mark.pos);
                if (pos < last || !m_result.Ok()) return;
                Plain(text.substr(last, pos - last), last);
                const std::string_view spanned = text.substr(pos, static_cast<size_t>(mark.length));
                if (m_bKeepBytes && mark.rawLength > 0) Raw(marks->Raw(mark));
                else if (const char32_t ch = ReferenceOf(spanned)) m_pending += ch;
                else Plain(spanned, pos);
                last = pos + spanned.size();
            });
        }
        if (m_result.Ok()) Plain(text.substr(last), last);
        Flush();
        if (m_bJis) m_jis.Finish(m_out);
        return m_result;
    }

private:
    void Flush() {
        if (m_pending.empty() || !m_result.Ok()) return;
        if (m_bJis) m_jis.Write(m_pending, m_out, AppendCharacterReference);
        else if (!EncodeCodePoints(m_to, m_pending, &m_out, AppendCharacterReference)) m_result.status = TranscodeStatus::NoConverter;
        m_pending.clear();
    }

    void Raw(std::string_view bytes) {
        Flush();
        if (m_bJis) m_jis.WriteRaw(bytes, m_out);
        else m_out += bytes;
    }

    void Plain(std::string_view text, size_t offset) {
        if (text.empty() || !m_result.Ok()) return;
        Flush();
        if (&m_to == &ProcessEncoding()) {
            m_out += text;
            return;
        }
        if (m_bJis) {
            m_chars.clear();
            if (DecodeCodePoints(ProcessEncoding(), text, &m_chars)) return m_jis.Write(m_chars, m_out, AppendCharacterReference);
            std::string scratch;  // only for the transcoder to say where the text does not read
            m_result = Transcode(ProcessEncoding(), Utf8Encoding(), text, &scratch);
        } else {
            m_result = Transcode(ProcessEncoding(), m_to, text, &m_out, AppendCharacterReference);
        }
        if (m_result.nBadOffset != CTranscodeResult::npos) m_result.nBadOffset += offset;
    }

    const CEncodingInfo& m_to;
    const bool m_bKeepBytes;
    const bool m_bJis;
    std::string& m_out;
    CIso2022JpWriter m_jis;
    std::u32string m_pending;  // characters of references, written in one go before what follows
    std::u32string m_chars;
    CTranscodeResult m_result;
};

}  // namespace

const CEncodingInfo& CFileEncoding::Resolved() const {
    return encoding ? *encoding : ProcessEncoding();
}

void DecodeFileBytes(std::string_view bytes, const CDecodeOptions& options, CDecodedFile* file) {
    CFileEncoding found;
    EncodingSource source = EncodingSource::ByteOrderMark;
    const CByteOrderMark bom = DetectByteOrderMark(bytes);
    if (bom.encoding) {
        found = {bom.encoding, true};
        bytes.remove_prefix(bom.nLength);
    } else {
        found.encoding = NamedEncoding(bytes, options, &source);
    }
    if (!found.encoding) {
        found.encoding = &GuessEncoding(bytes, ProcessEncoding());
        source = EncodingSource::Guessed;
    }
    bool decoded = DecodeIn(*found.encoding, bytes, file);
    // A page that declares one encoding but reads only as UTF-8 is UTF-8.
    bool nonAscii = false;
    if (!decoded || (source == EncodingSource::Declared && file->report.nUndecodable > 0 &&
                     IsValidUtf8(bytes, &nonAscii) && nonAscii)) {
        found.encoding = decoded ? &Utf8Encoding() : FindEncoding("windows-1252");
        source = EncodingSource::Guessed;
        DecodeIn(*found.encoding, bytes, file);
    }
    file->encoding = found;
    file->report.encoding = found.Resolved().pszName;
    file->report.source = source;
}

HRESULT EncodeFileText(std::string_view text, const CFileEncoding& encoding, const CLoadMarks* marks, bool keepBytes,
                       std::string* bytes, std::string* reason) {
    const CEncodingInfo& target = encoding.Resolved();
    std::string out;
    if (encoding.bByteOrderMark) out += ByteOrderMarkOf(target);
    const CTranscodeResult result = CTextWriter(target, keepBytes, out).Write(text, marks);
    if (!result.Ok()) {
        if (reason) *reason = ReasonOf(result, "the text", ProcessEncoding());
        return HrOf(result);
    }
    *bytes = std::move(out);
    return S_OK;
}
