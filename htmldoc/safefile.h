// Reading and replacing whole files the way an editor must: a file known to be too large is
// refused before a byte is read, and a save goes through a new file beside the real one (through
// a symbolic link to its target), with the old file's permissions, flushed to the disk before it
// takes the old file's place, so that a failure at any point leaves the old file as it was.
#pragma once
#include <string>

#include "platform/com/types.h"

// Reads all bytes of the file; refuses one of more than `limit` bytes. On failure the result
// says why and `error` gets the text.
HRESULT ReadWholeFile(const std::string& path, size_t limit, std::string* bytes, std::string* error);

// Replaces the file's contents with `bytes` or leaves it untouched.
HRESULT ReplaceWholeFile(const std::string& path, std::string_view bytes, std::string* error);
