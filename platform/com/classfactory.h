// Class factories and the module's object count: how a host makes objects of the module by
// class id, and how it knows when the module may be unloaded.
#pragma once
#include "platform/com/export.h"
#include <functional>

#include "platform/com/unknown.h"

ZENTREL_EXPORT extern const IID IID_IClassFactory;

class IClassFactory : public IUnknown {
public:
    virtual HRESULT CreateInstance(IUnknown* outer, REFIID riid, void** ppv) = 0;
    virtual HRESULT LockServer(BOOL lock) = 0;

protected:
    ~IClassFactory() = default;
};

// Makes one new object and hands out its IUnknown with one reference, or null on failure.
using ObjectCreator = std::function<IUnknown*()>;

// Enters a class in the module's table; a later entry for the same id replaces the earlier one.
void RegisterClassObject(REFCLSID clsid, ObjectCreator create);
void UnregisterClassObject(REFCLSID clsid);
HRESULT GetClassObject(REFCLSID clsid, REFIID riid, void** ppv);
// Creates through the class factory and queries for riid.
HRESULT CreateInstance(REFCLSID clsid, REFIID riid, void** ppv);

// The DllGetClassObject of the module that is linked into this program, entered as the
// module starts: what a registration naming this program's own file reaches.
using GetClassObjectFn = HRESULT (*)(REFCLSID clsid, REFIID riid, void** ppv);
void SetLinkedModule(GetClassObjectFn getClassObject);
GetClassObjectFn LinkedModule();

// Objects of the module count themselves alive here; with locks, this decides unloading.
void ModuleAddObject();
void ModuleReleaseObject();
LONG ModuleObjectCount();
// Holds on the module, as IClassFactory::LockServer does: objects that a host never sees but
// that must keep the module loaded (bookmarks, picker items) take one while they live.
void ModuleLock();
void ModuleUnlock();
LONG ModuleLockCount();
// A member that holds the module for as long as the object it is part of lives.
class CModuleLock {
public:
    CModuleLock() { ModuleLock(); }
    CModuleLock(const CModuleLock&) { ModuleLock(); }
    CModuleLock& operator=(const CModuleLock&) = default;
    ~CModuleLock() { ModuleUnlock(); }
};
// S_OK when no object is alive and no lock is held, S_FALSE otherwise.
HRESULT CanUnloadNow();
