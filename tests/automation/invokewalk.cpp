#include "tests/automation/invokewalk.h"

#include <optional>

#include "platform/com/automation.h"

namespace walk {

Variant ToVariant(const Value& v) {
    switch (v.kind) {
        case Value::Kind::Integer: return Variant::Long(static_cast<int32_t>(v.integer));
        case Value::Kind::String: return Variant::Str(v.text);
        case Value::Kind::Bool: return Variant::Bool(v.flag);
        case Value::Kind::Null:
        case Value::Kind::Any: return Variant::Dispatch(nullptr);
    }
    return Variant();
}

namespace {

std::string Describe(const Variant& v) {
    std::string text;
    int32_t n = 0;
    if (v.ToStr(&text)) return Format(Value{Value::Kind::String, 0, text, false});
    if (v.Type() == VT_BOOL && v.ToLong(&n)) return n ? "true" : "false";
    if (v.Type() == VT_DISPATCH || v.Type() == VT_UNKNOWN || v.IsEmpty())
        return v.UnknownVal() || v.DispatchVal() ? "an object" : "null";
    if (v.ToLong(&n)) return std::to_string(n);
    return "a value of type " + std::to_string(v.Type());
}

std::string Expected(Expectation::Kind kind, int errorNumber = 0) {
    switch (kind) {
        case Expectation::Kind::Mismatch: return "mismatch";
        case Expectation::Kind::BadCount: return "badcount";
        case Expectation::Kind::Unknown: return "unknown";
        case Expectation::Kind::NotFound: return "notfound";
        case Expectation::Kind::Error: return "error " + std::to_string(errorNumber);
        default: return "success";
    }
}

// The expectation that a failed call meets, or nothing when no failure would.
std::string Failure(HRESULT hr, const ExcepInfo& excep, const Expectation& e) {
    const std::pair<HRESULT, Expectation::Kind> plain[] = {
        {DISP_E_TYPEMISMATCH, Expectation::Kind::Mismatch}, {DISP_E_BADPARAMCOUNT, Expectation::Kind::BadCount},
        {DISP_E_UNKNOWNNAME, Expectation::Kind::Unknown},   {DISP_E_MEMBERNOTFOUND, Expectation::Kind::NotFound},
    };
    for (const auto& [code, kind] : plain)
        if (hr == code) return e.kind == kind ? "" : "got " + Expected(kind) + ", expected " + Expected(e.kind, e.errorNumber);
    if (hr != DISP_E_EXCEPTION) return "failed with " + std::to_string(hr);
    const int number = AutomationErrorNumber(excep.scode);
    if (e.kind != Expectation::Kind::Error || number != e.errorNumber)
        return "raised error " + std::to_string(number) + " \"" + excep.description + "\", expected " + Expected(e.kind, e.errorNumber);
    if (e.errorText && *e.errorText != excep.description) return "raised the text \"" + excep.description + "\"";
    return "";
}

std::string CheckSuccess(const Expectation& e, const Variant& result, const std::vector<Variant>& outs) {
    std::string why;
    switch (e.kind) {
        case Expectation::Kind::Ok: return "";
        case Expectation::Kind::Any: return result.IsEmpty() ? "gave no result" : "";
        case Expectation::Kind::Value:
        case Expectation::Kind::Out: break;
        default: return "succeeded, expected " + Expected(e.kind, e.errorNumber);
    }
    if (e.result && !Matches(*e.result, result, &why)) return "result " + why;
    if (e.kind != Expectation::Kind::Out) return "";
    if (outs.size() != e.out.size()) return "gave " + std::to_string(outs.size()) + " out values";
    for (size_t i = 0; i < outs.size(); ++i)
        if (!Matches(e.out[i], outs[i], &why)) return "out value " + std::to_string(i + 1) + " " + why;
    return "";
}

WORD FlagsOf(Step::Verb verb) {
    return verb == Step::Verb::Put ? DISPATCH_PROPERTYPUT : verb == Step::Verb::Get ? DISPATCH_PROPERTYGET : DISPATCH_METHOD;
}

}  // namespace

bool Matches(const Value& expected, const Variant& actual, std::string* why) {
    *why = "is " + Describe(actual);
    std::string text;
    int32_t n = 0;
    switch (expected.kind) {
        case Value::Kind::String: return actual.ToStr(&text) && text == expected.text;
        case Value::Kind::Bool: return actual.Type() == VT_BOOL && actual.ToLong(&n) && (n != 0) == expected.flag;
        case Value::Kind::Null: return Describe(actual) == "null";
        case Value::Kind::Any: return true;
        case Value::Kind::Integer:
            // Colours travel unsigned: compare the 32 bits.
            return actual.Type() != VT_BOOL && actual.ToLong(&n) &&
                   static_cast<uint32_t>(n) == static_cast<uint32_t>(expected.integer);
    }
    return false;
}

std::string PlayInvokeStep(IDispatch* object, const Step& step) {
    DISPID id = DISPID_UNKNOWN;
    HRESULT hr = object->GetIDsOfNames(step.member, &id);
    const CInterfaceInfo* info = object->GetTypeInfo();
    const CMemberInfo* member = info ? info->Find(id) : nullptr;
    std::vector<Variant> given;
    for (const Value& v : step.args) given.push_back(ToVariant(v));
    // A call by the declaration gets storage for its out values; other steps pass what they give.
    std::optional<CDeclaredCall> call;
    if (step.verb == Step::Verb::Call && member) call.emplace(*member, std::move(given));
    std::vector<Variant>& args = call ? call->Args() : given;
    Variant result;
    ExcepInfo excep;
    if (SUCCEEDED(hr)) hr = object->Invoke(id, FlagsOf(step.verb), args, &result, &excep);
    if (FAILED(hr)) return Failure(hr, excep, step.expect);
    return CheckSuccess(step.expect, result, call ? call->OutValues() : std::vector<Variant>{});
}

}  // namespace walk
