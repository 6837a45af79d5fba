// The collapse tree: collapsed blocks of text, each holding one tracked range of the document.
// The root has no range and stands for the whole text; its children are the outermost blocks,
// the only ones the layout sees. A block collapsed around others holds them as its children,
// and they come back when it is expanded by one level.
//
// Every array of children is in ascending order of position with no overlap (neighbours may
// touch). The document moves the ranges monotonically through edits, so the order stays, and
// lookups by position search the outermost blocks by halving.
#pragma once
#include <memory>
#include <vector>

#include "src/document/sourcetext.h"

class CZentrelCtrl;

class CCollapseNode {
public:
    CCollapseNode() = default;
    CCollapseNode(const CCollapseNode&) = delete;
    CCollapseNode& operator=(const CCollapseNode&) = delete;
    // Gives the range back to the owner's document, and with it those of all blocks inside.
    ~CCollapseNode();

    void SetOwner(CZentrelCtrl* owner) { m_pOwner = owner; }
    // The extent of the node, half open: its range's, or else that of its children; -1 for
    // a node with neither.
    long GetStart() const;
    long GetEnd() const;
    long GetChildCount() const { return static_cast<long>(m_children.size()); }
    const CCollapseNode& GetChild(long i) const { return *m_children[static_cast<size_t>(i)]; }
    bool HasRange() const { return m_range != nullptr; }
    // The number of blocks below this node, all levels.
    long CountNodes() const;

    // Whether a block from start to end (either order) can be added: it may enclose and touch
    // outermost blocks but not begin or end inside one, nor equal one.
    bool CanCollapse(long start, long end) const;
    // Adds that block, taking the blocks it encloses as its children; false, with no change,
    // where CanCollapse says no. A block whose range cannot be made is linked all the same.
    bool Collapse(long start, long end);

    // What an expansion opened: the number of blocks, the span they covered together with the
    // range, and where the first of them began.
    struct Expansion {
        long count = 0;
        long first = 0;
        long last = 0;
        long firstBlock = 0x7FFFFFFF;
    };
    // Opens the outermost blocks that lie inside start..end (either order), or, for an empty
    // range, the block that begins there. One level leaves the blocks inside them collapsed;
    // otherwise every level inside the range opens.
    Expansion Expand(long start, long end, bool oneLevel);

    // The outermost block that holds `pos`, or null.
    const CCollapseNode* FindCollapse(long pos) const;
    // The same, as its start and end; false if no block holds `pos`.
    bool FindCollapse(long pos, long* start, long* end) const;
    // The lowest start of an outermost block at or behind `pos`; 0x7FFFFFFF if there is none.
    long NextStart(long pos) const;

    // Drops the outermost blocks whose range has become empty, with everything inside them;
    // true if any went. A node with a range answers whether it is empty itself.
    bool RemoveEmpty();
    // The same for the outermost blocks that reach from lo to hi: a change empties only the
    // blocks whose text it took, and leaves them where that text was.
    bool RemoveEmptyIn(long lo, long hi);
    // Gives back every block below this node and empties the tree under it.
    void RemoveAllChildren();

private:
    using Children = std::vector<std::unique_ptr<CCollapseNode>>;
    // Where a new block from lo to hi goes in m_children: the first child it encloses and the
    // one behind the last; false if it would begin or end inside a child or equal one.
    bool FindSlot(long lo, long hi, size_t* first, size_t* last) const;
    // The index of the first child whose end lies behind pos.
    size_t FirstEndingBehind(long pos) const;
    ISourceText* Document() const;

    CZentrelCtrl* m_pOwner = nullptr;
    ComPtr<ISourceRange> m_range;
    Children m_children;
};
