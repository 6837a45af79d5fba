// The bookmark list and the collapse tree as the extra info record holds them: bookmarks from the
// front of the list, blocks depth first with children before their parent, so that collapsing
// them again in that order rebuilds the nesting.
#include "src/annotations/extrainfoannotations.h"

#include "src/view/zentrelctrl.h"

namespace {

void CollectBlocks(const CCollapseNode& node, std::vector<ExtraInfoBlock>* blocks) {
    for (long i = 0; i < node.GetChildCount(); ++i) {
        const CCollapseNode& child = node.GetChild(i);
        CollectBlocks(child, blocks);
        blocks->push_back({child.GetStart(), child.GetEnd()});
    }
}

// Every block must have its range to be written.
bool AllBlocksHaveRanges(const CCollapseNode& node) {
    for (long i = 0; i < node.GetChildCount(); ++i)
        if (!node.GetChild(i).HasRange() || !AllBlocksHaveRanges(node.GetChild(i))) return false;
    return true;
}

}  // namespace

bool CollectExtraInfoAnnotations(CZentrelCtrl& ctrl, ExtraInfoRecord* record) {
    record->bookmarks.clear();
    record->blocks.clear();
    const CBookmarkManager& marks = ctrl.m_Bookmarks;
    for (long i = 0; i < marks.GetCount(); ++i) {
        const CBookmark* b = marks.GetAt(i);
        if (!b->GetRange()) return false;
        record->bookmarks.push_back({b->GetName(), b->GetRange()->GetActive(), b->GetRange()->GetAnchor()});
    }
    if (!AllBlocksHaveRanges(ctrl.m_CollapseRoot)) return false;
    CollectBlocks(ctrl.m_CollapseRoot, &record->blocks);
    return true;
}

void RestoreExtraInfoAnnotations(CZentrelCtrl& ctrl, const ExtraInfoRecord& record) {
    ctrl.m_Bookmarks.RemoveAll();
    ctrl.m_CollapseRoot.RemoveAllChildren();
    // Each goes to the front, so the list comes back in the reverse of its saved order.
    for (const ExtraInfoBookmark& b : record.bookmarks) ctrl.m_Bookmarks.InsertLoaded(b.name, b.active, b.anchor);
    for (const ExtraInfoBlock& block : record.blocks) ctrl.m_CollapseRoot.Collapse(block.start, block.end);
}
