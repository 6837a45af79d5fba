#include "platform/com/automation.h"

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
