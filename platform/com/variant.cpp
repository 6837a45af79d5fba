#include "platform/com/variant.h"

#include "platform/com/dispatch.h"

namespace {

bool IsInterface(VARTYPE vt) { return vt == VT_DISPATCH || vt == VT_UNKNOWN; }

}  // namespace

Variant& Variant::operator=(const Variant& o) {
    if (this != &o) {
        Variant copy(o);
        Clear();
        MoveFrom(copy);
    }
    return *this;
}

Variant& Variant::operator=(Variant&& o) noexcept {
    if (this != &o) {
        Clear();
        MoveFrom(o);
    }
    return *this;
}

void Variant::Clear() {
    if (IsInterface(m_vt) && m_punk) {
        // A dispatch pointer is also an IUnknown; release through the pointer that was stored.
        if (m_vt == VT_DISPATCH) m_pdisp->Release(); else m_punk->Release();
    }
    m_vt = VT_EMPTY;
    m_raw = 0;
    m_str.clear();
}

void Variant::CopyFrom(const Variant& o) {
    m_vt = o.m_vt;
    m_raw = o.m_raw;
    if (m_vt == VT_DISPATCH && m_pdisp) m_pdisp->AddRef();
    if (m_vt == VT_UNKNOWN && m_punk) m_punk->AddRef();
    m_str = o.m_str;
}

void Variant::MoveFrom(Variant& o) {
    m_vt = o.m_vt;
    m_raw = o.m_raw;
    m_str = std::move(o.m_str);
    o.m_vt = VT_EMPTY;
    o.m_raw = 0;
    o.m_str.clear();
}

Variant Variant::Short(int16_t v) { Variant r; r.m_vt = VT_I2; r.m_i2 = v; return r; }
Variant Variant::Long(int32_t v) { Variant r; r.m_vt = VT_I4; r.m_i4 = v; return r; }
Variant Variant::ULong(uint32_t v) { Variant r; r.m_vt = VT_UI4; r.m_ui4 = v; return r; }
Variant Variant::Bool(bool v) { Variant r; r.m_vt = VT_BOOL; r.m_bool = v ? VARIANT_TRUE : VARIANT_FALSE; return r; }
Variant Variant::Str(std::string v) { Variant r; r.m_vt = VT_BSTR; r.m_str = std::move(v); return r; }
Variant Variant::Error(SCODE sc) { Variant r; r.m_vt = VT_ERROR; r.m_scode = sc; return r; }
Variant Variant::Currency(int64_t tenThousandths) { Variant r; r.m_vt = VT_CY; r.m_cy = tenThousandths; return r; }

bool Variant::ToCurrency(int64_t* out) const {
    if (m_vt == VT_CY) {
        *out = m_cy;
        return true;
    }
    int32_t whole;
    if (!ToLong(&whole)) return false;
    *out = static_cast<int64_t>(whole) * 10000;
    return true;
}

Variant Variant::Dispatch(IDispatch* p) {
    Variant r;
    r.m_vt = VT_DISPATCH;
    r.m_pdisp = p;
    if (p) p->AddRef();
    return r;
}

Variant Variant::Unknown(IUnknown* p) {
    Variant r;
    r.m_vt = VT_UNKNOWN;
    r.m_punk = p;
    if (p) p->AddRef();
    return r;
}

namespace {

template <class T>
Variant MakeRef(VARTYPE vt, T* p) {
    return Variant::FromRef(static_cast<VARTYPE>(vt | VT_BYREF), p);
}

}  // namespace

Variant Variant::FromRef(VARTYPE vt, void* p) { Variant r; r.m_vt = vt; r.m_pref = p; return r; }
Variant Variant::RefShort(int16_t* p) { return MakeRef(VT_I2, p); }
Variant Variant::RefLong(int32_t* p) { return MakeRef(VT_I4, p); }
Variant Variant::RefBool(VARIANT_BOOL* p) { return MakeRef(VT_BOOL, p); }
Variant Variant::RefStr(std::string* p) { return MakeRef(VT_BSTR, p); }
Variant Variant::RefColor(OLE_COLOR* p) { return MakeRef(VT_UI4, p); }

