// Bookmarks and collapsed blocks as keys and gutter clicks reach them. Blocks cannot be made
// and numbered bookmarks cannot be set yet: every request answers that there is none.
#include "src/view/zentrelctrl.h"

BOOL CZentrelCtrl::Collapse() { return FALSE; }
BOOL CZentrelCtrl::Expand(BOOL) { return FALSE; }
void CZentrelCtrl::GotoNumberedBookmark(int) {}
BOOL CZentrelCtrl::ToggleNumberedBookmark(int) { return FALSE; }
BOOL CZentrelCtrl::OnGutterBox(long, int, int) { return FALSE; }
