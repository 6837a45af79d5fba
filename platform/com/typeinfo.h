// Type descriptions of automation interfaces: what a type library says of each member.
//
// A member is written once as a signature in the notation hosts read, for example
//   "short TabSize"                                      a property
//   "BSTR FormatStyleName(short nFormat)"                 an indexed property
//   "BOOL FindPointFromPosition(long nPosition, long* nX, long* nY)"   a method
//   "KeyDown(short* KeyCode, short Shift)"                an event (no result)
// and parsed into a CMemberInfo. A parameter whose type ends in '*' (other than the interface
// pointer types) is passed by reference: the callee reads and writes through it.
//
// Generic clients (script bridges, property editors, listings) read these descriptions through
// IDispatch::GetTypeInfo and IProvideClassInfo; they need to know nothing of the object.
#pragma once
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "platform/com/dispatch.h"

// The value types that cross an automation interface.
enum class AutoType : uint8_t {
    Void,
    Short,
    Long,
    Bool,
    Str,
    Color,
    Dispatch,
    Font,  // a font's dispatch interface
    Unknown,
    Handle,
    XPos,  // a horizontal position in pixels
    YPos,
    Scode,
    Variant,
    Enum,      // one of the library's enumerations, carried as a short
    Currency,  // a count of ten-thousandths, as font sizes in points travel
};

struct CParamInfo {
    AutoType type = AutoType::Void;
    bool byRef = false;
    std::string typeName;  // as written: "short", "OLE_COLOR", "HighLightType"
    std::string name;
};

enum class MemberKind : uint8_t { Property, Method, Event };

struct CMemberInfo {
    DISPID id = DISPID_UNKNOWN;
    MemberKind kind = MemberKind::Method;
    std::string name;
    CParamInfo result;               // the property's type, or the method's result (Void: none)
    std::vector<CParamInfo> params;  // index parameters of a property, parameters of a method or event
    bool readable = true;
    bool writable = false;
    std::string help;

    size_t OutParamCount() const;
};

struct CEnumInfo {
    std::string typeName;
    std::string name;
    short value;
    std::string help;
};

class CInterfaceInfo {
public:
    CInterfaceInfo(std::string name, GUID iid, std::string help) : m_name(std::move(name)), m_iid(iid), m_help(std::move(help)) {}

    const std::string& Name() const { return m_name; }
    const GUID& Iid() const { return m_iid; }
    const std::string& Help() const { return m_help; }
    const std::vector<CMemberInfo>& Members() const { return m_members; }

    const CMemberInfo* Find(DISPID id) const;
    const CMemberInfo* FindName(std::string_view name) const;  // without regard to case
    // Adds a member; the signature is parsed as the comment at the top of this file shows.
    // A malformed signature is a programming error and aborts.
    CMemberInfo& Add(DISPID id, MemberKind kind, std::string_view signature, bool writable = false);

private:
    std::string m_name;
    GUID m_iid;
    std::string m_help;
    std::vector<CMemberInfo> m_members;
    std::unordered_map<DISPID, size_t> m_byId;
    std::unordered_map<std::string, size_t> m_byName;  // lower case
};

// A creatable class with its default interface, its event interface and the enumerations of
// its library.
struct CClassInfo {
    std::string name;
    GUID clsid;
    std::string help;
    GUID libid;
    const CInterfaceInfo* dispatch = nullptr;
    const CInterfaceInfo* events = nullptr;
    std::vector<CEnumInfo> enums;
};

// Parses one signature; false for text that is not one.
bool ParseMemberSignature(std::string_view signature, MemberKind kind, CMemberInfo* out);
// The variant type that a value of the type travels as (by value).
VARTYPE VarTypeOf(AutoType type);
// Converts `value` to the type of `param` (by value). False when it cannot stand for it.
bool CoerceArgument(const CParamInfo& param, const Variant& value, Variant* out);
// The listing of the library in IDL form: identifiers, enumerations, both interfaces, the class.
std::string WriteIdlListing(const CClassInfo& info);

// The class description of an object, for generic clients.
extern const IID IID_IProvideClassInfo;
class IProvideClassInfo : public IUnknown {
public:
    virtual const CClassInfo* GetClassInfo() = 0;

protected:
    ~IProvideClassInfo() = default;
};

// The outgoing interface of an object: clients advise a dispatch sink on it.
extern const IID IID_IConnectionPointContainer;
class IConnectionPointContainer : public IUnknown {
public:
    // The cookie is above 0. E_POINTER for a null sink or cookie pointer.
    virtual HRESULT Advise(IDispatch* sink, DWORD* pCookie) = 0;
    // CONNECT_E_NOCONNECTION for an unknown cookie.
    virtual HRESULT Unadvise(DWORD cookie) = 0;

protected:
    ~IConnectionPointContainer() = default;
};
