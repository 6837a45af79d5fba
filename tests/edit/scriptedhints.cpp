#include "tests/edit/scriptedhints.h"

#include <algorithm>
#include <cstdio>

#include "tests/edit/editscript.h"

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

// Words, where a "quoted" word is an escaped text that may hold spaces.
std::vector<std::string> Tokens(const std::string& s) {
    std::vector<std::string> out;
    for (size_t i = 0; i < s.size();) {
        if (s[i] == ' ') {
            ++i;
        } else if (s[i] == '"') {
            const size_t close = s.find('"', i + 1);
            out.push_back(ParseMarkedText(s.substr(i + 1, close - i - 1)).text);
            i = close == std::string::npos ? s.size() : close + 1;
        } else {
            const size_t end = std::min(s.find(' ', i), s.size());
            out.push_back(s.substr(i, end - i));
            i = end;
        }
    }
    return out;
}

bool ReadSpan(const std::string& word, long* from, long* to) {
    return std::sscanf(word.c_str(), "%ld-%ld", from, to) == 2;
}

// "DESC" "SOURCE"|fail [final] from `at`; moves `at` behind what it read.
std::shared_ptr<CScriptedHints::DocSpec> ReadDoc(const std::vector<std::string>& t, size_t* at) {
    if (*at + 2 > t.size()) return nullptr;
    auto spec = std::make_shared<CScriptedHints::DocSpec>();
    spec->description = t[(*at)++];
    spec->sourceFails = t[*at] == "fail";
    spec->source = spec->sourceFails ? "" : t[*at];
    ++*at;
    if (*at < t.size() && t[*at] == "final") {
        spec->final = true;
        ++*at;
    }
    return spec;
}

}  // namespace

bool CScriptedHints::AddItem(const std::string& rest) {
    const auto t = Tokens(rest);
    Span span{0, 0, 0, false, {}, nullptr};
    if (t.size() < 2 || !ReadSpan(t[0], &span.from, &span.to)) return false;
    span.kind = std::stol(t[1]);
    span.hasHint = t.size() > 2;
    if (span.hasHint) span.hint = t[2];
    m_spans.push_back(span);
    return true;
}

bool CScriptedHints::AddDoc(const std::string& rest) {
    const auto t = Tokens(rest);
    Span span{0, 0, -1, false, {}, nullptr};
    if (t.empty() || !ReadSpan(t[0], &span.from, &span.to)) return false;
    size_t at = 1;
    span.doc = ReadDoc(t, &at);
    if (!span.doc) return false;
    if (at < t.size() && t[at] == "->") {
        ++at;
        span.doc->target = ReadDoc(t, &at);
        if (!span.doc->target) return false;
    }
    m_spans.push_back(span);
    return at == t.size();
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
