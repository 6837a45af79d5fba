// The look the editor gives its control, set through the control's own properties: a modern
// one by default (a monospaced face, a readable palette, tabs four wide) and the control's
// classic defaults.
#pragma once

class CZentrelCtrl;

enum class EditorLook { Modern, Classic };

void ApplyEditorLook(CZentrelCtrl* ctrl, EditorLook look);
