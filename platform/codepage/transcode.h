// Text from one encoding into another, as files need it: whole texts, fast over ASCII, and exact
// about the first place that does not read.
#pragma once
#include <cstddef>
#include <string>
#include <string_view>

#include "platform/codepage/convert.h"
#include "platform/codepage/encodings.h"

enum class TranscodeStatus {
    Ok,
    BadInput,     // a byte sequence that is no character of the source encoding
    Truncated,    // the input ends inside a character
    NoConverter,  // the C library cannot convert one of the two encodings
};

struct CTranscodeResult {
    static constexpr size_t npos = static_cast<size_t>(-1);
    TranscodeStatus status = TranscodeStatus::Ok;
    size_t nBadOffset = npos;  // BadInput, Truncated: offset in the input of the character
    size_t nUnmappable = 0;    // characters handed to the handler
    bool bNonAscii = false;  // more than ASCII was met (always so where either side is UTF-16 or the like)
    bool Ok() const { return status == TranscodeStatus::Ok; }
};

// Appends `in`, text of `from`, to `out` as text of `to`. A character that `to` cannot hold goes
// to `onUnmappable` (without one it becomes '?'). Decoding stops at the first byte that does not
// read, and `out` then holds what it held before. Between equal encodings the bytes are checked
// and copied as they are.
CTranscodeResult Transcode(const CEncodingInfo& from, const CEncodingInfo& to, std::string_view in,
                           std::string* out, const UnmappableHandler& onUnmappable = {});

// Appends the encoding of the code points `in` to `out`, unmappable ones through the handler.
// False if there is no converter.
bool EncodeCodePoints(const CEncodingInfo& to, std::u32string_view in, std::string* out,
                      const UnmappableHandler& onUnmappable, size_t* unmappable = nullptr);

// Whether `to` has a character for the code point.
bool CanEncode(const CEncodingInfo& to, char32_t ch);

// Appends the code points of `in`, text of `enc`; false (and `out` as it was) where the text does
// not read or there is no converter.
bool DecodeCodePoints(const CEncodingInfo& enc, std::string_view in, std::u32string* out);

// Where a reading that keeps every byte puts what does not travel as plain text. Each call
// appends a stand-in to `out`, the text being written, and may remember the bytes it stands for.
class CKeepSink {
public:
    // A character that the target encoding lacks.
    virtual void Unmappable(char32_t ch, std::string& out) = 0;
    // Bytes that read as no character.
    virtual void Undecodable(std::string_view bytes, std::string& out) = 0;
    // Bytes of a character that differ from the ones its encoding writes for it, or that read
    // as more than one character (a letter with its accent).
    virtual void Inexact(std::string_view bytes, std::u32string_view chars, std::string& out) = 0;
    // A shift sequence of ISO-2022-JP, which stands for no text.
    virtual void Shift(std::string_view bytes, std::string& out) = 0;

protected:
    ~CKeepSink() = default;
};

// Appends `in`, text of `from`, to `out` as text of `to`, as Transcode does, but reads on past
// anything: bytes that read as no character, characters that `to` lacks, characters that do not
// come back as the same bytes, and shift sequences go to the sink. Plain text between them is
// exactly what writing it in `from` again gives back. Fails only where there is no converter.
CTranscodeResult TranscodeKeeping(const CEncodingInfo& from, const CEncodingInfo& to, std::string_view in,
                                  std::string* out, CKeepSink& sink);
