// The module's entry points and identifiers, as a host sees them: how it registers the module
// in a registration store that it names (platform/com/regstore.h describes the file), makes
// controls and property pages through class factories, and knows when the module may go.
#pragma once
#include <vector>

#include "platform/com/classfactory.h"
#include "platform/com/export.h"

// The control, Zentrel Control ("Morvane.Zentrel2.1"), and its property page
// ("ZENTREL.ZentrelPropPage.1").
ZENTREL_EXPORT extern const CLSID CLSID_Zentrel;
ZENTREL_EXPORT extern const CLSID CLSID_ZentrelPropPage;
// The host's stock pages for fonts and colours, which the control names after its own page.
ZENTREL_EXPORT extern const CLSID CLSID_StockFontPage;
ZENTREL_EXPORT extern const CLSID CLSID_StockColorPage;
// The property pages the control names to a host, in the order it shows them.
ZENTREL_EXPORT std::vector<CLSID> ZentrelPropertyPages();

constexpr HRESULT SELFREG_E_TYPELIB = MakeHr(0x80040200u);
constexpr HRESULT SELFREG_E_CLASS = MakeHr(0x80040201u);

// With C names, so that a host that loads the module finds them by name.
extern "C" {
// Names the file that DllRegisterServer and DllUnregisterServer write (a copy is kept).
ZENTREL_EXPORT void ZentrelSetRegistrationStore(const char* path);
// Why the last registration or unregistration failed, naming the store; empty after success.
ZENTREL_EXPORT const char* ZentrelRegistrationError();

// Registers the type library, then the classes: SELFREG_E_TYPELIB when the first step fails
// (no store named, or one that cannot be read or written), SELFREG_E_CLASS when the second
// does. A store that does not exist yet is made. Registering again changes nothing.
ZENTREL_EXPORT HRESULT DllRegisterServer();
// Removes what DllRegisterServer wrote, with the same results; what is not there is no error,
// but the store itself must exist.
ZENTREL_EXPORT HRESULT DllUnregisterServer();
// A class factory of the control or of its property page; CLASS_E_CLASSNOTAVAILABLE for any
// other class.
ZENTREL_EXPORT HRESULT DllGetClassObject(REFCLSID clsid, REFIID riid, void** ppv);
// S_OK while no control, property page, bookmark or other object of the module lives and no
// lock is held; S_FALSE otherwise.
ZENTREL_EXPORT HRESULT DllCanUnloadNow();
}
