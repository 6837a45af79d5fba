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

// Appends the characters of `in` to `out`. A byte that begins no character becomes U+FFFD,
// reported to `bad` with its offset, and decoding goes on at the next byte; `incomplete` is true
// where the input ends inside a character. False if there is no such converter; `out` then holds
// what it held before.
using IconvBadInput = std::function<void(size_t offset, bool incomplete)>;
bool IconvDecode(const char* name, std::string_view in, std::u32string* out, const IconvBadInput& bad);

// Appends the encoding of `in` to `out`. For each character the code page cannot hold,
// `unmappable(index)` is called at the point where its bytes would go. False as above.
bool IconvEncode(const char* name, std::u32string_view in, std::string* out,
                 const std::function<void(size_t index)>& unmappable);
