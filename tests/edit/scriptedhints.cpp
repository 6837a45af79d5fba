#include "tests/edit/scriptedhints.h"



namespace {

// The count of the small objects below, which end with their last reference.
class CCounted {
protected:
    virtual ~CCounted() = default;
    ULONG Add() { return m_refs.Increment(); }
    ULONG Drop() {
        const ULONG n = m_refs.Decrement();
        if (!n) delete this;
        return n;
    }

private:
    CRefCount m_refs;
};

class CItem final : public ISourceSyntaxItem, public ISourceHintItem, private CCounted {
public:
    CItem(long kind, bool hasHint, std::string hint) : m_kind(kind), m_hasHint(hasHint), m_hint(std::move(hint)) {}
    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (riid == IID_IUnknown || riid == IID_ISourceSyntaxItem) return HandOut(static_cast<ISourceSyntaxItem*>(this), ppv);
        if (riid == IID_ISourceHintItem && m_hasHint) return HandOut(static_cast<ISourceHintItem*>(this), ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return Add(); }
    ULONG Release() override { return Drop(); }
    long GetItemKind() override { return m_kind; }
    HRESULT GetHintText(std::string* out) override {
        *out = m_hint;
        return S_OK;
    }

private:
    long m_kind;
    bool m_hasHint;
    std::string m_hint;
};

class CDoc final : public ISourceDocItem, public ISourceDocLink, private CCounted {
public:
    explicit CDoc(std::shared_ptr<CScriptedHints::DocSpec> spec) : m_spec(std::move(spec)) {}
    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (riid == IID_IUnknown || riid == IID_ISourceDocItem) return HandOut(static_cast<ISourceDocItem*>(this), ppv);
        if (riid == IID_ISourceDocLink && (m_spec->target || m_spec->final)) return HandOut(static_cast<ISourceDocLink*>(this), ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return Add(); }
    ULONG Release() override { return Drop(); }
    HRESULT GetDescription(std::string* out) override {
        *out = m_spec->description;
        return S_OK;
    }
    HRESULT GetSourceId(long* out) override {
        *out = 7;
        return S_OK;
    }
    HRESULT GetSourceName(long id, std::string* out) override {
        if (m_spec->sourceFails || id != 7) return E_FAIL;
        *out = m_spec->source;
        return S_OK;
    }
    BOOL IsFinal() override { return m_spec->final; }
    HRESULT GetTarget(IUnknown** out) override {
        if (!m_spec->target) return E_FAIL;
        auto* next = new CDoc(m_spec->target);
        next->AddRef();
        *out = static_cast<ISourceDocItem*>(next);
        return S_OK;
    }

private:
    std::shared_ptr<CScriptedHints::DocSpec> m_spec;
};

// The long at `i`, or false.
bool LongAt(const std::vector<Variant>& args, size_t i, long* out) {
    int32_t v = 0;
    if (i >= args.size() || args[i].Type() == VT_BSTR || !args[i].ToLong(&v)) return false;
    *out = v;
    return true;
}

}  // namespace

bool CScriptedHints::AddItem(const std::vector<Variant>& args) {
    Span span{0, 0, 0, args.size() > 3, {}, nullptr};
    if (!LongAt(args, 0, &span.from) || !LongAt(args, 1, &span.to) || !LongAt(args, 2, &span.kind)) return false;
    if (span.hasHint) span.hint = args[3].StrVal();
    m_spans.push_back(span);
    return true;
}

bool CScriptedHints::AddDoc(const std::vector<Variant>& args) {
    Span span{0, 0, -1, false, {}, nullptr};
    if (!LongAt(args, 0, &span.from) || !LongAt(args, 1, &span.to)) return false;
    std::vector<std::string> texts;
    long final = 0;
    for (size_t i = 2; i < args.size(); ++i)
        if (args[i].Type() == VT_BSTR) texts.push_back(args[i].StrVal());
        else LongAt(args, i, &final);
    const auto spec = [&](size_t at) {
        auto d = std::make_shared<DocSpec>();
        d->description = texts[at];
        d->sourceFails = at + 1 >= texts.size();
        if (!d->sourceFails) d->source = texts[at + 1];
        return d;
    };
    if (texts.empty()) return false;
    span.doc = spec(0);
    span.doc->final = final != 0;
    if (texts.size() >= 4) span.doc->target = spec(2);
    m_spans.push_back(span);
    return true;
}

const CScriptedHints::Span* CScriptedHints::Find(long pos, bool doc) const {
    for (const Span& s : m_spans)
        if (pos >= s.from && pos < s.to && (s.doc != nullptr) == doc) return &s;
    return nullptr;
}

HRESULT CScriptedHints::QueryInterface(REFIID riid, void** ppv) {
    if (riid == IID_IUnknown || riid == IID_IDispatch) return HandOut(static_cast<IDispatch*>(this), ppv);
    if (riid == IID_ISourceSyntax) return HandOut(static_cast<ISourceSyntax*>(this), ppv);
    return m_doc->QueryInterface(riid, ppv);
}

HRESULT CScriptedHints::GetItemAt(long pos, long* itemStart, ISourceSyntaxItem** out) {
    const Span* span = Find(pos, false);
    if (!span) return m_doc->GetItemAt(pos, itemStart, out);
    *itemStart = span->from;
    auto* item = new CItem(span->kind, span->hasHint, span->hint);
    item->AddRef();
    *out = item;
    return S_OK;
}

HRESULT CScriptedHints::GetDocItemAt(long pos, ISourceDocItem** out) {
    const Span* span = Find(pos, true);
    if (!span) return m_doc->GetDocItemAt(pos, out);
    auto* doc = new CDoc(span->doc);
    doc->AddRef();
    *out = doc;
    return S_OK;
}
