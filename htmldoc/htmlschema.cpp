#include "htmldoc/htmlschema.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>

#include "htmldoc/schemadata.h"

namespace {

std::vector<std::string_view> SplitTabs(std::string_view line) {
    std::vector<std::string_view> fields;
    size_t start = 0;
    for (;;) {
        size_t tab = line.find('\t', start);
        fields.push_back(line.substr(start, tab == std::string_view::npos ? std::string_view::npos : tab - start));
        if (tab == std::string_view::npos) return fields;
        start = tab + 1;
    }
}

int ToInt(std::string_view s, int base = 10) { return static_cast<int>(std::strtol(std::string(s).c_str(), nullptr, base)); }

ContentKind ContentOf(std::string_view tag) {
    static const std::pair<const char*, ContentKind> kinds[] = {
        {"script", ContentKind::RawText},   {"style", ContentKind::RawText},   {"xmp", ContentKind::RawText},
        {"iframe", ContentKind::RawText},   {"noembed", ContentKind::RawText}, {"noframes", ContentKind::RawText},
        {"title", ContentKind::RcData},     {"textarea", ContentKind::RcData}, {"plaintext", ContentKind::PlainText},
        {"svg", ContentKind::Foreign},      {"math", ContentKind::Foreign},
    };
    for (const auto& [name, kind] : kinds)
        if (tag == name) return kind;
    return ContentKind::Normal;
}

}  // namespace

const CHtmlSchema& CHtmlSchema::Get() {
    static const CHtmlSchema schema;
    return schema;
}

CHtmlSchema::CHtmlSchema() {
    Parse(std::string_view(kHtmlSchemaData, kHtmlSchemaDataSize));
    Finish();
}

std::string CHtmlSchema::Lower(std::string_view s) {
    std::string out(s);
    for (char& c : out) c = static_cast<char>(std::tolower(static_cast<unsigned char>(c)));
    return out;
}

void CHtmlSchema::Parse(std::string_view data) {
    std::unordered_map<std::string, int> setIndex;
    int tag = -1;
    size_t start = 0;
    while (start < data.size()) {
        size_t end = data.find('\n', start);
        if (end == std::string_view::npos) end = data.size();
        std::vector<std::string_view> f = SplitTabs(data.substr(start, end - start));
        start = end + 1;
        if (f.size() < 3) continue;
        switch (f[0].empty() ? 0 : f[0][0]) {
        case 'S':
            m_sources.resize(std::max<size_t>(m_sources.size(), ToInt(f[1]) + 1));
            m_sources[ToInt(f[1])] = std::string(f[2]);
            break;
        case 'T':
            tag = static_cast<int>(m_tags.size());
            m_tags.push_back({std::string(f[1]), ToInt(f[2]), ContentOf(f[1]), f.size() > 3 ? std::string(f[3]) : "", {}});
            break;
        case 'A': {
            if (tag < 0 || f.size() < 6) break;
            CSchemaAttr attr{std::string(f[1]), ToInt(f[2]), ToInt(f[3]), -1, false, std::string(f[5])};
            std::string_view set = f[4];
            if (!set.empty() && set[0] == '~') {
                attr.bOpen = true;
                set.remove_prefix(1);
            }
            if (!set.empty()) {
                auto [it, added] = setIndex.emplace(std::string(set), static_cast<int>(m_sets.size()));
                if (added) m_sets.emplace_back();
                attr.valueSet = it->second;
            }
            m_tags[tag].attrs.push_back(static_cast<int>(m_attrs.size()));
            m_attrs.push_back(std::move(attr));
            break;
        }
        case 'V': {
            auto it = setIndex.find(std::string(f[1]));
            if (it != setIndex.end()) m_sets[it->second].values.push_back({std::string(f[2]), f.size() > 3 ? std::string(f[3]) : ""});
            break;
        }
        case 'C': {
            int rgb = ToInt(f[2], 16);
            m_colors.push_back({std::string(f[1]), static_cast<uint8_t>(rgb >> 16), static_cast<uint8_t>(rgb >> 8), static_cast<uint8_t>(rgb)});
            break;
        }
        case 'E': {
            CSchemaEntity e;
            std::string_view cps = f[2];
            size_t comma = cps.find(',');
            e.cp[0] = static_cast<char32_t>(ToInt(cps.substr(0, comma), 16));
            if (comma != std::string_view::npos) e.cp[1] = static_cast<char32_t>(ToInt(cps.substr(comma + 1), 16));
            e.bLegacy = f.size() > 3 && f[3] == "l";
            std::string name(f[1]);
            if (e.cp[1] == 0) {
                auto& known = m_entityNames[e.cp[0]];
                if (known.empty() || name.size() < known.size()) known = name;
            }
            m_entities.emplace(std::move(name), e);
            break;
        }
        default: break;
        }
    }
}

