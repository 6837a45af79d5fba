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
