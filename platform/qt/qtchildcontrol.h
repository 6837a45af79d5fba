// Child controls of the Qt backend: a QLabel for a static control, and a small animation
// widget for an animation control. They handle no messages of their own.
#pragma once
#include <QBasicTimer>
#include <QPointer>
#include <QWidget>

#include "platform/window/controls.h"
#include "platform/window/window.h"

// The busy animation. The resource it stands for has no picture file on this platform, so the
// frames are drawn here: a ring of dots with a bright one going round. It plays on a Qt timer,
// and a paint while the thread is blocked (the control repaints once before a long operation)
// shows the current frame, the first one at the start.
class CQtAnimationWidget : public QWidget {
    Q_OBJECT

public:
    explicit CQtAnimationWidget(QWidget* parent);
    static constexpr int kFrames = 12;
    static constexpr int kFrameMs = 80;

    void Open(UINT resourceId);
    void Play(bool play);
    UINT Resource() const { return m_nResource; }
    bool IsPlaying() const { return m_timer.isActive(); }
    int Frame() const { return m_nFrame; }

protected:
    void paintEvent(QPaintEvent* e) override;
    void timerEvent(QTimerEvent* e) override;

private:
    UINT m_nResource = 0;
    int m_nFrame = 0;
    QBasicTimer m_timer;
};

class CQtChildControl : public IWindowBackend {
public:
    CQtChildControl(ChildControlKind kind, QWidget* parent, const RECT& rc);
    // A control around a widget made elsewhere, hidden until shown.
    explicit CQtChildControl(QWidget* widget);
    ~CQtChildControl() override;
    CQtChildControl(const CQtChildControl&) = delete;
    CQtChildControl& operator=(const CQtChildControl&) = delete;

    QWidget* Widget() const { return m_pWidget; }

    RECT ClientRect() const override;
    void Invalidate(const RECT* rc) override;
    void Update() override;
    void SetTimer(UINT, UINT) override {}
    void KillTimer(UINT) override {}
    void PostedMessageWaiting() override {}
    void SetFocus() override {}
    bool HasFocus() const override { return false; }
    // A child control paints itself: it hands out no contexts and keeps no invalid area.
    CDC* BeginPaint(RECT* rcPaint) override;
    void EndPaint(CDC*) override {}
    CDC* GetDC() override { return nullptr; }
    void ReleaseDC(CDC*) override {}
    bool GetUpdateRect(RECT* rc) const override;
    void Validate(const RECT*) override {}
    void Scroll(int, int, const RECT&, const RECT&) override {}
    void CaretChanged(bool, const RECT&) override {}
    void ScrollBarChanged(int, const ScrollBarState&) override {}
    void SetText(const std::string& text) override;
    void Move(const RECT& rc) override;
    void Show(bool show) override;
    void Animate(UINT resourceId, bool play) override;

private:
    QPointer<QWidget> m_pWidget;  // Qt may delete it with its parent first
};
