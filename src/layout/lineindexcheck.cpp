// The invariant checker of the line table, for tests and for debugging a caller.
#include <cstdlib>
#include <string>

#include "src/layout/lineindex.h"

namespace {

bool Fail(std::string* pWhy, const std::string& strWhat) {
    if (pWhy)
        *pWhy = strWhat;
    return false;
}

std::string Num(int64_t n) {
    return std::to_string(n);
}

}  // namespace

bool CLineIndex::CheckInvariants(std::string* pWhy, bool bBalanced) const {
    if (CheckNode(bBalanced, pWhy))
        return true;
    if (pWhy)
        pWhy->insert(0, "node root");
    return false;
}

// On a fault, *pWhy gets the path below this node (".0" left, ".1" right) and the fault.
bool CLineIndex::CheckNode(bool bBalanced, std::string* pWhy) const {
    if (m_pChildren) {
        if (m_pBlock)
            return Fail(pWhy, ": inner node with a block");
        const CLineIndex& left = m_pChildren[0];
        const CLineIndex& right = m_pChildren[1];
        if (int64_t(left.m_nCount) + right.m_nCount != m_nCount)
            return Fail(pWhy, ": count " + Num(m_nCount) + " is not " + Num(left.m_nCount) + " + " +
                                  Num(right.m_nCount));
        if (int64_t(left.m_nTotal) + right.m_nTotal != m_nTotal)
            return Fail(pWhy, ": total " + Num(m_nTotal) + " is not " + Num(left.m_nTotal) + " + " +
                                  Num(right.m_nTotal));
        if (m_nCount <= kLineMergeLimit)
            return Fail(pWhy, ": inner node of only " + Num(m_nCount) + " lines");
        if (bBalanced && std::abs(left.m_nCount - right.m_nCount) >= kLineBalanceLimit)
            return Fail(pWhy, ": children of " + Num(left.m_nCount) + " and " +
                                  Num(right.m_nCount) + " lines are out of balance");
        for (int i = 0; i < 2; ++i) {
            if (!m_pChildren[i].CheckNode(bBalanced, pWhy)) {
                if (pWhy)
                    pWhy->insert(0, i == 0 ? ".0" : ".1");
                return false;
            }
        }
        return true;
    }
    if (m_nCount < 0 || m_nCount > kLineBlockCapacity)
        return Fail(pWhy, ": leaf of " + Num(m_nCount) + " lines");
    if (!m_pBlock) {
        if (m_nCount != 0 || m_nTotal != 0)
            return Fail(pWhy, ": leaf without a block holds " + Num(m_nCount) + " lines and " +
                                  Num(m_nTotal) + " bytes");
        return true;
    }
    if (m_nCount == 0)
        return Fail(pWhy, ": empty leaf keeps its block");
    if (m_pBlock->m_nCount != m_nCount)
        return Fail(
            pWhy, ": leaf count " + Num(m_nCount) + " but block count " + Num(m_pBlock->m_nCount));
    int64_t nSum = 0;
    for (int32_t i = 0; i < m_nCount; ++i) {
        if (m_pBlock->m_aLength[i] < 0)
            return Fail(pWhy, ": line " + Num(i) + " has a negative length");
        nSum += m_pBlock->m_aLength[i];
    }
    if (nSum != m_nTotal)
        return Fail(pWhy,
                    ": leaf total " + Num(m_nTotal) + " but its lines add up to " + Num(nSum));
    return true;
}
