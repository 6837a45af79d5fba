// The module object: process-wide state shared by every control, the code page data among it.
// The entry points through which a host reaches the module are in entrypoints.h.
#pragma once
#include "platform/codepage/codepage.h"
#include "platform/window/window.h"
#include "platform/com/unknown.h"
#include "platform/gdi/fontdesc.h"
#include "src/view/entrypoints.h"

class CZentrelApp {
public:
    // Reads the code page data of the process code page and enters the module's classes in
    // the table that DllGetClassObject serves.
    void InitInstance();
    BOOL IsLeadByte(BYTE ch) const;

    CPINFO m_cpInfo{};
    BYTE m_bMultiByte = 0;
};

// The module object, started on first use.
CZentrelApp& ZentrelApp();
// Lead bytes of the double-byte code pages all lie above the ASCII range: text, mostly ASCII,
// is tested without a call.
inline BOOL IsLeadByte(BYTE ch) { return ch >= 0x80 && ZentrelApp().IsLeadByte(ch); }

// The default fonts of the three font properties.
FontDesc DefaultGutterFont();
FontDesc DefaultSymbolFont();
FontDesc DefaultEditFont();

// Shows the About box over `owner`; nothing shows where the platform has no dialogs.
void ShowAboutBox(HWND owner);
