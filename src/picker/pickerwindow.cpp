// The syntax picker's window as the keys and the mouse see it. No picker window is made yet, so
// none ever shows: its keys fall to the text and there is nothing to hide or accept.
#include "src/view/zentrelctrl.h"

BOOL CZentrelCtrl::IsPickerVisible() const { return FALSE; }
BOOL CZentrelCtrl::PickerHasCurrentRow() const { return FALSE; }
void CZentrelCtrl::ShowPicker() {}
void CZentrelCtrl::HidePicker() {}
void CZentrelCtrl::AcceptPick() {}
void CZentrelCtrl::ForwardToPicker(const MSG&) {}
