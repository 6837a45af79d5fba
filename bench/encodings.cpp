// Figures of files in their own encodings, into code page 1252: loading a UTF-8 page of pure
// ASCII, a UTF-8 page with some non-Latin text (every eighth paragraph starts with Japanese and
// Greek words and a Latin word with an accent), the same page undeclared, and saving it back.
// A windows-1252 page, which loads without conversion, is the baseline. Then the cost of marking
// what loading made, on a UTF-8 page of one million characters that code page 1252 lacks: its
// load and save with the marks against the same work without them, and a keystroke in the middle
// with and without the marks. Prints "name value unit".
// Usage: bench_encodings [MEGABYTES]   (default 100)
#include <algorithm>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

#include "bench/benchtools.h"
#include "bench/htmlgen.h"
#include "htmldoc/htmldocument.h"
#include "platform/codepage/codepage.h"
#include "platform/codepage/transcode.h"

namespace {

using Clock = std::chrono::steady_clock;

double SecondsSince(Clock::time_point t0) { return std::chrono::duration<double>(Clock::now() - t0).count(); }

void Print(const std::string& name, double value, const char* unit) { std::printf("%s %.2f %s\n", name.c_str(), value, unit); }

// The page with a declaration of `charset` behind its <head>, or none for an empty one.
std::string Declared(std::string page, const std::string& charset) {
    if (!charset.empty()) page.insert(page.find("<head>") + 6, "<meta charset=\"" + charset + "\">");
    return page;
}

std::string WithNonLatinText(const std::string& page) {
    static const std::string kPhrase =
        "\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xE3\x81\xAE\xE6\x96\x87\xE7\xAB\xA0 "  // 日本語の文章
        "\xCE\x95\xCE\xBB\xCE\xBB\xCE\xB7\xCE\xBD\xCE\xB9\xCE\xBA\xCE\xAC "          // Ελληνικά
        "caf\xC3\xA9 ";
    const std::string tag = "<p class=\"text\">";
    std::string out;
    out.reserve(page.size() + page.size() / 16);
    size_t from = 0, count = 0;
    for (size_t at = page.find(tag); at != std::string::npos; at = page.find(tag, at + 1)) {
        if (++count % 8) continue;
        out.append(page, from, at + tag.size() - from);
        out += kPhrase;
        from = at + tag.size();
    }
    out.append(page, from);
    return out;
}

std::string WriteTemp(const std::string& name, const std::string& bytes) {
    const std::string path = (std::filesystem::temp_directory_path() / name).string();
    if (FILE* f = std::fopen(path.c_str(), "wb")) {
        std::fwrite(bytes.data(), 1, bytes.size(), f);
        std::fclose(f);
    }
    return path;
}

// Loads the file into a new document and prints MB/s of the file's size; the document is kept
// for a save.
ComPtr<CHtmlDocument> MeasureLoad(const std::string& name, const std::string& bytes) {
    const std::string path = WriteTemp("bench_" + name + ".htm", bytes);
    auto doc = CreateHtmlDocument();
    std::string error;
    const auto t0 = Clock::now();
    const HRESULT hr = doc->LoadFile(path, &error);
    const double seconds = SecondsSince(t0);
    std::remove(path.c_str());
    if (FAILED(hr)) {
        std::fprintf(stderr, "%s: %s\n", name.c_str(), error.c_str());
        std::exit(1);
    }
    Print("encodings_load_" + name, static_cast<double>(bytes.size()) / (1 << 20) / seconds, "MB/s");
    return doc;
}

void MeasureSave(const std::string& name, CHtmlDocument* doc, const std::string& expected) {
    const std::string path = (std::filesystem::temp_directory_path() / ("bench_" + name + ".htm")).string();
    std::string error;
    const auto t0 = Clock::now();
    const HRESULT hr = doc->SaveFile(path, &error);
    const double seconds = SecondsSince(t0);
    const bool same = SUCCEEDED(hr) && std::filesystem::file_size(path) == expected.size();
    std::remove(path.c_str());
    if (!same) {
        std::fprintf(stderr, "%s: the saved file differs in size from the loaded one %s\n", name.c_str(), error.c_str());
        std::exit(1);
    }
    Print("encodings_save_" + name, static_cast<double>(expected.size()) / (1 << 20) / seconds, "MB/s");
}

// Writes the stand-ins of loading as the document's loader does, but marks nothing.
class CUnmarkedSink final : public CKeepSink {
public:
    void Unmappable(char32_t ch, std::string& out) override { out += "&#" + std::to_string(static_cast<uint32_t>(ch)) + ";"; }
    void Undecodable(std::string_view, std::string& out) override { out += "&#65533;"; }
    void Inexact(std::string_view, std::u32string_view chars, std::string& out) override {
        for (char32_t ch : chars) Unmappable(ch, out);
    }
    void Shift(std::string_view, std::string&) override {}
};

// The fastest of a few runs of `work`, in seconds.
template <class Work>
double Fastest(Work work) {
    double best = 1e9;
    for (int run = 0; run < 3; ++run) {
        const auto t0 = Clock::now();
        work();
        best = std::min(best, SecondsSince(t0));
    }
    return best;
}

double MedianKeystrokeMicros(CHtmlDocument* doc) {
    const long middle = doc->GetLength() / 2;
    std::vector<double> samples;
    for (int i = 0; i < 2000; ++i) {
        const auto t0 = Clock::now();
        doc->InsertText(middle, "x", 1, nullptr);
        doc->DeleteText(middle, 1, nullptr);
        samples.push_back(bench::MicrosSince(t0));
    }
    return bench::Percentile(samples, 0.5);
}

void MeasureReferenceTracking() {
    constexpr long kReferences = 1000000;
    const std::string line = "<p>\xE6\x97\xA5\xE6\x9C\xAC\xE8\xAA\x9E\xE3\x81\xAE\xE6\x96\x87\xE7\xAB\xA0"
                             "\xE3\x81\xA7\xE3\x81\x99\xE3\x80\x82\xE2\x98\xB0</p>\n";  // 10 characters
    std::string page = "<!DOCTYPE html><meta charset=utf-8>\n";
    for (long i = 0; i < kReferences / 10; ++i) page += line;
    const double megabytes = static_cast<double>(page.size()) / (1 << 20);
    SetProcessCodePage(1252);
    CDecodedFile file;
    const CDecodeOptions options;
    const double marked = Fastest([&] { DecodeFileBytes(page, options, &file); });
    std::string unmarkedText;
    const double unmarked = Fastest([&] {
        unmarkedText.clear();
        CUnmarkedSink sink;
        TranscodeKeeping(Utf8Encoding(), *EncodingOfCodePage(CP_ACP), page, &unmarkedText, sink);
    });
    if (unmarkedText != file.text || file.marks.Count() != static_cast<size_t>(kReferences)) {
        std::fprintf(stderr, "the marked and unmarked loads differ\n");
        std::exit(1);
    }
    Print("encodings_refs_count", static_cast<double>(file.marks.Count()), "references");
    Print("encodings_refs_load_marked", megabytes / marked, "MB/s");
    Print("encodings_refs_load_unmarked", megabytes / unmarked, "MB/s");
    Print("encodings_refs_load_overhead", 100.0 * (marked - unmarked) / unmarked, "%");

    // Saving the references through their marks, against writing the same characters from text
    // that holds them (the page loaded under code page 932, where nothing is marked).
    std::string bytes;
    const double save = Fastest([&] { EncodeFileText(file.text, file.encoding, &file.marks, true, &bytes, nullptr); });
    if (bytes != page) {
        std::fprintf(stderr, "the saved page differs from the loaded one\n");
        std::exit(1);
    }
    SetProcessCodePage(932);
    CDecodedFile plain;
    DecodeFileBytes(page, options, &plain);
    const double saveUnmarked = Fastest([&] { EncodeFileText(plain.text, plain.encoding, nullptr, true, &bytes, nullptr); });
    Print("encodings_refs_save_marked", megabytes / save, "MB/s");
    Print("encodings_refs_save_unmarked_cp932", megabytes / saveUnmarked, "MB/s");
    Print("encodings_refs_save_overhead", 100.0 * (save - saveUnmarked) / saveUnmarked, "%");

    // A keystroke in the middle of the loaded page, with its million marks and without any.
    SetProcessCodePage(1252);
    const std::string path = WriteTemp("bench_refs.htm", page);
    auto doc = CreateHtmlDocument();
    doc->LoadFile(path);
    std::remove(path.c_str());
    Print("encodings_refs_keystroke_marked_median", MedianKeystrokeMicros(doc.Get()), "us");
    auto bare = CreateHtmlDocument();
    bare->SetText(file.text);
    Print("encodings_refs_keystroke_unmarked_median", MedianKeystrokeMicros(bare.Get()), "us");
}

}  // namespace

int main(int argc, char** argv) {
    const long megabytes = argc > 1 ? std::max(1L, std::atol(argv[1])) : 100;
    SetProcessCodePage(1252);
    const std::string ascii = htmlgen::GenerateHtml(static_cast<size_t>(megabytes) << 20);
    const std::string mixed = WithNonLatinText(ascii);
    Print("encodings_nonlatin_share", 100.0 * static_cast<double>(mixed.size() - ascii.size()) / static_cast<double>(mixed.size()), "%");

    MeasureLoad("cp1252_baseline", Declared(ascii, "windows-1252"));
    MeasureLoad("utf8_ascii", Declared(ascii, "utf-8"));
    const std::string declared = Declared(mixed, "utf-8");
    auto doc = MeasureLoad("utf8_nonlatin", declared);
    MeasureLoad("utf8_nonlatin_undeclared", mixed);
    MeasureSave("utf8_nonlatin", doc.Get(), declared);
    MeasureReferenceTracking();
    return 0;
}
