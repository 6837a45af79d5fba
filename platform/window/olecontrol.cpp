#include "platform/window/olecontrol.h"

#include "platform/com/classfactory.h"
#include "platform/window/paint.h"

namespace {

// The colours of the system palette that controls ask for, as a light desktop theme has them.
COLORREF SystemColor(int index) {
    switch (index) {
        case COLOR_WINDOW: return 0xFFFFFF;
        case COLOR_WINDOWTEXT: return 0x000000;
        case COLOR_HIGHLIGHT: return 0xD77800;
        case COLOR_HIGHLIGHTTEXT: return 0xFFFFFF;
        case COLOR_BTNFACE: return 0xF0F0F0;
        case COLOR_BTNSHADOW: return 0xA0A0A0;
        case COLOR_GRAYTEXT: return 0x6D6D6D;
        case COLOR_BTNTEXT: return 0x000000;
        case COLOR_3DHIGHLIGHT: return 0xFFFFFF;
        default: return 0x000000;
    }
}

}  // namespace

COLORREF GetSysColor(int index) { return SystemColor(index); }

COleControl::COleControl() { ModuleAddObject(); }

COleControl::~COleControl() {
    DestroyControlWindow();
    ModuleReleaseObject();
}

HRESULT COleControl::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_IDispatch) return HandOut(static_cast<IDispatch*>(this), ppv);
    if (riid == IID_IProvideClassInfo) return HandOut(static_cast<IProvideClassInfo*>(this), ppv);
    if (riid == IID_IConnectionPointContainer) return HandOut(static_cast<IConnectionPointContainer*>(this), ppv);
    *ppv = nullptr;
    return QueryExtraInterface(riid, ppv);
}

ULONG COleControl::AddRef() { return m_refs.Increment(); }

ULONG COleControl::Release() {
    ULONG n = m_refs.Decrement();
    if (n == 0 && !m_bFinalReleased) {
        // Keep one reference while the object takes itself apart, so that references taken
        // and dropped by the teardown do not come back here.
        m_refs.Increment();
        OnFinalRelease();
    }
    return n;
}

void COleControl::OnFinalRelease() {
    m_bFinalReleased = true;
    delete this;
}

HRESULT COleControl::QueryExtraInterface(REFIID, void** ppv) {
    *ppv = nullptr;
    return E_NOINTERFACE;
}

HRESULT COleControl::GetIDsOfNames(const std::string& name, DISPID* pDispId) {
    return GetOwnIDsOfNames(name, pDispId);
}

HRESULT COleControl::Invoke(DISPID dispid, WORD flags, std::vector<Variant>& args, Variant* result,
                            ExcepInfo* excep) {
    return InvokeOwn(dispid, flags, args, result, excep);
}

HRESULT COleControl::Advise(IDispatch* sink, DWORD* pCookie) {
    if (!sink || !pCookie) return E_POINTER;
    *pCookie = m_events.Advise(sink);
    return S_OK;
}

HRESULT COleControl::Unadvise(DWORD cookie) { return m_events.Unadvise(cookie); }

void AddStockEvents(CInterfaceInfo& events) {
    events.Add(DISPID_KEYDOWN, MemberKind::Event, "KeyDown(short* KeyCode, short Shift)");
    events.Add(DISPID_KEYUP, MemberKind::Event, "KeyUp(short* KeyCode, short Shift)");
    events.Add(DISPID_CLICK, MemberKind::Event, "Click()");
    events.Add(DISPID_DBLCLICK, MemberKind::Event, "DblClick()");
    events.Add(DISPID_MOUSEDOWN, MemberKind::Event,
               "MouseDown(short Button, short Shift, OLE_XPOS_PIXELS x, OLE_YPOS_PIXELS y)");
    events.Add(DISPID_KEYPRESS, MemberKind::Event, "KeyPress(short* KeyAscii)");
    events.Add(DISPID_MOUSEMOVE, MemberKind::Event,
               "MouseMove(short Button, short Shift, OLE_XPOS_PIXELS x, OLE_YPOS_PIXELS y)");
    events.Add(DISPID_MOUSEUP, MemberKind::Event, "MouseUp(short Button, short Shift, OLE_XPOS_PIXELS x, OLE_YPOS_PIXELS y)");
    events.Add(DISPID_READYSTATECHANGE, MemberKind::Event, "ReadyStateChange()");
    events.Add(DISPID_ERROREVENT, MemberKind::Event,
               "Error(short Number, BSTR* Description, SCODE Scode, BSTR Source, BSTR HelpFile, long HelpContext, "
               "BOOL* CancelDisplay)");
}

HRESULT COleControl::GetOwnIDsOfNames(const std::string&, DISPID* pDispId) {
    if (pDispId) *pDispId = DISPID_UNKNOWN;
    return DISP_E_UNKNOWNNAME;
}

