#include "htmldoc/sourcerange.h"

#include <climits>


#include "htmldoc/htmldocument.h"
#include "htmldoc/tagmatch.h"
#include "htmldoc/textwalker.h"

namespace {

// How many steps a signed count asks for, without overflow at the most negative value.
unsigned long StepCount(long count) {
    return count < 0 ? 0UL - static_cast<unsigned long>(count) : static_cast<unsigned long>(count);
}

}  // namespace

CSourceRange::~CSourceRange() {
    if (m_pDoc) m_pDoc->Forget(this);
}

HRESULT CSourceRange::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_ISourceRange) return HandOut(static_cast<ISourceRange*>(this), ppv);
    if (riid == IID_ISourceRangeStep) return HandOut(static_cast<ISourceRangeStep*>(this), ppv);
    if (riid == IID_IDispatch) return HandOut(static_cast<IDispatch*>(this), ppv);
    *ppv = nullptr;
    return E_NOINTERFACE;
}

ULONG CSourceRange::Release() {
    ULONG n = m_refs.Decrement();
    if (n == 0) delete this;
    return n;
}

HRESULT CSourceRange::GetDocument(ISourceText** out) {
    if (!out) return E_POINTER;
    *out = m_pDoc;
    return m_pDoc ? S_OK : E_UNEXPECTED;
}

HRESULT CSourceRange::SetOwner(IDispatch* owner) {
    m_pOwner = owner;
    return S_OK;
}

HRESULT CSourceRange::AdviseRangeSink(ISourceRangeSink* sink, DWORD* cookie) {
    if (!sink || !cookie) return E_POINTER;
    *cookie = m_nNextCookie++;
    m_sinks.emplace_back(*cookie, sink);
    return S_OK;
}

HRESULT CSourceRange::UnadviseRangeSink(DWORD cookie) {
    for (auto it = m_sinks.begin(); it != m_sinks.end(); ++it) {
        if (it->first == cookie) {
            ComPtr<ISourceRangeSink> keep = std::move(it->second);  // released after the erase
            m_sinks.erase(it);
            return S_OK;
        }
    }
    return CONNECT_E_NOCONNECTION;
}

HRESULT CSourceRange::MarkAsSelection(BOOL on) {
    if (!m_pDoc) return E_UNEXPECTED;
    m_pDoc->MarkSelection(this, on != FALSE);
    return S_OK;
}

void CSourceRange::ReportIfMoved(long oldActive, long oldAnchor) {
    if (!m_pDoc || !m_pDoc->IsSelection(this)) return;
    if (oldActive == GetActive() && oldAnchor == GetAnchor()) return;
    auto sinks = m_sinks;  // a sink may unadvise while it is called
    for (auto& [cookie, sink] : sinks) {
        bool advised = false;
        for (auto& entry : m_sinks) advised = advised || entry.first == cookie;
        if (advised) sink->OnSelectionChanged(GetActive(), GetAnchor());
    }
}

void CSourceRange::AdjustForEdit(long pos, long removed, long inserted) {
    auto afterDelete = [&](long e) { return e > pos + removed ? e - removed : std::min(e, pos); };
    long active = afterDelete(m_nActive);  // settled: the ends are exact
    long anchor = afterDelete(m_nAnchor);
    if (inserted > 0) {
        long low = std::min(active, anchor);
        bool grows = active != anchor;
        auto afterInsert = [&](long e) { return e > pos || (e == pos && grows && e == low) ? e + inserted : e; };
        active = afterInsert(active);
        anchor = afterInsert(anchor);
    }
    m_nActive = active;
    m_nAnchor = anchor;
}

long CSourceRange::Shift() const {
    return m_group == CRangeTracker::Group::Shifted && m_pDoc ? m_pDoc->Ranges().PendingShift() : 0;
}

void CSourceRange::PlaceSilently(long active, long anchor) {
    if (m_pDoc) m_pDoc->Ranges().Follow(this);
    m_nActive = active;
    m_nAnchor = anchor;
}

std::string CSourceRange::Text() {
    if (!m_pDoc) return {};
    long len = m_pDoc->GetLength();
    long start = std::clamp(GetStart(), 0L, len);
    long end = std::clamp(GetEnd(), 0L, len);
    return m_pDoc->Text().Substr(start, end - start);
}

bool CSourceRange::IsValidPos(long pos) const { return m_pDoc && pos >= 0 && pos <= m_pDoc->GetLength(); }

BOOL CSourceRange::IsEmpty() {
    if (!m_pDoc) return TRUE;
    const CHardLines& lines = m_pDoc->Lines();
    return lines.LineFromPos(GetStart()) == lines.LineFromPos(GetEnd()) ? TRUE : FALSE;
}

HRESULT CSourceRange::SetRange(long active, long anchor) {
    if (!m_pDoc) return E_UNEXPECTED;
    if (!IsValidPos(active) || !IsValidPos(anchor)) return E_INVALIDARG;
    long oldActive = GetActive(), oldAnchor = GetAnchor();
    PlaceSilently(active, anchor);
    ReportIfMoved(oldActive, oldAnchor);
    return S_OK;
}

