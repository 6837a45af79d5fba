// The windowed control base: a counted automation object that owns a window, fires events to
// advised sinks, keeps the stock properties, exchanges its persistent properties with a
// property bag, and marks itself modified. A control derives from it, handles messages in
// WindowProc and adds its own dispatch members.
#pragma once
#include <string>
#include <vector>

#include "platform/com/automation.h"
#include "platform/com/events.h"
#include "platform/com/propbag.h"
#include "platform/gdi/dc.h"
#include "platform/window/window.h"

// System colours reach TranslateColor as 0x80000000 | index.
constexpr int COLOR_WINDOW = 5;
constexpr int COLOR_WINDOWTEXT = 8;
constexpr int COLOR_HIGHLIGHT = 13;
constexpr int COLOR_HIGHLIGHTTEXT = 14;
constexpr int COLOR_BTNFACE = 15;
constexpr int COLOR_BTNSHADOW = 16;
constexpr int COLOR_GRAYTEXT = 17;
constexpr int COLOR_BTNTEXT = 18;
constexpr int COLOR_3DHIGHLIGHT = 20;
COLORREF GetSysColor(int index);

// Stock dispatch ids.
constexpr DISPID DISPID_APPEARANCE = -520;
constexpr DISPID DISPID_BORDERSTYLE = -504;
constexpr DISPID DISPID_HWND = -515;
constexpr DISPID DISPID_ENABLED = -514;
constexpr DISPID DISPID_BACKCOLOR = -501;
constexpr DISPID DISPID_REFRESH = -550;
constexpr DISPID DISPID_ABOUTBOX = -552;
// Stock event dispatch ids.
constexpr DISPID DISPID_CLICK = -600;
constexpr DISPID DISPID_DBLCLICK = -601;
constexpr DISPID DISPID_KEYDOWN = -602;
constexpr DISPID DISPID_KEYPRESS = -603;
constexpr DISPID DISPID_KEYUP = -604;
constexpr DISPID DISPID_MOUSEDOWN = -605;
constexpr DISPID DISPID_MOUSEMOVE = -606;
constexpr DISPID DISPID_MOUSEUP = -607;
constexpr DISPID DISPID_ERROREVENT = -608;
constexpr DISPID DISPID_READYSTATECHANGE = -609;

