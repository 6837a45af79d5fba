// The system clipboard: open it, empty it, put data on it by format, read what it holds. Data
// set between OpenClipboard and CloseClipboard reaches the system clipboard on the close, all
// formats at once, so that other programs never see half of it. A backend (Qt's, or the test
// backend's memory) holds the data; without one the clipboard cannot be opened.
#pragma once
#include <string>
#include <utility>
#include <vector>

#include "platform/com/dataobject.h"
#include "platform/window/window.h"

// Bytes per format, in the order they were set.
using ClipboardFormats = std::vector<std::pair<CLIPFORMAT, std::string>>;

class IClipboardBackend {
public:
    virtual ~IClipboardBackend() = default;
    // Replaces what the clipboard holds. False if the system refused it.
    virtual bool Write(const ClipboardFormats& formats) = 0;
    // What the clipboard holds now, in every format the backend can offer it in.
    virtual ClipboardFormats Read() = 0;
};

// Installs the clipboard backend; returns the previous one. The caller keeps ownership.
IClipboardBackend* SetClipboardBackend(IClipboardBackend* backend);
IClipboardBackend* GetClipboardBackend();

// FALSE without a backend or while the clipboard is open already.
BOOL OpenClipboard(HWND owner);
// Only while open: what was on the clipboard is dropped on the close.
BOOL EmptyClipboard();
// Only while open and emptied: the bytes of one format (CF_TEXT with its terminating NUL).
BOOL SetClipboardData(CLIPFORMAT format, std::string bytes);
BOOL CloseClipboard();
BOOL IsClipboardFormatAvailable(CLIPFORMAT format);
// FALSE if the format is not held.
BOOL GetClipboardData(CLIPFORMAT format, std::string* out);

// Puts every format of a data object on the clipboard in one step.
HRESULT OleSetClipboard(IDataObject* data);
// A data object with what the clipboard holds now; one reference for the caller.
HRESULT OleGetClipboard(IDataObject** out);
