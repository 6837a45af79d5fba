#include "platform/codepage/transcode.h"

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <vector>

#include "platform/codepage/cp1252.h"
#include "platform/codepage/iconvcodec.h"
#include "platform/codepage/iso2022jp.h"
#include "platform/codepage/leadbyte.h"
#include "platform/codepage/unicode.h"

namespace {

// ASCII stretches shorter than this stay inside the run of other text around them, so that
// text with a space between every few words goes to the converter in one call, not in one per
// word; longer stretches are copied straight through.
constexpr size_t kMinAsciiStretch = 32;

bool IsBuiltIn1252(const CEncodingInfo& enc) { return enc.pszIconv == nullptr; }

bool IsAscii(char c) { return (static_cast<unsigned char>(c) & 0x80) == 0; }

// Length of the ASCII stretch at the start of `p`, eight bytes at a time.
size_t AsciiLength(const char* p, size_t n) {
    constexpr uint64_t kHighBits = 0x8080808080808080ULL;
    size_t i = 0;
    for (; i + 8 <= n; i += 8) {
        uint64_t word;
        std::memcpy(&word, p + i, 8);
        if (word & kHighBits) break;
    }
    while (i < n && IsAscii(p[i])) ++i;
    return i;
}

// Where the run of non-ASCII text that starts at `pos` ends: at a character boundary that an
// ASCII stretch of kMinAsciiStretch bytes follows, or at the end. A lead byte of a double-byte
// encoding takes the byte after it along, whatever that byte is.
size_t RunEnd(const CEncodingInfo& enc, std::string_view in, size_t pos) {
    while (pos < in.size()) {
        const auto b = static_cast<unsigned char>(in[pos]);
        if (b < 0x80) {
            const size_t ascii = AsciiLength(in.data() + pos, in.size() - pos);
            if (ascii >= kMinAsciiStretch || pos + ascii == in.size()) return pos;
            pos += ascii;
            continue;
        }
        const bool lead = enc.form == EncodingForm::DoubleByte && IsDBCSLeadByteEx(enc.nCodePage, b);
        pos += lead && pos + 1 < in.size() ? 2 : 1;
    }
    return pos;
}

// Copies the ASCII stretches of `in` to `out` as they are (where `asciiThrough` allows) and hands
// each run of other text to convert(run, offset, last) while `going()` holds.
template <class Convert, class Going>
void ForEachRun(const CEncodingInfo& from, bool asciiThrough, std::string_view in, std::string& out, Convert convert,
                Going going) {
    size_t pos = 0;
    while (pos < in.size() && going()) {
        const size_t ascii = asciiThrough ? AsciiLength(in.data() + pos, in.size() - pos) : 0;
        out.append(in.data() + pos, ascii);
        pos += ascii;
        if (pos == in.size()) break;
        const size_t end = asciiThrough ? RunEnd(from, in, pos) : in.size();
        convert(in.substr(pos, end - pos), pos, end == in.size());
        pos = end;
    }
}

// ISO-2022-JP shifts with escape sequences: an escape character is not ASCII text there.
bool IsIso2022Jp(const CEncodingInfo& enc) { return enc.pszIconv && std::string_view(enc.pszIconv) == "ISO-2022-JP"; }

class CTranscoder {
public:
    CTranscoder(const CEncodingInfo& from, const CEncodingInfo& to, const UnmappableHandler& handler)
        : m_from(from),
          m_to(to),
          m_handler(handler),
          m_bCopy(&from == &to),
          m_bAsciiThrough(from.form != EncodingForm::Opaque && to.IsAsciiCompatible() && !IsIso2022Jp(to)) {}

    CTranscodeResult Run(std::string_view in, std::string& out) {
        out.reserve(out.size() + in.size() + in.size() / 8);
        ForEachRun(
            m_from, m_bAsciiThrough, in, out,
            [&](std::string_view run, size_t offset, bool last) {
                m_result.bNonAscii = true;
                ConvertRun(run, offset, last, out);
            },
            [&] { return m_result.Ok(); });
        return m_result;
    }

private:
    void ConvertRun(std::string_view run, size_t runOffset, bool last, std::string& out) {
        if (m_bCopy && IsBuiltIn1252(m_from)) {
            out.append(run);
            return;
        }
        m_chars.clear();
        if (!Decode(run, runOffset, last)) return;
        if (m_bCopy) {
            out.append(run);
            return;
        }
        if (!EncodeCodePoints(m_to, m_chars, &out, m_handler, &m_result.nUnmappable))
            m_result.status = TranscodeStatus::NoConverter;
    }

