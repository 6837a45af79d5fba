// Property bags and property exchange: how a control saves its persistent properties and
// loads them back. A bag is an ordered list of named, typed values with a byte form that a
// host can keep in a file or in memory. Loading a byte form checks it whole before anything
// is taken from it, so a truncated or corrupt bag is refused and the control stays as it was.
#pragma once
#include <cstdint>
#include <initializer_list>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "platform/com/types.h"
#include "platform/gdi/fontdesc.h"

enum class PropKind : uint8_t { Long = 1, Short = 2, Bool = 3, String = 4, Font = 5 };

class CPropertyBag {
public:
    using Value = std::variant<int32_t, int16_t, bool, std::string, FontDesc>;

    // Values keep the order of their first write.
    void Write(const std::string& name, Value value);
    const Value* Read(const std::string& name) const;
    bool Has(const std::string& name) const { return Read(name) != nullptr; }
    size_t Count() const { return m_items.size(); }
    const std::vector<std::pair<std::string, Value>>& Items() const { return m_items; }
    void Clear() { m_items.clear(); }

    // The byte form: magic, format version, records, and a checksum over all of it.
    std::string Serialize() const;
    // Parses a byte form into a new bag. On failure *error says why, and `out` is untouched.
    static bool Parse(const std::string& bytes, CPropertyBag* out, std::string* error);

    // FALSE with *error set if a value of one of the given names has another kind.
    bool CheckKinds(std::initializer_list<std::pair<const char*, PropKind>> expected, std::string* error) const;

    HRESULT SaveToFile(const std::string& path) const;
    // Reads and parses; on failure the bag is untouched and *error says why.
    HRESULT LoadFromFile(const std::string& path, std::string* error);

    static PropKind KindOf(const Value& v) { return static_cast<PropKind>(v.index() + 1); }

private:
    std::vector<std::pair<std::string, Value>> m_items;
};

// One exchange, loading from a bag or saving to it, as a control's DoPropExchange sees it.
class CPropExchange {
public:
    CPropExchange(CPropertyBag& bag, bool loading) : m_bag(bag), m_bLoading(loading) {}
    bool IsLoading() const { return m_bLoading; }
    CPropertyBag& Bag() { return m_bag; }
    // The version read on load (or the default when none is stored), the given one on save.
    DWORD GetVersion() const { return m_version; }
    // Exchanges the control's version under "_Version". Older versions load with conversion
    // when `convert` is set; a newer version than `version` is refused (false).
    bool ExchangeVersion(DWORD& version, DWORD defaultVersion, bool convert);

private:
    CPropertyBag& m_bag;
    bool m_bLoading;
    DWORD m_version = 0;
};

// Each exchanges one value: on save it writes `value`, on load it reads the stored value, or
// `def` when none of this name and kind is stored.
void PX_Long(CPropExchange* pPX, const char* name, LONG& value, LONG def);
void PX_ULong(CPropExchange* pPX, const char* name, DWORD& value, DWORD def);
void PX_Short(CPropExchange* pPX, const char* name, SHORT& value, SHORT def);
void PX_Bool(CPropExchange* pPX, const char* name, BOOL& value, BOOL def);
void PX_String(CPropExchange* pPX, const char* name, std::string& value, const std::string& def);
void PX_Font(CPropExchange* pPX, const char* name, FontDesc& value, const FontDesc& def);
