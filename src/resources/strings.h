// The string table: every text of the user interface, by number.
#pragma once
#include <string>

#include "platform/com/types.h"

// The text of string `id`, or empty if there is none.
std::string LoadString(UINT id);
// Replaces %1, %2, ... in `format` with the arguments, in order.
std::string FormatMessage(const std::string& format, std::initializer_list<std::string> args);
