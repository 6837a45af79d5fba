#include "src/annotations/collapsenode.h"

#include <algorithm>
#include <iterator>

#include "src/view/zentrelctrl.h"

CCollapseNode::~CCollapseNode() {
    RemoveAllChildren();
    if (!m_range) return;
    ISourceText* doc = nullptr;
    if (SUCCEEDED(m_range->GetDocument(&doc)) && doc) doc->DestroyRange(m_range.Get());
}

ISourceText* CCollapseNode::Document() const { return m_pOwner ? m_pOwner->m_pDoc : nullptr; }

long CCollapseNode::GetStart() const {
    if (m_range) return m_range->GetStart();
    return m_children.empty() ? -1 : m_children.front()->GetStart();
}

long CCollapseNode::GetEnd() const {
    if (m_range) return m_range->GetEnd();
    return m_children.empty() ? -1 : m_children.back()->GetEnd();
}

long CCollapseNode::CountNodes() const {
    long count = GetChildCount();
    for (const auto& child : m_children) count += child->CountNodes();
    return count;
}

size_t CCollapseNode::FirstEndingBehind(long pos) const {
    auto it = std::partition_point(m_children.begin(), m_children.end(),
                                   [pos](const std::unique_ptr<CCollapseNode>& c) { return c->GetEnd() <= pos; });
    return static_cast<size_t>(it - m_children.begin());
}

bool CCollapseNode::FindSlot(long lo, long hi, size_t* first, size_t* last) const {
    // The children wholly in front of lo are passed; starts and ends both ascend, so the first
    // child that is not is found by halving.
    auto it = std::partition_point(m_children.begin(), m_children.end(), [lo](const std::unique_ptr<CCollapseNode>& c) {
        return c->GetStart() < lo && c->GetEnd() <= lo;
    });
    size_t i = static_cast<size_t>(it - m_children.begin());
    *first = i;
    if (i == m_children.size()) {
        *last = i;
        return true;
    }
    const long cs = m_children[i]->GetStart(), ce = m_children[i]->GetEnd();
    if (cs < lo) return false;                // the new block would begin inside a block
    if (cs == lo && ce == hi) return false;   // that block exists
    for (; i < m_children.size(); ++i) {
        const long s = m_children[i]->GetStart(), e = m_children[i]->GetEnd();
        if (hi >= e) continue;                // enclosed
        if (s < hi) return false;             // the new block would end inside a block
        break;                                // behind the new block
    }
    *last = i;
    return true;
}

bool CCollapseNode::CanCollapse(long start, long end) const {
    size_t first, last;
    return FindSlot(std::min(start, end), std::max(start, end), &first, &last);
}

bool CCollapseNode::Collapse(long start, long end) {
    const long lo = std::min(start, end), hi = std::max(start, end);
    size_t first, last;
    if (!FindSlot(lo, hi, &first, &last)) return false;
    auto node = std::make_unique<CCollapseNode>();
    node->m_pOwner = m_pOwner;
    if (ISourceText* doc = Document()) {
        ComPtr<ISourceRange> range;
        if (SUCCEEDED(doc->CreateRange(range.Out())) && range) {
            range->SetRange(lo, hi);
            node->m_range = std::move(range);
        }
    }
    const auto from = m_children.begin() + static_cast<std::ptrdiff_t>(first);
    const auto to = m_children.begin() + static_cast<std::ptrdiff_t>(last);
    node->m_children.assign(std::make_move_iterator(from), std::make_move_iterator(to));
    const auto at = m_children.erase(from, to);
    m_children.insert(at, std::move(node));
    return true;
}

CCollapseNode::Expansion CCollapseNode::Expand(long start, long end, bool oneLevel) {
    const long lo = std::min(start, end), hi = std::max(start, end);
    Expansion done{0, lo, hi};
    long a = lo, b = hi;
    auto it = std::partition_point(m_children.begin(), m_children.end(),
                                   [lo](const std::unique_ptr<CCollapseNode>& c) { return c->GetStart() < lo; });
    size_t i = static_cast<size_t>(it - m_children.begin());
    while (i < m_children.size()) {
        const long cs = m_children[i]->GetStart(), ce = m_children[i]->GetEnd();
        bool matches;
        if (a == b) {
            if (cs != a) break;
            matches = true;
            if (!oneLevel) b = ce;  // the block opens, and everything inside it
        } else {
            matches = cs >= a && ce <= b;
        }
        if (matches) {
            std::unique_ptr<CCollapseNode> node = std::move(m_children[i]);
            Children inner = std::move(node->m_children);
            node->m_children.clear();
            // A block emptied while it lay inside this one stays where its text went, which may
            // be anywhere in front of this block by now: it shows nothing, so it goes rather
            // than break the order of the outer list.
            std::erase_if(inner, [](const std::unique_ptr<CCollapseNode>& c) { return c->GetStart() == c->GetEnd(); });
            const size_t moved = inner.size();
            const auto at = m_children.erase(m_children.begin() + static_cast<std::ptrdiff_t>(i));
            m_children.insert(at, std::make_move_iterator(inner.begin()), std::make_move_iterator(inner.end()));
            if (oneLevel) i += moved;  // the blocks that moved up stay collapsed
            done.first = std::min(done.first, cs);
            done.firstBlock = std::min(done.firstBlock, cs);
            done.last = std::max(done.last, ce);
            ++done.count;
        } else {
            ++i;
        }
        if (ce > b) break;
    }
    return done;
}

const CCollapseNode* CCollapseNode::FindCollapse(long pos) const {
    if (m_range) return pos >= m_range->GetStart() && pos < m_range->GetEnd() ? this : nullptr;
    const size_t i = FirstEndingBehind(pos);
    if (i == m_children.size()) return nullptr;
    return m_children[i]->FindCollapse(pos);
}

bool CCollapseNode::FindCollapse(long pos, long* start, long* end) const {
    const CCollapseNode* node = FindCollapse(pos);
    if (!node) return false;
    *start = node->GetStart();
    *end = node->GetEnd();
    return true;
}

long CCollapseNode::NextStart(long pos) const {
    auto it = std::partition_point(m_children.begin(), m_children.end(),
                                   [pos](const std::unique_ptr<CCollapseNode>& c) { return c->GetStart() < pos; });
    return it == m_children.end() ? 0x7FFFFFFF : (*it)->GetStart();
}

bool CCollapseNode::RemoveEmpty() {
    if (m_range) {
        if (m_range->GetStart() != m_range->GetEnd()) return false;
        RemoveAllChildren();
        return true;
    }
    return std::erase_if(m_children, [](const std::unique_ptr<CCollapseNode>& c) { return c->RemoveEmpty(); }) > 0;
}

bool CCollapseNode::RemoveEmptyIn(long lo, long hi) {
    const auto first = m_children.begin() + static_cast<std::ptrdiff_t>(FirstEndingBehind(lo - 1));
    auto last = first;
    while (last != m_children.end() && (*last)->GetStart() <= hi) ++last;
    const auto kept = std::remove_if(first, last, [](const std::unique_ptr<CCollapseNode>& c) { return c->RemoveEmpty(); });
    if (kept == last) return false;
    m_children.erase(kept, last);
    return true;
}

void CCollapseNode::RemoveAllChildren() {
    Children gone;
    gone.swap(m_children);
    gone.clear();  // each block gives back the blocks inside it first, then its own range
}
