// The control's type library: its class, its event interface and its enumerations. The
// dispatch interface is the automation table itself (dispatchmap.cpp).
#include "src/view/zentrelctrl.h"

namespace {

const CInterfaceInfo& EventInterface() {
    static const CInterfaceInfo events = [] {
        CInterfaceInfo e("_DZentrelEvents", IID_DZentrelEvents, "Event interface for Zentrel Control");
        AddStockEvents(e);
        e.Add(EVENT_SELECTIONCHANGED, MemberKind::Event, "SelectionChanged(long nStart, long nEnd)");
        e.Add(EVENT_ONOLEDROP, MemberKind::Event, "OnOleDrop(VARIANT varDataObject, long nDropEffect, long nPos, BOOL* pbSuccess)");
        e.Add(EVENT_ONOLEDRAGOVER, MemberKind::Event,
              "OnOleDragOver(VARIANT varDataObject, long* pnDropEffect, long nPos, long dwKeyState)");
        e.Add(EVENT_EDITMODETOGGLED, MemberKind::Event, "EditModeToggled(BOOL bOverwrite)");
        e.Add(EVENT_DOCUMENTCHANGED, MemberKind::Event, "DocumentChanged(short nAction, long nChangeAt, long nChangeCount)");
        e.Add(EVENT_AUTOCONVERTTOGGLED, MemberKind::Event, "AutoConvertToggled()");
        e.Add(EVENT_BOOKMARKCHANGED, MemberKind::Event, "BookmarkChanged(BOOL bSet, BSTR lpszName)");
        e.Add(EVENT_REQUESTCOLOR, MemberKind::Event, "RequestColor(BOOL* bDispatched, OLE_COLOR* Color, BOOL* bAccepted)");
        // The requests of a text value share one shape: the host answers the text through the middle argument.
        static constexpr const char* kTextRequests[] = {"Font", "URL", "HTML", "Picture", "Sound", "Directory", "Anim", "Java"};
        DISPID id = EVENT_REQUESTCOLOR;
        for (const char* what : kTextRequests) {
            const std::string w(what);
            e.Add(++id, MemberKind::Event, "Request" + w + "(BOOL* bDispatched, BSTR* str" + w + ", BOOL* bAccepted)");
        }
        e.Add(EVENT_SYNTAXOBJECTCHANGED, MemberKind::Event, "SyntaxObjectChanged(short nType, BSTR strPrimary, BSTR strSecondary)");
        return e;
    }();
    return events;
}

}  // namespace

const CClassInfo& ZentrelClassInfo() {
    static const CClassInfo info = [] {
        CClassInfo c;
        c.name = "Zentrel";
        c.clsid = CLSID_Zentrel;
        c.help = "Zentrel Control 2";
        c.libid = LIBID_Zentrel;
        c.dispatch = CZentrelCtrl::DispatchInterface();
        c.events = &EventInterface();
        c.enums = {
            {"AppearanceType", "Flat", 0, "Flat Appearance"},
            {"AppearanceType", "ThreeD", 1, "3D Appearance"},
            {"HighLightType", "None", 0, "No highlighting"},
            {"HighLightType", "SyntaxHighlight", 1, "Syntax highlighting"},
            {"HighLightType", "TagHighlight", 2, "Tag highlighting"},
        };
        return c;
    }();
    return info;
}

const CClassInfo* CZentrelCtrl::GetClassInfo() { return &ZentrelClassInfo(); }
