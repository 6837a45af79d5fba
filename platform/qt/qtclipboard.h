// The Qt backend's clipboard: QClipboard, with text as text/plain so that every program of the
// desktop reads it. The code page's text (CF_TEXT) goes out as Unicode; text that comes in is
// offered as CF_UNICODETEXT, and as CF_TEXT too where the code page holds every character of it.
#pragma once
#include "platform/window/clipboard.h"

class CQtClipboard final : public IClipboardBackend {
public:
    bool Write(const ClipboardFormats& formats) override;
    ClipboardFormats Read() override;
};

class QMimeData;
// The formats to offer for Qt's mime data: text as above, registered formats under their own
// mime type. Shared by the clipboard and drag and drop.
ClipboardFormats FormatsFromMimeData(const QMimeData& mime);
// Mime data for the formats; null-safe for an empty list (gives empty data).
QMimeData* MimeDataFromFormats(const ClipboardFormats& formats);
