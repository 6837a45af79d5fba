// The workloads of the view benchmark as any peer component runs them, so that every peer is
// measured the same way. A peer is a class with:
//   static std::unique_ptr<Peer> Open(text, megabytes, tag, report): shows the text in a
//       1000 x 800 window, word wrap on, and reports what its opening costs;
//   static const char* MemoryFigure(): the name under which its memory per byte is reported;
//   long Length(); void MoveCaret(long); void ForgetStyles(); void Type(); void RepaintAll().
// `report` takes "name value unit" as ReportPeer does.
#pragma once
#include <QApplication>
#include <cstdio>
#include <cstdlib>
#include <malloc.h>
#include <memory>
#include <string>
#include <vector>

#include "bench/benchtools.h"
#include "bench/htmlgen.h"

namespace bench {

// Types characters in the middle, each with the repaint of what changed, or with a repaint of
// the whole window (us, median and p99 over 200).
template <class Peer, class Report>
void PeerTyping(Peer& peer, const std::string& tag, bool fullRepaint, Report report) {
    peer.MoveCaret(peer.Length() / 2);
    QApplication::processEvents();
    std::vector<double> micros;
    for (int i = 0; i < 200; ++i) {
        const auto t0 = Clock::now();
        peer.Type();
        if (fullRepaint) peer.RepaintAll();
        QApplication::processEvents();
        micros.push_back(MicrosSince(t0));
    }
    const std::string name = (fullRepaint ? "type_full_repaint_" : "type_") + tag;
    report(name + "_median", Percentile(micros, 0.5), "us");
    report(name + "_p99", Percentile(micros, 0.99), "us");
}

// The view's jumps: from the top of a text whose styles are forgotten to its middle and its end,
// through the paint there (ms, median of 3).
template <class Peer, class Report>
void PeerJumps(Peer& peer, const std::string& tag, Report report) {
    std::vector<double> middle, end;
    for (int i = 0; i < 3; ++i) {
        for (auto* times : {&middle, &end}) {
            peer.ForgetStyles();
            peer.MoveCaret(0);
            peer.RepaintAll();
            const long at = times == &middle ? peer.Length() / 2 : peer.Length();
            const auto t0 = Clock::now();
            peer.MoveCaret(at);
            peer.RepaintAll();
            times->push_back(1e3 * SecondsSince(t0));
        }
    }
    report("jump_middle_" + tag + "_median", Percentile(middle, 0.5), "ms");
    report("jump_end_" + tag + "_median", Percentile(end, 0.5), "ms");
}

template <class Peer, class Report>
void PeerRepaint(Peer& peer, const std::string& tag, Report report) {
    std::vector<double> millis;
    for (int i = 0; i < 100; ++i) {
        const auto t0 = Clock::now();
        peer.RepaintAll();
        millis.push_back(1e3 * SecondsSince(t0));
    }
    report("repaint_" + tag + "_median", Percentile(millis, 0.5), "ms");
    report("repaint_" + tag + "_p99", Percentile(millis, 0.99), "ms");
}

// Every workload of one size; gives the resident bytes the peer took per byte of text.
template <class Peer, class Report>
double PeerSize(double megabytes, const std::string& tag, Report report) {
    malloc_trim(0);
    const double before = ResidentBytes();
    const std::string text = htmlgen::GenerateHtml(static_cast<size_t>(megabytes * 1e6));
    const double textBytes = static_cast<double>(text.size());
    std::unique_ptr<Peer> peer = Peer::Open(text, megabytes, tag, report);
    // The generated text is still held here; it does not count against the peer.
    const double perByte = (ResidentBytes() - before - textBytes) / textBytes;
    report(Peer::MemoryFigure() + tag, perByte, "bytes");
    PeerJumps(*peer, tag, report);
    PeerTyping(*peer, tag, false, report);
    PeerTyping(*peer, tag, true, report);
    PeerRepaint(*peer, tag, report);
    return perByte;
}

// A peer runs a size only where its cost at the last size measured, grown in proportion, stays
// within ZENTREL_BENCH_PEER_SECONDS (default 60) and ZENTREL_BENCH_PEER_GB (default 6); a size
// it skips gets a line that says so and why. The first size has nothing to go by: it runs up to
// kUnmeasuredMegabytes, and a larger one is skipped, so give the small sizes first.
class CPeerBudget {
public:
    // The peers take up to 20 bytes a byte of text: 100 MB stays within the memory limit.
    static constexpr double kUnmeasuredMegabytes = 100;

    explicit CPeerBudget(std::string peer)
        : m_peer(std::move(peer)), m_seconds(Limit("ZENTREL_BENCH_PEER_SECONDS", 60)), m_gigabytes(Limit("ZENTREL_BENCH_PEER_GB", 6)) {}

    bool Allows(double megabytes, const std::string& tag) const {
        if (m_secondsPerMegabyte == 0 && megabytes > kUnmeasuredMegabytes) {
            std::printf("%s_skipped_%s with no smaller size measured first to estimate it from\n", m_peer.c_str(), tag.c_str());
            std::fflush(stdout);
            return false;
        }
        const double seconds = m_secondsPerMegabyte * megabytes;
        const double gigabytes = m_bytesPerTextByte * megabytes / 1e3;
        if (seconds <= m_seconds && gigabytes <= m_gigabytes) return true;
        std::printf("%s_skipped_%s estimated %.0f s and %.1f GB from the last size, over the limit of %.0f s or %.0f GB\n",
                    m_peer.c_str(), tag.c_str(), seconds, gigabytes, m_seconds, m_gigabytes);
        std::fflush(stdout);
        return false;
    }
    void Measured(double megabytes, double seconds, double bytesPerTextByte) {
        m_secondsPerMegabyte = seconds / megabytes;
        // The text itself is held beside the peer while it runs.
        m_bytesPerTextByte = bytesPerTextByte + 1;
    }

private:
    static double Limit(const char* variable, double fallback) {
        const char* value = std::getenv(variable);
        return value ? std::atof(value) : fallback;
    }

    std::string m_peer;
    double m_seconds, m_gigabytes;
    double m_secondsPerMegabyte = 0, m_bytesPerTextByte = 0;
};

// Every size that the peer's budget allows, in the order given.
template <class Peer, class Report>
void PeerSizes(const std::string& peer, const std::vector<double>& sizes, Report report) {
    CPeerBudget budget(peer);
    for (double megabytes : sizes) {
        const std::string tag = std::to_string(static_cast<int>(megabytes)) + "mb";
        if (!budget.Allows(megabytes, tag)) continue;
        const auto t0 = Clock::now();
        const double perByte = PeerSize<Peer>(megabytes, tag, report);
        budget.Measured(megabytes, SecondsSince(t0), perByte);
    }
}

}  // namespace bench
