// The encoding of a file that says nothing about it, guessed from its bytes as browsers guess:
// UTF-8 when the bytes read as UTF-8, ISO-2022-JP for 7-bit bytes with its shift sequences, one
// of the double-byte encodings when its reading of the bytes is mostly the characters that text
// in its language is made of, and windows-1252 otherwise.
#pragma once
#include <string_view>

#include "platform/codepage/encodings.h"

// Whether the bytes are well-formed UTF-8; `nonAscii` tells whether any byte is above 0x7F.
bool IsValidUtf8(std::string_view bytes, bool* nonAscii = nullptr);

// The guess; a file of plain ASCII is in `plain`, the process code page's encoding as a rule.
const CEncodingInfo& GuessEncoding(std::string_view bytes, const CEncodingInfo& plain);