    // A character cut off at the end of a run that is not the last is cut off by what follows it.
    bool Decode(std::string_view run, size_t runOffset, bool last) {
        if (IsBuiltIn1252(m_from)) {
            for (char c : run) m_chars += Cp1252ToUnicode(static_cast<uint8_t>(c));
            return true;
        }
        const bool ok = IconvDecode(m_from.pszIconv, run, &m_chars, [&](size_t offset, size_t, bool incomplete) {
            if (m_result.Ok()) {
                m_result.status = incomplete && last ? TranscodeStatus::Truncated : TranscodeStatus::BadInput;
                m_result.nBadOffset = runOffset + offset;
            }
        });
        if (!ok) m_result.status = TranscodeStatus::NoConverter;
        return m_result.Ok();
    }

    const CEncodingInfo& m_from;
    const CEncodingInfo& m_to;
    const UnmappableHandler& m_handler;
    const bool m_bCopy;
    const bool m_bAsciiThrough;  // ASCII stretches are copied as they are, between runs of the rest
    std::u32string m_chars;  // the current run, decoded
    CTranscodeResult m_result;
};

void Unmappable(const UnmappableHandler& handler, char32_t ch, std::string& out, size_t* count) {
    if (count) ++*count;
    if (handler)
        handler(ch, out);
    else
        out += '?';
}

// Appends the encoding of `in` if every character of it comes back as itself when the bytes are
// read again. The C library's converters also write some characters that they read back as
// others (U+2014 goes to the pair that CP932 reads as U+2015); such a character counts as one the
// encoding does not hold, so that it travels as a reference and nothing changes on the way.
bool EncodeExact(const char* name, std::u32string_view in, std::string* out) {
    std::string bytes;
    bool refused = false;
    IconvEncode(name, in, &bytes, [&](size_t) { refused = true; });
    if (refused) return false;
    std::u32string back;
    IconvDecode(name, bytes, &back, [&](size_t, size_t, bool) { refused = true; });
    if (refused || back != in) return false;
    out->append(bytes);
    return true;
}

// Collects the indices of the characters that do not encode exactly, halving the text around
// them, so that a long run with one such character costs a few conversions, not one per character.
void FindInexact(const char* name, std::u32string_view in, size_t offset, std::vector<size_t>& found) {
    std::string scratch;
    if (in.empty() || EncodeExact(name, in, &scratch)) return;
    if (in.size() == 1) return found.push_back(offset);
    const size_t half = in.size() / 2;
    FindInexact(name, in.substr(0, half), offset, found);
    FindInexact(name, in.substr(half), offset + half, found);
}

void EncodeIconv(const char* name, std::u32string_view in, std::string* out, const UnmappableHandler& handler,
                 size_t* unmappable) {
    if (EncodeExact(name, in, out)) return;
    std::vector<size_t> inexact;
    FindInexact(name, in, 0, inexact);
    // The stretches between go in one piece each, so that a shifting encoding shifts once.
    const auto stretch = [&](size_t from, size_t to) {
        const std::u32string_view part = in.substr(from, to - from);
        if (!part.empty() && !EncodeExact(name, part, out))
            IconvEncode(name, part, out, [&](size_t index) { Unmappable(handler, part[index], *out, unmappable); });
    };
    size_t from = 0;
    for (size_t index : inexact) {
        stretch(from, index);
        Unmappable(handler, in[index], *out, unmappable);
        from = index + 1;
    }
    stretch(from, in.size());
}

}  // namespace

