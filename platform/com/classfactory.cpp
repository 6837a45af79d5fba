#include "platform/com/classfactory.h"

#include <vector>

const IID IID_IClassFactory = MakeGuid("{00000001-0000-0000-C000-000000000046}");

namespace {

LONG g_nObjects = 0;
LONG g_nLocks = 0;
GetClassObjectFn g_linkedModule = nullptr;

struct ClassEntry {
    CLSID clsid;
    ObjectCreator create;
};

std::vector<ClassEntry>& Classes() {
    static std::vector<ClassEntry> classes;
    return classes;
}

const ClassEntry* FindClass(REFCLSID clsid) {
    for (const ClassEntry& e : Classes())
        if (e.clsid == clsid) return &e;
    return nullptr;
}

class CClassFactory final : public CUnknownImpl<IClassFactory, IID_IClassFactory> {
public:
    explicit CClassFactory(ObjectCreator create) : m_create(std::move(create)) {}
    HRESULT CreateInstance(IUnknown* outer, REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        *ppv = nullptr;
        if (outer) return CLASS_E_NOAGGREGATION;
        ComPtr<IUnknown> object = ComPtr<IUnknown>::Adopt(m_create());
        if (!object) return E_OUTOFMEMORY;
        return object->QueryInterface(riid, ppv);
    }
    HRESULT LockServer(BOOL lock) override {
        lock ? ModuleLock() : ModuleUnlock();
        return S_OK;
    }

private:
    ~CClassFactory() override = default;
    ObjectCreator m_create;
};

}  // namespace

void RegisterClassObject(REFCLSID clsid, ObjectCreator create) {
    UnregisterClassObject(clsid);
    Classes().push_back({clsid, std::move(create)});
}

void UnregisterClassObject(REFCLSID clsid) {
    auto& classes = Classes();
    std::erase_if(classes, [&](const ClassEntry& e) { return e.clsid == clsid; });
}

HRESULT GetClassObject(REFCLSID clsid, REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    *ppv = nullptr;
    const ClassEntry* entry = FindClass(clsid);
    if (!entry) return CLASS_E_CLASSNOTAVAILABLE;
    ComPtr<IClassFactory> factory(new CClassFactory(entry->create));
    return factory->QueryInterface(riid, ppv);
}

HRESULT CreateInstance(REFCLSID clsid, REFIID riid, void** ppv) {
    ComPtr<IClassFactory> factory;
    HRESULT hr = GetClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(factory.Out()));
    if (FAILED(hr)) return hr;
    return factory->CreateInstance(nullptr, riid, ppv);
}

void SetLinkedModule(GetClassObjectFn getClassObject) { g_linkedModule = getClassObject; }
GetClassObjectFn LinkedModule() { return g_linkedModule; }

void ModuleAddObject() { ++g_nObjects; }
void ModuleReleaseObject() { --g_nObjects; }
LONG ModuleObjectCount() { return g_nObjects; }
void ModuleLock() { ++g_nLocks; }
void ModuleUnlock() { --g_nLocks; }
LONG ModuleLockCount() { return g_nLocks; }
HRESULT CanUnloadNow() { return g_nObjects == 0 && g_nLocks == 0 ? S_OK : S_FALSE; }
