// The module object: process-wide state shared by every control, the code page data among it,
// and the entry points through which a host makes controls.
#pragma once
#include "platform/codepage/codepage.h"
#include "platform/com/unknown.h"
#include "platform/gdi/fontdesc.h"

class CZentrelApp {
public:
    // Reads the code page data of the process code page.
    void InitInstance();
    BOOL IsLeadByte(BYTE ch) const;

    CPINFO m_cpInfo{};
    BYTE m_bMultiByte = 0;
};

// The module object, started on first use.
CZentrelApp& ZentrelApp();
inline BOOL IsLeadByte(BYTE ch) { return ZentrelApp().IsLeadByte(ch); }

// The default fonts of the three font properties.
FontDesc DefaultGutterFont();
FontDesc DefaultSymbolFont();
FontDesc DefaultEditFont();

// Module entry points.
HRESULT DllRegisterServer();
HRESULT DllUnregisterServer();
HRESULT DllGetClassObject(REFCLSID clsid, REFIID riid, void** ppv);
HRESULT DllCanUnloadNow();
