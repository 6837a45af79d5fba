// The completion timer: in completion mode 1 the control polls every 5 ms for the moment to
// open the code completion list.
#include "src/view/zentrelctrl.h"

namespace {

constexpr UINT kCompletionTimerMs = 5;

}  // namespace

void CZentrelCtrl::StartCodeCompletion() {
    if (m_nCompletionMode != 1) {
        StopCodeCompletion();
        return;
    }
    if (!HasWindow() || m_bCompletionTimer) return;
    SetTimer(m_hWnd, kCompletionTimer, kCompletionTimerMs);
    m_bCompletionTimer = 1;
}

void CZentrelCtrl::StopCodeCompletion() {
    if (!m_bCompletionTimer) return;
    if (HasWindow()) KillTimer(m_hWnd, kCompletionTimer);
    m_bCompletionTimer = 0;
}