HRESULT COleControl::InvokeOwn(DISPID, WORD, std::vector<Variant>&, Variant*, ExcepInfo*) {
    return DISP_E_MEMBERNOTFOUND;
}

void COleControl::FireEvent(DISPID dispid, std::vector<Variant> args) { m_events.Fire(dispid, args); }

HWND COleControl::CreateControlWindow(HWND parent, const RECT& rc) {
    if (HasWindow()) return m_hWnd;
    // WM_CREATE may already ask for the handle, so CreateWindowFor's handler sees it through
    // the hwnd argument; m_hWnd is set as soon as the call returns.
    m_hWnd = CreateWindowFor(this, parent, rc);
    return m_hWnd;
}

void COleControl::DestroyControlWindow() {
    if (!m_hWnd) return;
    HWND hwnd = m_hWnd;
    if (IsWindow(hwnd)) DestroyWindow(hwnd);
    m_hWnd = nullptr;
}

HRESULT COleControl::SaveProperties(CPropertyBag* bag) {
    CPropExchange px(*bag, false);
    DoPropExchange(&px);
    return S_OK;
}

HRESULT COleControl::LoadProperties(const CPropertyBag& bag, std::string* error) {
    if (!CheckPropertyKinds(bag, error)) return E_INVALIDARG;
    CPropertyBag copy = bag;
    CPropExchange px(copy, true);
    DoPropExchange(&px);
    return S_OK;
}

void COleControl::DoPropExchange(CPropExchange* pPX) {
    ExchangeExtent(pPX);
    ExchangeStockProps(pPX);
}

bool COleControl::CheckPropertyKinds(const CPropertyBag& bag, std::string* error) const {
    return bag.CheckKinds({{"_Version", PropKind::Long},
                           {"_ExtentX", PropKind::Long},
                           {"_ExtentY", PropKind::Long},
                           {"Appearance", PropKind::Short},
                           {"BorderStyle", PropKind::Short},
                           {"Enabled", PropKind::Bool}},
                          error);
}

void COleControl::ExchangeExtent(CPropExchange* pPX) {
    PX_Long(pPX, "_ExtentX", m_nExtentX, 2540);
    PX_Long(pPX, "_ExtentY", m_nExtentY, 2540);
}

void COleControl::ExchangeStockProps(CPropExchange* pPX) {
    PX_Short(pPX, "Appearance", m_sAppearance, 1);
    PX_Short(pPX, "BorderStyle", m_sBorderStyle, 0);
    BOOL enabled = m_bEnabled;
    PX_Bool(pPX, "Enabled", enabled, TRUE);
    if (pPX->IsLoading() && enabled != m_bEnabled) SetEnabled(enabled);
}

void COleControl::SetAppearance(SHORT value) {
    if (value != 0 && value != 1) ThrowError(CTL_E_INVALIDPROPERTYVALUE);
    m_sAppearance = value;
    SetModifiedFlag();
    Refresh();
}

void COleControl::SetBorderStyle(SHORT value) {
    if (value != 0 && value != 1) ThrowError(CTL_E_INVALIDPROPERTYVALUE);
    m_sBorderStyle = value;
    SetModifiedFlag();
    Refresh();
}

void COleControl::SetEnabled(BOOL value) {
    value = value ? TRUE : FALSE;
    if (value == m_bEnabled) return;
    m_bEnabled = value;
    SetModifiedFlag();
    OnEnabledChanged();
}

void COleControl::Refresh() {
    if (!HasWindow()) return;
    InvalidateRect(m_hWnd, nullptr, FALSE);
    UpdateWindow(m_hWnd);
}

void COleControl::InvalidateControl(const RECT* rc) {
    if (HasWindow()) InvalidateRect(m_hWnd, rc, FALSE);
}

COLORREF COleControl::TranslateColor(OLE_COLOR color) {
    if (color & 0x80000000u) return SystemColor(static_cast<int>(color & 0xFF));
    return color & 0x00FFFFFFu;
}

void COleControl::ThrowError(SCODE scode, const std::string& text) { throw AutomationError(scode, text); }

LRESULT COleControl::DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam) {
    if (FireStockEvents(message, wParam, lParam)) return 0;
    switch (message) {
        case WM_PAINT: OnPaint(); return 0;
        case WM_MOUSEWHEEL: return 1;  // the window's default: its vertical bar scrolls by lines
        default: return 0;
    }
}

void COleControl::OnPaint() {
    PAINTSTRUCT ps;
    CDC* dc = BeginPaint(m_hWnd, &ps);
    if (!dc) return;
    RECT client;
    GetClientRect(m_hWnd, &client);
    OnDraw(dc, client, ps.rcPaint);
    EndPaint(m_hWnd, &ps);
}
