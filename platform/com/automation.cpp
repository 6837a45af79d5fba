#include "platform/com/automation.h"

#include <algorithm>
#include <cctype>

const IID IID_IDispatch = MakeGuid("{00020400-0000-0000-C000-000000000046}");

namespace {

const Variant& ArgAt(const std::vector<Variant>& args, size_t i) {
    if (i >= args.size()) throw DispatchTypeMismatch{};
    return args[i];
}

template <class T, class F>
T Convert(const std::vector<Variant>& args, size_t i, F&& f) {
    T out{};
    if (!f(ArgAt(args, i), &out)) throw DispatchTypeMismatch{};
    return out;
}

}  // namespace

int32_t ArgLong(const std::vector<Variant>& a, size_t i) {
    return Convert<int32_t>(a, i, [](const Variant& v, int32_t* o) { return v.ToLong(o); });
}
int16_t ArgShort(const std::vector<Variant>& a, size_t i) {
    return Convert<int16_t>(a, i, [](const Variant& v, int16_t* o) { return v.ToShort(o); });
}
uint32_t ArgColor(const std::vector<Variant>& a, size_t i) {
    return Convert<uint32_t>(a, i, [](const Variant& v, uint32_t* o) { return v.ToULong(o); });
}
bool ArgBool(const std::vector<Variant>& a, size_t i) {
    return Convert<bool>(a, i, [](const Variant& v, bool* o) { return v.ToBool(o); });
}
std::string ArgStr(const std::vector<Variant>& a, size_t i) {
    return Convert<std::string>(a, i, [](const Variant& v, std::string* o) { return v.ToStr(o); });
}
IDispatch* ArgDispatch(const std::vector<Variant>& a, size_t i) {
    return Convert<IDispatch*>(a, i, [](const Variant& v, IDispatch** o) { return v.ToDispatch(o); });
}
IUnknown* ArgUnknown(const std::vector<Variant>& a, size_t i) {
    return Convert<IUnknown*>(a, i, [](const Variant& v, IUnknown** o) { return v.ToUnknown(o); });
}
void ArgSetOut(const std::vector<Variant>& a, size_t i, const Variant& value) {
    if (!ArgAt(a, i).SetByRef(value)) throw DispatchTypeMismatch{};
}

bool EqualNoCase(const std::string& a, const std::string& b) {
    if (a.size() != b.size()) return false;
    for (size_t i = 0; i < a.size(); ++i) {
        if (std::tolower(static_cast<unsigned char>(a[i])) != std::tolower(static_cast<unsigned char>(b[i])))
            return false;
    }
    return true;
}

HRESULT GuardedInvoke(const std::function<void()>& call, ExcepInfo* excep) {
    try {
        call();
        return S_OK;
    } catch (const AutomationError& e) {
        if (excep) {
            excep->scode = e.Scode();
            excep->description = e.Text();
        }
        return DISP_E_EXCEPTION;
    } catch (const DispatchTypeMismatch&) {
        return DISP_E_TYPEMISMATCH;
    }
}

HRESULT LookUpName(const CInterfaceInfo& info, const std::string& name, DISPID* pDispId) {
    if (!pDispId) return E_POINTER;
    const CMemberInfo* m = info.FindName(name);
    *pDispId = m ? m->id : DISPID_UNKNOWN;
    return m ? S_OK : DISP_E_UNKNOWNNAME;
}

namespace {

// A by-reference argument must point at a value of exactly its declared type.
HRESULT CheckByRef(const CParamInfo& param, const Variant& arg) {
    if (!arg.IsByRef() || static_cast<VARTYPE>(arg.Type() & ~VT_BYREF) != VarTypeOf(param.type))
        return DISP_E_TYPEMISMATCH;
    return arg.RefVal() ? S_OK : E_POINTER;
}

HRESULT CoerceArguments(const std::vector<CParamInfo>& params, const std::vector<Variant>& args,
                        std::vector<Variant>* coerced) {
    coerced->resize(args.size());
    for (size_t i = 0; i < params.size(); ++i) {
        if (params[i].byRef) {
            if (HRESULT hr = CheckByRef(params[i], args[i]); FAILED(hr)) return hr;
            (*coerced)[i] = args[i];
        } else if (!CoerceArgument(params[i], args[i], &(*coerced)[i])) {
            return DISP_E_TYPEMISMATCH;
        }
    }
    return S_OK;
}

HRESULT ShapeOf(const CMemberInfo& m, WORD flags, size_t nArgs, CallShape* shape) {
    const size_t n = m.params.size();
    if (m.kind == MemberKind::Method) {
        // A method without parameters may be read like a property, as script hosts do.
        if (!(flags & DISPATCH_METHOD) && !((flags & DISPATCH_PROPERTYGET) && n == 0)) return DISP_E_MEMBERNOTFOUND;
        *shape = CallShape::Call;
        return nArgs == n ? S_OK : DISP_E_BADPARAMCOUNT;
    }
    if (m.kind != MemberKind::Property) return DISP_E_MEMBERNOTFOUND;
    if (flags & (DISPATCH_PROPERTYPUT | DISPATCH_PROPERTYPUTREF)) {
        *shape = CallShape::Put;
        return nArgs == n + 1 ? S_OK : DISP_E_BADPARAMCOUNT;
    }
    if (!(flags & (DISPATCH_PROPERTYGET | DISPATCH_METHOD))) return DISP_E_MEMBERNOTFOUND;
    *shape = CallShape::Get;
    return nArgs == n ? S_OK : DISP_E_BADPARAMCOUNT;
}

}  // namespace

