// Helpers of the control tests: a host-side event sink and a control made the way a host makes one.
#pragma once
#include <gtest/gtest.h>
#include <algorithm>
#include <map>

#include <string>
#include <vector>

#include "htmldoc/htmldocument.h"
#include "platform/com/classfactory.h"
#include "src/view/module.h"
#include "src/view/zentrelctrl.h"

// Records every event the control fires, with its arguments read as longs.
class CEventLog final : public IDispatch {
public:
    struct Event {
        DISPID id;
        std::vector<long> args;
        std::map<size_t, std::string> texts;  // the string arguments, by their place
    };

    HRESULT QueryInterface(REFIID riid, void** ppv) override {
        if (riid == IID_IUnknown || riid == IID_IDispatch) return HandOut(static_cast<IDispatch*>(this), ppv);
        *ppv = nullptr;
        return E_NOINTERFACE;
    }
    ULONG AddRef() override { return ++refs; }
    ULONG Release() override { return --refs; }
    HRESULT GetIDsOfNames(const std::string&, DISPID*) override { return DISP_E_UNKNOWNNAME; }
    HRESULT Invoke(DISPID id, WORD, std::vector<Variant>& args, Variant*, ExcepInfo*) override {
        Event e{id, {}, {}};
        for (const Variant& v : args) {
            int32_t n = 0;
            v.ToLong(&n);
            if (v.Type() == VT_BSTR) e.texts[e.args.size()] = v.StrVal();
            if (v.Type() == (VT_BYREF | VT_BSTR)) e.texts[e.args.size()] = *static_cast<const std::string*>(v.RefVal());
            e.args.push_back(n);
        }
        // A host that deals with drops itself answers through the last argument.
        if (id == EVENT_ONOLEDROP && takeDrops && !args.empty()) args.back().SetByRef(Variant::Bool(true));
        // A host that answers a request sets its by-reference arguments, in order.
        if (const auto answer = answers.find(id); answer != answers.end())
            for (size_t i = 0; i < args.size() && i < answer->second.size(); ++i)
                if (answer->second[i].Type() != VT_EMPTY) args[i].SetByRef(answer->second[i]);
        events.push_back(e);
        return S_OK;
    }
    std::vector<Event> Of(DISPID id) const {
        std::vector<Event> out;
        for (const Event& e : events)
            if (e.id == id) out.push_back(e);
        return out;
    }

    ULONG refs = 0;
    std::vector<Event> events;
    bool takeDrops = false;
    std::map<DISPID, std::vector<Variant>> answers;  // by event: what the host puts in its arguments
};

// A control made through the module's class factory, with an event log advised.
inline ComPtr<IDispatch> MakeControlThroughFactory() {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(DllGetClassObject(CLSID_Zentrel, IID_IClassFactory, reinterpret_cast<void**>(factory.Out())), S_OK);
    ComPtr<IDispatch> control;
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_DZentrel, reinterpret_cast<void**>(control.Out())), S_OK);
    return control;
}

inline CZentrelCtrl* AsControl(IDispatch* disp) { return static_cast<CZentrelCtrl*>(disp); }

// Invokes a property get or put by name through IDispatch, as a script host would.
inline HRESULT PutProperty(IDispatch* d, const char* name, Variant value, ExcepInfo* ex = nullptr) {
    DISPID id;
    HRESULT hr = d->GetIDsOfNames(name, &id);
    if (FAILED(hr)) return hr;
    std::vector<Variant> args{std::move(value)};
    ExcepInfo local;
    return d->Invoke(id, DISPATCH_PROPERTYPUT, args, nullptr, ex ? ex : &local);
}

inline Variant GetProperty(IDispatch* d, const char* name) {
    DISPID id;
    d->GetIDsOfNames(name, &id);
    std::vector<Variant> args;
    Variant result;
    ExcepInfo ex;
    d->Invoke(id, DISPATCH_PROPERTYGET, args, &result, &ex);
    return result;
}

// A few kilobytes of HTML with LF and CR LF lines.
inline std::string SamplePage() {
    std::string page = "<!DOCTYPE html>\r\n<html>\r\n<head><title>Sample</title></head>\n<body>\n";
    for (int i = 0; i < 60; ++i)
        page += "  <p class=\"row\">Paragraph " + std::to_string(i) + " with <b>bold</b> text.</p>\n";
    page += "</body>\n</html>\n";
    return page;
}

// Empty when the control's line table is sound and what a whole layout of its text gives; else
// the first difference.
inline std::string DifferenceFromWholeLayout(CZentrelCtrl& ctrl) {
    CLineIndex fresh;
    ctrl.WrapAll(ctrl.GetOptionsWord(), ctrl.BreakWidth(), &fresh);
    const CLineIndex& lines = ctrl.Lines();
    std::string why;
    if (!lines.CheckInvariants(&why)) return why;
    for (long i = 0; i < std::max(lines.m_nCount, fresh.m_nCount); ++i) {
        const long have = i < lines.m_nCount ? lines.GetAt(i) : -1, want = i < fresh.m_nCount ? fresh.GetAt(i) : -1;
        if (have != want)
            return "row " + std::to_string(i) + " is " + std::to_string(have) + ", a whole layout gives " +
                   std::to_string(want) + " (rows " + std::to_string(lines.m_nCount) + " and " +
                   std::to_string(fresh.m_nCount) + ")";
    }
    return {};
}

// The collapsed blocks under a node as start-end, children in brackets: `2-9[3-5 6-8] 12-14`.
inline std::string CollapseTreeText(const CCollapseNode& node) {
    std::string out;
    for (long i = 0; i < node.GetChildCount(); ++i) {
        const CCollapseNode& child = node.GetChild(i);
        out += (i ? " " : "") + std::to_string(child.GetStart()) + "-" + std::to_string(child.GetEnd());
        if (child.GetChildCount()) out += "[" + CollapseTreeText(child) + "]";
    }
    return out;
}