HRESULT CSourceRange::SetAnchor(long pos) {
    if (!IsValidPos(pos)) return m_pDoc ? E_INVALIDARG : E_UNEXPECTED;
    return SetRange(GetActive(), pos);
}

HRESULT CSourceRange::SetActive(long pos, BOOL extend) {
    if (!IsValidPos(pos)) return m_pDoc ? E_INVALIDARG : E_UNEXPECTED;
    return MoveActive(pos, extend);
}

HRESULT CSourceRange::MoveActive(long pos, BOOL extend) {
    if (!m_pDoc) return E_UNEXPECTED;
    pos = std::clamp(pos, 0L, m_pDoc->GetLength());
    long anchor = extend ? std::clamp(GetAnchor(), 0L, m_pDoc->GetLength()) : pos;
    return SetRange(pos, anchor);
}

HRESULT CSourceRange::MoveCharLeft(BOOL extend, long count) {
    if (!m_pDoc) return E_UNEXPECTED;
    CTextWalker walker(m_pDoc->Text());
    long pos = std::clamp(GetActive(), 0L, walker.Length());
    for (unsigned long i = 0, n = StepCount(count); i < n; ++i) {
        long next = count > 0 ? walker.PrevChar(pos) : walker.NextChar(pos);
        if (next == pos) break;
        pos = next;
    }
    return MoveActive(pos, extend);
}

HRESULT CSourceRange::MoveWordRight(BOOL extend, long count) {
    if (!m_pDoc) return E_UNEXPECTED;
    CTextWalker walker(m_pDoc->Text());
    long pos = std::clamp(GetActive(), 0L, walker.Length());
    for (unsigned long i = 0, n = StepCount(count); i < n; ++i) {
        long next = count > 0 ? walker.NextWord(pos) : walker.PrevWord(pos);
        if (next == pos) break;
        pos = next;
    }
    return MoveActive(pos, extend);
}

HRESULT CSourceRange::MoveWordLeft(BOOL extend, long count) {
    // Negating the most negative count would overflow; one word less changes nothing.
    return MoveWordRight(extend, count == LONG_MIN ? LONG_MAX : -count);
}

HRESULT CSourceRange::MoveLineDown(BOOL extend, long count) {
    if (!m_pDoc) return E_UNEXPECTED;
    const CHardLines& lines = m_pDoc->Lines();
    CTextWalker walker(m_pDoc->Text());
    long pos = std::clamp(GetActive(), 0L, walker.Length());
    long line = lines.LineFromPos(pos);
    long column = pos - lines.LineStart(line);
    if (count < -line) return MoveActive(0, extend);
    if (count >= lines.LineCount() - line) return MoveActive(walker.Length(), extend);
    long target = line + count;
    long start = lines.LineStart(target);
    long end = target + 1 < lines.LineCount() ? walker.LineBreakBefore(lines.LineStart(target + 1)) : walker.Length();
    return MoveActive(walker.CharStartAt(std::min(start + column, end)), extend);
}

HRESULT CSourceRange::MoveToLineStart(BOOL extend) {
    if (!m_pDoc) return E_UNEXPECTED;
    const CHardLines& lines = m_pDoc->Lines();
    return MoveActive(lines.LineStart(lines.LineFromPos(GetActive())), extend);
}

HRESULT CSourceRange::MoveToDocStart(BOOL extend) { return MoveActive(0, extend); }

HRESULT CSourceRange::MoveToDocEnd(BOOL extend) {
    if (!m_pDoc) return E_UNEXPECTED;
    return MoveActive(m_pDoc->GetLength(), extend);
}

HRESULT CSourceRange::Collapse() { return MoveActive(GetActive(), FALSE); }
HRESULT CSourceRange::CollapseToLeft() { return MoveActive(GetStart(), FALSE); }
HRESULT CSourceRange::CollapseToRight() { return MoveActive(GetEnd(), FALSE); }

HRESULT CSourceRange::MoveToMatch(BOOL extend, long) {
    if (!m_pDoc) return E_UNEXPECTED;
    long match = CTagMatcher(m_pDoc->Text()).FindMatch(GetActive());
    return match < 0 ? S_FALSE : MoveActive(match, extend);
}

HRESULT CSourceRange::StepBack(BOOL extend) {
    if (!m_pDoc) return E_UNEXPECTED;
    long target = CTagMatcher(m_pDoc->Text()).PrevTagStart(GetActive());
    return target < 0 ? S_FALSE : MoveActive(target, extend);
}

HRESULT CSourceRange::StepForward(BOOL extend) {
    if (!m_pDoc) return E_UNEXPECTED;
    long target = CTagMatcher(m_pDoc->Text()).NextTagStart(GetActive());
    return target < 0 ? S_FALSE : MoveActive(target, extend);
}
