#include "platform/com/propbag.h"

#include <cstring>
#include <fstream>
#include <iterator>

namespace {

constexpr char kMagic[4] = {'Z', 'P', 'B', 'G'};
constexpr uint32_t kFormatVersion = 1;
constexpr size_t kMaxName = 255;          // names are short identifiers
constexpr size_t kMaxString = 1u << 20;   // no persisted text comes near a megabyte

uint32_t Fnv1a(const char* data, size_t n) {
    uint32_t h = 2166136261u;
    for (size_t i = 0; i < n; ++i) {
        h ^= static_cast<uint8_t>(data[i]);
        h *= 16777619u;
    }
    return h;
}

class Writer {
public:
    template <class T>
    void Put(T v) {
        char buf[sizeof(T)];
        std::memcpy(buf, &v, sizeof(T));
        m_out.append(buf, sizeof(T));
    }
    void PutString(const std::string& s) {
        Put<uint32_t>(static_cast<uint32_t>(s.size()));
        m_out += s;
    }
    std::string& Out() { return m_out; }

private:
    std::string m_out;
};

// Reads little pieces with bounds checks; any overrun turns the reader bad for good.
class Reader {
public:
    Reader(const char* p, size_t n) : m_p(p), m_end(p + n) {}
    template <class T>
    T Get() {
        T v{};
        if (static_cast<size_t>(m_end - m_p) < sizeof(T)) {
            m_bad = true;
            return v;
        }
        std::memcpy(&v, m_p, sizeof(T));
        m_p += sizeof(T);
        return v;
    }
    std::string GetString(size_t limit) {
        uint32_t n = Get<uint32_t>();
        if (m_bad || n > limit || static_cast<size_t>(m_end - m_p) < n) {
            m_bad = true;
            return {};
        }
        std::string s(m_p, n);
        m_p += n;
        return s;
    }
    bool Bad() const { return m_bad; }
    bool AtEnd() const { return m_p == m_end; }

private:
    const char* m_p;
    const char* m_end;
    bool m_bad = false;
};

void WriteValue(Writer& w, const CPropertyBag::Value& value) {
    std::visit([&](const auto& v) {
        using T = std::decay_t<decltype(v)>;
        if constexpr (std::is_same_v<T, std::string>) {
            w.PutString(v);
        } else if constexpr (std::is_same_v<T, FontDesc>) {
            w.PutString(v.name);
            w.Put<int64_t>(v.height);
            w.Put<int16_t>(v.weight);
            w.Put<int16_t>(v.charset);
            w.Put<uint8_t>(static_cast<uint8_t>((v.italic ? 1 : 0) | (v.underline ? 2 : 0) | (v.strikethrough ? 4 : 0)));
        } else if constexpr (std::is_same_v<T, bool>) {
            w.Put<uint8_t>(v ? 1 : 0);
        } else {
            w.Put<T>(v);
        }
    }, value);
}

bool ReadFont(Reader& r, FontDesc* font, std::string* error) {
    font->name = r.GetString(kMaxName);
    font->height = r.Get<int64_t>();
    font->weight = r.Get<int16_t>();
    font->charset = r.Get<int16_t>();
    uint8_t flags = r.Get<uint8_t>();
    if (r.Bad()) return false;
    if (font->height <= 0 || font->weight < 0 || font->weight > 1000 || (flags & ~7u)) {
        *error = "font record out of range";
        return false;
    }
    font->italic = flags & 1;
    font->underline = flags & 2;
    font->strikethrough = flags & 4;
    return true;
}

bool ReadValue(Reader& r, PropKind kind, CPropertyBag::Value* value, std::string* error) {
    switch (kind) {
        case PropKind::Long: *value = r.Get<int32_t>(); break;
        case PropKind::Short: *value = r.Get<int16_t>(); break;
        case PropKind::Bool: {
            uint8_t b = r.Get<uint8_t>();
            if (b > 1) {
                *error = "boolean value out of range";
                return false;
            }
            *value = b == 1;
            break;
        }
        case PropKind::String: *value = r.GetString(kMaxString); break;
        case PropKind::Font: {
            FontDesc font;
            if (!ReadFont(r, &font, error)) return false;
            *value = std::move(font);
            break;
        }
        default: *error = "unknown value kind"; return false;
    }
    return !r.Bad();
}

const char* KindName(PropKind kind) {
    static const char* const kNames[] = {"?", "long", "short", "boolean", "string", "font"};
    auto i = static_cast<size_t>(kind);
    return i < std::size(kNames) ? kNames[i] : "?";
}

}  // namespace

void CPropertyBag::Write(const std::string& name, Value value) {
    for (auto& item : m_items) {
        if (item.first == name) {
            item.second = std::move(value);
            return;
        }
    }
    m_items.emplace_back(name, std::move(value));
}

const CPropertyBag::Value* CPropertyBag::Read(const std::string& name) const {
    for (const auto& item : m_items)
        if (item.first == name) return &item.second;
    return nullptr;
}

