// A font as a font holder keeps and persists it: face name, size and style.
#pragma once
#include <cstdint>
#include <string>

struct FontDesc {
    std::string name;
    int64_t height = 0;  // in 1/10000 point: 12 points is 120000
    int16_t weight = 400;
    int16_t charset = 1;
    bool italic = false;
    bool underline = false;
    bool strikethrough = false;

    friend bool operator==(const FontDesc&, const FontDesc&) = default;
};
