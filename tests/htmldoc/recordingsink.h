// A view stand-in for document tests: a text sink and a range sink that record, in one log,
// every call they get, with what the document said at that moment.
#pragma once
#include <functional>
#include <string>
#include <vector>

#include "htmldoc/htmldocument.h"
#include "src/document/sourcetext.h"

struct CSinkEvent {
    enum Kind { Change, Busy, Selection } kind;
    long action = 0;  // Change: the action; Busy: 1 for busy, 0 for done
    long start = 0;   // Change: the range; Selection: active, anchor
    long end = 0;
    long length = 0;  // GetLength at the time of the call
};

class CRecordingSink final : public ISourceTextSink, public ISourceRangeSink {
public:
    explicit CRecordingSink(ISourceText* doc = nullptr) : m_pDoc(doc) {}

    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (riid == IID_IUnknown || riid == IID_ISourceTextSink) return HandOut(static_cast<ISourceTextSink*>(this), ppv);
        if (riid == IID_ISourceRangeSink) return HandOut(static_cast<ISourceRangeSink*>(this), ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    // Lives on the test's stack; the count only shows that references balance.
    ULONG AddRef() override { return ++refs; }
    ULONG Release() override { return --refs; }

    HRESULT GetWindow(HWND* out) override {
        *out = hwnd;
        return S_OK;
    }
    HRESULT OnChange(long, long, IUnknown* change) override {
        ComPtr<ISourceChange> info = QueryAs<ISourceChange>(change, IID_ISourceChange);
        CSinkEvent e{CSinkEvent::Change};
        if (info) {
            ISourceChangeRange range;
            info->GetRange(&range);
            e.action = info->GetAction();
            e.start = range.nStart;
            e.end = range.nEnd;
        }
        e.length = Length();
        events.push_back(e);
        if (keepChanges) kept.push_back(change);  // the test releases it later
        else change->Release();
        if (onChange) onChange();
        return S_OK;
    }
    HRESULT OnBusy(BOOL busy, const char*, long) override {
        events.push_back({CSinkEvent::Busy, busy ? 1 : 0, 0, 0, Length()});
        return S_OK;
    }
    HRESULT OnSelectionChanged(long active, long anchor) override {
        events.push_back({CSinkEvent::Selection, 0, active, anchor, Length()});
        return S_OK;
    }
    HRESULT OnEnsureVisible(long) override { return S_OK; }

    std::vector<CSinkEvent> Of(CSinkEvent::Kind kind) const {
        std::vector<CSinkEvent> found;
        for (const auto& e : events)
            if (e.kind == kind) found.push_back(e);
        return found;
    }
    // The events as text, in order: a change as ACTION START-END/LENGTH, LENGTH the text's at the
    // time; a selection as sel ACTIVE,ANCHOR; busy and done.
    std::string Log() const {
        static const char* const kActions[] = {"STYLE", "INSERT", "DELETE", "RESET", "?", "REPLACE"};
        std::string out;
        for (const auto& e : events) {
            if (!out.empty()) out += ' ';
            if (e.kind == CSinkEvent::Busy) out += e.action ? "busy" : "done";
            else if (e.kind == CSinkEvent::Selection) out += "sel " + std::to_string(e.start) + "," + std::to_string(e.end);
            else out += std::string(kActions[e.action % 6]) + " " + std::to_string(e.start) + "-" + std::to_string(e.end) + "/" +
                        std::to_string(e.length);
        }
        return out;
    }
    // Kinds in order, as a string: 'C' change, 'B' busy, 'S' selection.
    std::string Order() const {
        std::string order;
        for (const auto& e : events) order.push_back("CBS"[e.kind]);
        return order;
    }

    long refs = 0;
    HWND hwnd = nullptr;
    bool keepChanges = false;
    std::vector<IUnknown*> kept;
    std::vector<CSinkEvent> events;
    std::function<void()> onChange;

private:
    long Length() const { return m_pDoc ? m_pDoc->GetLength() : -1; }
    ISourceText* m_pDoc;
};

// A document with a sink advised and a selection range advised, as a view attaches them.
struct CAttachedDoc {
    explicit CAttachedDoc(std::string_view text = {}) : doc(CreateHtmlDocument()), sink(doc.Get()) {
        doc->SetText(text);
        doc->AdviseTextSink(&sink);
        doc->CreateRange(sel.Out());
        sel->MarkAsSelection(TRUE);
        sel->AdviseRangeSink(&sink, &cookie);
        sink.events.clear();
    }
    ~CAttachedDoc() {
        sel->UnadviseRangeSink(cookie);
        doc->UnadviseTextSink(&sink);
    }
    std::string Text() const { return doc->GetText(); }

    ComPtr<CHtmlDocument> doc;
    CRecordingSink sink;
    ComPtr<ISourceRange> sel;
    DWORD cookie = 0;
};
