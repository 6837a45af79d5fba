// Rows of test cases kept as data: one row a line, fields split at '|' and trimmed; blank lines
// and lines starting with '#' are skipped. Fields are escaped as C strings are: \r \n \t \\ \xNN,
// \| for a bar inside a field and \s for a space that trimming must keep.
#pragma once
#include <gtest/gtest.h>

#include <cstdlib>
#include <fstream>
#include <string>
#include <vector>

struct CaseRow {
    std::string where;  // file:line, for failure messages
    std::vector<std::string> fields;

    const std::string& operator[](size_t i) const {
        static const std::string none;
        return i < fields.size() ? fields[i] : none;
    }
    long Long(size_t i) const { return std::strtol((*this)[i].c_str(), nullptr, 0); }
};

inline std::string UnescapeCaseField(const std::string& raw) {
    std::string out;
    for (size_t i = 0; i < raw.size(); ++i) {
        if (raw[i] != '\\' || i + 1 == raw.size()) {
            out += raw[i];
            continue;
        }
        const char c = raw[++i];
        if (c == 'x' && i + 2 < raw.size()) {
            out += static_cast<char>(std::strtol(raw.substr(i + 1, 2).c_str(), nullptr, 16));
            i += 2;
        } else {
            out += c == 'n' ? '\n' : c == 'r' ? '\r' : c == 't' ? '\t' : c == 's' ? ' ' : c == '0' ? '\0' : c;
        }
    }
    return out;
}

inline std::string TrimCaseField(const std::string& s) {
    const size_t first = s.find_first_not_of(" \t");
    return first == std::string::npos ? std::string() : s.substr(first, s.find_last_not_of(" \t") - first + 1);
}

// The rows of a case file of the test sources, by its path under tests/ ("htmldoc/cases/x.cases").
inline std::vector<CaseRow> ReadCaseRows(const std::string& name) {
    std::ifstream in(std::string(ZENTREL_SOURCE_DIR) + "/tests/" + name, std::ios::binary);
    EXPECT_TRUE(in) << name << " is missing";
    std::vector<CaseRow> rows;
    std::string line;
    for (int number = 1; std::getline(in, line); ++number) {
        if (TrimCaseField(line).empty() || TrimCaseField(line)[0] == '#') continue;
        CaseRow row{name + ":" + std::to_string(number), {}};
        std::string field;
        for (size_t i = 0; i <= line.size(); ++i) {
            if (i == line.size() || line[i] == '|') {
                row.fields.push_back(UnescapeCaseField(TrimCaseField(field)));
                field.clear();
            } else {
                if (line[i] == '\\' && i + 1 < line.size()) field += line[i++];
                field += line[i];
            }
        }
        rows.push_back(std::move(row));
    }
    EXPECT_FALSE(rows.empty()) << name << " holds no cases";
    return rows;
}
