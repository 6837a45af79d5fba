// Clipboard commands and text drags. The system clipboard and drag and drop are not connected
// yet: the commands change nothing, and a press inside the selection is an ordinary click.
#include "src/view/zentrelctrl.h"

void CZentrelCtrl::Cut() {}
void CZentrelCtrl::Copy() {}
void CZentrelCtrl::Paste() {}
BOOL CZentrelCtrl::BeginTextDrag(long) { return FALSE; }
