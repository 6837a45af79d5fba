// The extra info loader on arbitrary bytes. A record is either read whole or refused; a record
// that is read comes back the same through a write and a read. Loaded into a view, a refused
// record gives FALSE and leaves the selection and Enabled as they were; an accepted one sets
// the selection clamped into the text.
#include <cstdint>
#include <cstdlib>
#include <string>

#include "htmldoc/htmldocument.h"
#include "platform/com/globalmemory.h"
#include "platform/testing/testplatform.h"
#include "src/annotations/extrainforecord.h"
#include "src/view/zentrelctrl.h"

namespace {

void Require(bool condition) {
    if (!condition) std::abort();
}

const std::string kText = "<p>a short text</p>\r\n<p>with two lines</p>";
constexpr long kActive = 5, kAnchor = 9;

// The record read from the bytes, and whether it was accepted.
bool ReadRecord(const std::string& bytes, ExtraInfoRecord* record) {
    ComPtr<IStream> stream = CreateMemoryStream(bytes);
    const ExtraInfoError error = ReadExtraInfo(stream.Get(), record);
    if (error != ExtraInfoError::None) return false;
    ComPtr<IStream> again = CreateMemoryStream();
    Require(WriteExtraInfo(again.Get(), *record) == ExtraInfoError::None);
    again->Seek(0, STREAM_SEEK_SET, nullptr);
    ExtraInfoRecord back;
    Require(ReadExtraInfo(again.Get(), &back) == ExtraInfoError::None && back == *record);
    return true;
}

void LoadIntoView(const std::string& bytes, bool accepted, const ExtraInfoRecord& record) {
    CTestPlatformScope platform;
    CZentrelCtrl* ctrl = CreateZentrelCtrl();
    ctrl->CreateControlWindow(nullptr, {0, 0, 300, 200});
    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    doc->SetText(kText);
    ctrl->SetDocument(doc.Get());
    ctrl->SetSelection(kActive, kAnchor);

    const HGLOBAL block = GlobalAlloc(0, bytes.size());
    std::copy(bytes.begin(), bytes.end(), static_cast<char*>(GlobalLock(block)));
    GlobalUnlock(block);
    const BOOL loaded = ctrl->LoadExtraInfoFromMemory(block, static_cast<long>(bytes.size()));
    GlobalFree(block);

    const ExtraInfoRecord fitted = FitExtraInfoToText(record, static_cast<long>(kText.size()));
    Require(ctrl->GetEnabled() == TRUE);
    if (loaded) {
        Require(accepted);
        Require(ctrl->GetSelectionStart() == fitted.active && ctrl->GetSelectionEnd() == fitted.anchor);
    } else {
        Require(ctrl->GetSelectionStart() == kActive && ctrl->GetSelectionEnd() == kAnchor);
    }
    Require(doc->GetText() == kText);
    ctrl->SetDocument(nullptr);
    ctrl->DestroyControlWindow();
    ctrl->Release();
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* data, size_t size) {
    const std::string bytes(reinterpret_cast<const char*>(data), size);
    ExtraInfoRecord record;
    const bool accepted = ReadRecord(bytes, &record);
    if (!bytes.empty()) LoadIntoView(bytes, accepted, record);
    return 0;
}
