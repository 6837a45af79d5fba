#include "htmldoc/syntaxitems.h"

#include <cctype>

#include "htmldoc/htmlschema.h"
#include "platform/com/automation.h"

namespace {

std::string Upper(std::string s) {
    for (char& c : s) c = static_cast<char>(std::toupper(static_cast<unsigned char>(c)));
    return s;
}

HRESULT FillString(std::string* out, const std::string& value) {
    if (!out) return E_POINTER;
    *out = value;
    return S_OK;
}

// Reference counting shared by the objects below, which answer more than one interface.
class CCounted {
protected:
    virtual ~CCounted() = default;
    ULONG Add() { return m_refs.Increment(); }
    ULONG Drop() {
        ULONG n = m_refs.Decrement();
        if (n == 0) delete this;
        return n;
    }

private:
    CRefCount m_refs;
};

class CSyntaxItem final : public ISourceSyntaxItem, public ISourceTagItem, public ISourceHintItem, private CCounted {
public:
    CSyntaxItem(long kind, std::string text) : m_nKind(kind), m_strText(std::move(text)) {}

    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        if (riid == IID_IUnknown || riid == IID_ISourceSyntaxItem) return HandOut(static_cast<ISourceSyntaxItem*>(this), ppv);
        if (riid == IID_ISourceTagItem && m_nKind == SI_TAG) return HandOut(static_cast<ISourceTagItem*>(this), ppv);
        if (riid == IID_ISourceHintItem && m_nKind == SI_CHAR_REF) return HandOut(static_cast<ISourceHintItem*>(this), ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return Add(); }
    ULONG Release() override { return Drop(); }

    long GetItemKind() override { return m_nKind; }
    HRESULT GetTagName(std::string* out) override { return FillString(out, m_strText); }
    HRESULT GetHintText(std::string* out) override { return FillString(out, m_strText); }

private:
    ~CSyntaxItem() override = default;
    long m_nKind;
    std::string m_strText;
};

class CDocItem final : public ISourceDocItem, public ISourceDocLink, private CCounted {
public:
    CDocItem(std::string description, long source, ComPtr<ISourceDocItem> target)
        : m_strDescription(std::move(description)), m_nSource(source), m_pTarget(std::move(target)) {}

    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        if (riid == IID_IUnknown || riid == IID_ISourceDocItem) return HandOut(static_cast<ISourceDocItem*>(this), ppv);
        if (riid == IID_ISourceDocLink && m_pTarget) return HandOut(static_cast<ISourceDocLink*>(this), ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return Add(); }
    ULONG Release() override { return Drop(); }

    HRESULT GetDescription(std::string* out) override { return FillString(out, m_strDescription); }
    HRESULT GetSourceId(long* out) override {
        if (!out) return E_POINTER;
        *out = m_nSource;
        return S_OK;
    }
    HRESULT GetSourceName(long id, std::string* out) override { return FillString(out, CHtmlSchema::Get().SourceName(id)); }
    BOOL IsFinal() override { return FALSE; }
    HRESULT GetTarget(IUnknown** out) override {
        if (!out) return E_POINTER;
        *out = static_cast<IUnknown*>(ComPtr<ISourceDocItem>(m_pTarget).Detach());
        return S_OK;
    }

private:
    ~CDocItem() override = default;
    std::string m_strDescription;
    long m_nSource;
    ComPtr<ISourceDocItem> m_pTarget;
};

// One node of the schema tree: the root, a tag, an attribute, a value or a named colour.
class CSchemaNode final : public ISourceSchema, public ISourceSchemaColor, public IDispatch, private CCounted {
public:
    enum class Level { Root, Tag, Attr, Value, Color };
    CSchemaNode(Level level, int index, int parent = -1) : m_level(level), m_nIndex(index), m_nParent(parent) {}

    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (!ppv) return E_POINTER;
        if (riid == IID_IUnknown || riid == IID_ISourceSchema) return HandOut(static_cast<ISourceSchema*>(this), ppv);
        if (riid == IID_IDispatch) return HandOut(static_cast<IDispatch*>(this), ppv);
        if (riid == IID_ISourceSchemaColor && m_level == Level::Color) return HandOut(static_cast<ISourceSchemaColor*>(this), ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return Add(); }
    ULONG Release() override { return Drop(); }

