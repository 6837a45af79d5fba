// What a Qt host needs to embed windows: their widgets, windows made inside a widget, and the
// hook through which a drawing layer takes over painting.
#pragma once
#include <functional>

#include "platform/window/window.h"

class QRect;
class QWidget;

// The widget of a window of the Qt backend, or null.
QWidget* QtWidgetFromHwnd(HWND hwnd);

// Creates a window through CreateWindowFor whose widget is a child of `parent`, or a top-level
// widget if `parent` is null; the host shows a top-level one, a child is shown at once. An empty
// `rc` means the parent's whole area (640 by 480 for a top-level window). Null if the Qt
// platform is not the installed backend, or if creation fails.
HWND CreateQtChildWindow(IMessageHandler* handler, QWidget* parent, const RECT& rc = {});

// Each paint of a window goes through the hook, given the viewport to draw on and the update
// rectangle, instead of a plain WM_PAINT with wParam 0. A null hook restores the plain message.
using QtPaintHook = std::function<void(HWND hwnd, QWidget* viewport, const QRect& rcUpdate)>;
void SetQtPaintHook(QtPaintHook hook);
