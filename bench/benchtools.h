// What the benchmark programs share: a clock, the "name value unit" lines they print, and
// percentiles of repeated timings.
#pragma once
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <fstream>
#include <string>
#include <vector>

namespace bench {

using Clock = std::chrono::steady_clock;

inline double SecondsSince(Clock::time_point t0) { return std::chrono::duration<double>(Clock::now() - t0).count(); }
inline double MicrosSince(Clock::time_point t0) { return 1e6 * SecondsSince(t0); }

inline void Print(const std::string& name, double value, const char* unit) {
    std::printf("%s %.3f %s\n", name.c_str(), value, unit);
    std::fflush(stdout);
}

// The value below which `fraction` of the samples lie.
inline double Percentile(std::vector<double> samples, double fraction) {
    if (samples.empty()) return 0;
    std::sort(samples.begin(), samples.end());
    const size_t i = std::min(samples.size() - 1, static_cast<size_t>(fraction * static_cast<double>(samples.size())));
    return samples[i];
}

inline void PrintMedianAndP99(const std::string& name, const std::vector<double>& samples, const char* unit) {
    Print(name + "_median", Percentile(samples, 0.5), unit);
    Print(name + "_p99", Percentile(samples, 0.99), unit);
}

// The resident memory of this process, in bytes.
inline double ResidentBytes() {
    std::ifstream status("/proc/self/status");
    std::string key;
    while (status >> key) {
        if (key == "VmRSS:") {
            double kb = 0;
            status >> kb;
            return kb * 1024.0;
        }
        status.ignore(1 << 12, '\n');
    }
    return 0;
}

}  // namespace bench
