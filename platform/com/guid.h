// Globally unique identifiers: value type, parsing and printing in the registry form
// {XXXXXXXX-XXXX-XXXX-XXXX-XXXXXXXXXXXX}.
#pragma once
#include "platform/com/export.h"
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

struct GUID {
    uint32_t Data1 = 0;
    uint16_t Data2 = 0;
    uint16_t Data3 = 0;
    uint8_t Data4[8] = {};

    friend ZENTREL_EXPORT bool operator==(const GUID& a, const GUID& b);
    friend bool operator!=(const GUID& a, const GUID& b) { return !(a == b); }
};
using IID = GUID;
using CLSID = GUID;
using REFIID = const GUID&;
using REFCLSID = const GUID&;

// Parses "{...}" (braces optional, hex digits of either case). Empty on any malformed input.
ZENTREL_EXPORT std::optional<GUID> GuidFromString(std::string_view text);
// Upper-case registry form with braces.
ZENTREL_EXPORT std::string StringFromGuid(const GUID& guid);
// For constants written in source: aborts on a malformed literal, so a typo fails at start-up.
ZENTREL_EXPORT GUID MakeGuid(std::string_view text);
