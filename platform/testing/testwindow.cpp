#include "platform/testing/testwindow.h"

#include <algorithm>

#include "platform/testing/testplatform.h"

namespace {

RECT Intersect(const RECT& a, const RECT& b) {
    return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
            std::min(a.bottom, b.bottom)};
}

RECT Union(const RECT& a, const RECT& b) {
    if (a.IsEmpty()) return b;
    return {std::min(a.left, b.left), std::min(a.top, b.top), std::max(a.right, b.right),
            std::max(a.bottom, b.bottom)};
}

}  // namespace

CTestWindowBackend::CTestWindowBackend(CTestPlatform* platform, HWND hwnd, HWND parent, const RECT& rc)
    : m_pPlatform(platform),
      m_hwnd(hwnd),
      m_hwndParent(parent),
      m_cx(std::max<LONG>(rc.Width(), 0)),
      m_cy(std::max<LONG>(rc.Height(), 0)),
      m_rcPending{} {}

CTestWindowBackend::~CTestWindowBackend() {
    if (m_pPlatform) m_pPlatform->Forget(this);
}

RECT CTestWindowBackend::ClientRect() const {
    return {0, 0, m_cx, m_cy};
}

void CTestWindowBackend::Invalidate(const RECT* rc) {
    const RECT asked = rc ? *rc : ClientRect();
    m_invalidated.push_back(asked);
    const RECT visible = Intersect(asked, ClientRect());
    if (!visible.IsEmpty()) m_rcPending = Union(m_rcPending, visible);
}

void CTestWindowBackend::Update() {
    ++m_nUpdates;
    Paint();
}

// The handler may destroy the window while it paints, so nothing of this object is touched
// after the message has gone out.
bool CTestWindowBackend::Paint() {
    if (m_rcPending.IsEmpty()) return false;
    const RECT rc = m_rcPending;
    m_rcPending = {};
    ++m_nPaints;
    const HWND hwnd = m_hwnd;
    if (m_pPlatform)
        m_pPlatform->DeliverPaint(hwnd, rc);
    else
        SendMessage(hwnd, WM_PAINT, 0, 0);
    return true;
}

void CTestWindowBackend::SetTimer(UINT id, UINT ms) {
    const UINT period = std::max<UINT>(ms, 1);
    const uint64_t now = m_pPlatform ? m_pPlatform->Now() : 0;
    m_timers[id] = {period, now + period};
}

void CTestWindowBackend::KillTimer(UINT id) {
    m_timers.erase(id);
}

void CTestWindowBackend::PostedMessageWaiting() {
    m_bPostWaiting = true;
    ++m_nWakes;
}

void CTestWindowBackend::SetFocus() {
    if (m_pPlatform) m_pPlatform->MoveFocus(m_hwnd);
}

bool CTestWindowBackend::HasFocus() const {
    return m_pPlatform && m_pPlatform->FocusWindow() == m_hwnd;
}

void CTestWindowBackend::SetClientSize(LONG cx, LONG cy) {
    cx = std::max<LONG>(cx, 0);
    cy = std::max<LONG>(cy, 0);
    if (cx == m_cx && cy == m_cy) return;
    m_cx = cx;
    m_cy = cy;
    m_rcPending = Intersect(m_rcPending, ClientRect());
    if (m_rcPending.IsEmpty()) m_rcPending = {};
    NotifyWindowResized(m_hwnd);
}

std::map<UINT, UINT> CTestWindowBackend::Timers() const {
    std::map<UINT, UINT> periods;
    for (const auto& [id, timer] : m_timers) periods[id] = timer.nPeriod;
    return periods;
}

bool CTestWindowBackend::FireTimer(UINT id) {
    if (!HasTimer(id)) return false;
    SendMessage(m_hwnd, WM_TIMER, id, 0);
    return true;
}

int CTestWindowBackend::PumpPostedMessages() {
    m_bPostWaiting = false;
    return DispatchPostedMessages(m_hwnd);
}

CTestWindowBackend* TestWindow(HWND hwnd) {
    return dynamic_cast<CTestWindowBackend*>(GetWindowBackend(hwnd));
}
