#include "src/view/module.h"

#include "platform/com/classfactory.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr int kMaxLeadBytePairs = 6;

}  // namespace

void CZentrelApp::InitInstance() {
    // A failed query leaves the data zero, which reads as a single-byte code page.
    GetCPInfo(CP_ACP, &m_cpInfo);
    m_bMultiByte = m_cpInfo.MaxCharSize > 1 ? 1 : 0;
}

BOOL CZentrelApp::IsLeadByte(BYTE ch) const {
    if (!m_bMultiByte) return FALSE;
    for (int i = 0; i < kMaxLeadBytePairs; ++i) {
        BYTE low = m_cpInfo.LeadByte[2 * i], high = m_cpInfo.LeadByte[2 * i + 1];
        if (low == 0) return FALSE;
        if (ch >= low && ch <= high) return TRUE;
    }
    return FALSE;
}

CZentrelApp& ZentrelApp() {
    static CZentrelApp app = [] {
        CZentrelApp a;
        a.InitInstance();
        return a;
    }();
    return app;
}

FontDesc DefaultGutterFont() { return {"MS Sans Serif", 120000, 400, 1}; }
FontDesc DefaultSymbolFont() { return {"Symbol", 120000, 400, 2}; }
FontDesc DefaultEditFont() { return {"Times New Roman", 120000, 400, 1}; }

HRESULT DllRegisterServer() {
    RegisterClassObject(CLSID_Zentrel, [] { return static_cast<IUnknown*>(static_cast<IDispatch*>(CreateZentrelCtrl())); });
    return S_OK;
}

HRESULT DllUnregisterServer() {
    UnregisterClassObject(CLSID_Zentrel);
    return S_OK;
}

HRESULT DllGetClassObject(REFCLSID clsid, REFIID riid, void** ppv) {
    if (clsid == CLSID_Zentrel) DllRegisterServer();
    return GetClassObject(clsid, riid, ppv);
}

HRESULT DllCanUnloadNow() { return CanUnloadNow(); }
