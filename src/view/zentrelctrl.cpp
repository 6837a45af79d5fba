#include "src/view/zentrelctrl.h"

#include <cstring>

#include "platform/window/accessible.h"
#include "platform/window/keys.h"
#include "src/resources/cursors.h"
#include "src/view/module.h"

const CLSID CLSID_Zentrel = MakeGuid("{09D5F3E5-B21C-11D1-9B66-0000C0E4E6E4}");
const IID IID_DZentrel = MakeGuid("{09D5F3E3-B21C-11D1-9B66-0000C0E4E6E4}");
const IID IID_DZentrelEvents = MakeGuid("{09D5F3E4-B21C-11D1-9B66-0000C0E4E6E4}");
const GUID LIBID_Zentrel = MakeGuid("{09D5F3E2-B21C-11D1-9B66-0000C0E4E6E4}");

namespace {

// The picker's colours at construction, in 0x00BBGGRR.
constexpr OLE_COLOR kPickerColors[16] = {0x000000, 0x0000FF, 0x00FFFF, 0xFF0000, 0x00FF00, 0xFF00FF,
                                         0xFFFF00, 0x808080, 0xC0C0C0, 0x000080, 0x008000, 0x800000,
                                         0x008080, 0x808000, 0x800080, 0xFFFFFF};

}  // namespace

CZentrelCtrl::CZentrelCtrl()
    : m_xTextSink(this), m_xRangeSink(this), m_xFontNotify(this), m_dropTarget(this), m_Styles(DefaultFormatStyles()) {
    std::memcpy(m_clrPicker, kPickerColors, sizeof m_clrPicker);
    m_Lines.InsertAt(0, 0);
    m_fontGutter.InitializeFont(DefaultGutterFont());
    m_fontSymbol.InitializeFont(DefaultSymbolFont());
    m_fontEdit.InitializeFont(DefaultEditFont());
    m_dwLastClick = GetTickCount();
    m_dwLastKey = GetTickCount();
    m_Bookmarks.SetOwner(this);
    m_CollapseRoot.SetOwner(this);
}

CZentrelCtrl::~CZentrelCtrl() {
    // The window goes first, while the object is still whole: WM_DESTROY detaches the document.
    DestroyControlWindow();
    DetachDocument();
    m_Lines.RemoveAll();
    m_ExceptionTags.clear();
}

void CZentrelCtrl::OnFinalRelease() {
    if (m_bFinalReleased) return;
    m_Bookmarks.RemoveAll();
    COleControl::OnFinalRelease();
}

CZentrelCtrl* CreateZentrelCtrl() {
    auto* ctrl = new CZentrelCtrl;
    ctrl->AddRef();
    return ctrl;
}

// --- Callback parts ---

HRESULT CZentrelCtrl::XTextSink::QueryInterface(REFIID riid, void** ppv) { return Owner()->QueryInterface(riid, ppv); }
ULONG CZentrelCtrl::XTextSink::AddRef() { return Owner()->AddRef(); }
ULONG CZentrelCtrl::XTextSink::Release() { return Owner()->Release(); }
HRESULT CZentrelCtrl::XTextSink::GetWindow(HWND* out) {
    if (!out) return E_INVALIDARG;
    *out = Owner()->HasWindow() ? Owner()->GetSafeHwnd() : nullptr;
    return S_OK;
}
HRESULT CZentrelCtrl::XTextSink::OnChange(long a, long b, IUnknown* change) { return Owner()->OnChange(a, b, change); }
HRESULT CZentrelCtrl::XTextSink::OnBusy(BOOL busy, const char* text, long reserved) {
    return Owner()->OnBusy(busy, text, reserved);
}

HRESULT CZentrelCtrl::XRangeSink::QueryInterface(REFIID riid, void** ppv) { return Owner()->QueryInterface(riid, ppv); }
ULONG CZentrelCtrl::XRangeSink::AddRef() { return Owner()->AddRef(); }
ULONG CZentrelCtrl::XRangeSink::Release() { return Owner()->Release(); }
HRESULT CZentrelCtrl::XRangeSink::OnSelectionChanged(long active, long anchor) {
    return Owner()->OnSelectionChanged(active, anchor);
}
HRESULT CZentrelCtrl::XRangeSink::OnEnsureVisible(long reserved) { return Owner()->OnEnsureVisible(reserved); }

