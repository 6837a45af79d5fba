// The file loader on arbitrary bytes: the first three bytes choose the process code page, the
// default encoding for undeclared files and an encoding forced by the host; the rest is the file.
// A load either succeeds or says why it failed and leaves the document as it was. After a
// successful load, saving succeeds, and reading the saved file in the same encoding gives the
// same text back.
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
    if (FAILED(doc->LoadFile(in, &error, Pick(data[2])))) {
        Require(!error.empty(), "a failed load says why");
        Require(doc->GetText() == "before" && doc->IsModified() && doc->PathName().empty(), "a failed load keeps the document");
        std::remove(in.c_str());
        return 0;
    }
    const std::string text = doc->GetText();
    const std::string encoding = doc->Encoding();
    Require(SUCCEEDED(doc->SaveFile(out, &error)), "what was loaded can be saved");
    auto again = CreateHtmlDocument();
    Require(SUCCEEDED(again->LoadFile(out, &error, encoding)), "what was saved can be loaded");
    Require(again->GetText() == text, "the saved file reads as the same text");
    Require(again->Encoding() == encoding, "the saved file reads in the same encoding");
    std::remove(in.c_str());
    std::remove(out.c_str());
    return 0;
}
