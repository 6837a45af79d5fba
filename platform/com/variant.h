// The automation value: one of the types that properties, method arguments and event
// arguments carry, by value or by reference. Text (BSTR) is multi-byte text in the process
// code page, held as std::string.
#pragma once
#include "platform/com/export.h"
#include <cstdint>
#include <string>

#include "platform/com/unknown.h"

class IDispatch;

enum VARENUM : uint16_t {
    VT_EMPTY = 0,
    VT_NULL = 1,
    VT_I2 = 2,
    VT_I4 = 3,
    VT_CY = 6,  // currency: a 64-bit count of ten-thousandths, as font sizes in points travel
    VT_BSTR = 8,
    VT_DISPATCH = 9,
    VT_ERROR = 10,
    VT_BOOL = 11,
    VT_VARIANT = 12,
    VT_UNKNOWN = 13,
    VT_UI4 = 19,  // OLE_COLOR and handles travel as unsigned 32-bit
    VT_BYREF = 0x4000,
};
using VARTYPE = uint16_t;

class ZENTREL_EXPORT Variant {
public:
    Variant() = default;
    Variant(const Variant& o) { CopyFrom(o); }
    Variant(Variant&& o) noexcept { MoveFrom(o); }
    Variant& operator=(const Variant& o);
    Variant& operator=(Variant&& o) noexcept;
    ~Variant() { Clear(); }

    // Typed constructors, named so that the automation type is never guessed from a C++ type.
    static Variant Short(int16_t v);
    static Variant Long(int32_t v);
    static Variant ULong(uint32_t v);
    static Variant Color(OLE_COLOR v) { return ULong(v); }
    static Variant Bool(bool v);
    static Variant Str(std::string v);
    static Variant Dispatch(IDispatch* p);  // adds a reference
    static Variant Unknown(IUnknown* p);    // adds a reference
    static Variant Error(SCODE sc);
    static Variant Currency(int64_t tenThousandths);
    // By-reference arguments of events: the sink writes through them, the firer reads after.
    static Variant RefShort(int16_t* p);
    static Variant RefLong(int32_t* p);
    static Variant RefBool(VARIANT_BOOL* p);
    static Variant RefStr(std::string* p);
    static Variant RefColor(OLE_COLOR* p);
    static Variant FromRef(VARTYPE vt, void* p);  // vt includes VT_BYREF

    VARTYPE Type() const { return m_vt; }
    bool IsEmpty() const { return m_vt == VT_EMPTY; }
    bool IsByRef() const { return (m_vt & VT_BYREF) != 0; }
    void Clear();

    // Conversions used when a value reaches a typed parameter. A by-reference value is read
    // through its pointer. They answer false when the value cannot stand for the type.
    bool ToLong(int32_t* out) const;
    bool ToShort(int16_t* out) const;
    bool ToULong(uint32_t* out) const;
    bool ToBool(bool* out) const;
    bool ToStr(std::string* out) const;
    // A currency as ten-thousandths; whole numbers count as whole units.
    bool ToCurrency(int64_t* out) const;
    // Gives a dispatch pointer without adding a reference (the variant keeps its own); null
    // for VT_NULL, VT_EMPTY and a null object. False for other types.
    bool ToDispatch(IDispatch** out) const;
    bool ToUnknown(IUnknown** out) const;

    // Writes through a by-reference value, converting to its pointed type. False if not by reference
    // or if the types do not fit.
    bool SetByRef(const Variant& value) const;

    // Direct access for code that has checked Type().
    int16_t ShortVal() const { return m_i2; }
    int32_t LongVal() const { return m_i4; }
    SCODE ScodeVal() const { return m_scode; }
    const std::string& StrVal() const { return m_str; }
    IUnknown* UnknownVal() const { return m_punk; }
    IDispatch* DispatchVal() const { return m_pdisp; }
    // A by-value copy of what a by-reference value points at (empty for a null reference or a
    // type it cannot copy); the value itself when it is not by reference.
    Variant Dereferenced() const;
    // Where a by-reference value points; null for a null reference.
    void* RefVal() const { return IsByRef() ? m_pref : nullptr; }

private:
    void CopyFrom(const Variant& o);
    void MoveFrom(Variant& o);

    VARTYPE m_vt = VT_EMPTY;
    union {
        uint64_t m_raw = 0;  // first member, so that the whole union starts zeroed
        int64_t m_cy;
        int16_t m_i2;
        int32_t m_i4;
        uint32_t m_ui4;
        VARIANT_BOOL m_bool;
        SCODE m_scode;
        IDispatch* m_pdisp;
        IUnknown* m_punk;
        void* m_pref;
    };
    std::string m_str;
};