void CHtmlSchema::Finish() {
    m_attrIndex.resize(m_tags.size());
    for (size_t t = 0; t < m_tags.size(); ++t) {
        const CSchemaTag& tag = m_tags[t];
        if (tag.name == "*") {
            m_globals = tag.attrs;
            for (int a : tag.attrs) m_globalIndex.emplace(m_attrs[a].name, a);
        } else {
            m_tagIndex.emplace(tag.name, static_cast<int>(t));
        }
        for (int a : tag.attrs) m_attrIndex[t].emplace(m_attrs[a].name, a);
    }
    std::sort(m_globals.begin(), m_globals.end(), [&](int a, int b) { return m_attrs[a].name < m_attrs[b].name; });
    m_valueIndex.resize(m_sets.size());
    for (size_t s = 0; s < m_sets.size(); ++s) {
        auto& index = m_valueIndex[s];
        for (size_t v = 0; v < m_sets[s].values.size(); ++v)
            if (!index.emplace(Lower(m_sets[s].values[v].name), static_cast<int>(v)).second) m_sets[s].bCaseSensitive = true;
    }
}

std::string_view CHtmlSchema::LowerInto(std::string_view s, char* buffer) {
    for (size_t i = 0; i < s.size(); ++i) {
        const auto c = static_cast<unsigned char>(s[i]);
        buffer[i] = static_cast<char>(c >= 'A' && c <= 'Z' ? c + ('a' - 'A') : c);
    }
    return {buffer, s.size()};
}

int CHtmlSchema::FindTag(std::string_view name) const {
    if (name.size() > kMaxName) return -1;
    char buffer[kMaxName];
    auto it = m_tagIndex.find(LowerInto(name, buffer));
    return it == m_tagIndex.end() ? -1 : it->second;
}

int CHtmlSchema::FindAttr(int tag, std::string_view name) const {
    if (name.size() > kMaxName) return -1;
    char buffer[kMaxName];
    const std::string_view key = LowerInto(name, buffer);
    if (tag >= 0 && tag < static_cast<int>(m_attrIndex.size())) {
        auto it = m_attrIndex[tag].find(key);
        if (it != m_attrIndex[tag].end()) return it->second;
    }
    auto it = m_globalIndex.find(key);
    return it == m_globalIndex.end() ? -1 : it->second;
}

int CHtmlSchema::FindValue(int attr, std::string_view value) const {
    if (attr < 0 || value.size() > kMaxName) return -1;
    int set = m_attrs[attr].valueSet;
    if (set < 0) return -1;
    const CSchemaValueSet& values = m_sets[set];
    if (values.bCaseSensitive) {
        for (size_t v = 0; v < values.values.size(); ++v)
            if (values.values[v].name == value) return static_cast<int>(v);
        return -1;
    }
    char buffer[kMaxName];
    auto it = m_valueIndex[set].find(LowerInto(value, buffer));
    return it == m_valueIndex[set].end() ? -1 : it->second;
}

const CSchemaEntity* CHtmlSchema::FindEntity(std::string_view name) const {
    if (name.size() > kMaxName) return nullptr;
    auto it = m_entities.find(name);
    return it == m_entities.end() ? nullptr : &it->second;
}

std::string_view CHtmlSchema::EntityNameOf(char32_t cp) const {
    auto it = m_entityNames.find(cp);
    return it == m_entityNames.end() ? std::string_view() : std::string_view(it->second);
}

std::string CHtmlSchema::SourceName(int id) const {
    return id > 0 && id < static_cast<int>(m_sources.size()) ? m_sources[id] : std::string();
}

std::vector<int> CHtmlSchema::AllAttrsOf(int tag) const {
    std::vector<int> all = m_globals;
    if (tag >= 0 && tag < static_cast<int>(m_tags.size())) all.insert(all.end(), m_tags[tag].attrs.begin(), m_tags[tag].attrs.end());
    std::sort(all.begin(), all.end(), [&](int a, int b) { return m_attrs[a].name < m_attrs[b].name; });
    all.erase(std::unique(all.begin(), all.end(), [&](int a, int b) { return m_attrs[a].name == m_attrs[b].name; }), all.end());
    return all;
}
