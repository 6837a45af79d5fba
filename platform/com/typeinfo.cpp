#include "platform/com/typeinfo.h"

#include <cctype>
#include <cstdio>
#include <algorithm>
#include <cstdlib>
#include <sstream>

#include "platform/com/automation.h"

const IID IID_IProvideClassInfo = MakeGuid("{B196B283-BAB4-101A-B69C-00AA00341D07}");
const IID IID_IConnectionPointContainer = MakeGuid("{B196B284-BAB4-101A-B69C-00AA00341D07}");

namespace {

struct TypeName {
    std::string_view name;
    AutoType type;
};

// Interface pointer types are values; any other type written with '*' is by reference.
constexpr TypeName kTypeNames[] = {
    {"void", AutoType::Void},          {"short", AutoType::Short},
    {"long", AutoType::Long},          {"BOOL", AutoType::Bool},
    {"BSTR", AutoType::Str},           {"OLE_COLOR", AutoType::Color},
    {"IDispatch*", AutoType::Dispatch}, {"IFontDisp*", AutoType::Font},
    {"IUnknown*", AutoType::Unknown},  {"OLE_HANDLE", AutoType::Handle},
    {"OLE_XPOS_PIXELS", AutoType::XPos}, {"OLE_YPOS_PIXELS", AutoType::YPos},
    {"SCODE", AutoType::Scode},        {"VARIANT", AutoType::Variant},
    {"AppearanceType", AutoType::Enum}, {"HighLightType", AutoType::Enum},
    {"CURRENCY", AutoType::Currency},
};

std::string_view Trim(std::string_view s) {
    while (!s.empty() && s.front() == ' ') s.remove_prefix(1);
    while (!s.empty() && s.back() == ' ') s.remove_suffix(1);
    return s;
}

bool LookUpType(std::string_view text, CParamInfo* out) {
    for (bool byRef : {false, true}) {
        std::string_view base = text;
        if (byRef) {
            if (base.empty() || base.back() != '*') return false;
            base = Trim(base.substr(0, base.size() - 1));
        }
        for (const TypeName& t : kTypeNames) {
            if (t.name == base) {
                out->type = t.type;
                out->byRef = byRef;
                out->typeName = std::string(base);
                return true;
            }
        }
    }
    return false;
}

bool IsNameChar(char c) { return c == '_' || (c >= '0' && c <= '9') || ((c | 0x20) >= 'a' && (c | 0x20) <= 'z'); }

// "type name": the name is the identifier at the end, the type everything before it.
bool ParseTypedName(std::string_view text, CParamInfo* out, std::string* name) {
    text = Trim(text);
    size_t start = text.size();
    while (start > 0 && IsNameChar(text[start - 1])) --start;
    if (start == text.size() || start == 0) return false;
    *name = std::string(text.substr(start));
    return LookUpType(Trim(text.substr(0, start)), out);
}

bool ParseParams(std::string_view text, std::vector<CParamInfo>* params) {
    text = Trim(text);
    while (!text.empty()) {
        const size_t comma = text.find(',');
        CParamInfo p;
        if (!ParseTypedName(text.substr(0, comma), &p, &p.name) || p.type == AutoType::Void) return false;
        params->push_back(std::move(p));
        text = comma == std::string_view::npos ? std::string_view() : Trim(text.substr(comma + 1));
        if (comma != std::string_view::npos && text.empty()) return false;
    }
    return true;
}

bool ParseNumber(const std::string& text, int32_t* out) {
    if (text.empty()) return false;
    char* end = nullptr;
    const long long v = std::strtoll(text.c_str(), &end, 10);
    if (*end != '\0' || v < INT32_MIN || v > INT32_MAX) return false;
    *out = static_cast<int32_t>(v);
    return true;
}

// A number of a type that the value can stand for: integers, booleans and decimal text.
bool ToInteger(const Variant& value, int32_t* out) {
    if (value.ToLong(out)) return true;
    std::string text;
    return value.ToStr(&text) && ParseNumber(text, out);
}

}  // namespace

size_t CMemberInfo::OutParamCount() const {
    size_t n = 0;
    for (const CParamInfo& p : params) n += p.byRef;
    return n;
}

