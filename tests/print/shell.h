// Running the editor and poppler's tools from a test: a command line through the shell, with
// what it printed and how it ended.
#pragma once
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <regex>
#include <string>

namespace printtest {

struct Outcome {
    int code = -1;
    std::string output;
};

// Runs a command line through the shell, with its stderr in the output.
inline Outcome Shell(const std::string& command) {
    Outcome run;
    FILE* pipe = popen((command + " 2>&1").c_str(), "r");
    if (!pipe) return run;
    std::array<char, 4096> buffer;
    while (size_t n = fread(buffer.data(), 1, buffer.size(), pipe)) run.output.append(buffer.data(), n);
    const int status = pclose(pipe);
    run.code = WIFEXITED(status) ? WEXITSTATUS(status) : -1;
    return run;
}

inline std::string Quote(const std::string& s) { return "'" + std::regex_replace(s, std::regex("'"), "'\\''") + "'"; }

}  // namespace printtest