std::string CPropertyBag::Serialize() const {
    Writer w;
    w.Out().append(kMagic, sizeof kMagic);
    w.Put<uint32_t>(kFormatVersion);
    w.Put<uint32_t>(static_cast<uint32_t>(m_items.size()));
    for (const auto& [name, value] : m_items) {
        w.PutString(name);
        w.Put<uint8_t>(static_cast<uint8_t>(KindOf(value)));
        WriteValue(w, value);
    }
    uint32_t sum = Fnv1a(w.Out().data(), w.Out().size());
    w.Put<uint32_t>(sum);
    return std::move(w.Out());
}

bool CPropertyBag::Parse(const std::string& bytes, CPropertyBag* out, std::string* error) {
    std::string why;
    auto fail = [&](const char* text) {
        if (error) *error = why.empty() ? text : why;
        return false;
    };
    if (bytes.size() < sizeof kMagic + 12) return fail("property bag is truncated");
    if (std::memcmp(bytes.data(), kMagic, sizeof kMagic) != 0) return fail("not a property bag");
    size_t body = bytes.size() - 4;
    uint32_t stored;
    std::memcpy(&stored, bytes.data() + body, 4);
    if (Fnv1a(bytes.data(), body) != stored) return fail("property bag is corrupt or truncated (checksum mismatch)");

    Reader r(bytes.data() + sizeof kMagic, body - sizeof kMagic);
    if (r.Get<uint32_t>() != kFormatVersion) return fail("property bag has an unknown format version");
    uint32_t count = r.Get<uint32_t>();
    CPropertyBag bag;
    for (uint32_t i = 0; i < count; ++i) {
        std::string name = r.GetString(kMaxName);
        auto kind = static_cast<PropKind>(r.Get<uint8_t>());
        Value value;
        if (r.Bad() || !ReadValue(r, kind, &value, &why)) return fail("property bag is truncated");
        if (bag.Has(name)) return fail("property bag names a value twice");
        bag.m_items.emplace_back(std::move(name), std::move(value));
    }
    if (!r.AtEnd()) return fail("property bag has bytes after its last record");
    *out = std::move(bag);
    return true;
}

bool CPropertyBag::CheckKinds(std::initializer_list<std::pair<const char*, PropKind>> expected,
                              std::string* error) const {
    for (const auto& [name, kind] : expected) {
        const Value* v = Read(name);
        if (v && KindOf(*v) != kind) {
            if (error)
                *error = std::string("property \"") + name + "\" holds a " + KindName(KindOf(*v)) +
                         " where a " + KindName(kind) + " belongs";
            return false;
        }
    }
    return true;
}

HRESULT CPropertyBag::SaveToFile(const std::string& path) const {
    std::ofstream f(path, std::ios::binary | std::ios::trunc);
    if (!f) return E_ACCESSDENIED;
    std::string bytes = Serialize();
    f.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    return f ? S_OK : STG_E_WRITEFAULT;
}

HRESULT CPropertyBag::LoadFromFile(const std::string& path, std::string* error) {
    std::ifstream f(path, std::ios::binary);
    if (!f) {
        if (error) *error = "cannot open " + path;
        return STG_E_FILENOTFOUND;
    }
    std::string bytes((std::istreambuf_iterator<char>(f)), std::istreambuf_iterator<char>());
    return Parse(bytes, this, error) ? S_OK : E_FAIL;
}

bool CPropExchange::ExchangeVersion(DWORD& version, DWORD defaultVersion, bool convert) {
    if (!m_bLoading) {
        m_version = version;
        m_bag.Write("_Version", static_cast<int32_t>(version));
        return true;
    }
    const CPropertyBag::Value* v = m_bag.Read("_Version");
    m_version = v && std::holds_alternative<int32_t>(*v) ? static_cast<DWORD>(std::get<int32_t>(*v)) : defaultVersion;
    if (m_version == version) return true;
    return convert && m_version < version;
}

namespace {

// Load or save of one value of type T stored as kind S.
template <class S, class T>
void Exchange(CPropExchange* pPX, const char* name, T& value, const T& def) {
    if (!pPX->IsLoading()) {
        pPX->Bag().Write(name, static_cast<S>(value));
        return;
    }
    const CPropertyBag::Value* v = pPX->Bag().Read(name);
    value = v && std::holds_alternative<S>(*v) ? static_cast<T>(std::get<S>(*v)) : def;
}

}  // namespace

void PX_Long(CPropExchange* pPX, const char* name, LONG& value, LONG def) { Exchange<int32_t>(pPX, name, value, def); }
void PX_ULong(CPropExchange* pPX, const char* name, DWORD& value, DWORD def) { Exchange<int32_t>(pPX, name, value, def); }
void PX_Short(CPropExchange* pPX, const char* name, SHORT& value, SHORT def) { Exchange<int16_t>(pPX, name, value, def); }
void PX_Bool(CPropExchange* pPX, const char* name, BOOL& value, BOOL def) {
    bool b = value != 0;
    Exchange<bool>(pPX, name, b, def != 0);
    value = b ? TRUE : FALSE;
}
void PX_String(CPropExchange* pPX, const char* name, std::string& value, const std::string& def) {
    Exchange<std::string>(pPX, name, value, def);
}
void PX_Font(CPropExchange* pPX, const char* name, FontDesc& value, const FontDesc& def) {
    Exchange<FontDesc>(pPX, name, value, def);
}