bool ParseMemberSignature(std::string_view signature, MemberKind kind, CMemberInfo* out) {
    const size_t open = signature.find('(');
    std::string_view head = Trim(signature.substr(0, open));
    out->kind = kind;
    out->params.clear();
    if (open != std::string_view::npos) {
        if (signature.back() != ')') return false;
        if (!ParseParams(signature.substr(open + 1, signature.size() - open - 2), &out->params)) return false;
    } else if (kind != MemberKind::Property) {
        return false;
    }
    if (kind == MemberKind::Event) {
        for (char c : head)
            if (!IsNameChar(c)) return false;
        out->name = std::string(head);
        out->result = CParamInfo{};
        return !head.empty();
    }
    if (!ParseTypedName(head, &out->result, &out->name) || out->result.byRef) return false;
    return kind == MemberKind::Method || out->result.type != AutoType::Void;
}

namespace {

std::string Lower(std::string_view s) {
    std::string out(s);
    for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

}  // namespace

const CMemberInfo* CInterfaceInfo::Find(DISPID id) const {
    const auto it = m_byId.find(id);
    return it == m_byId.end() ? nullptr : &m_members[it->second];
}

const CMemberInfo* CInterfaceInfo::FindName(std::string_view name) const {
    const auto it = m_byName.find(Lower(name));
    return it == m_byName.end() ? nullptr : &m_members[it->second];
}

CMemberInfo& CInterfaceInfo::Add(DISPID id, MemberKind kind, std::string_view signature, bool writable) {
    CMemberInfo m;
    if (!ParseMemberSignature(signature, kind, &m) || Find(id)) {
        std::fprintf(stderr, "bad member %d: %.*s\n", id, static_cast<int>(signature.size()), signature.data());
        std::abort();
    }
    m.id = id;
    m.writable = writable;
    m_byId.emplace(id, m_members.size());
    m_byName.emplace(Lower(m.name), m_members.size());
    m_members.push_back(std::move(m));
    return m_members.back();
}

VARTYPE VarTypeOf(AutoType type) {
    switch (type) {
        case AutoType::Void: return VT_EMPTY;
        case AutoType::Short:
        case AutoType::Enum: return VT_I2;
        case AutoType::Long:
        case AutoType::Handle:
        case AutoType::XPos:
        case AutoType::YPos: return VT_I4;
        case AutoType::Bool: return VT_BOOL;
        case AutoType::Str: return VT_BSTR;
        case AutoType::Color: return VT_UI4;
        case AutoType::Dispatch:
        case AutoType::Font: return VT_DISPATCH;
        case AutoType::Unknown: return VT_UNKNOWN;
        case AutoType::Scode: return VT_ERROR;
        case AutoType::Variant: return VT_VARIANT;
        case AutoType::Currency: return VT_CY;
    }
    return VT_EMPTY;
}

bool CoerceArgument(const CParamInfo& param, const Variant& value, Variant* out) {
    int32_t n = 0;
    switch (param.type) {
        case AutoType::Void: return false;
        case AutoType::Variant: *out = value; return true;
        case AutoType::Currency: {
            int64_t cy = 0;
            if (!value.ToCurrency(&cy)) return false;
            *out = Variant::Currency(cy);
            return true;
        }
        case AutoType::Str: {
            std::string text;
            if (!value.ToStr(&text)) {
                if (!value.ToLong(&n)) return false;
                text = std::to_string(n);
            }
            *out = Variant::Str(std::move(text));
            return true;
        }
        case AutoType::Dispatch:
        case AutoType::Font: {
            IDispatch* p = nullptr;
            if (!value.ToDispatch(&p)) return false;
            *out = Variant::Dispatch(p);
            return true;
        }
        case AutoType::Unknown: {
            IUnknown* p = nullptr;
            if (!value.ToUnknown(&p)) return false;
            *out = Variant::Unknown(p);
            return true;
        }
        default: break;
    }
    if (value.Type() == VT_ERROR && param.type == AutoType::Scode) {
        *out = value;
        return true;
    }
    if (!ToInteger(value, &n)) return false;
    switch (param.type) {
        case AutoType::Short:
        case AutoType::Enum:
            if (n < INT16_MIN || n > INT16_MAX) return false;
            *out = Variant::Short(static_cast<int16_t>(n));
            return true;
        case AutoType::Bool: *out = Variant::Bool(n != 0); return true;
        case AutoType::Color: *out = Variant::ULong(static_cast<uint32_t>(n)); return true;
        case AutoType::Scode: *out = Variant::Error(n); return true;
        default: *out = Variant::Long(n); return true;
    }
}

namespace {

std::string Uuid(const GUID& g) {
    std::string s = StringFromGuid(g);
    return s.substr(1, s.size() - 2);
}

std::string ParamList(const std::vector<CParamInfo>& params, const CParamInfo* value) {
    std::string out;
    for (const CParamInfo& p : params) {
        if (!out.empty()) out += ", ";
        out += p.typeName + (p.byRef ? "* " : " ") + p.name;
    }
    if (value) out += (out.empty() ? "" : ", ") + value->typeName + " rhs";
    return out;
}

void WriteMember(std::ostringstream& s, const CMemberInfo& m) {
    const std::string id = "[id(" + std::to_string(m.id) + ")";
    if (m.kind == MemberKind::Property && m.params.empty()) {
        s << "        " << id << (m.writable ? "" : ", readonly") << "] " << m.result.typeName << " " << m.name << ";\n";
    } else if (m.kind == MemberKind::Property) {
        s << "        " << id << ", propget] " << m.result.typeName << " " << m.name << "(" << ParamList(m.params, nullptr)
          << ");\n";
        if (m.writable)
            s << "        " << id << ", propput] void " << m.name << "(" << ParamList(m.params, &m.result) << ");\n";
    } else {
        const std::string& result = m.kind == MemberKind::Event ? "void" : m.result.typeName;
        s << "        " << id << "] " << result << " " << m.name << "(" << ParamList(m.params, nullptr) << ");\n";
    }
}

// Members in the order of their dispids when `byId`, else as declared.
void WriteInterface(std::ostringstream& s, const CInterfaceInfo& info, bool byId) {
    std::vector<const CMemberInfo*> members;
    for (const CMemberInfo& m : info.Members()) members.push_back(&m);
    if (byId) std::stable_sort(members.begin(), members.end(), [](auto* a, auto* b) { return a->id < b->id; });
    s << "    [uuid(" << Uuid(info.Iid()) << "), helpstring(\"" << info.Help() << "\")]\n";
    s << "    dispinterface " << info.Name() << " {\n        properties:\n";
    for (const CMemberInfo* m : members)
        if (m->kind == MemberKind::Property && m->params.empty()) WriteMember(s, *m);
    s << "        methods:\n";
    for (const CMemberInfo* m : members)
        if (m->kind != MemberKind::Property || !m->params.empty()) WriteMember(s, *m);
    s << "    };\n\n";
}

void WriteEnums(std::ostringstream& s, const std::vector<CEnumInfo>& enums) {
    for (size_t i = 0; i < enums.size(); ++i) {
        if (i == 0 || enums[i - 1].typeName != enums[i].typeName) s << "    typedef enum {\n";
        s << "        [helpstring(\"" << enums[i].help << "\")] " << enums[i].name << " = " << enums[i].value << ",\n";
        if (i + 1 == enums.size() || enums[i + 1].typeName != enums[i].typeName) s << "    } " << enums[i].typeName << ";\n\n";
    }
}

}  // namespace

std::string WriteIdlListing(const CClassInfo& info) {
    std::ostringstream s;
    s << "// The type library of the " << info.name << " control, written from its automation table.\n\n";
    s << "[uuid(" << Uuid(info.libid) << "), version(1.0)]\nlibrary " << info.name << "Lib {\n";
    WriteEnums(s, info.enums);
    if (info.dispatch) WriteInterface(s, *info.dispatch, true);
    if (info.events) WriteInterface(s, *info.events, false);
    s << "    [uuid(" << Uuid(info.clsid) << "), helpstring(\"" << info.help << "\"), control]\n";
    s << "    coclass " << info.name << " {\n";
    if (info.dispatch) s << "        [default] dispinterface " << info.dispatch->Name() << ";\n";
    if (info.events) s << "        [default, source] dispinterface " << info.events->Name() << ";\n";
    s << "    };\n};\n";
    return s.str();
}
