// Figures of the document's HTML classification on generated text of 1, 10 and 100 MB: full
// classification throughput, GetClassAt and GetToken on classified text, reclassification
// after a one-character edit in the middle, and the memory of the syntax state per byte.
// Prints "name value unit" lines. Usage: bench_syntax [MEGABYTES...]   (default 1 10 100)
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <vector>

#include "bench/htmlgen.h"
#include "htmldoc/htmldocument.h"

namespace {

using Clock = std::chrono::steady_clock;
double Seconds(Clock::time_point t0) { return std::chrono::duration<double>(Clock::now() - t0).count(); }
void Print(const std::string& name, double value, const char* unit) { std::printf("%s %.3f %s\n", name.c_str(), value, unit); }

void Measure(long megabytes) {
    std::string text = htmlgen::GenerateHtml(static_cast<size_t>(megabytes) << 20);
    std::string tag = "_" + std::to_string(megabytes) + "mb";
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText(text);
    long length = doc->GetLength();

    auto t0 = Clock::now();
    doc->Syntax().ClassifyTo(length);
    double classify = Seconds(t0);
    Print("classify_throughput" + tag, static_cast<double>(length) / (1 << 20) / classify, "MB/s");

    // Every byte of a stretch in the middle, as a painter asks, repeated.
    long from = length / 2, span = std::min<long>(length / 2, 1 << 20);
    long sum = 0;
    t0 = Clock::now();
    for (int rep = 0; rep < 8; ++rep)
        for (long i = from; i < from + span; ++i) sum += doc->GetClassAt(i);
    Print("getclassat" + tag, Seconds(t0) * 1e9 / (8.0 * span), "ns/call");
    ISourceTokenInfo token;
    t0 = Clock::now();
    for (int rep = 0; rep < 8; ++rep)
        for (long i = from; i < from + span; ++i) sum += doc->GetToken(i, &token) == S_OK ? token.nKind : 0;
    Print("gettoken" + tag, Seconds(t0) * 1e9 / (8.0 * span), "ns/call");

    // A character typed and taken back in the middle: each edit reclassifies what it touched.
    std::vector<double> micros;
    for (int i = 0; i < 1000; ++i) {
        long pos = length / 2 + (i * 7919) % 4096;
        t0 = Clock::now();
        doc->InsertText(pos, "x", 1, nullptr);
        micros.push_back(Seconds(t0) * 1e6);
        doc->DeleteText(pos, 1, nullptr);
    }
    std::sort(micros.begin(), micros.end());
    Print("edit_insert_median" + tag, micros[micros.size() / 2], "us");
    Print("edit_insert_p99" + tag, micros[micros.size() * 99 / 100], "us");

    Print("syntax_memory" + tag, static_cast<double>(doc->Syntax().MemoryBytes()) / static_cast<double>(length), "bytes/byte");
    if (sum == 42) std::printf("#\n");
}

}  // namespace

int main(int argc, char** argv) {
    std::vector<long> sizes;
    for (int i = 1; i < argc; ++i) sizes.push_back(std::atol(argv[i]));
    if (sizes.empty()) sizes = {1, 10, 100};
    for (long mb : sizes) Measure(mb);
    return 0;
}
