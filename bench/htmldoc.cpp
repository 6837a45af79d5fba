// Figures of the reference document on a large HTML text: loading through SetText and from a
// file, a typed character in the middle with a sink receiving the notifications, and the hard
// line lookups. Prints "name value unit" lines.
// Usage: bench_htmldoc [MEGABYTES]   (default 100)
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <random>
#include <string>
#include <vector>

#include "bench/htmlgen.h"
#include "htmldoc/htmldocument.h"

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point t0) { return std::chrono::duration<double>(Clock::now() - t0).count(); }

void Print(const char* name, double value, const char* unit) { std::printf("%s %.2f %s\n", name, value, unit); }

// Takes each change as a view would: asks for its action and range, then releases it.
// Optionally reads the text pointer as the view's layout does after a change.
class CBenchSink final : public ISourceTextSink, public ISourceRangeSink {
public:
    explicit CBenchSink(ISourceText* doc) : m_pDoc(doc) {}
    HRESULT QueryInterface(REFIID, void** ppv) override {
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return 2; }
    ULONG Release() override { return 1; }
    HRESULT GetWindow(HWND* out) override {
        *out = nullptr;
        return S_OK;
    }
    HRESULT OnChange(long, long, IUnknown* change) override {
        ComPtr<ISourceChange> info = QueryAs<ISourceChange>(change, IID_ISourceChange);
        ISourceChangeRange range;
        if (info) info->GetRange(&range);
        m_nSpan += range.nEnd - range.nStart;
        change->Release();
        if (readPointer) {
            char* p = nullptr;
            m_pDoc->GetTextPointer(&p);
            m_nSpan += p[m_pDoc->GetLength() / 2];
        }
        return S_OK;
    }
    HRESULT OnBusy(BOOL, const char*, long) override { return S_OK; }
    HRESULT OnSelectionChanged(long active, long) override {
        m_nSpan += active & 1;
        return S_OK;
    }
    HRESULT OnEnsureVisible(long) override { return S_OK; }

    bool readPointer = false;
    long Checksum() const { return m_nSpan; }

private:
    ISourceText* m_pDoc;
    long m_nSpan = 0;
};

// Median and 99th percentile, in microseconds, of `count` typed characters in the middle.
void TypeInMiddle(CHtmlDocument* doc, CBenchSink& sink, int count, const char* name) {
    ComPtr<ISourceRange> sel;
    doc->CreateRange(sel.Out());
    sel->MarkAsSelection(TRUE);
    DWORD cookie;
    sel->AdviseRangeSink(&sink, &cookie);
    long middle = doc->GetLength() / 2;
    sel->SetRange(middle, middle);
    std::vector<double> micros;
    for (int i = 0; i < count; ++i) {
        char c = static_cast<char>('a' + i % 26);
        auto t0 = Clock::now();
        sel->ReplaceText(&c, 1, &sink);
        micros.push_back(SecondsSince(t0) * 1e6);
    }
    std::sort(micros.begin(), micros.end());
    std::string base(name);
    Print((base + "_median").c_str(), micros[micros.size() / 2], "us");
    Print((base + "_p99").c_str(), micros[std::min(micros.size() - 1, micros.size() * 99 / 100)], "us");
    sel->UnadviseRangeSink(cookie);
}

template <class Lookup>
double NsPerCall(long calls, Lookup lookup) {
    auto t0 = Clock::now();
    long sum = 0;
    for (long i = 0; i < calls; ++i) sum += lookup(i);
    double ns = SecondsSince(t0) * 1e9 / static_cast<double>(calls);
    if (sum == -1) std::printf("unlikely %ld\n", sum);  // keeps the loop from being dropped
    return ns;
}

}  // namespace

int main(int argc, char** argv) {
    long megabytes = argc > 1 ? std::max(1L, std::atol(argv[1])) : 100;
    std::string text = htmlgen::GenerateHtml(static_cast<size_t>(megabytes) << 20);
    double mb = static_cast<double>(text.size()) / (1 << 20);
    Print("htmlgen_size", mb, "MB");
    Print("htmlgen_line_avg", static_cast<double>(text.size()) / static_cast<double>(std::count(text.begin(), text.end(), '\n')), "bytes");

    auto doc = CreateHtmlDocument();
    auto t0 = Clock::now();
    doc->SetText(text);
    Print("htmldoc_settext", mb / SecondsSince(t0), "MB/s");

    std::string path = (std::filesystem::temp_directory_path() / "bench_htmldoc.htm").string();
    if (FILE* f = std::fopen(path.c_str(), "wb")) {
        std::fwrite(text.data(), 1, text.size(), f);
        std::fclose(f);
        auto loaded = CreateHtmlDocument();
        t0 = Clock::now();
        std::string error;
        if (SUCCEEDED(loaded->LoadFile(path, &error))) Print("htmldoc_loadfile", mb / SecondsSince(t0), "MB/s");
        else std::fprintf(stderr, "load failed: %s\n", error.c_str());
        std::remove(path.c_str());
    }
    text.clear();
    text.shrink_to_fit();

    CBenchSink sink(doc.Get());
    doc->AdviseTextSink(&sink);
    TypeInMiddle(doc.Get(), sink, 1000, "htmldoc_type_middle");
    // The same with the sink asking for the text pointer after each change, as layout does:
    // the gap closes and opens again each time.
    sink.readPointer = true;
    TypeInMiddle(doc.Get(), sink, 100, "htmldoc_type_middle_with_pointer");
    sink.readPointer = false;

    std::mt19937 rng(3);
    const long calls = 1000000;
    std::vector<long> positions(calls), lines(calls);
    for (long i = 0; i < calls; ++i) {
        positions[static_cast<size_t>(i)] = std::uniform_int_distribution<long>(0, doc->GetLength())(rng);
        lines[static_cast<size_t>(i)] = std::uniform_int_distribution<long>(0, doc->LineCount() - 1)(rng);
    }
    Print("htmldoc_gettextline", NsPerCall(calls, [&](long i) {
              long line = 0;
              doc->GetTextLine(positions[static_cast<size_t>(i)], &line);
              return line;
          }), "ns");
    Print("htmldoc_gettextlinestart", NsPerCall(calls, [&](long i) {
              long pos = 0;
              doc->GetTextLineStart(lines[static_cast<size_t>(i)], &pos);
              return pos;
          }), "ns");
    doc->UnadviseTextSink(&sink);
    if (sink.Checksum() == -1) std::printf("unlikely\n");
    return 0;
}
