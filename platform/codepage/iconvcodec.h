// Conversions through the C library's converters, named as the C library names them ("CP932",
// "UTF-16LE"); IconvNameOfCodePage gives the name for one of the double-byte code pages.
#pragma once
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "platform/com/types.h"

// The converter name of 932, 936, 949 or 950; nullptr for other code pages.
const char* IconvNameOfCodePage(UINT codePage);

// Whether the C library can convert both ways between `name` and Unicode.
bool IconvAvailable(const char* name);

// Appends the characters of `in` to `out`. A code unit that begins no character (`unit` bytes:
// 2 for UTF-16, else 1) becomes U+FFFD, reported to `bad` with its offset and length, and decoding
// goes on behind it; `incomplete` is true where the input ends inside a character. False if there
// is no such converter; `out` then holds what it held before.
using IconvBadInput = std::function<void(size_t offset, size_t length, bool incomplete)>;
bool IconvDecode(const char* name, std::string_view in, std::u32string* out, const IconvBadInput& bad,
                 size_t unit = 1);

// Appends the encoding of `in` to `out`. For each character the code page cannot hold,
// `unmappable(index)` is called at the point where its bytes would go. False as above.
bool IconvEncode(const char* name, std::u32string_view in, std::string* out,
                 const std::function<void(size_t index)>& unmappable);
