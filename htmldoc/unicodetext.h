// Unicode text that arrives from outside (an input method, the clipboard) in the process code
// page: a character that the code page cannot hold becomes a decimal character reference, as a
// load makes it, so that nothing typed or pasted is lost.
#pragma once
#include <string>
#include <string_view>

// UTF-16 little-endian bytes, up to the first NUL unit, to multi-byte text.
std::string TextFromUtf16Bytes(std::string_view bytes);
