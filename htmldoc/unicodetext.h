// Unicode text that arrives from outside (an input method, the clipboard) in the process code
// page: a character that the code page cannot hold becomes a decimal character reference, as a
// load makes it, so that nothing typed or pasted is lost; and like a load's, the reference is
// marked, so that a save writes the character.
#pragma once
#include <string>
#include <string_view>
#include <vector>

#include "htmldoc/loadmarks.h"

// UTF-16 little-endian bytes, up to the first NUL unit, to multi-byte text. `made` gets a mark
// for each reference, at its place in the text.
std::string TextFromUtf16Bytes(std::string_view bytes, std::vector<CLoadMark>* made = nullptr);