// The font notification part answers only for itself and IUnknown.
HRESULT CZentrelCtrl::XFontNotify::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_IPropertyNotifySink) return HandOut(static_cast<IPropertyNotifySink*>(this), ppv);
    *ppv = nullptr;
    return E_NOINTERFACE;
}
ULONG CZentrelCtrl::XFontNotify::AddRef() { return Owner()->AddRef(); }
ULONG CZentrelCtrl::XFontNotify::Release() { return Owner()->Release(); }

HRESULT CZentrelCtrl::QueryExtraInterface(REFIID riid, void** ppv) {
    if (riid == IID_ISourceTextSink) return HandOut(static_cast<ISourceTextSink*>(&m_xTextSink), ppv);
    if (riid == IID_ISourceRangeSink) return HandOut(static_cast<ISourceRangeSink*>(&m_xRangeSink), ppv);
    if (riid == IID_DZentrel) return HandOut(static_cast<IDispatch*>(this), ppv);
    *ppv = nullptr;
    return E_NOINTERFACE;
}

// --- Window messages ---

LRESULT CZentrelCtrl::WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) {
    if (message == WM_CREATE && !m_hWnd) m_hWnd = hwnd;  // handlers may ask for the window already
    switch (message) {
        case WM_CREATE: return OnCreate();
        case WM_SIZE: OnSize(static_cast<UINT>(wParam), LOWORD(static_cast<uintptr_t>(lParam)),
                             HIWORD(static_cast<uintptr_t>(lParam))); return 0;
        case WM_DESTROY: OnDestroy(); return 0;
        case WM_ERASEBKGND: return TRUE;
        case WM_SYSCOLORCHANGE:
            // The gutter's pictures carry the desktop's colours: they are made anew.
            LoadGutterBitmaps();
            InvalidateGutter();
            return 0;
        case WM_GETTEXTLENGTH: return OnGetTextLength();
        case WM_GETTEXT: return OnGetText(wParam, reinterpret_cast<char*>(lParam));
        case EM_GETSEL:
        case EM_SETSEL:
        case EM_SCROLLCARET:
        case EM_GETLINECOUNT:
        case EM_REPLACESEL:
        case EM_GETFIRSTVISIBLELINE: return 0;  // claimed, so that other programs do not edit behind the document's back
        case WM_SOURCE_REPAINT: return OnSourceRepaint(wParam, lParam);
        case WM_SETFOCUS: OnSetFocus(); return 0;
        case WM_KILLFOCUS: OnKillFocus(); return 0;
        case WM_VSCROLL: OnVScroll(LOWORD(wParam), HIWORD(wParam)); return 0;
        case WM_NOTIFY: return OnNotify(wParam, reinterpret_cast<NMHDR*>(lParam));
        case WM_SETCURSOR: return OnSetCursor(reinterpret_cast<HWND>(wParam), LOWORD(static_cast<uintptr_t>(lParam)),
                                              HIWORD(static_cast<uintptr_t>(lParam)));
        case WM_HSCROLL: OnHScroll(LOWORD(wParam), HIWORD(wParam)); return 0;
        default: return OnInputMessage(message, wParam, lParam);
    }
}

