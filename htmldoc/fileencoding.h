// A document's file in its own encoding: the bytes of a file turned into text of the process code
// page and back. Loading never refuses bytes: a character that the code page cannot hold becomes
// a numeric character reference (&#26085;), which means the same to a browser, and bytes that
// read as no character become the reference of the replacement character (&#65533;). Loading
// marks every such place (loadmarks.h), and saving puts back what the marks stand for, so that
// text that was not edited is written as the bytes it was read from; a reference that the
// author wrote has no mark and stays as written.
#pragma once
#include <string>
#include <string_view>

#include "htmldoc/loadmarks.h"
#include "platform/codepage/encodings.h"

// The bytes are no text of the encoding they are read in.
constexpr HRESULT HR_E_UNDECODABLE = MakeHr(0x80070459u);
// The C library has no converter for the encoding.
constexpr HRESULT HR_E_NO_CONVERTER = MakeHr(0x80070491u);

// The encoding that a file was read in and is written back in.
struct CFileEncoding {
    const CEncodingInfo* encoding = nullptr;  // nullptr: the process code page's own
    bool bByteOrderMark = false;              // the file begins with one (UTF-16 chosen by SetEncoding does)
    const CEncodingInfo& Resolved() const;
};

struct CDecodeOptions {
    // Read the file as this, whatever it declares; a byte order mark still decides.
    const CEncodingInfo* forced = nullptr;
    // For a file that declares nothing. Without one, the encoding is guessed from the bytes.
    const CEncodingInfo* fallback = nullptr;
};

// What chose the encoding of a loaded file.
enum class EncodingSource { ByteOrderMark, Host, Declared, Default, Guessed };

// What a load tells the host, once.
struct CLoadReport {
    std::string encoding;      // the canonical name
    EncodingSource source = EncodingSource::Guessed;
    size_t nUndecodable = 0;   // bytes that read as no character, kept to be written back
};

struct CDecodedFile {
    std::string text;
    CFileEncoding encoding;
    CLoadMarks marks;
    CLoadReport report;
};

// Finds the encoding of `bytes` and turns them into text of the process code page with the
// marks of what loading made.
void DecodeFileBytes(std::string_view bytes, const CDecodeOptions& options, CDecodedFile* file);

// Turns text of the process code page into the bytes of a file in `encoding`. The marks say
// what loading made (nullptr: nothing); with `keepBytes` the bytes they stand for are written as
// the file had them (they are the file's encoding's), else only their references turn back into
// characters. On failure `reason` says which part of the text cannot be written.
HRESULT EncodeFileText(std::string_view text, const CFileEncoding& encoding, const CLoadMarks* marks, bool keepBytes,
                       std::string* bytes, std::string* reason);
