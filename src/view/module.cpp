#include "src/view/module.h"

#include <functional>

#include "platform/com/regstore.h"
#include "src/resources/dialogs.h"
#include "src/resources/strings.h"
#include "src/view/proppage.h"
#include "src/view/zentrelctrl.h"

const CLSID CLSID_StockFontPage = MakeGuid("{0BE35200-8F91-11CE-9DE3-00AA004BB851}");
const CLSID CLSID_StockColorPage = MakeGuid("{0BE35201-8F91-11CE-9DE3-00AA004BB851}");

namespace {

constexpr int kMaxLeadBytePairs = 6;

// What the store learns of a class the module makes.
struct ClassRecord {
    const CLSID& clsid;
    const char* progId;
    UINT nameString;
};

const ClassRecord kClasses[] = {
    {CLSID_Zentrel, "Morvane.Zentrel2.1", 1},
    {CLSID_ZentrelPropPage, "ZENTREL.ZentrelPropPage.1", 2},
};

// OLEMISC_RECOMPOSEONRESIZE, CANTLINKINSIDE, INSIDEOUT, ACTIVATEWHENVISIBLE, SETCLIENTSITEFIRST.
constexpr DWORD kMiscStatus = 0x20191;
constexpr const char* kTypeLibVersion = "1.0";

// A program that links the module in reaches it through the registration of its own file.
const bool g_bLinked = (SetLinkedModule(&DllGetClassObject), true);

std::string g_storePath;
std::string g_lastError;

std::string ClassKey(REFCLSID clsid) { return "CLSID\\" + StringFromGuid(clsid); }
std::string TypeLibKey() { return "TypeLib\\" + StringFromGuid(LIBID_Zentrel); }

std::string InterfaceKey(const CInterfaceInfo& info) { return "Interface\\" + StringFromGuid(info.Iid()); }

void WriteTypeLib(CRegistrationStore& store) {
    const std::string module = CurrentModulePath();
    const std::string key = TypeLibKey() + "\\" + kTypeLibVersion;
    store.SetValue(key, "", ZentrelClassInfo().help);
    store.SetValue(key + "\\0\\module", "", module);
    store.SetValue(key + "\\FLAGS", "", "0");
    for (const CInterfaceInfo* info : {ZentrelClassInfo().dispatch, ZentrelClassInfo().events}) {
        store.SetValue(InterfaceKey(*info), "", info->Name());
        store.SetValue(InterfaceKey(*info) + "\\TypeLib", "", StringFromGuid(LIBID_Zentrel));
        store.SetValue(InterfaceKey(*info) + "\\TypeLib", "Version", kTypeLibVersion);
    }
}

void RemoveTypeLib(CRegistrationStore& store) {
    store.RemoveTree(TypeLibKey());
    for (const CInterfaceInfo* info : {ZentrelClassInfo().dispatch, ZentrelClassInfo().events})
        store.RemoveTree(InterfaceKey(*info));
}

void WriteClasses(CRegistrationStore& store) {
    const std::string module = CurrentModulePath();
    for (const ClassRecord& c : kClasses) {
        const std::string key = ClassKey(c.clsid), name = LoadString(c.nameString);
        store.SetValue(key, "", name);
        store.SetValue(key + "\\InprocServer32", "", module);
        store.SetValue(key + "\\InprocServer32", "ThreadingModel", "Apartment");
        store.SetValue(key + "\\ProgID", "", c.progId);
        store.SetValue(c.progId, "", name);
        store.SetValue(std::string(c.progId) + "\\CLSID", "", StringFromGuid(c.clsid));
    }
    const std::string control = ClassKey(CLSID_Zentrel);
    store.AddKey(control + "\\Control");
    store.SetValue(control + "\\TypeLib", "", StringFromGuid(LIBID_Zentrel));
    store.SetValue(control + "\\Version", "", kTypeLibVersion);
    store.SetValue(control + "\\ToolboxBitmap32", "", module + ", 1");
    store.SetValue(control + "\\MiscStatus", "", "0");
    store.SetValue(control + "\\MiscStatus\\1", "", std::to_string(kMiscStatus));
}

void RemoveClasses(CRegistrationStore& store) {
    for (const ClassRecord& c : kClasses) {
        store.RemoveTree(ClassKey(c.clsid));
        store.RemoveTree(c.progId);
    }
}

// One step of (un)registration: loads the store, changes it and saves it whole. The failure's
// text is kept for ZentrelRegistrationError.
HRESULT ChangeStore(bool mayCreate, const std::function<void(CRegistrationStore&)>& change, HRESULT failure) {
    if (g_storePath.empty()) {
        g_lastError = "no registration store named (ZentrelSetRegistrationStore)";
        return failure;
    }
    CRegistrationStore store(g_storePath);
    CRegistrationStore::Result r = mayCreate ? store.LoadOrEmpty() : store.Load();
    if (r.Ok()) {
        change(store);
        r = store.Save();
    }
    if (r.Ok()) return S_OK;
    g_lastError = r.message;
    return failure;
}

HRESULT Register(bool add) {
    g_lastError.clear();
    HRESULT hr = ChangeStore(add, add ? WriteTypeLib : RemoveTypeLib, SELFREG_E_TYPELIB);
    if (FAILED(hr)) return hr;
    return ChangeStore(add, add ? WriteClasses : RemoveClasses, SELFREG_E_CLASS);
}

IUnknown* NewControl() { return static_cast<IUnknown*>(static_cast<IDispatch*>(CreateZentrelCtrl())); }

IUnknown* NewPropPage() {
    IPropertyPage* page = new CZentrelPropPage;
    page->AddRef();
    return page;
}

}  // namespace

void CZentrelApp::InitInstance() {
    // A failed query leaves the data zero, which reads as a single-byte code page.
    GetCPInfo(CP_ACP, &m_cpInfo);
    m_bMultiByte = m_cpInfo.MaxCharSize > 1 ? 1 : 0;
    RegisterClassObject(CLSID_Zentrel, NewControl);
    RegisterClassObject(CLSID_ZentrelPropPage, NewPropPage);
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

std::vector<CLSID> ZentrelPropertyPages() { return {CLSID_ZentrelPropPage, CLSID_StockFontPage, CLSID_StockColorPage}; }

void ShowAboutBox(HWND owner) { DialogBoxIndirect(owner, AboutDialog()); }

void ZentrelSetRegistrationStore(const char* path) { g_storePath = path ? path : ""; }

const char* ZentrelRegistrationError() { return g_lastError.c_str(); }

HRESULT DllRegisterServer() { return Register(true); }

HRESULT DllUnregisterServer() { return Register(false); }

HRESULT DllGetClassObject(REFCLSID clsid, REFIID riid, void** ppv) {
    ZentrelApp();
    return GetClassObject(clsid, riid, ppv);
}

HRESULT DllCanUnloadNow() { return CanUnloadNow(); }