// Keys, characters, the mouse and the drag selection's timer; the rest takes the default path.
LRESULT CZentrelCtrl::OnInputMessage(UINT message, WPARAM wParam, LPARAM lParam) {
    const auto flags = static_cast<UINT>(wParam);
    const int x = GET_X_LPARAM(lParam), y = GET_Y_LPARAM(lParam);
    const auto repeat = static_cast<UINT>(lParam & 0xFFFF), keyFlags = static_cast<UINT>((lParam >> 16) & 0xFFFF);
    switch (message) {
        case WM_PRETRANSLATEKEY: return PreTranslateMessage(MSG{m_hWnd, WM_KEYDOWN, wParam, lParam});
        case WM_KEYDOWN:
            if (OnKeyDown(flags, repeat, keyFlags)) return 0;
            break;
        case WM_CHAR: OnChar(flags, repeat, keyFlags); return 0;
        case WM_IME_CHAR: return OnImeChar(wParam, lParam);
        case WM_UNICHAR: OnUniChar(static_cast<char32_t>(wParam)); return 0;
        case WM_GETSURROUNDINGTEXT: return OnGetSurroundingText(reinterpret_cast<SurroundingText*>(lParam));
        case WM_LBUTTONDOWN: OnLButtonDown(flags, x, y); return 0;
        case WM_LBUTTONUP: OnLButtonUp(flags, x, y); return 0;
        case WM_LBUTTONDBLCLK: OnLButtonDblClk(flags, x, y); return 0;
        case WM_MOUSEMOVE: OnMouseMove(flags, x, y); return 0;
        case WM_MBUTTONDOWN: OnMButtonDown(flags, x, y); return 0;
        case WM_RBUTTONDOWN: OnRButtonDown(flags, x, y); return 0;
        case WM_NCLBUTTONDOWN: OnNcLButtonDown(); break;
        case WM_MOUSELEAVE: RelayToToolTip(message, wParam, lParam); return 0;
        case WM_TIMER:
            if (wParam == kDragSelectTimer) {
                OnDragSelectTimer();
                return 0;
            }
            if (wParam == kCompletionTimer) {
                OnCompletionTimer();
                return 0;
            }
            break;
        default: break;
    }
    return COleControl::WindowProc(m_hWnd, message, wParam, lParam);
}

int CZentrelCtrl::OnCreate() {
    // A window may come again after one was destroyed: it is set up as the first was.
    m_bDestroyed = FALSE;
    if (!CreateToolTip()) return -1;
    RegisterControlCursors();
    SetAccessibleText(m_hWnd, &m_accessible);
    RegisterDropTarget(m_hWnd, &m_dropTarget);
    m_penHidden.CreatePen(PS_SOLID, 0, m_Styles[STYLE_INVISIBLE].crText);
    RebuildFontCache();
    StartCodeCompletion();
    LoadGutterBitmaps();
    return 0;
}

void CZentrelCtrl::OnSize(UINT, int, int) {
    GetClientRect(m_hWnd, &m_rcClient);
    HidePicker();
    SetToolRectToTextArea();
    if (m_pDoc) {
        Reformat(TRUE);
        UpdateScrollBars(-1, -1);
    }
}

namespace {

// A posted repaint that will never be delivered still carries its reference.
void ReleasePostedChange(const MSG& msg) {
    if (msg.message == WM_SOURCE_REPAINT && msg.lParam)
        reinterpret_cast<IUnknown*>(msg.lParam)->Release();
}

}  // namespace

void CZentrelCtrl::OnDestroy() {
    if (m_bDestroyed) return;
    StopCodeCompletion();
    DestroyPickerWindow();
    RevokeDropTarget(m_hWnd);
    m_bDestroyed = TRUE;
    CloseBusyPanel();
    DetachDocument();
    ClearFontCache();
    DiscardPostedMessages(m_hWnd, ReleasePostedChange);
}

LRESULT CZentrelCtrl::OnGetTextLength() { return m_pDoc ? m_pDoc->GetLength() : 0; }

LRESULT CZentrelCtrl::OnGetText(WPARAM size, char* buffer) {
    if (!m_pDoc) return 0;
    long count = static_cast<long>(std::min<WPARAM>(size, static_cast<WPARAM>(m_pDoc->GetLength()) + 1));
    if (buffer && count >= 1) m_pDoc->CopyTextZ(buffer, 0, count - 1);
    return count;
}

void CZentrelCtrl::OnEnabledChanged() {
    // A disabled control keeps its layout as it was; enabling it measures and lays out anew.
    if (!GetEnabled()) return;
    RebuildFontCache();
    if (HasWindow()) Reformat(FALSE);
}
