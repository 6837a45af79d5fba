// Double-byte code pages through the C library's converters.
#pragma once
#include <cstddef>
#include <functional>
#include <string>
#include <string_view>

#include "platform/com/types.h"

// Whether the C library can convert the code page.
bool IconvAvailable(UINT codePage);

// Appends the characters of `in` to `out`. A byte that begins no character becomes U+FFFD,
// reported to `bad` with its offset, and decoding goes on at the next byte. False if the code
// page cannot be converted; `out` then holds what it held before.
bool IconvDecode(UINT codePage, std::string_view in, std::u32string* out,
                 const std::function<void(size_t offset)>& bad);

// Appends the encoding of `in` to `out`. For each character the code page cannot hold,
// `unmappable(index)` is called at the point where its bytes would go. False as above.
bool IconvEncode(UINT codePage, std::u32string_view in, std::string* out,
                 const std::function<void(size_t index)>& unmappable);
