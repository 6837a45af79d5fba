// HTML-like text for benchmarks: nested elements with attributes, paragraphs of text with
// inline links, comments, table rows and now and then a script line; indentation follows the
// nesting; line ends switch between LF and CR LF every few hundred lines. Lines average about
// 70 bytes. The same seed gives the same text.
#pragma once
#include <charconv>
#include <cstddef>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

namespace htmlgen {

inline const char* Word(std::mt19937& rng) {
    static const char* kWords[] = {"lorem", "ipsum", "dolor", "sit", "amet", "consectetur", "adipiscing", "elit",
                                   "sed", "do", "eiusmod", "tempor", "incididunt", "ut", "labore", "et", "dolore",
                                   "magna", "aliqua", "enim", "ad", "minim", "veniam", "quis", "nostrud"};
    return kWords[std::uniform_int_distribution<size_t>(0, std::size(kWords) - 1)(rng)];
}

inline void Words(std::string& out, std::mt19937& rng, int count) {
    for (int i = 0; i < count; ++i) {
        if (i) out += ' ';
        out += Word(rng);
    }
}

inline const char* Element(std::mt19937& rng) {
    static const char* kBlocks[] = {"div", "section", "ul", "table", "article", "nav", "form", "tr"};
    return kBlocks[std::uniform_int_distribution<size_t>(0, std::size(kBlocks) - 1)(rng)];
}

// Appends a number in decimal.
inline void Number(std::string& out, int n) {
    char digits[16];
    const auto end = std::to_chars(digits, digits + sizeof digits, n).ptr;
    out.append(digits, end);
}

// One line of content, without indentation and line end.
inline void ContentLine(std::string& out, std::mt19937& rng) {
    int kind = std::uniform_int_distribution<int>(0, 99)(rng);
    int n = std::uniform_int_distribution<int>(0, 99999)(rng);
    if (kind < 45) {
        out += "<p class=\"text\">";
        Words(out, rng, 4 + n % 5);
        out += " <a href=\"/page/";
        Number(out, n);
        out += ".html\">";
        Words(out, rng, 1 + n % 2);
        out += "</a>.</p>";
    } else if (kind < 65) {
        out += "<li><span style=\"color: #";
        Number(out, 100000 + n % 900000);
        out += "\">";
        Words(out, rng, 2 + n % 4);
        out += "</span></li>";
    } else if (kind < 80) {
        out += "<td align=\"left\" width=\"";
        Number(out, n % 400);
        out += "\">";
        Words(out, rng, 2 + n % 3);
        out += "</td>";
    } else if (kind < 88) {
        out += "<!-- ";
        Words(out, rng, 3 + n % 4);
        out += " -->";
    } else if (kind < 94) {
        out += "<img src=\"images/pic";
        Number(out, n);
        out += ".png\" alt=\"";
        Words(out, rng, 2);
        out += "\" width=\"64\" height=\"48\">";
    } else {
        out += "<script>var item";
        Number(out, n);
        out += " = { id: ";
        Number(out, n % 977);
        out += ", name: \"";
        out += Word(rng);
        out += "\" };</script>";
    }
}

inline std::string GenerateHtml(size_t bytes, uint32_t seed = 1) {
    std::mt19937 rng(seed);
    std::string out;
    out.reserve(bytes + 512);
    std::vector<const char*> open;
    bool crlf = false;
    size_t lines = 0;
    out += "<!DOCTYPE html>\n<html>\n<head><title>Generated page</title></head>\n<body>\n";
    while (out.size() < bytes) {
        if (++lines % 400 == 0) crlf = !crlf;
        int kind = std::uniform_int_distribution<int>(0, 99)(rng);
        if (kind < 12 && open.size() < 10) {
            const char* name = Element(rng);
            // The class's second word is drawn first: the order the generated pages have always had.
            const char* second = Word(rng);
            out.append(open.size(), '\t');
            out += '<';
            out += name;
            out += " class=\"";
            out += Word(rng);
            out += '-';
            out += second;
            out += "\" id=\"n";
            Number(out, static_cast<int>(lines));
            out += "\">";
            open.push_back(name);
        } else if (kind < 24 && !open.empty()) {
            out.append(open.size() - 1, '\t');
            out += "</";
            out += open.back();
            out += '>';
            open.pop_back();
        } else if (kind < 28) {
            // a blank line
        } else {
            out.append(open.size(), '\t');
            ContentLine(out, rng);
        }
        out += crlf ? "\r\n" : "\n";
    }
    while (!open.empty()) {
        out += std::string("</") + open.back() + ">\n";
        open.pop_back();
    }
    out += "</body>\n</html>\n";
    return out;
}

}  // namespace htmlgen
