// Finding the encoding that a file of HTML says it is in: a byte order mark, or a <meta charset>
// or http-equiv content type near its start, read the way browsers read them.
#pragma once
#include <cstddef>
#include <string_view>

#include "platform/codepage/encodings.h"

struct CByteOrderMark {
    const CEncodingInfo* encoding = nullptr;  // nullptr: the bytes begin with none
    size_t nLength = 0;
};

CByteOrderMark DetectByteOrderMark(std::string_view bytes);

// How far into a file a declaration is looked for.
constexpr size_t kPrescanBytes = 1024;

// The encoding that the first kPrescanBytes of `bytes` declare in a meta element; nullptr when
// they declare none that this system reads. A declaration of UTF-16 means UTF-8 (a page that is
// really UTF-16 has a byte order mark, and one that declares it in ASCII cannot be), and
// x-user-defined means windows-1252.
const CEncodingInfo* PrescanMetaCharset(std::string_view bytes);
