// The meeting point of the extra info record with the view's bookmark list and collapse tree:
// reading them into a record and putting a record's bookmarks and blocks back.
#pragma once
#include "src/annotations/extrainforecord.h"

class CZentrelCtrl;

// Fills the record's bookmarks (list order) and blocks (children before their parent). False if
// the view holds annotations that cannot be read out.
bool CollectExtraInfoAnnotations(CZentrelCtrl& ctrl, ExtraInfoRecord* record);
// Replaces all bookmarks and blocks with the record's: each bookmark goes to the front of the
// list, each block is collapsed in record order, those the tree refuses are dropped.
void RestoreExtraInfoAnnotations(CZentrelCtrl& ctrl, const ExtraInfoRecord& record);
