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

#include "platform/com/typeinfo.h"

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

// The arguments of a call made by a member's declaration, as a host that holds only the
// in-arguments makes it: they fill the by-value parameters in order (stopping at the first one
// not given; any left over follow at the end, so that a wrong count reaches the callee), and
// each by-reference parameter points at storage of its declared type, read after the call.
class CDeclaredCall {
public:
    CDeclaredCall(const CMemberInfo& member, std::vector<Variant> in);
    CDeclaredCall(const CDeclaredCall&) = delete;
    CDeclaredCall& operator=(const CDeclaredCall&) = delete;

    std::vector<Variant>& Args() { return m_args; }
    // The values behind the by-reference arguments, by value, in the order of the parameters.
    std::vector<Variant> OutValues() const;

private:
    struct Cell {
        int16_t i2 = 0;
        int32_t i4 = 0;
        uint32_t ui4 = 0;
        VARIANT_BOOL b = VARIANT_FALSE;
        std::string str;
    };
    std::vector<Cell> m_cells;  // one per parameter, sized once: the references stay valid
    std::vector<Variant> m_args;
    std::vector<size_t> m_outPlaces;
};

// The number by which a host knows an automation error: the low word of an error of the
// automation facility (380, 381, 383...), the code itself otherwise (0 for a raised text).
int32_t AutomationErrorNumber(SCODE scode);

// A call with named arguments, as a host writes `Method(nEnd := 5, nStart := 10)`: the positional
// arguments come first, the named ones are placed by the parameter names of the object's type
// description. DISP_E_NONAMEDARGS when the object gives no description, DISP_E_PARAMNOTFOUND for
// a name that is no parameter of the member or one already given; otherwise what Invoke gives.
struct NamedArg {
    std::string name;
    Variant value;
};
HRESULT InvokeWithNames(IDispatch* object, DISPID id, WORD flags, std::vector<Variant> positional,
                        const std::vector<NamedArg>& named, Variant* result, ExcepInfo* excep);

// What one Invoke asks of a member, once checked against the member's declaration.
enum class CallShape { Get, Put, Call };
// Checks the flags and the number of arguments, converts the by-value arguments into `coerced`
// (by-reference ones are passed on as they are, and must point somewhere of their declared
// type), and says which code runs. A put of a read-only property fails here with error 383.
HRESULT PrepareInvoke(const CMemberInfo& member, WORD flags, const std::vector<Variant>& args,
                      std::vector<Variant>* coerced, CallShape* shape, ExcepInfo* excep);
// The value of a member in its declared type (nothing for a method without a result).
Variant DeclaredResult(const CMemberInfo& member, Variant value);
HRESULT LookUpName(const CInterfaceInfo& info, const std::string& name, DISPID* pDispId);

// The members of one automation interface, by dispid and name, with the code behind each.
// T is the object the table serves; one table per class, shared by all instances. Each member
// is declared by its signature (see typeinfo.h); Invoke checks the call against it, converts
// every by-value argument to its declared type before the code runs, and gives the result in
// the declared type, so the code behind a member sees exactly the types it was declared with.
template <class T>
class CDispatchTable {
public:
    using Getter = std::function<Variant(T&, const std::vector<Variant>& index)>;
    using Setter = std::function<void(T&, const std::vector<Variant>& index, const Variant& value)>;
    using MethodFn = std::function<Variant(T&, std::vector<Variant>& args)>;

    explicit CDispatchTable(std::string name = {}, GUID iid = {}, std::string help = {})
        : m_info(std::move(name), iid, std::move(help)) {}

    // A property; without a setter it is read-only and a set raises error 383.
    CDispatchTable& Property(DISPID id, std::string_view signature, Getter get, Setter put = nullptr) {
        m_info.Add(id, MemberKind::Property, signature, put != nullptr);
        m_code.push_back({std::move(get), std::move(put), nullptr});
        return *this;
    }
    CDispatchTable& Method(DISPID id, std::string_view signature, MethodFn call) {
        m_info.Add(id, MemberKind::Method, signature);
        m_code.push_back({nullptr, nullptr, std::move(call)});
        return *this;
    }

    const CInterfaceInfo& Info() const { return m_info; }

    HRESULT GetIDsOfNames(const std::string& name, DISPID* pDispId) const { return LookUpName(m_info, name, pDispId); }
    HRESULT Invoke(T& self, DISPID id, WORD flags, std::vector<Variant>& args, Variant* result,
                   ExcepInfo* excep) const;

private:
    struct Code {
        Getter get;
        Setter put;
        MethodFn call;
    };
    CInterfaceInfo m_info;
    std::vector<Code> m_code;  // in the order of m_info's members
};

bool EqualNoCase(const std::string& a, const std::string& b);
// Runs one dispatch call, turning the exceptions of the call into results.
HRESULT GuardedInvoke(const std::function<void()>& call, ExcepInfo* excep);

template <class T>
HRESULT CDispatchTable<T>::Invoke(T& self, DISPID id, WORD flags, std::vector<Variant>& args, Variant* result,
                                  ExcepInfo* excep) const {
    const CMemberInfo* member = m_info.Find(id);
    if (!member) return DISP_E_MEMBERNOTFOUND;
    const Code& code = m_code[static_cast<size_t>(member - m_info.Members().data())];
    std::vector<Variant> a;
    CallShape shape;
    if (HRESULT hr = PrepareInvoke(*member, flags, args, &a, &shape, excep); FAILED(hr)) return hr;
    return GuardedInvoke([&] {
        Variant v;
        if (shape == CallShape::Put) {
            Variant value = std::move(a.back());
            a.pop_back();
            code.put(self, a, value);
        } else {
            v = shape == CallShape::Call ? code.call(self, a) : code.get(self, a);
        }
        if (result) *result = DeclaredResult(*member, std::move(v));
    }, excep);
}