bool Variant::ToLong(int32_t* out) const {
    switch (m_vt) {
        case VT_I2: *out = m_i2; return true;
        case VT_I4: *out = m_i4; return true;
        case VT_UI4: *out = static_cast<int32_t>(m_ui4); return true;
        case VT_BOOL: *out = m_bool; return true;
        case VT_I2 | VT_BYREF: *out = *static_cast<int16_t*>(m_pref); return true;
        case VT_I4 | VT_BYREF: *out = *static_cast<int32_t*>(m_pref); return true;
        case VT_UI4 | VT_BYREF: *out = static_cast<int32_t>(*static_cast<uint32_t*>(m_pref)); return true;
        case VT_BOOL | VT_BYREF: *out = *static_cast<VARIANT_BOOL*>(m_pref); return true;
        default: return false;
    }
}

bool Variant::ToShort(int16_t* out) const {
    int32_t v;
    if (!ToLong(&v) || v < INT16_MIN || v > INT16_MAX) return false;
    *out = static_cast<int16_t>(v);
    return true;
}

bool Variant::ToULong(uint32_t* out) const {
    int32_t v;
    if (!ToLong(&v)) return false;
    *out = static_cast<uint32_t>(v);
    return true;
}

bool Variant::ToBool(bool* out) const {
    int32_t v;
    if (!ToLong(&v)) return false;
    *out = v != 0;
    return true;
}

bool Variant::ToStr(std::string* out) const {
    if (m_vt == VT_BSTR) { *out = m_str; return true; }
    if (m_vt == (VT_BSTR | VT_BYREF)) { *out = *static_cast<std::string*>(m_pref); return true; }
    return false;
}

bool Variant::ToDispatch(IDispatch** out) const {
    if (m_vt == VT_DISPATCH) { *out = m_pdisp; return true; }
    if (m_vt == VT_EMPTY || m_vt == VT_NULL) { *out = nullptr; return true; }
    if (m_vt == VT_UNKNOWN && !m_punk) { *out = nullptr; return true; }
    return false;
}

bool Variant::ToUnknown(IUnknown** out) const {
    if (m_vt == VT_UNKNOWN) { *out = m_punk; return true; }
    if (m_vt == VT_DISPATCH) { *out = m_pdisp; return true; }
    if (m_vt == VT_EMPTY || m_vt == VT_NULL) { *out = nullptr; return true; }
    return false;
}

bool Variant::SetByRef(const Variant& value) const {
    if (!IsByRef()) return false;
    switch (m_vt & ~VT_BYREF) {
        case VT_I2: return value.ToShort(static_cast<int16_t*>(m_pref));
        case VT_I4: return value.ToLong(static_cast<int32_t*>(m_pref));
        case VT_UI4: return value.ToULong(static_cast<uint32_t*>(m_pref));
        case VT_BOOL: {
            bool b;
            if (!value.ToBool(&b)) return false;
            *static_cast<VARIANT_BOOL*>(m_pref) = b ? VARIANT_TRUE : VARIANT_FALSE;
            return true;
        }
        case VT_BSTR: return value.ToStr(static_cast<std::string*>(m_pref));
        default: return false;
    }
}

Variant Variant::Dereferenced() const {
    if (!IsByRef()) return *this;
    if (!m_pref) return Variant();
    switch (m_vt & ~VT_BYREF) {
        case VT_I2: return Short(*static_cast<int16_t*>(m_pref));
        case VT_I4: return Long(*static_cast<int32_t*>(m_pref));
        case VT_UI4: return ULong(*static_cast<uint32_t*>(m_pref));
        case VT_BOOL: return Bool(*static_cast<VARIANT_BOOL*>(m_pref) != 0);
        case VT_BSTR: return Str(*static_cast<std::string*>(m_pref));
        default: return Variant();
    }
}
