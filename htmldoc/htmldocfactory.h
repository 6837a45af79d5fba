// How a host makes the reference HTML document without knowing its class: a new, empty
// document as an automation object, which the host hands to the control's Document property
// and drives by name (Text, Load, Save, Undo, Redo, Modified, Encoding...).
#pragma once
#include "platform/com/dispatch.h"
#include "platform/com/export.h"

// One reference for the caller.
ZENTREL_EXPORT IDispatch* ZentrelCreateHtmlDocument();
