// Automation errors and table-driven IDispatch.
//
// An automation error is a value with a code and a text. Setters and methods of automation
// objects throw it; the dispatch layer turns it into DISP_E_EXCEPTION with ExcepInfo filled in.
// Three forms are used: error 380 (invalid property value), error 381 (invalid index), and a
// raised text with code 0.
#pragma once
#include <exception>
#include <functional>
#include <string>
#include <vector>

#include "platform/com/dispatch.h"

constexpr SCODE CTL_E_INVALIDPROPERTYVALUE = MakeHr(0x800A017Cu);       // error 380
constexpr SCODE CTL_E_INVALIDPROPERTYARRAYINDEX = MakeHr(0x800A017Du);  // error 381

class AutomationError : public std::exception {
public:
    AutomationError(SCODE scode, std::string text) : m_scode(scode), m_text(std::move(text)) {}
    static AutomationError InvalidValue(std::string text = {}) { return {CTL_E_INVALIDPROPERTYVALUE, std::move(text)}; }
    static AutomationError InvalidIndex() { return {CTL_E_INVALIDPROPERTYARRAYINDEX, {}}; }
    static AutomationError Raised(std::string text) { return {0, std::move(text)}; }

    SCODE Scode() const { return m_scode; }
    const std::string& Text() const { return m_text; }
    const char* what() const noexcept override { return m_text.c_str(); }

private:
    SCODE m_scode;
    std::string m_text;
};

// Thrown by the argument readers below when an argument does not fit its parameter.
struct DispatchTypeMismatch {};

// Typed access to Invoke arguments; throw DispatchTypeMismatch on a value of the wrong type.
int32_t ArgLong(const std::vector<Variant>& args, size_t i);
int16_t ArgShort(const std::vector<Variant>& args, size_t i);
uint32_t ArgColor(const std::vector<Variant>& args, size_t i);
bool ArgBool(const std::vector<Variant>& args, size_t i);
std::string ArgStr(const std::vector<Variant>& args, size_t i);
IDispatch* ArgDispatch(const std::vector<Variant>& args, size_t i);  // no reference added
IUnknown* ArgUnknown(const std::vector<Variant>& args, size_t i);    // no reference added
// Writes an out parameter (a by-reference argument).
void ArgSetOut(const std::vector<Variant>& args, size_t i, const Variant& value);

// The members of one automation interface, by dispid and name, with the code behind each.
// T is the object the table serves; one table per class, shared by all instances.
template <class T>
class CDispatchTable {
public:
    using Getter = std::function<Variant(T&, const std::vector<Variant>& index)>;
    using Setter = std::function<void(T&, const std::vector<Variant>& index, const Variant& value)>;
    using MethodFn = std::function<Variant(T&, std::vector<Variant>& args)>;

    struct Entry {
        DISPID id;
        std::string name;
        size_t nParams;  // index parameters of a property, parameters of a method
        Getter get;
        Setter put;  // null: read-only, a set raises error 383
        MethodFn call;
    };

    CDispatchTable& Property(DISPID id, std::string name, Getter get, Setter put = nullptr, size_t nIndex = 0) {
        m_entries.push_back({id, std::move(name), nIndex, std::move(get), std::move(put), nullptr});
        return *this;
    }
    CDispatchTable& Method(DISPID id, std::string name, size_t nParams, MethodFn call) {
        m_entries.push_back({id, std::move(name), nParams, nullptr, nullptr, std::move(call)});
        return *this;
    }

    const Entry* Find(DISPID id) const {
        for (const Entry& e : m_entries)
            if (e.id == id) return &e;
        return nullptr;
    }

    HRESULT GetIDsOfNames(const std::string& name, DISPID* pDispId) const;
    HRESULT Invoke(T& self, DISPID id, WORD flags, std::vector<Variant>& args, Variant* result,
                   ExcepInfo* excep) const;

private:
    std::vector<Entry> m_entries;
};

bool EqualNoCase(const std::string& a, const std::string& b);
// Runs one dispatch call, turning the exceptions of the call into results.
HRESULT GuardedInvoke(const std::function<void()>& call, ExcepInfo* excep);

template <class T>
HRESULT CDispatchTable<T>::GetIDsOfNames(const std::string& name, DISPID* pDispId) const {
    if (!pDispId) return E_POINTER;
    for (const Entry& e : m_entries) {
        if (EqualNoCase(e.name, name)) {
            *pDispId = e.id;
            return S_OK;
        }
    }
    *pDispId = DISPID_UNKNOWN;
    return DISP_E_UNKNOWNNAME;
}

template <class T>
HRESULT CDispatchTable<T>::Invoke(T& self, DISPID id, WORD flags, std::vector<Variant>& args, Variant* result,
                                  ExcepInfo* excep) const {
    const Entry* e = Find(id);
    if (!e) return DISP_E_MEMBERNOTFOUND;
    if (e->call) {
        if (!(flags & DISPATCH_METHOD) && !((flags & DISPATCH_PROPERTYGET) && e->nParams == 0))
            return DISP_E_MEMBERNOTFOUND;
        if (args.size() != e->nParams) return DISP_E_BADPARAMCOUNT;
        return GuardedInvoke([&] {
            Variant v = e->call(self, args);
            if (result) *result = std::move(v);
        }, excep);
    }
    if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
        if (args.size() != e->nParams + 1) return DISP_E_BADPARAMCOUNT;
        if (!e->put) {
            return GuardedInvoke([] { throw AutomationError(CTL_E_SETNOTSUPPORTED, {}); }, excep);
        }
        std::vector<Variant> index(args.begin(), args.end() - 1);
        return GuardedInvoke([&] { e->put(self, index, args.back()); }, excep);
    }
    if (flags & (DISPATCH_PROPERTYGET | DISPATCH_METHOD)) {
        if (args.size() != e->nParams) return DISP_E_BADPARAMCOUNT;
        return GuardedInvoke([&] {
            Variant v = e->get(self, args);
            if (result) *result = std::move(v);
        }, excep);
    }
    return DISP_E_MEMBERNOTFOUND;
}