namespace {

// In ISO-2022-JP an escape byte only ever starts one of its four shift sequences. The C
// library's converter passes any other escape through as a character, which the encoder could
// then not write back; such input is refused instead. Gives the offset of the first stray
// escape, or npos.
size_t StrayEscapeOffset(std::string_view in) {
    static constexpr std::string_view kShifts[] = {"\x1B(B", "\x1B(J", "\x1B$@", "\x1B$B"};
    for (size_t pos = in.find('\x1B'); pos != std::string_view::npos; pos = in.find('\x1B', pos + 1)) {
        const std::string_view here = in.substr(pos, 3);
        if (std::find(std::begin(kShifts), std::end(kShifts), here) == std::end(kShifts)) return pos;
    }
    return std::string_view::npos;
}

}  // namespace

CTranscodeResult Transcode(const CEncodingInfo& from, const CEncodingInfo& to, std::string_view in,
                           std::string* out, const UnmappableHandler& onUnmappable) {
    if (IsIso2022Jp(from)) {
        if (const size_t stray = StrayEscapeOffset(in); stray != std::string_view::npos) {
            CTranscodeResult refused;
            refused.status = stray + 3 > in.size() ? TranscodeStatus::Truncated : TranscodeStatus::BadInput;
            refused.nBadOffset = stray;
            return refused;
        }
    }
    const size_t before = out->size();
    CTranscodeResult result = CTranscoder(from, to, onUnmappable).Run(in, *out);
    if (!result.Ok()) out->resize(before);
    return result;
}

bool EncodeCodePoints(const CEncodingInfo& to, std::u32string_view in, std::string* out,
                      const UnmappableHandler& onUnmappable, size_t* unmappable) {
    if (IsBuiltIn1252(to)) {
        for (char32_t ch : in) {
            const int b = UnicodeToCp1252(ch);
            if (b >= 0)
                *out += static_cast<char>(b);
            else
                Unmappable(onUnmappable, ch, *out, unmappable);
        }
        return true;
    }
    if (&to == &Utf8Encoding()) {
        for (char32_t ch : in) AppendUtf8(*out, ch);
        return true;
    }
    if (!IconvAvailable(to.pszIconv)) return false;
    if (IsIso2022Jp(to)) {
        CIso2022JpWriter writer;
        writer.Write(in, *out, onUnmappable, unmappable);
        writer.Finish(*out);
        return true;
    }
    EncodeIconv(to.pszIconv, in, out, onUnmappable, unmappable);
    return true;
}

bool CanEncode(const CEncodingInfo& to, char32_t ch) {
    if (ch > 0x10FFFF || (ch >= 0xD800 && ch <= 0xDFFF)) return false;
    size_t unmappable = 0;
    std::string scratch;
    const char32_t one[1] = {ch};
    return EncodeCodePoints(to, std::u32string_view(one, 1), &scratch, [](char32_t, std::string&) {}, &unmappable) &&
           unmappable == 0;
}

namespace {

bool IsUtf16(const CEncodingInfo& enc) { return &enc == &Utf16LeEncoding() || &enc == &Utf16BeEncoding(); }

// Reads a file's text keeping every byte: see TranscodeKeeping.
class CKeepingReader {
public:
    CKeepingReader(const CEncodingInfo& from, const CEncodingInfo& to, CKeepSink& sink, std::string& out)
        : m_from(from),
          m_to(to),
          m_sink(sink),
          m_out(out),
          m_bCopy(&from == &to),
          // UTF-8 and UTF-16 have one form for each character; legacy converters need not.
          m_bVerify(!IsBuiltIn1252(from) && &from != &Utf8Encoding() && !IsUtf16(from)),
          m_handler([this](char32_t ch, std::string& text) { m_sink.Unmappable(ch, text); }) {}

    CTranscodeResult Run(std::string_view in) {
        if (!IsBuiltIn1252(m_from) && !IconvAvailable(m_from.pszIconv)) m_result.status = TranscodeStatus::NoConverter;
        if (!IsBuiltIn1252(m_to) && !IconvAvailable(m_to.pszIconv)) m_result.status = TranscodeStatus::NoConverter;
        if (!m_result.Ok()) return m_result;
        m_out.reserve(m_out.size() + in.size() + in.size() / 8);
        if (IsIso2022Jp(m_from)) {
            SplitIso2022Jp(in, [&](const CJisPiece& piece) { ReadJisPiece(in.substr(piece.nOffset, piece.nLength), piece); });
            return m_result;
        }
        ForEachRun(
            m_from, m_from.form != EncodingForm::Opaque, in, m_out,
            [&](std::string_view run, size_t, bool) {
                m_result.bNonAscii = true;
                ReadRun(run);
            },
            [] { return true; });
        return m_result;
    }

private:
    struct CBad {
        size_t offset, length;
        size_t index;  // of its U+FFFD among the characters
    };

