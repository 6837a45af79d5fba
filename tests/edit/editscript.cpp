#include "tests/edit/editscript.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

namespace {

std::string Trim(const std::string& s) {
    const size_t first = s.find_first_not_of(" \t");
    if (first == std::string::npos) return {};
    const size_t last = s.find_last_not_of(" \t\r");
    return s.substr(first, last - first + 1);
}

int HexDigit(char c) {
    if (c >= '0' && c <= '9') return c - '0';
    if (c >= 'a' && c <= 'f') return c - 'a' + 10;
    if (c >= 'A' && c <= 'F') return c - 'A' + 10;
    return -1;
}

// One escape behind a backslash at s[i]; gives the byte and moves i behind the escape.
char Unescape(const std::string& s, size_t* i) {
    const char c = *i + 1 < s.size() ? s[*i + 1] : '\\';
    *i += 2;
    switch (c) {
        case 'r': return '\r';
        case 'n': return '\n';
        case 't': return '\t';
        case 'x': {
            const int hi = *i < s.size() ? HexDigit(s[*i]) : -1;
            const int lo = *i + 1 < s.size() ? HexDigit(s[*i + 1]) : -1;
            if (hi < 0 || lo < 0) {
                ADD_FAILURE() << "bad \\x escape in: " << s;
                return '?';
            }
            *i += 2;
            return static_cast<char>(hi * 16 + lo);
        }
        default: return c;
    }
}

void ReadFile(const std::filesystem::path& path, std::vector<EditCase>* cases) {
    std::ifstream in(path);
    std::string raw;
    int number = 0;
    while (std::getline(in, raw)) {
        ++number;
        const std::string line = Trim(raw);
        if (line.empty() || line[0] == '#') continue;
        const size_t space = line.find(' ');
        EditStep step{line.substr(0, space), space == std::string::npos ? "" : Trim(line.substr(space)), number};
        if (step.verb == "case") {
            cases->push_back({path.filename().string(), step.rest, number, {}, {}});
            continue;
        }
        if (cases->empty()) {
            ADD_FAILURE() << path << ":" << number << ": a line before the first case";
            continue;
        }
        static const char* const kSetup[] = {"text", "options", "codepage", "wrapcolumns", "nodoc", "nofocus",
                                             "pickerevents", "desktop", "size", "rows", "nowindow", "swapbuttons",
                                             "takedrops", "item", "doc", "defaultfont", "class", "tagname",
                                             "nosyntax", "repeat"};
        const bool setup = std::find(std::begin(kSetup), std::end(kSetup), step.verb) != std::end(kSetup);
        (setup ? cases->back().setup : cases->back().steps).push_back(step);
    }
}

}  // namespace

std::vector<EditCase> ReadEditCases(const std::string& folder) {
    std::vector<std::filesystem::path> files;
    for (const auto& entry : std::filesystem::directory_iterator(folder))
        if (entry.path().extension() == ".cases") files.push_back(entry.path());
    std::sort(files.begin(), files.end());
    std::vector<EditCase> cases;
    for (const auto& file : files) ReadFile(file, &cases);
    return cases;
}

MarkedText ParseMarkedText(const std::string& escaped) {
    MarkedText out;
    bool anchorSeen = false;
    for (size_t i = 0; i < escaped.size();) {
        if (escaped.compare(i, 3, "{|}") == 0) {
            out.active = static_cast<long>(out.text.size());
            i += 3;
        } else if (escaped.compare(i, 3, "{^}") == 0) {
            out.anchor = static_cast<long>(out.text.size());
            anchorSeen = true;
            i += 3;
        } else if (escaped[i] == '\\') {
            out.text += Unescape(escaped, &i);
        } else {
            out.text += escaped[i++];
        }
    }
    if (!anchorSeen) out.anchor = out.active;
    return out;
}

std::string FormatMarkedText(const std::string& text, long active, long anchor) {
    std::string out;
    const auto markers = [&](long pos) {
        if (pos == anchor && anchor != active) out += "{^}";
        if (pos == active) out += "{|}";
    };
    for (size_t i = 0; i <= text.size(); ++i) {
        markers(static_cast<long>(i));
        if (i == text.size()) break;
        const auto c = static_cast<unsigned char>(text[i]);
        static const char kHex[] = "0123456789ABCDEF";
        switch (c) {
            case '\r': out += "\\r"; break;
            case '\n': out += "\\n"; break;
            case '\t': out += "\\t"; break;
            case '\\': out += "\\\\"; break;
            case '{': out += "\\{"; break;
            default:
                if (c < 0x20 || c >= 0x7F) {
                    out += "\\x";
                    out += kHex[c >> 4];
                    out += kHex[c & 15];
                } else {
                    out += static_cast<char>(c);
                }
        }
    }
    return out;
}
