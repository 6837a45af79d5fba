// The bookmark list and the collapse tree offer no way yet to walk their entries or to add one.
// Until they do, a view holding bookmarks or blocks cannot be saved, and a record holding them
// cannot be loaded: both refuse instead of losing them.
#include "src/annotations/extrainfoannotations.h"

#include "src/view/zentrelctrl.h"

bool CollectExtraInfoAnnotations(CZentrelCtrl& ctrl, ExtraInfoRecord* record) {
    record->bookmarks.clear();
    record->blocks.clear();
    return ctrl.m_Bookmarks.GetCount() == 0 && ctrl.m_CollapseRoot.GetChildCount() == 0;
}

bool CanRestoreExtraInfoAnnotations(const CZentrelCtrl&, const ExtraInfoRecord& record) {
    return record.bookmarks.empty() && record.blocks.empty();
}

void RestoreExtraInfoAnnotations(CZentrelCtrl& ctrl, const ExtraInfoRecord&) {
    ctrl.m_Bookmarks.RemoveAll();
    ctrl.m_CollapseRoot.RemoveAllChildren(ctrl.m_pDoc);
}