    void ReadRun(std::string_view run) {
        if (IsBuiltIn1252(m_from)) {
            if (m_bCopy) {
                m_out.append(run);
                return;
            }
            m_chars.clear();
            for (char c : run) m_chars += Cp1252ToUnicode(static_cast<uint8_t>(c));
            return Emit(m_chars);
        }
        ReadDecoded(m_from.pszIconv, run, run);
    }

    // Decodes `decodable` through the converter `name`; `original` holds the file's bytes at the
    // same offsets (they differ only for JIS X 0208 read as EUC-JP).
    void ReadDecoded(const char* name, std::string_view decodable, std::string_view original) {
        m_chars.clear();
        m_bad.clear();
        IconvDecode(
            name, decodable, &m_chars,
            [&](size_t offset, size_t length, bool) { m_bad.push_back({offset, length, m_chars.size() - 1}); },
            IsUtf16(m_from) ? 2 : 1);
        const std::u32string_view chars(m_chars);
        size_t byte = 0, ch = 0;
        for (const CBad& bad : m_bad) {
            Good(decodable.substr(byte, bad.offset - byte), original.substr(byte, bad.offset - byte),
                 chars.substr(ch, bad.index - ch), name);
            m_sink.Undecodable(original.substr(bad.offset, bad.length), m_out);
            byte = bad.offset + bad.length;
            ch = bad.index + 1;
        }
        Good(decodable.substr(byte), original.substr(byte), chars.substr(ch), name);
    }

    // Characters that read well, from `bytes` as the converter saw them, `original` in the file.
    void Good(std::string_view bytes, std::string_view original, std::u32string_view chars, const char* name) {
        if (bytes.empty()) return;
        if (m_bCopy) {
            m_out.append(original);
            return;
        }
        if (!m_bVerify || (WritesBack(name, chars, bytes) && OneEach(bytes, chars))) return Emit(chars);
        // Some character here has bytes of its own: find it, one character at a time.
        size_t pos = 0;
        std::u32string one;
        while (pos < bytes.size()) {
            const size_t length = CharLength(name, bytes.substr(pos));
            one.clear();
            IconvDecode(name, bytes.substr(pos, length), &one, {});
            if (one.size() == 1 && WritesBack(name, one, bytes.substr(pos, length))) Emit(one);
            else m_sink.Inexact(original.substr(pos, length), one, m_out);
            pos += length;
        }
    }

    // Whether each character of a double-byte encoding read as one character: some read as a
    // letter and its accent, which are written as two things.
    bool OneEach(std::string_view bytes, std::u32string_view chars) const {
        if (m_from.form != EncodingForm::DoubleByte) return true;
        size_t count = 0;
        for (size_t i = 0; i < bytes.size(); ++count)
            i += IsDBCSLeadByteEx(m_from.nCodePage, static_cast<BYTE>(bytes[i])) ? 2 : 1;
        return count == chars.size();
    }

    static bool WritesBack(const char* name, std::u32string_view chars, std::string_view bytes) {
        std::string again;
        bool refused = false;
        IconvEncode(name, chars, &again, [&](size_t) { refused = true; });
        return !refused && again == bytes;
    }

    // Bytes of the one character at the start of `bytes`, which read well.
    static size_t CharLength(const char* name, std::string_view bytes) {
        for (size_t length = 1; length < bytes.size() && length <= 4; ++length) {
            std::u32string one;
            bool bad = false;
            IconvDecode(name, bytes.substr(0, length), &one, [&](size_t, size_t, bool) { bad = true; });
            if (!bad && !one.empty()) return length;
        }
        return std::min<size_t>(bytes.size(), 4);
    }

    void Emit(std::u32string_view chars) {
        if (!EncodeCodePoints(m_to, chars, &m_out, m_handler, &m_result.nUnmappable))
            m_result.status = TranscodeStatus::NoConverter;
    }

