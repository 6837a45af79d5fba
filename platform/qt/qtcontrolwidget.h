// The Qt widget behind a window: a scroll area whose viewport is the window's client area and
// which owns both scroll bars. It turns Qt's events into messages to the window's handler.
//
// The window's pixels live in a surface image of the client area. Paint and window contexts
// draw on it, at any time; the viewport's paint event only shows the part Qt asks for, with
// the caret drawn over it. So drawing outside paint events works, ScrollWindow moves pixels
// that are really there, and blinking the caret repaints nothing of the window's.
//
// A paint that Qt's own paint event delivers draws straight into the window's backing store
// instead, where that holds what the window showed last, and spares the copy of what it drew.
// The surface then lags behind there (the stale region) and takes those pixels back from the
// store only when something needs them: a context over the surface, a scroll, another paint
// device that shows the viewport. The caret and the preedit text are never drawn over stale
// pixels, so the store holds nothing but the window's own pixels there. Where the store may
// have lost them (a new store image, the viewport moved in its window or hidden), they are
// painted again. Child widgets of the viewport draw into the same store, so a viewport that
// has any is painted the first way only.
#pragma once
#include <QAbstractScrollArea>
#include <QBasicTimer>
#include <QImage>
#include <QRegion>
#include <QSize>
#include <map>
#include <memory>
#include <vector>

#include "platform/qt/qtdc.h"
#include "platform/window/window.h"

class CDC;
class CQtInputState;
class QPainter;
class QScrollBar;
struct ScrollBarState;

class CQtControlWidget : public QAbstractScrollArea {
    Q_OBJECT

public:
    CQtControlWidget(HWND hwnd, QWidget* parent);
    ~CQtControlWidget() override;

    HWND Handle() const { return m_hwnd; }
    // Cuts the widget off from its window: it delivers nothing more and its timers stop.
    void Detach();
    // True while any control widget is delivering a Qt event to a handler; a widget must then
    // not be deleted at once, since Qt is still working with it.
    static bool IsDelivering() { return s_nDelivering > 0; }
    // The control widget the mouse last moved in, which shows the cursor its window sets; null
    // once it has gone.
    static CQtControlWidget* MouseWidget();

    // Lays the viewport out at once, so that the client size is right before the widget is shown.
    void LayOutNow() { setViewportMargins(0, 0, 0, 0); }

    // The window services of the backend.
    void InvalidateClient(const RECT* rc);
    void PaintPending();
    void StartTimer(UINT id, UINT ms);
    void StopTimer(UINT id);
    void WakeForPostedMessages();

