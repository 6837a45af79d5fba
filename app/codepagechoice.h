// The process code page for the file that the editor opens, chosen before any control exists:
// the double-byte code page whose text holds the file's characters, so that a Japanese page
// shows Japanese rather than references; 1252 for anything else.
#pragma once
#include <string>
#include <string_view>

#include "platform/com/types.h"

// `asked` is what the command line says ("932"); empty: choose from the file's first bytes.
// 0 for an asked code page that this system does not know.
UINT ChooseCodePage(std::string_view head, std::string_view asked);

// The first bytes of the file that the choice reads; empty for a file that cannot be read.
std::string ReadFileHead(const std::string& path);