    void ReadJisPiece(std::string_view bytes, const CJisPiece& piece) {
        if (piece.bShift) return m_sink.Shift(bytes, m_out);
        m_result.bNonAscii = true;
        switch (piece.set) {
            case JisSet::Ascii:
            case JisSet::Roman:
            case JisSet::Katakana: return ReadJisSingle(bytes, piece.set);
            case JisSet::Jis0208: return ReadJis0208(bytes);
        }
    }

    // One byte per character: ASCII, Roman or half-width katakana. Half-width katakana has no
    // set of its own in what the writer writes: each character is kept with its byte.
    void ReadJisSingle(std::string_view bytes, JisSet set) {
        m_chars.clear();
        const auto flush = [&] {
            Emit(m_chars);
            m_chars.clear();
        };
        for (size_t i = 0; i < bytes.size(); ++i) {
            const auto b = static_cast<unsigned char>(bytes[i]);
            const bool text = b < 0x80 && b != 0x0E && b != 0x0F && b != 0x1B;
            if (set == JisSet::Katakana && b >= 0x21 && b <= 0x5F) {
                flush();
                const char32_t kana = 0xFF61 + (b - 0x21);
                m_sink.Inexact(bytes.substr(i, 1), std::u32string_view(&kana, 1), m_out);
            } else if (text && set != JisSet::Katakana) {
                m_chars += set == JisSet::Roman && b == 0x5C ? U'\u00A5' : set == JisSet::Roman && b == 0x7E ? U'\u203E' : char32_t(b);
            } else if (text && b < 0x21) {
                flush();
                const char32_t control = b;
                m_sink.Inexact(bytes.substr(i, 1), std::u32string_view(&control, 1), m_out);
            } else {
                flush();
                m_sink.Undecodable(bytes.substr(i, 1), m_out);
            }
        }
        flush();
    }

    // Pairs of 0x21..0x7E, read as EUC-JP with their high bits set. Control characters and spaces
    // between them need no shift in the file; they are kept with their bytes, since the writer
    // would shift to ASCII for them.
    void ReadJis0208(std::string_view bytes) {
        size_t pos = 0;
        while (pos < bytes.size()) {
            size_t end = pos;
            while (end + 1 < bytes.size() && IsJisByte(bytes[end]) && IsJisByte(bytes[end + 1])) end += 2;
            if (end > pos) {
                std::string euc(bytes.substr(pos, end - pos));
                for (char& c : euc) c = static_cast<char>(c | 0x80);
                ReadDecoded("EUC-JP", euc, bytes.substr(pos, end - pos));
                pos = end;
                continue;
            }
            const auto b = static_cast<unsigned char>(bytes[pos]);
            if (b <= 0x20 && b != 0x0E && b != 0x0F && b != 0x1B) {
                const char32_t control = b;
                m_sink.Inexact(bytes.substr(pos, 1), std::u32string_view(&control, 1), m_out);
            } else {
                m_sink.Undecodable(bytes.substr(pos, 1), m_out);
            }
            ++pos;
        }
    }
    static bool IsJisByte(char c) { return c >= 0x21 && c <= 0x7E; }

    const CEncodingInfo& m_from;
    const CEncodingInfo& m_to;
    CKeepSink& m_sink;
    std::string& m_out;
    const bool m_bCopy;
    const bool m_bVerify;
    const UnmappableHandler m_handler;
    std::u32string m_chars;
    std::vector<CBad> m_bad;
    CTranscodeResult m_result;
};

}  // namespace

bool DecodeCodePoints(const CEncodingInfo& enc, std::string_view in, std::u32string* out) {
    if (IsBuiltIn1252(enc)) {
        for (char c : in) *out += Cp1252ToUnicode(static_cast<uint8_t>(c));
        return true;
    }
    const size_t before = out->size();
    bool bad = false;
    if (!IconvDecode(enc.pszIconv, in, out, [&](size_t, size_t, bool) { bad = true; }, IsUtf16(enc) ? 2 : 1)) return false;
    if (bad) out->resize(before);
    return !bad;
}

CTranscodeResult TranscodeKeeping(const CEncodingInfo& from, const CEncodingInfo& to, std::string_view in,
                                  std::string* out, CKeepSink& sink) {
    return CKeepingReader(from, to, sink, *out).Run(in);
}
