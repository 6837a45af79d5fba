#include "platform/testing/testplatform.h"

#include <algorithm>

#include "platform/testing/testfont.h"
#include "platform/window/backend.h"

CTestPlatform::~CTestPlatform() {
    AbandonAllWindows();
    // A window whose record is still pinned by a call in progress outlives this object.
    for (CTestWindowBackend* window : m_windows) window->m_pPlatform = nullptr;
}

std::unique_ptr<IWindowBackend> CTestPlatform::CreateWindowBackend(HWND hwnd, HWND parent, const RECT& rc) {
    auto window = std::make_unique<CTestWindowBackend>(this, hwnd, parent, rc);
    m_windows.push_back(window.get());
    return window;
}

short CTestPlatform::KeyState(int vk) {
    return vk >= 0 && vk < 256 ? m_keys[vk] : 0;
}

void CTestPlatform::Beep(UINT type) {
    ++m_nBeeps;
    m_nLastBeep = type;
}

void CTestPlatform::SetTickCount(DWORD ticks) {
    // Running timers keep the time they have left, so a jump of the clock does not make them
    // all fall due at once.
    for (CTestWindowBackend* window : m_windows)
        for (auto& [id, timer] : window->m_timers) timer.nDue = timer.nDue - m_nNow + ticks;
    m_nNow = ticks;
}

void CTestPlatform::AdvanceClock(DWORD ms) {
    const uint64_t target = m_nNow + ms;
    HWND hwnd;
    UINT id;
    uint64_t due;
    // Searched anew after every tick: a handler may kill, set or destroy anything.
    while (NextDueTimer(target, &hwnd, &id, &due)) {
        m_nNow = std::max(m_nNow, due);
        CTestWindowBackend* window = TestWindow(hwnd);
        window->m_timers[id].nDue += window->m_timers[id].nPeriod;
        SendMessage(hwnd, WM_TIMER, id, 0);
    }
    m_nNow = target;
}

bool CTestPlatform::NextDueTimer(uint64_t limit, HWND* hwnd, UINT* id, uint64_t* due) const {
    bool found = false;
    for (const CTestWindowBackend* window : m_windows) {
        if (!IsWindow(window->m_hwnd)) continue;
        for (const auto& [timerId, timer] : window->m_timers) {
            if (timer.nDue > limit || (found && timer.nDue >= *due)) continue;
            found = true;
            *hwnd = window->m_hwnd;
            *id = timerId;
            *due = timer.nDue;
        }
    }
    return found;
}

void CTestPlatform::SetKeyState(int vk, short state) {
    if (vk >= 0 && vk < 256) m_keys[vk] = state;
}

void CTestPlatform::SetKeyDown(int vk, bool down) {
    if (vk < 0 || vk >= 256) return;
    const uint16_t toggled = static_cast<uint16_t>(m_keys[vk]) & 1;
    m_keys[vk] = static_cast<short>((down ? 0x8000 : 0) | toggled);
}

void CTestPlatform::MoveFocus(HWND hwnd) {
    if (hwnd == m_hwndFocus) return;
    const HWND previous = m_hwndFocus;
    m_hwndFocus = hwnd;
    if (previous && IsWindow(previous))
        SendMessage(previous, WM_KILLFOCUS, reinterpret_cast<WPARAM>(hwnd), 0);
    // The old window's handler may have moved the focus elsewhere meanwhile.
    if (hwnd && m_hwndFocus == hwnd) SendMessage(hwnd, WM_SETFOCUS, reinterpret_cast<WPARAM>(previous), 0);
}

std::vector<HWND> CTestPlatform::Windows() const {
    std::vector<HWND> handles;
    for (const CTestWindowBackend* window : m_windows)
        if (IsWindow(window->m_hwnd)) handles.push_back(window->m_hwnd);
    return handles;
}

void CTestPlatform::DestroyAllWindows() {
    // Destroying a parent takes its children with it, so each handle is checked again.
    for (HWND hwnd : Windows())
        if (IsWindow(hwnd)) DestroyWindow(hwnd);
}

void CTestPlatform::AbandonAllWindows() {
    for (HWND hwnd : Windows()) AbandonWindow(hwnd);
}

void CTestPlatform::Forget(CTestWindowBackend* window) {
    std::erase(m_windows, window);
    if (m_hwndFocus == window->m_hwnd) m_hwndFocus = nullptr;
}

std::unique_ptr<IWindowBackend> CTestPlatform::CreateChildControl(HWND hwnd, ChildControlKind kind, HWND parent,
                                                                 const RECT& rc) {
    auto window = std::make_unique<CTestWindowBackend>(this, hwnd, parent, rc);
    window->MakeChildControl(kind);
    m_windows.push_back(window.get());
    return window;
}

std::vector<HWND> CTestPlatform::ChildControlsOf(HWND parent) const {
    std::vector<HWND> handles;
    for (const CTestWindowBackend* window : m_windows)
        if (window->IsChildControl() && window->Kind() != ChildControlKind::ToolTip && window->Parent() == parent &&
            IsWindow(window->Handle()))
            handles.push_back(window->Handle());
    return handles;
}

std::shared_ptr<CFontImpl> CTestPlatform::CreateFont(const LOGFONTA& lf) { return CTestFont::Create(lf); }

std::unique_ptr<CDC> CTestPlatform::CreateScreenDC() { return CTestDC::Screen(kScreenSize.cx, kScreenSize.cy); }

CTestPlatformScope::CTestPlatformScope()
    : m_pPrevious(SetPlatformBackend(&m_platform)),
      m_pPreviousGdi(SetGdiBackend(&m_platform)),
      m_pPreviousClipboard(SetClipboardBackend(&m_clipboard)),
      m_pPreviousDragDrop(SetDragDropBackend(&m_dragDrop)),
      m_pPreviousDialogs(SetDialogBackend(&m_dialogs)) {}

CTestPlatformScope::~CTestPlatformScope() {
    m_platform.AbandonAllWindows();
    SetDialogBackend(m_pPreviousDialogs);
    SetDragDropBackend(m_pPreviousDragDrop);
    SetClipboardBackend(m_pPreviousClipboard);
    SetGdiBackend(m_pPreviousGdi);
    SetPlatformBackend(m_pPrevious);
}
