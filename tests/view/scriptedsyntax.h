// A document wrapper whose syntax classes and tag names a test writes itself.
#pragma once
#include <functional>
#include <map>
#include <string>
#include <vector>

#include "tests/view/viewtest.h"

// Passes text through to a reference document and answers the syntax interfaces from a script:
// a class per byte (class 0 where none is set), and tokens that are the runs of one class. Made
// with `offersSyntax` false it is a document that knows nothing of syntax.
class CScriptedSyntax final : public IDispatch, public ISourceSyntax, public ISourceTokens {
public:
    explicit CScriptedSyntax(CHtmlDocument* doc, bool offersSyntax = true) : m_doc(doc), m_bSyntax(offersSyntax) {}

    // Gives bytes [start, start + count) the class `k`.
    void SetClass(long start, long count, long k) {
        if (static_cast<long>(m_classes.size()) < start + count) m_classes.resize(static_cast<size_t>(start + count), 0);
        for (long i = 0; i < count; ++i) m_classes[static_cast<size_t>(start + i)] = k;
    }
    // The tag name that GetItemAt gives for a tag token starting at `pos`.
    void SetTagName(long pos, std::string name) { m_tagNames[pos] = std::move(name); }

    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (riid == IID_IUnknown || riid == IID_IDispatch) return HandOut(static_cast<IDispatch*>(this), ppv);
        if (riid == IID_ISourceSyntax && m_bSyntax) return HandOut(static_cast<ISourceSyntax*>(this), ppv);
        if (riid == IID_ISourceTokens && m_bSyntax) return HandOut(static_cast<ISourceTokens*>(this), ppv);
        if (riid == IID_ISourceText) return m_doc->QueryInterface(riid, ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return ++m_refs; }
    ULONG Release() override { return --m_refs; }
    HRESULT GetIDsOfNames(const std::string&, DISPID*) override { return DISP_E_UNKNOWNNAME; }
    HRESULT Invoke(DISPID, WORD, std::vector<Variant>&, Variant*, ExcepInfo*) override { return DISP_E_MEMBERNOTFOUND; }

    HRESULT GetSchema(IDispatch** out) override {
        *out = nullptr;
        return E_NOTIMPL;
    }
    HRESULT GetItemAt(long pos, long* itemStart, ISourceSyntaxItem** out) override;
    long GetClassAt(long pos) override {
        ++classCalls;
        if (onClassAsked) onClassAsked(pos);
        return pos < static_cast<long>(m_classes.size()) ? m_classes[static_cast<size_t>(pos)] : 0;
    }
    HRESULT GetDocItemAt(long, ISourceDocItem** out) override {
        *out = nullptr;
        return S_OK;
    }
    HRESULT GetToken(long pos, ISourceTokenInfo* out) override {
        long k = GetClassAt(pos), start = pos, end = pos + 1;
        while (start > 0 && GetClassAt(start - 1) == k) --start;
        while (end < static_cast<long>(m_classes.size()) && GetClassAt(end) == k) ++end;
        *out = {k, start, end - start};
        return S_OK;
    }

    long classCalls = 0;
    std::function<void(long pos)> onClassAsked;  // a document that works as it is asked

private:
    CHtmlDocument* m_doc;
    bool m_bSyntax;
    std::vector<long> m_classes;
    std::map<long, std::string> m_tagNames;
    ULONG m_refs = 1;
};
