// A reference document whose syntax items and documentation a case writes itself, over spans of
// bytes; everywhere else, and for every other interface, the document answers as it is.
//   item FROM TO KIND ["HINT"]     GetItemAt: an item of KIND; with a hint it offers ISourceHintItem
//   doc FROM TO "DESC" ["SOURCE" ["DESC" "SOURCE"]] [1]
//                                  GetDocItemAt: a description and its source name (none:
//                                  GetSourceName fails), linked to a second item where one
//                                  follows; 1: the item says its link is final
#pragma once
#include <memory>
#include <string>
#include <vector>

#include "htmldoc/htmldocument.h"

class CScriptedHints final : public IDispatch, public ISourceSyntax {
public:
    explicit CScriptedHints(CHtmlDocument* doc) : m_doc(doc) {}
    // The arguments of one `item` or `doc` line; false for a line it cannot read.
    bool AddItem(const std::vector<Variant>& args);
    bool AddDoc(const std::vector<Variant>& args);

    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    ULONG AddRef() override { return ++m_refs; }
    ULONG Release() override { return --m_refs; }
    HRESULT GetIDsOfNames(const std::string& name, DISPID* id) override { return m_doc->GetIDsOfNames(name, id); }
    HRESULT Invoke(DISPID id, WORD flags, std::vector<Variant>& args, Variant* result, ExcepInfo* ex) override {
        return m_doc->Invoke(id, flags, args, result, ex);
    }
    HRESULT GetSchema(IDispatch** out) override { return m_doc->GetSchema(out); }
    HRESULT GetItemAt(long pos, long* itemStart, ISourceSyntaxItem** out) override;
    long GetClassAt(long pos) override { return m_doc->GetClassAt(pos); }
    HRESULT GetDocItemAt(long pos, ISourceDocItem** out) override;

    struct DocSpec {
        std::string description, source;
        bool sourceFails = false, final = false;
        std::shared_ptr<DocSpec> target;
    };

private:
    struct Span {
        long from, to;
        long kind;
        bool hasHint;
        std::string hint;
        std::shared_ptr<DocSpec> doc;
    };
    const Span* Find(long pos, bool doc) const;

    CHtmlDocument* m_doc;
    std::vector<Span> m_spans;
    ULONG m_refs = 1;
};
