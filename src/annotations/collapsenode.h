// The collapse tree: collapsed blocks of text, each holding one tracked range. The root holds
// the top-level blocks.
#pragma once
#include <memory>
#include <vector>

#include "src/document/sourcetext.h"

class CZentrelCtrl;

class CCollapseNode {
public:
    void SetOwner(CZentrelCtrl* owner) { m_pOwner = owner; }
    long GetChildCount() const { return static_cast<long>(m_children.size()); }
    // Gives back every block's range to `doc` and empties the tree below this node.
    void RemoveAllChildren(ISourceText* doc);
    // Drops blocks whose range has become empty through an edit.
    void RemoveEmpty(ISourceText* doc);
    // The collapsed block that holds `pos`, as its start and end; false if none does.
    bool FindCollapse(long pos, long* start, long* end) const;
    // The lowest start of a top-level block at or behind `pos`; 0x7FFFFFFF if there is none.
    long NextStart(long pos) const;

private:
    CZentrelCtrl* m_pOwner = nullptr;
    ComPtr<ISourceRange> m_range;
    std::vector<std::unique_ptr<CCollapseNode>> m_children;
};
