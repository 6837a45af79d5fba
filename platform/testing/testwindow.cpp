#include "platform/testing/testwindow.h"

#include <algorithm>

#include "platform/testing/testplatform.h"
#include "platform/window/paint.h"

CTestWindowBackend::CTestWindowBackend(CTestPlatform* platform, HWND hwnd, HWND parent, const RECT& rc)
    : m_pPlatform(platform),
      m_hwnd(hwnd),
      m_hwndParent(parent),
      m_ptOrigin{rc.left, rc.top},
      m_cx(std::max<LONG>(rc.Width(), 0)),
      m_cy(std::max<LONG>(rc.Height(), 0)),
      m_pSurface(std::make_shared<CTestSurface>(m_cx, m_cy)),
      m_pLog(std::make_shared<DrawLog>()) {}

CTestWindowBackend::~CTestWindowBackend() {
    if (m_pPlatform) m_pPlatform->Forget(this);
}

void CTestWindowBackend::MakeChildControl(ChildControlKind kind) {
    m_bChildControl = true;
    m_kind = kind;
    m_bShown = false;
}

RECT CTestWindowBackend::ClientRect() const {
    return {0, 0, m_cx, m_cy};
}

void CTestWindowBackend::Invalidate(const RECT* rc) {
    const RECT asked = rc ? *rc : ClientRect();
    m_invalidated.push_back(asked);
    m_rgnPending.Unite(IntersectRects(asked, ClientRect()));
}

void CTestWindowBackend::Update() {
    ++m_nUpdates;
    Paint();
}

// The handler may destroy the window while it paints, so nothing of this object is touched
// after the message has gone out unless the window is still there.
bool CTestWindowBackend::Paint() {
    if (m_rgnPending.IsEmpty()) return false;
    ++m_nPaints;
    const CRgn asked = m_rgnPending;
    const int beginPaints = m_nBeginPaints;
    const HWND hwnd = m_hwnd;
    SendMessage(hwnd, WM_PAINT, 0, 0);
    if (TestWindow(hwnd) == this && m_nBeginPaints == beginPaints)
        for (const RECT& r : asked.Rects()) m_rgnPending.Subtract(r);
    return true;
}

CDC* CTestWindowBackend::Open(bool paint, const CRgn* system) {
    auto dc = std::make_unique<CTestDC>(m_pSurface, m_pLog);
    if (system) dc->SetSystemRegion(*system);
    m_contexts.push_back({std::move(dc), paint});
    return m_contexts.back().dc.get();
}

void CTestWindowBackend::Close(CDC* dc) {
    std::erase_if(m_contexts, [dc](const CContext& c) { return c.dc.get() == dc; });
}

CDC* CTestWindowBackend::BeginPaint(RECT* rcPaint) {
    ++m_nBeginPaints;
    const CRgn invalid = m_rgnPending;
    m_rgnPending.SetEmpty();
    if (rcPaint) *rcPaint = invalid.Bounds();
    return Open(true, &invalid);
}

void CTestWindowBackend::EndPaint(CDC* dc) { Close(dc); }
CDC* CTestWindowBackend::GetDC() { return Open(false, nullptr); }
void CTestWindowBackend::ReleaseDC(CDC* dc) { Close(dc); }

int CTestWindowBackend::OpenWindowDCs() const {
    return static_cast<int>(std::count_if(m_contexts.begin(), m_contexts.end(), [](const CContext& c) { return !c.bPaint; }));
}

bool CTestWindowBackend::GetUpdateRect(RECT* rc) const {
    if (rc) *rc = m_rgnPending.Bounds();
    return !m_rgnPending.IsEmpty();
}

void CTestWindowBackend::Validate(const RECT* rc) {
    m_rgnPending.Subtract(rc ? *rc : ClientRect());
}

void CTestWindowBackend::Scroll(int dx, int dy, const RECT& scroll, const RECT& clip) {
    m_scrolls.push_back({dx, dy, scroll, clip});
    const ScrollPlan plan = PlanScroll(dx, dy, scroll, clip);
    if (!plan.to.IsEmpty()) m_pSurface->Move(plan.from, dx, dy);
    ScrollInvalidRegion(&m_rgnPending, dx, dy, plan);
}

void CTestWindowBackend::CaretChanged(bool shown, const RECT& rc) {
    m_bCaretShown = shown;
    m_rcCaret = rc;
    ++m_nCaretChanges;
}

void CTestWindowBackend::ScrollBarChanged(int bar, const ScrollBarState& state) {
    m_bars[bar == SB_VERT ? 1 : 0] = state;
    ++m_nBarChanges;
}

void CTestWindowBackend::Move(const RECT& rc) {
    m_ptOrigin = {rc.left, rc.top};
    SetClientSize(rc.Width(), rc.Height());
}

void CTestWindowBackend::Animate(UINT resourceId, bool play) {
    m_nAnimation = resourceId;
    m_bPlaying = play;
}

void CTestWindowBackend::SetClientSize(LONG cx, LONG cy) {
    cx = std::max<LONG>(cx, 0);
    cy = std::max<LONG>(cy, 0);
    if (cx == m_cx && cy == m_cy) return;
    m_cx = cx;
    m_cy = cy;
    m_pSurface->Resize(cx, cy);
    m_rgnPending.Intersect(ClientRect());
    NotifyWindowResized(m_hwnd);
}

std::map<UINT, UINT> CTestWindowBackend::Timers() const {
    std::map<UINT, UINT> periods;
    for (const auto& [id, timer] : m_timers) periods[id] = timer.nPeriod;
    return periods;
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

// A child's origin is relative to its parent's client area, which lies on the screen in turn.
POINT CTestWindowBackend::ClientOrigin() const {
    POINT origin = m_ptOrigin;
    if (const CTestWindowBackend* parent = TestWindow(m_hwndParent)) {
        const POINT outer = parent->ClientOrigin();
        origin.x += outer.x;
        origin.y += outer.y;
    }
    return origin;
}
