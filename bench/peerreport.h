// Figures of ours and of the peer component, printed as "name value unit" lines; each figure
// of the peer gets its ratio to ours, put so that above 1 is better for us.
#pragma once
#include <map>
#include <string>
#include <vector>

#include "bench/benchtools.h"

namespace bench {

// Figures of ours by name, for the ratios to the peer.
inline std::map<std::string, double>& Ours() {
    static std::map<std::string, double> figures;
    return figures;
}

inline void Report(const std::string& name, double value, const char* unit) {
    Ours()[name] = value;
    Print(name, value, unit);
}

// A peer's figure for the same workload, printed as "<peer>_<name>", with its ratio to ours,
// put so that above 1 is better for us: the peer's time or memory over ours, or our throughput
// over the peer's. The ratio to the first peer is "ratio_<name>"; to any other,
// "ratio_<peer>_<name>".
inline void ReportPeerNamed(const std::string& peer, const std::string& name, double value, const char* unit) {
    Print(peer + "_" + name, value, unit);
    auto it = Ours().find(name);
    if (it == Ours().end() || it->second <= 0 || value <= 0) return;
    const bool throughput = std::string(unit) == "MB/s" || std::string(unit) == "pages/s";
    Print("ratio_" + (peer == "peer" ? "" : peer + "_") + name, throughput ? it->second / value : value / it->second, "x");
}

inline void ReportPeer(const std::string& name, double value, const char* unit) { ReportPeerNamed("peer", name, value, unit); }

inline void ReportMedianAndP99(const std::string& name, const std::vector<double>& samples, const char* unit) {
    Report(name + "_median", Percentile(samples, 0.5), unit);
    Report(name + "_p99", Percentile(samples, 0.99), unit);
}

}  // namespace bench
