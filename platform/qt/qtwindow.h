// What a Qt host needs to embed windows: their widgets, and windows made inside a widget.
#pragma once
#include "platform/window/window.h"

class QWidget;

// The widget of a window of the Qt backend, or null.
QWidget* QtWidgetFromHwnd(HWND hwnd);

// Creates a window through CreateWindowFor whose widget is a child of `parent`, or a top-level
// widget if `parent` is null; the host shows a top-level one, a child is shown at once. An empty
// `rc` means the parent's whole area (640 by 480 for a top-level window). Null if the Qt
// platform is not the installed backend, or if creation fails.
HWND CreateQtChildWindow(IMessageHandler* handler, QWidget* parent, const RECT& rc = {});
