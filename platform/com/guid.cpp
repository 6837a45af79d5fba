#include "platform/com/guid.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>

bool operator==(const GUID& a, const GUID& b) {
    return a.Data1 == b.Data1 && a.Data2 == b.Data2 && a.Data3 == b.Data3 &&
           std::memcmp(a.Data4, b.Data4, sizeof a.Data4) == 0;
}

namespace {

int HexValue(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// Reads `digits` hex digits from text at pos; false on a non-hex character.
bool ReadHex(std::string_view text, size_t& pos, int digits, uint64_t& out) {
    out = 0;
    for (int i = 0; i < digits; ++i, ++pos) {
        int v = HexValue(text[pos]);
        if (v < 0) return false;
        out = (out << 4) | static_cast<uint64_t>(v);
    }
    return true;
}

}  // namespace

std::optional<GUID> GuidFromString(std::string_view text) {
    if (text.size() == 38) {
        if (text.front() != '{' || text.back() != '}') return std::nullopt;
        text = text.substr(1, 36);
    }
    if (text.size() != 36) return std::nullopt;
    static constexpr int kGroups[] = {8, 4, 4, 4, 12};
    uint64_t parts[5] = {};
    size_t pos = 0;
    for (int g = 0; g < 5; ++g) {
        if (g > 0 && text[pos++] != '-') return std::nullopt;
        if (!ReadHex(text, pos, kGroups[g], parts[g])) return std::nullopt;
    }
    GUID guid;
    guid.Data1 = static_cast<uint32_t>(parts[0]);
    guid.Data2 = static_cast<uint16_t>(parts[1]);
    guid.Data3 = static_cast<uint16_t>(parts[2]);
    guid.Data4[0] = static_cast<uint8_t>(parts[3] >> 8);
    guid.Data4[1] = static_cast<uint8_t>(parts[3]);
    for (int i = 0; i < 6; ++i) guid.Data4[2 + i] = static_cast<uint8_t>(parts[4] >> (8 * (5 - i)));
    return guid;
}

std::string StringFromGuid(const GUID& g) {
    char buf[40];
    std::snprintf(buf, sizeof buf, "{%08X-%04X-%04X-%02X%02X-%02X%02X%02X%02X%02X%02X}", g.Data1, g.Data2,
                  g.Data3, g.Data4[0], g.Data4[1], g.Data4[2], g.Data4[3], g.Data4[4], g.Data4[5], g.Data4[6],
                  g.Data4[7]);
    return buf;
}

GUID MakeGuid(std::string_view text) {
    auto guid = GuidFromString(text);
    if (!guid) {
        std::fprintf(stderr, "malformed GUID literal: %.*s\n", static_cast<int>(text.size()), text.data());
        std::abort();
    }
    return *guid;
}
