// IDispatch: late-bound access to properties, methods and events by dispatch id.
// Arguments travel in declaration order (the first parameter first); a property put carries
// the new value as the last argument.
#pragma once
#include "platform/com/export.h"
#include <string>
#include <vector>

#include "platform/com/unknown.h"
#include "platform/com/variant.h"

ZENTREL_EXPORT extern const IID IID_IDispatch;

constexpr WORD DISPATCH_METHOD = 0x1;
constexpr WORD DISPATCH_PROPERTYGET = 0x2;
constexpr WORD DISPATCH_PROPERTYPUT = 0x4;
constexpr WORD DISPATCH_PROPERTYPUTREF = 0x8;
constexpr DISPID DISPID_UNKNOWN = -1;
constexpr DISPID DISPID_VALUE = 0;

// What a failed call reports: the code and the text of the automation error.
struct ExcepInfo {
    SCODE scode = 0;
    std::string description;
    std::string source;
};

class CInterfaceInfo;

class IDispatch : public IUnknown {
public:
    // The description of the members, for clients that know nothing of the object; null when
    // the object gives none.
    virtual const CInterfaceInfo* GetTypeInfo() { return nullptr; }
    // Names are compared without regard to case, as automation clients expect.
    virtual HRESULT GetIDsOfNames(const std::string& name, DISPID* pDispId) = 0;
    // Failures: DISP_E_MEMBERNOTFOUND, DISP_E_BADPARAMCOUNT, DISP_E_TYPEMISMATCH, or
    // DISP_E_EXCEPTION with `excep` filled in.
    virtual HRESULT Invoke(DISPID dispid, WORD flags, std::vector<Variant>& args, Variant* result,
                           ExcepInfo* excep) = 0;

protected:
    ~IDispatch() = default;
};
