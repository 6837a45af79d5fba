// The HTML schema: tags, their attributes with data types, value sets, named colours and
// character references, parsed once per process from the generated data file schemadata.tsv, which the build embeds.
// Names are compared without regard to case; the lower-case form is the key.
#pragma once
#include <cstdint>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

// Data types of attributes, as the picker numbers them.
enum SchemaType : int {
    ST_NONE = 0, ST_ENUM = 1, ST_STRING = 2, ST_INTEGER = 3, ST_URL = 4, ST_COLOR = 5,
    ST_PROPORTIONAL = 6, ST_INTEGER_SET = 7, ST_PIXELS = 8, ST_FONT_SIZE = 9, ST_DIRECTORY = 10,
    ST_HTML_FILE = 11, ST_PICTURE = 12, ST_SOUND = 13, ST_ANIMATION = 14, ST_JAVA_CLASS = 15,
    ST_SCRIPT = 16, ST_FONT = 17, ST_GUID = 18, ST_STYLE_NAME = 19, ST_STYLE_CLASS = 20,
    ST_SCRIPT_FUNCTION = 21,
};

// How the content of an element is read.
enum class ContentKind : uint8_t {
    Normal,     // tags and character references
    RawText,    // nothing but its own end tag (script, style, xmp, iframe, noembed, noframes)
    RcData,     // character references and its own end tag (title, textarea)
    PlainText,  // the rest of the text
    Foreign,    // SVG or MathML: any tag and attribute name goes
};

struct CSchemaValue {
    std::string name;
    std::string description;
};

struct CSchemaValueSet {
    std::vector<CSchemaValue> values;
    bool bCaseSensitive = false;  // two values differ only in case, as "a" and "A"
};

struct CSchemaAttr {
    std::string name;  // lower case
    int type = ST_STRING;
    int source = 0;
    int valueSet = -1;  // index of a value set, or -1
    bool bOpen = false;  // the value set lists examples; other values are fine too
    std::string description;
};

struct CSchemaTag {
    std::string name;  // lower case
    int source = 0;
    ContentKind content = ContentKind::Normal;
    std::string description;
    std::vector<int> attrs;  // own attributes, by index, sorted by name
};

struct CSchemaColor {
    std::string name;
    uint8_t r = 0, g = 0, b = 0;
};

struct CSchemaEntity {
    char32_t cp[2] = {0, 0};
    bool bLegacy = false;  // valid without the closing semicolon
};

class CHtmlSchema {
public:
    static const CHtmlSchema& Get();

    // Index of a tag, or -1. `name` may be in any case.
    int FindTag(std::string_view name) const;
    // Index of an attribute of the tag (its own, then those of every tag), or -1.
    int FindAttr(int tag, std::string_view name) const;
    // Index of a value in the attribute's value set, or -1.
    int FindValue(int attr, std::string_view value) const;
    const CSchemaEntity* FindEntity(std::string_view name) const;
    // The name of a character reference for the code point, or empty.
    std::string_view EntityNameOf(char32_t cp) const;
    std::string SourceName(int id) const;

    const std::vector<CSchemaTag>& Tags() const { return m_tags; }
    const std::vector<CSchemaAttr>& Attrs() const { return m_attrs; }
    const std::vector<CSchemaValueSet>& ValueSets() const { return m_sets; }
    const std::vector<CSchemaColor>& Colors() const { return m_colors; }
    // The attributes that every tag takes, sorted by name.
    const std::vector<int>& GlobalAttrs() const { return m_globals; }
    // A tag's attributes with those of every tag, sorted by name.
    std::vector<int> AllAttrsOf(int tag) const;

    // The longest tag, attribute, value and entity names; longer names are unknown.
    static constexpr size_t kMaxName = 48;

private:
    CHtmlSchema();
    void Parse(std::string_view data);
    void Finish();
    static std::string Lower(std::string_view s);

    std::vector<CSchemaTag> m_tags;
    std::vector<CSchemaAttr> m_attrs;
    std::vector<CSchemaValueSet> m_sets;
    std::vector<CSchemaColor> m_colors;
    std::vector<int> m_globals;
    std::vector<std::string> m_sources;  // by id
    // Indexes by name that a lookup reaches with a view of the name, copying nothing.
    struct CNameHash {
        using is_transparent = void;
        // FNV-1a: names are a few bytes long, where it beats the general string hash.
        size_t operator()(std::string_view s) const noexcept {
            uint64_t h = 0xCBF29CE484222325ull;
            for (char c : s) h = (h ^ static_cast<unsigned char>(c)) * 0x100000001B3ull;
            return static_cast<size_t>(h);
        }
    };
    template <class T>
    using CNameIndex = std::unordered_map<std::string, T, CNameHash, std::equal_to<>>;
    // Lower-cases a name of at most kMaxName bytes into `buffer`.
    static std::string_view LowerInto(std::string_view s, char* buffer);

    CNameIndex<int> m_tagIndex;
    CNameIndex<int> m_globalIndex;
    std::vector<CNameIndex<int>> m_attrIndex;  // per tag
    std::vector<CNameIndex<int>> m_valueIndex;  // per value set, lower case
    CNameIndex<CSchemaEntity> m_entities;
    std::unordered_map<char32_t, std::string> m_entityNames;
};