    // Painting (qtwidgetpaint.cpp).
    CDC* BeginPaintContext(RECT* rcPaint);
    void EndPaintContext(CDC* dc);
    CDC* GetWindowContext();
    void ReleaseWindowContext(CDC* dc);
    bool PendingBounds(RECT* rc) const;
    void ValidateClient(const RECT* rc);
    void ScrollClient(int dx, int dy, const RECT& scroll, const RECT& clip);
    void SetCaret(bool shown, const RECT& rc);
    void SetScrollBar(int bar, const ScrollBarState& state);
    // The window's pixels, as contexts left them (the caret is not in them).
    const QImage& Surface();
    // Whether the caret is drawn now (shown by its count, the window focused, in the blink's on phase).
    bool CaretVisible() const;
    // The text an input method is composing, drawn at the caret and not yet in the document.
    const QString& PreeditText() const { return m_strPreedit; }

protected:
    bool event(QEvent* e) override;
    bool viewportEvent(QEvent* e) override;
    void paintEvent(QPaintEvent* e) override;
    void resizeEvent(QResizeEvent* e) override;
    void focusInEvent(QFocusEvent* e) override;
    void focusOutEvent(QFocusEvent* e) override;
    void mousePressEvent(QMouseEvent* e) override;
    void mouseReleaseEvent(QMouseEvent* e) override;
    void mouseDoubleClickEvent(QMouseEvent* e) override;
    void mouseMoveEvent(QMouseEvent* e) override;
    void wheelEvent(QWheelEvent* e) override;
    void timerEvent(QTimerEvent* e) override;
    // Input methods (qtinputmethod.cpp): the committed text is typed, the text being composed is
    // shown at the caret until then, and the caret's place and line are told to the method.
    void inputMethodEvent(QInputMethodEvent* e) override;
    QVariant inputMethodQuery(Qt::InputMethodQuery query) const override;

private:
    // Marks the time a Qt event is being delivered to a handler (see IsDelivering).
    class CDelivery {
    public:
        CDelivery() { ++s_nDelivering; }
        ~CDelivery() { --s_nDelivering; }
        CDelivery(const CDelivery&) = delete;
        CDelivery& operator=(const CDelivery&) = delete;
    };
    LRESULT Send(UINT message, WPARAM wParam, LPARAM lParam);
    static CQtInputState InputStateOf(const QEvent* e);
    bool Pretranslate(QKeyEvent* e, int vk, LPARAM lParam);
    void ShortcutOverride(QKeyEvent* e);
    void KeyPress(QKeyEvent* e);
    void KeyRelease(QKeyEvent* e);
    void DeliverText(const QString& text, LPARAM lParam);
    void MouseButton(QMouseEvent* e, UINT left, UINT right, UINT middle);
    void ScrollAction(QScrollBar* bar, UINT message, int action);
    void ThumbReleased(QScrollBar* bar, UINT message);
    void EnsureSurface();
    // The surface's extent in logical units.
    QRect SurfaceRect() const { return QRect(QPoint(0, 0), m_surface.deviceIndependentSize().toSize()); }
    QRegion DeliverPaint();
    void Present(QPainter& p, const QRegion& region, bool toStore);
    QRegion DrawOverlays(QPainter& p, const QRegion& region);
    // Painting straight into the backing store (see the top of this file).
    struct CStoreSpot {
        QImage* image = nullptr;  // the store's pixels; compared, never read, once remembered
        qint64 serial = 0;        // the image's identity beyond its address
        QPoint offset;            // the viewport's place in it
        friend bool operator==(const CStoreSpot&, const CStoreSpot&) = default;
    };
    CStoreSpot StoreSpot() const;
    bool StoreHolds();
    bool CanPaintInStore() const;
    QRegion DeliverPaintInStore(const QRegion& region);
    void SyncStale(const QRegion& region);
    void LoseStore();
    void LeaveStore();
    QRegion OverlayRegion() const;
    void Show(const QRegion& region);
    CDC* OpenContext(bool paint, const QRegion* system);
    QRect CloseContext(CDC* dc);
    bool HasWindowContext() const;
    void RestartBlink();
    QRect PreeditRect() const;
    void DrawPreedit(QPainter& p) const;
    bool CaretTimerEvent(QTimerEvent* e);

    struct CContext {
        std::unique_ptr<CQtDC> dc;
        bool bPaint;  // from BeginPaint, else from GetDC
    };

    HWND m_hwnd;
    QRegion m_rgnPending;             // invalid and not yet painted
    QImage m_surface;                 // the client area's pixels
    QImage m_storeView;               // the viewport's part of the backing store, while a paint draws there
    CStoreSpot m_store;               // where that part was last
    QRegion m_rgnStale;               // where the store holds newer pixels than the surface
    QRegion m_rgnShown;               // where the store holds the window's pixels, overlays aside
    QRegion m_rgnOverlaid;            // where the caret or the preedit text lies over them there
    int m_nDeliveries = 0;            // WM_PAINTs sent
    std::vector<CContext> m_contexts; // paint and window contexts handed out
    int m_nBeginPaints = 0;
    bool m_bDelivering = false;       // a WM_PAINT of ours is being handled
    bool m_bPresentOnly = false;      // a paint event that only shows the surface
    QRect m_rcCaret;
    QString m_strPreedit;
    int m_nPreeditCursor = 0;         // the input method's cursor in the preedit text
    bool m_bCaretShown = false;       // by the caret's count
    bool m_bCaretOn = true;           // the blink's phase
    QBasicTimer m_caretTimer;
    std::map<UINT, int> m_timers;     // window timer id to Qt timer id
    bool m_bWakePending = false;
    QSize m_sizeNotified;             // the client size the window last heard of
    int m_nWheelRemainder = 0;        // wheel movement short of a whole line step
    // A key already offered as WM_PRETRANSLATEKEY ahead of the host's shortcuts, and the answer;
    // its key press that follows is not offered again.
    // A press is known by its key and time: Qt itself asks about an override again before a
    // key press that it did not get from the window system.
    int m_nOfferedKey = 0;
    quint64 m_nOfferedTime = 0;
    bool m_bOfferedKeyClaimed = false;

    static int s_nDelivering;
};