class COleControl : public IDispatch,
                    public IProvideClassInfo,
                    public IConnectionPointContainer,
                    public IMessageHandler {
public:
    COleControl();
    COleControl(const COleControl&) = delete;
    COleControl& operator=(const COleControl&) = delete;

    // IUnknown: answers IUnknown, IDispatch, IProvideClassInfo and IConnectionPointContainer,
    // then whatever QueryExtraInterface adds.
    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    ULONG AddRef() override;
    ULONG Release() override;

    // IDispatch: the control's table (GetOwnIDsOfNames, InvokeOwn), which holds the stock members too.
    HRESULT GetIDsOfNames(const std::string& name, DISPID* pDispId) override;
    HRESULT Invoke(DISPID dispid, WORD flags, std::vector<Variant>& args, Variant* result,
                   ExcepInfo* excep) override;

    // Messages of the control's window. Derived controls handle theirs and pass the rest here.
    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override {
        return DefWindowProc(message, wParam, lParam);
    }

    // IProvideClassInfo: the control's class, interfaces and enumerations; none by default.
    const CClassInfo* GetClassInfo() override { return nullptr; }
    // IConnectionPointContainer: the sinks of the control's events.
    HRESULT Advise(IDispatch* sink, DWORD* pCookie) override;
    HRESULT Unadvise(DWORD cookie) override;

    // Events.
    DWORD AdviseEvents(IDispatch* sink) { return m_events.Advise(sink); }
    HRESULT UnadviseEvents(DWORD cookie) { return m_events.Unadvise(cookie); }
    void FireEvent(DISPID dispid, std::vector<Variant> args);

    // The window. CreateControlWindow sends WM_CREATE and WM_SIZE through WindowProc.
    HWND CreateControlWindow(HWND parent, const RECT& rc);
    void DestroyControlWindow();
    HWND GetSafeHwnd() const { return m_hWnd; }
    bool HasWindow() const { return m_hWnd != nullptr && IsWindow(m_hWnd); }

    // Persistence. Save writes every persistent property; Load checks the bag and refuses it
    // whole (with *error) when a value has the wrong kind or the version is newer.
    HRESULT SaveProperties(CPropertyBag* bag);
    HRESULT LoadProperties(const CPropertyBag& bag, std::string* error);
    BOOL IsModified() const { return m_bModified; }
    void SetModifiedFlag(BOOL modified = TRUE) { m_bModified = modified; }

    // Stock properties.
    SHORT GetAppearance() const { return m_sAppearance; }
    void SetAppearance(SHORT value);
    SHORT GetBorderStyle() const { return m_sBorderStyle; }
    void SetBorderStyle(SHORT value);
    BOOL GetEnabled() const { return m_bEnabled; }
    void SetEnabled(BOOL value);

    // Repaint: the whole control, at once.
    void Refresh();
    void InvalidateControl(const RECT* rc = nullptr);
    static COLORREF TranslateColor(OLE_COLOR color);
    [[noreturn]] static void ThrowError(SCODE scode, const std::string& text = {});

protected:
    virtual ~COleControl();

    // Called when the last reference goes. The default deletes the object.
    virtual void OnFinalRelease();
    virtual HRESULT QueryExtraInterface(REFIID riid, void** ppv);
    virtual void DoPropExchange(CPropExchange* pPX);
    // The names and kinds of the values that DoPropExchange reads, for the check before a load.
    virtual bool CheckPropertyKinds(const CPropertyBag& bag, std::string* error) const;
    virtual void OnEnabledChanged() {}
    // Draws the control: the whole control occupies rcBounds, and rcInvalid needs painting.
    // WM_PAINT comes here with the paint context, the client rectangle and the paint's bounds.
    virtual void OnDraw(CDC* pDC, const RECT& rcBounds, const RECT& rcInvalid) {}
    // What the container says: FALSE while the control is being designed, not run; and the
    // name the container gives the control.
    virtual BOOL AmbientUserMode() const { return TRUE; }
    virtual std::string AmbientDisplayName() const { return "Zentrel"; }
    // The members beyond the stock ones.
    virtual HRESULT GetOwnIDsOfNames(const std::string& name, DISPID* pDispId);
    virtual HRESULT InvokeOwn(DISPID dispid, WORD flags, std::vector<Variant>& args, Variant* result,
                              ExcepInfo* excep);

    // The base's part of an exchange: extent and the stock properties.
    void ExchangeExtent(CPropExchange* pPX);
    void ExchangeStockProps(CPropExchange* pPX);

    // Default message handling: what a window does with a message the control does not take.
    // Key and mouse messages raise their stock events here.
    LRESULT DefWindowProc(UINT message, WPARAM wParam, LPARAM lParam);
    // The stock events of a key or mouse message (stockevents.cpp); FALSE for other messages.
    BOOL FireStockEvents(UINT message, WPARAM wParam, LPARAM lParam);
    void OnPaint();

    HWND m_hWnd = nullptr;
    // True once the last reference has gone and OnFinalRelease has started.
    bool m_bFinalReleased = false;

private:
    CRefCount m_refs;
    CConnectionPoint m_events;
    BOOL m_bModified = FALSE;
    SHORT m_sAppearance = 1;
    SHORT m_sBorderStyle = 0;
    BOOL m_bEnabled = TRUE;
    LONG m_nExtentX = 2540;  // HIMETRIC: a new control is one inch by one inch
    LONG m_nExtentY = 2540;
};

// The stock members of every control, added to the control's own table so that its one type
// description covers them: Appearance, BorderStyle, HWnd, Enabled and Refresh.
template <class T>
void AddStockMembers(CDispatchTable<T>& t) {
    using Args = std::vector<Variant>;
    t.Property(DISPID_APPEARANCE, "AppearanceType Appearance",
               [](T& c, const Args&) { return Variant::Short(c.GetAppearance()); },
               [](T& c, const Args&, const Variant& v) { c.SetAppearance(ArgShort({v}, 0)); });
    t.Property(DISPID_BORDERSTYLE, "short BorderStyle", [](T& c, const Args&) { return Variant::Short(c.GetBorderStyle()); },
               [](T& c, const Args&, const Variant& v) { c.SetBorderStyle(ArgShort({v}, 0)); });
    t.Property(DISPID_HWND, "OLE_HANDLE HWnd", [](T& c, const Args&) {
        return Variant::Long(static_cast<int32_t>(reinterpret_cast<uintptr_t>(c.GetSafeHwnd())));
    });
    t.Property(DISPID_ENABLED, "BOOL Enabled", [](T& c, const Args&) { return Variant::Bool(c.GetEnabled() != 0); },
               [](T& c, const Args&, const Variant& v) { c.SetEnabled(ArgBool({v}, 0)); });
    t.Method(DISPID_REFRESH, "void Refresh()", [](T& c, Args&) {
        c.Refresh();
        return Variant();
    });
}

// The stock events, in the order a type library lists them.
void AddStockEvents(CInterfaceInfo& events);
