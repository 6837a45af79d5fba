// The test backend's clipboard: the formats of the last write, kept in memory, as every program
// of the desktop would read them back.
#pragma once
#include "platform/window/clipboard.h"

class CTestClipboard final : public IClipboardBackend {
public:
    bool Write(const ClipboardFormats& formats) override;
    ClipboardFormats Read() override { return m_formats; }

    // How many writes reached the clipboard.
    int WriteCount() const { return m_nWrites; }
    // A refusing clipboard takes no writes, as when another program holds it open.
    void SetRefusing(bool refusing) { m_bRefusing = refusing; }

private:
    ClipboardFormats m_formats;
    int m_nWrites = 0;
    bool m_bRefusing = false;
};
