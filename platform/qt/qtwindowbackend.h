// The Qt side of one window: owns its CQtControlWidget and forwards the window services to it.
#pragma once
#include "platform/window/window.h"

class CQtControlWidget;
class QWidget;

class CQtWindowBackend : public IWindowBackend {
public:
    CQtWindowBackend(HWND hwnd, QWidget* parent, const RECT& rc);
    ~CQtWindowBackend() override;
    CQtWindowBackend(const CQtWindowBackend&) = delete;
    CQtWindowBackend& operator=(const CQtWindowBackend&) = delete;

    RECT ClientRect() const override;
    void Invalidate(const RECT* rc) override;
    void Update() override;
    void SetTimer(UINT id, UINT ms) override;
    void KillTimer(UINT id) override;
    void PostedMessageWaiting() override;
    void SetFocus() override;
    bool HasFocus() const override;
    CDC* BeginPaint(RECT* rcPaint) override;
    void EndPaint(CDC* dc) override;
    CDC* GetDC() override;
    void ReleaseDC(CDC* dc) override;
    bool GetUpdateRect(RECT* rc) const override;
    void Validate(const RECT* rc) override;
    void Scroll(int dx, int dy, const RECT& scroll, const RECT& clip) override;
    void CaretChanged(bool shown, const RECT& rc) override;
    void ScrollBarChanged(int bar, const ScrollBarState& state) override;
    void Move(const RECT& rc) override;
    void Show(bool show) override;
    // No Capture: Qt sends the moves of a button pressed in the widget to the widget anyway.
    POINT ClientOrigin() const override;
    bool AccessibilityActive() const override;
    void AccessibleEvent(const AccessibleTextEvent& event) override;

    // Null once Qt has deleted the widget (with its parent, say) ahead of the window.
    CQtControlWidget* Widget() const { return m_pWidget; }
    void WidgetGone() { m_pWidget = nullptr; }

private:
    CQtControlWidget* m_pWidget;
};
