#include "src/annotations/collapsenode.h"

#include <algorithm>

void CCollapseNode::RemoveAllChildren(ISourceText* doc) {
    for (auto& child : m_children) {
        child->RemoveAllChildren(doc);
        if (doc && child->m_range) doc->DestroyRange(child->m_range.Get());
    }
    m_children.clear();
}

void CCollapseNode::RemoveEmpty(ISourceText* doc) {
    for (auto& child : m_children) child->RemoveEmpty(doc);
    std::erase_if(m_children, [doc](const std::unique_ptr<CCollapseNode>& child) {
        if (!child->m_range || child->m_range->GetStart() != child->m_range->GetEnd()) return false;
        child->RemoveAllChildren(doc);
        if (doc) doc->DestroyRange(child->m_range.Get());
        return true;
    });
}

bool CCollapseNode::FindCollapse(long pos, long* start, long* end) const {
    for (const auto& child : m_children) {
        long s = child->m_range->GetStart(), e = child->m_range->GetEnd();
        if (pos >= s && pos < e) {
            *start = s;
            *end = e;
            return true;
        }
    }
    return false;
}

long CCollapseNode::NextStart(long pos) const {
    long next = 0x7FFFFFFF;
    for (const auto& child : m_children) {
        long s = child->m_range->GetStart();
        if (s >= pos) next = std::min(next, s);
    }
    return next;
}