HRESULT PrepareInvoke(const CMemberInfo& member, WORD flags, const std::vector<Variant>& args,
                      std::vector<Variant>* coerced, CallShape* shape, ExcepInfo* excep) {
    if (HRESULT hr = ShapeOf(member, flags, args.size(), shape); FAILED(hr)) return hr;
    if (*shape == CallShape::Put && !member.writable)
        return GuardedInvoke([] { throw AutomationError(CTL_E_SETNOTSUPPORTED, {}); }, excep);
    if (HRESULT hr = CoerceArguments(member.params, args, coerced); FAILED(hr)) return hr;
    if (*shape == CallShape::Put && !CoerceArgument(member.result, args.back(), &coerced->back()))
        return DISP_E_TYPEMISMATCH;
    return S_OK;
}

Variant DeclaredResult(const CMemberInfo& member, Variant value) {
    if (member.result.type == AutoType::Void) return Variant();
    Variant out;
    return CoerceArgument(member.result, value, &out) ? out : value;
}

HRESULT InvokeWithNames(IDispatch* object, DISPID id, WORD flags, std::vector<Variant> positional,
                        const std::vector<NamedArg>& named, Variant* result, ExcepInfo* excep) {
    if (named.empty()) return object->Invoke(id, flags, positional, result, excep);
    const CInterfaceInfo* info = object->GetTypeInfo();
    const CMemberInfo* member = info ? info->Find(id) : nullptr;
    if (!member) return info ? DISP_E_MEMBERNOTFOUND : DISP_E_NONAMEDARGS;
    const size_t n = member->params.size();
    if (positional.size() > n) return DISP_E_BADPARAMCOUNT;
    std::vector<Variant> args(std::move(positional));
    std::vector<bool> given(n, false);
    std::fill(given.begin(), given.begin() + static_cast<long>(args.size()), true);
    args.resize(n);
    for (const NamedArg& a : named) {
        size_t i = 0;
        while (i < n && !EqualNoCase(member->params[i].name, a.name)) ++i;
        if (i == n || given[i]) return DISP_E_PARAMNOTFOUND;
        args[i] = a.value;
        given[i] = true;
    }
    if (std::find(given.begin(), given.end(), false) != given.end()) return DISP_E_BADPARAMCOUNT;
    return object->Invoke(id, flags, args, result, excep);
}

CDeclaredCall::CDeclaredCall(const CMemberInfo& member, std::vector<Variant> in) : m_cells(member.params.size()) {
    size_t next = 0;
    for (size_t i = 0; i < member.params.size(); ++i) {
        const CParamInfo& p = member.params[i];
        if (!p.byRef) {
            if (next == in.size()) break;
            m_args.push_back(std::move(in[next++]));
            continue;
        }
        Cell& c = m_cells[i];
        m_outPlaces.push_back(m_args.size());
        switch (VarTypeOf(p.type)) {
            case VT_I2: m_args.push_back(Variant::RefShort(&c.i2)); break;
            case VT_UI4: m_args.push_back(Variant::RefColor(&c.ui4)); break;
            case VT_BOOL: m_args.push_back(Variant::RefBool(&c.b)); break;
            case VT_BSTR: m_args.push_back(Variant::RefStr(&c.str)); break;
            default: m_args.push_back(Variant::RefLong(&c.i4)); break;
        }
    }
    while (next < in.size()) m_args.push_back(std::move(in[next++]));
}

std::vector<Variant> CDeclaredCall::OutValues() const {
    std::vector<Variant> out;
    for (size_t place : m_outPlaces) out.push_back(m_args[place].Dereferenced());
    return out;
}

int32_t AutomationErrorNumber(SCODE scode) {
    const auto code = static_cast<uint32_t>(scode);
    return (code & 0xFFFF0000u) == 0x800A0000u ? static_cast<int32_t>(code & 0xFFFFu) : scode;
}