    long GetType() override { return m_level == Level::Attr ? Schema().Attrs()[m_nIndex].type : ST_NONE; }
    HRESULT GetName(std::string* out) override { return FillString(out, Name()); }
    HRESULT GetDescription(std::string* out) override { return FillString(out, Description()); }
    long GetChildCount() override { return static_cast<long>(Children().size()); }
    HRESULT GetChildName(std::string* out, long index) override {
        if (!out) return E_POINTER;
        if (index < 0 || index >= static_cast<long>(Children().size())) return E_INVALIDARG;
        *out = ChildAt(static_cast<size_t>(index))->Name();
        return S_OK;
    }
    long FindChild(const char* name, ISourceSchema** out) override {
        if (!out) return E_POINTER;
        *out = nullptr;
        if (!name) return E_INVALIDARG;
        ComPtr<CSchemaNode> child = Find(name);
        if (!child) return 1;
        *out = child.Detach();
        return 0;
    }
    long GetRed() override { return Color().r; }
    long GetGreen() override { return Color().g; }
    long GetBlue() override { return Color().b; }

    HRESULT GetIDsOfNames(const std::string&, DISPID* pDispId) override {
        if (pDispId) *pDispId = DISPID_UNKNOWN;
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT Invoke(DISPID, WORD, std::vector<Variant>&, Variant*, ExcepInfo*) override { return DISP_E_MEMBERNOTFOUND; }

private:
    ~CSchemaNode() override = default;
    static const CHtmlSchema& Schema() { return CHtmlSchema::Get(); }
    const CSchemaColor& Color() const { return Schema().Colors()[m_level == Level::Color ? m_nIndex : 0]; }
    const CSchemaValue& Value() const { return Schema().ValueSets()[Schema().Attrs()[m_nParent].valueSet].values[m_nIndex]; }

    std::string Name() const {
        const CHtmlSchema& s = Schema();
        switch (m_level) {
        case Level::Root: return "HTML";
        case Level::Tag: return Upper(s.Tags()[m_nIndex].name);
        case Level::Attr: return Upper(s.Attrs()[m_nIndex].name);
        case Level::Color: return Upper(s.Colors()[m_nIndex].name);
        case Level::Value:
            // Values that differ only in case keep their case.
            return s.ValueSets()[s.Attrs()[m_nParent].valueSet].bCaseSensitive ? Value().name : Upper(Value().name);
        }
        return {};
    }
    std::string Description() const {
        const CHtmlSchema& s = Schema();
        switch (m_level) {
        case Level::Root: return "The elements of HTML";
        case Level::Tag: return s.Tags()[m_nIndex].description;
        case Level::Attr: return s.Attrs()[m_nIndex].description;
        case Level::Value: return Value().description;
        case Level::Color: {
            char hex[8];
            std::snprintf(hex, sizeof hex, "#%02X%02X%02X", Color().r, Color().g, Color().b);
            return hex;
        }
        }
        return {};
    }
    // Indexes of the children: tags, attributes, values or colours.
    const std::vector<int>& Children() {
        if (m_bChildrenKnown) return m_children;
        m_bChildrenKnown = true;
        const CHtmlSchema& s = Schema();
        if (m_level == Level::Root) {
            for (size_t t = 0; t < s.Tags().size(); ++t)
                if (s.Tags()[t].name != "*") m_children.push_back(static_cast<int>(t));
        } else if (m_level == Level::Tag) {
            m_children = s.AllAttrsOf(m_nIndex);
        } else if (m_level == Level::Attr) {
            const CSchemaAttr& attr = s.Attrs()[m_nIndex];
            size_t count = attr.valueSet >= 0 ? s.ValueSets()[attr.valueSet].values.size() : attr.type == ST_COLOR ? s.Colors().size() : 0;
            for (size_t i = 0; i < count; ++i) m_children.push_back(static_cast<int>(i));
        }
        return m_children;
    }
    Level ChildLevel() const {
        if (m_level == Level::Root) return Level::Tag;
        if (m_level == Level::Tag) return Level::Attr;
        return Schema().Attrs()[m_nIndex].valueSet >= 0 ? Level::Value : Level::Color;
    }
    ComPtr<CSchemaNode> ChildAt(size_t i) {
        Level level = ChildLevel();
        int parent = m_level == Level::Root ? -1 : m_nIndex;
        return ComPtr<CSchemaNode>(new CSchemaNode(level, Children()[i], parent));
    }
    ComPtr<CSchemaNode> Find(const std::string& name) {
        const CHtmlSchema& s = Schema();
        int found = -1;
        if (m_level == Level::Root) {
            found = s.FindTag(name);
        } else if (m_level == Level::Tag) {
            found = s.FindAttr(m_nIndex, name);
        } else if (m_level == Level::Attr && ChildLevel() == Level::Value) {
            found = s.FindValue(m_nIndex, name);
        } else if (m_level == Level::Attr) {
            for (int c : Children())
                if (Upper(s.Colors()[c].name) == Upper(name)) found = c;
        }
        if (found < 0 || (m_level == Level::Attr && Children().empty())) return nullptr;
        return ComPtr<CSchemaNode>(new CSchemaNode(ChildLevel(), found, m_level == Level::Root ? -1 : m_nIndex));
    }

    Level m_level;
    int m_nIndex;
    int m_nParent;
    bool m_bChildrenKnown = false;
    std::vector<int> m_children;
};

class CSchemaDispatch final : public CUnknownImpl<IDispatch, IID_IDispatch> {
public:
    HRESULT GetIDsOfNames(const std::string& name, DISPID* pDispId) override { return Table().GetIDsOfNames(name, pDispId); }
    HRESULT Invoke(DISPID dispid, WORD flags, std::vector<Variant>& args, Variant* result, ExcepInfo* excep) override {
        return Table().Invoke(*this, dispid, flags, args, result, excep);
    }

private:
    ~CSchemaDispatch() override = default;
    static const CDispatchTable<CSchemaDispatch>& Table() {
        static const CDispatchTable<CSchemaDispatch> table = [] {
            CDispatchTable<CSchemaDispatch> t;
            t.Property(1, "IDispatch* Root", [](CSchemaDispatch&, const std::vector<Variant>&) {
                ComPtr<CSchemaNode> root(new CSchemaNode(CSchemaNode::Level::Root, 0));
                return Variant::Dispatch(static_cast<IDispatch*>(root.Get()));
            });
            return t;
        }();
        return table;
    }
};

}  // namespace

ComPtr<ISourceSyntaxItem> CreateSyntaxItem(long kind, std::string text) {
    return ComPtr<ISourceSyntaxItem>(new CSyntaxItem(kind, std::move(text)));
}

ComPtr<ISourceDocItem> CreateTagDocItem(int tag, bool endTag) {
    const CHtmlSchema& s = CHtmlSchema::Get();
    if (tag < 0 || tag >= static_cast<int>(s.Tags().size())) return nullptr;
    const CSchemaTag& t = s.Tags()[tag];
    ComPtr<ISourceDocItem> item(new CDocItem(t.description, t.source, nullptr));
    if (!endTag) return item;
    return ComPtr<ISourceDocItem>(new CDocItem(t.description, t.source, item));
}

ComPtr<ISourceDocItem> CreateAttrDocItem(int attr) {
    const CHtmlSchema& s = CHtmlSchema::Get();
    if (attr < 0 || attr >= static_cast<int>(s.Attrs().size())) return nullptr;
    return ComPtr<ISourceDocItem>(new CDocItem(s.Attrs()[attr].description, s.Attrs()[attr].source, nullptr));
}

ComPtr<IDispatch> CreateSchemaDispatch() { return ComPtr<IDispatch>(new CSchemaDispatch); }
