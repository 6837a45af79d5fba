// The file loader on arbitrary bytes: the first three bytes choose the process code page, the
// default encoding for undeclared files and an encoding forced by the host; the rest is the file.
// Every load succeeds, and saving what was loaded without an edit writes the file's bytes back.
// After an edit at an end that the fourth byte picks, the saved file still loads, in the same
// encoding.
#include <unistd.h>

#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <fstream>
#include <iterator>
#include <string>

#include "htmldoc/htmldocument.h"
#include "platform/codepage/codepage.h"

namespace {

const UINT kCodePages[] = {1252, 932, 936, 949, 950};
// Empty: none. The rest reach every kind of converter: built in, single byte, double byte,
// shifting, four-byte forms, UTF-16.
const char* const kEncodings[] = {"", "", "", "utf-8", "latin1", "sjis", "gbk", "euc-kr", "big5", "gb18030",
                                  "euc-jp", "iso-2022-jp", "koi8-r", "windows-1255", "utf-16le", "utf-16be"};

const char* Pick(uint8_t b) { return kEncodings[b % std::size(kEncodings)]; }

std::string TempPath(const char* what) {
    return "/tmp/zentrel_fuzz_loader_" + std::to_string(::getpid()) + "_" + what + ".htm";
}

void WriteAll(const std::string& path, const uint8_t* data, size_t size) {
    FILE* f = std::fopen(path.c_str(), "wb");
    if (!f) std::abort();
    if (size && std::fwrite(data, 1, size, f) != size) std::abort();
    std::fclose(f);
}

std::string ReadAll(const std::string& path) {
    std::ifstream file(path, std::ios::binary);
    return {std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
}

void Require(bool condition, const char* what) {
    if (!condition) {
        std::fprintf(stderr, "broken: %s\n", what);
        std::abort();
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    if (size < 3) return 0;
    SetProcessCodePage(kCodePages[data[0] % std::size(kCodePages)]);
    const std::string in = TempPath("in"), out = TempPath("out");
    WriteAll(in, data + 3, size - 3);

    auto doc = CreateHtmlDocument();
    doc->SetText("before");
    Require(SUCCEEDED(doc->SetDefaultEncoding(Pick(data[1]))), "a known default encoding is taken");
    std::string error;
    Require(SUCCEEDED(doc->LoadFile(in, &error, Pick(data[2]))), "every file loads");
    Require(SUCCEEDED(doc->SaveFile(out, &error)), "what was loaded can be saved");
    const std::string file(reinterpret_cast<const char*>(data + 3), size - 3);
    Require(ReadAll(out) == file, "saving an unedited file writes its bytes back");
    const std::string encoding = doc->Encoding();
    {
        // At the ends, where the edit cannot split a character.
        doc->InsertText(data[3 % size] & 1 ? doc->GetLength() : 0, "x", 1, nullptr);
        Require(SUCCEEDED(doc->SaveFile(out, &error)), "an edited file can be saved");
        auto again = CreateHtmlDocument();
        Require(SUCCEEDED(again->LoadFile(out, &error, encoding)), "what was saved can be loaded");
        Require(again->Encoding() == encoding, "the saved file reads in the same encoding");
    }
    std::remove(in.c_str());
    std::remove(out.c_str());
    return 0;
}
