// Class factories and the module's object count: how a host makes objects of the module by
// class id, and how it knows when the module may be unloaded.
#pragma once
#include <functional>

#include "platform/com/unknown.h"

extern const IID IID_IClassFactory;

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

// Objects of the module count themselves alive here; with locks, this decides unloading.
void ModuleAddObject();
void ModuleReleaseObject();
LONG ModuleObjectCount();
// S_OK when no object is alive and no lock is held, S_FALSE otherwise.
HRESULT CanUnloadNow();
