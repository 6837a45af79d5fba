// A document's file in its own encoding: the bytes of a file turned into text of the process code
// page and back. A character that the code page cannot hold is kept as a numeric character
// reference (&#26085;), which means the same to a browser; saving turns such references back into
// the character where the file's encoding holds it.
#pragma once
#include <string>
#include <string_view>

#include "platform/codepage/encodings.h"

// The bytes are no text of the encoding they are read in.
constexpr HRESULT HR_E_UNDECODABLE = MakeHr(0x80070459u);
// The C library has no converter for the encoding.
constexpr HRESULT HR_E_NO_CONVERTER = MakeHr(0x80070491u);

// The encoding that a file was read in and is written back in.
struct CFileEncoding {
    const CEncodingInfo* encoding = nullptr;  // nullptr: the process code page's own
    bool bByteOrderMark = false;              // the file begins with one (always so for UTF-16)
    const CEncodingInfo& Resolved() const;
};

struct CDecodeOptions {
    // Read the file as this, whatever it declares; a byte order mark still decides.
    const CEncodingInfo* forced = nullptr;
    // For a file that declares nothing. Without one, a file that reads as UTF-8 is UTF-8, and
    // any other is in the process code page's encoding.
    const CEncodingInfo* fallback = nullptr;
};

// Finds the encoding of `bytes` and turns them into text of the process code page. On failure
// `text` and `encoding` are untouched and `reason` says what is wrong with the bytes.
HRESULT DecodeFileBytes(std::string_view bytes, const CDecodeOptions& options, std::string* text,
                        CFileEncoding* encoding, std::string* reason);

// Turns text of the process code page into the bytes of a file in `encoding`. On failure `reason`
// says which part of the text cannot be written.
HRESULT EncodeFileText(std::string_view text, const CFileEncoding& encoding, std::string* bytes, std::string* reason);
