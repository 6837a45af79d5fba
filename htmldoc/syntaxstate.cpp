#include "htmldoc/syntaxstate.h"

#include <algorithm>
#include <chrono>

namespace {

constexpr UINT kSliceMessage = WM_USER + 0x20;

// Where a position at or behind an edit ends up: ends inside the removed bytes go behind the
// new ones.
long MapEnd(long x, long pos, long oldCount, long newCount) {
    if (x <= pos) return x;
    if (x >= pos + oldCount) return x + newCount - oldCount;
    return pos + newCount;
}

}  // namespace

CSyntaxState::CSyntaxState(const CGapBuffer& text) : m_text(text), m_lexer(*this) {}

CSyntaxState::~CSyntaxState() {
    if (m_hwnd) DestroyWindow(m_hwnd);
}

size_t CSyntaxState::MemoryBytes() const {
    return static_cast<size_t>(m_store.Capacity()) + m_checkpoints.capacity() * sizeof(CCheckpoint);
}

void CSyntaxState::SyncGeneration() {
    if (m_nGeneration != m_text.Generation()) Reset();
}

void CSyntaxState::Reset() {
    m_nGeneration = m_text.Generation();
    m_store.Reset(m_text.Length());
    m_checkpoints.clear();
    m_checkpoints.shrink_to_fit();
    m_nShiftFrom = ~size_t(0);
    m_nShiftBy = 0;
    m_nValidEnd = m_nDirtyEnd = m_nStaleEnd = 0;
    m_resume = m_endState = CLexState{};
    m_bFinished = false;
    m_nOpenValue = -1;
    m_nSkipStart = m_nSkipEnd = 0;
    ++m_nVersion;
    ScheduleSlice();
}

void CSyntaxState::MaterializeShift() {
    if (m_nShiftFrom < m_checkpoints.size())
        for (size_t i = m_nShiftFrom; i < m_checkpoints.size(); ++i) m_checkpoints[i].pos += m_nShiftBy;
    m_nShiftFrom = ~size_t(0);
    m_nShiftBy = 0;
}

size_t CSyntaxState::FirstCheckpointBehind(long pos) const {
    size_t lo = 0, hi = m_checkpoints.size();
    while (lo < hi) {
        size_t mid = (lo + hi) / 2;
        if (CheckpointPos(mid) <= pos) lo = mid + 1;
        else hi = mid;
    }
    return lo;
}

size_t CSyntaxState::CheckpointAfter(long pos) const {
    size_t lo = FirstCheckpointBehind(pos);
    while (lo < m_checkpoints.size() && m_checkpoints[lo].state.mode == kInvalidMode) ++lo;
    return lo;
}

long CSyntaxState::CheckpointAtOrBefore(long pos) const {
    long i = static_cast<long>(FirstCheckpointBehind(pos)) - 1;
    while (i >= 0 && m_checkpoints[static_cast<size_t>(i)].state.mode == kInvalidMode) --i;
    return i;
}

void CSyntaxState::ShiftCheckpoints(long pos, long oldCount, long newCount) {
    // Checkpoints inside the replaced bytes go; those behind move. The move is kept pending for
    // a run of edits at one place, so typing does not touch every checkpoint of a large text.
    size_t first = CheckpointAfter(pos);
    first = std::min(first, m_checkpoints.size());
    while (first > 0 && CheckpointPos(first - 1) > pos) --first;
    size_t i = first;
    for (; i < m_checkpoints.size() && CheckpointPos(i) <= pos + oldCount; ++i) m_checkpoints[i].state.mode = kInvalidMode;
    long delta = newCount - oldCount;
    if (delta == 0 || i >= m_checkpoints.size()) return;
    if (m_nShiftFrom != i && m_nShiftFrom < m_checkpoints.size()) MaterializeShift();
    if (m_nShiftFrom >= m_checkpoints.size()) {
        m_nShiftFrom = i;
        m_nShiftBy = 0;
    }
    m_nShiftBy += delta;
    // Checkpoints that the edit swallowed stay in order: they sit at its start.
    for (size_t k = first; k < i; ++k) m_checkpoints[k].pos = pos - (k >= m_nShiftFrom ? m_nShiftBy : 0);
}

void CSyntaxState::OnReplace(long pos, long oldCount, long newCount) {
    if (m_nGeneration != m_text.Generation()) {
        Reset();
        return;
    }
    ++m_nVersion;
    m_store.Replace(pos, oldCount, newCount);
    ShiftCheckpoints(pos, oldCount, newCount);
    bool inStale = pos < m_nStaleEnd;
    bool hadStale = m_nValidEnd < m_nStaleEnd;
    long oldValidEnd = m_nValidEnd;
    m_nStaleEnd = MapEnd(m_nStaleEnd, pos, oldCount, newCount);
    m_nDirtyEnd = MapEnd(m_nDirtyEnd, pos, oldCount, newCount);
    if (m_nOpenValue > pos) m_nOpenValue = MapEnd(m_nOpenValue, pos, oldCount, newCount);
    m_nSkipStart = pos;
    m_nSkipEnd = pos + newCount;
    if (pos <= oldValidEnd) {
        // Classify again from the last checkpoint in front of the edit, or in front of an
        // unterminated value that the edit may close.
        long from = pos;
        if (m_nOpenValue >= 0 && m_nOpenValue < from) from = m_nOpenValue;
        long i = CheckpointAtOrBefore(from);
        if (i >= 0) {
            m_nValidEnd = CheckpointPos(static_cast<size_t>(i));
            m_resume = m_checkpoints[static_cast<size_t>(i)].state;
        } else {
            m_nValidEnd = 0;
            m_resume = CLexState{};
        }
        m_nStaleEnd = std::max(m_nStaleEnd, MapEnd(oldValidEnd, pos, oldCount, newCount));
        m_nDirtyEnd = hadStale ? std::max(m_nDirtyEnd, pos + newCount) : pos + newCount;
        m_bFinished = false;
    } else if (inStale) {
        m_nDirtyEnd = std::max(m_nDirtyEnd, pos + newCount);
    }
    m_nDirtyEnd = std::min(std::max(m_nDirtyEnd, m_nValidEnd), m_nStaleEnd);
    // An edit in the classified part is classified at once, up to where the codes settle or a
    // bound; one in the part not yet classified waits for its turn.
    if (pos <= oldValidEnd) Advance(m_nSkipEnd + kEagerBytes);
    ScheduleSlice();
}

void CSyntaxState::ClassifyTo(long end) {
    SyncGeneration();
    end = std::min(end, m_text.Length());
    if (end <= m_nValidEnd) return;
    bool busy = end - m_nValidEnd > kBusyBytes && m_busy;
    if (busy) m_busy(true);
    // A little beyond what was asked: a painter asks byte by byte.
    Advance(std::max(end, m_nValidEnd + 16 * kCheckpointSpacing));
    if (busy) m_busy(false);
}

bool CSyntaxState::RunSlice() {
    SyncGeneration();
    auto start = std::chrono::steady_clock::now();
    while (!m_bFinished) {
        Advance(m_nValidEnd + 32 * kCheckpointSpacing);
        std::chrono::duration<double, std::milli> spent = std::chrono::steady_clock::now() - start;
        if (spent.count() >= kSliceMilliseconds) break;
    }
    return !m_bFinished;
}

void CSyntaxState::FeedText(long from, long to) {
    while (from < to) {
        std::string_view piece = m_text.Piece(from, to - from);
        m_lexer.Feed(piece.data(), static_cast<long>(piece.size()));
        from += static_cast<long>(piece.size());
    }
}

void CSyntaxState::FinishText() {
    m_lexer.Finish();
    m_nOpenValue = m_lexer.OpenValueStart();
    m_bFinished = true;
}

void CSyntaxState::Advance(long target) {
    if (m_bFinished) return;
    long length = m_text.Length();
    target = std::min(target, length);
    m_lexer.Start(m_resume, m_nValidEnd);
    long pos = m_nValidEnd;
    long lastCheckpoint = pos;
    size_t next = CheckpointAfter(pos);
    bool converged = false;
    while (pos < length && (pos < target || !m_lexer.IsClean())) {
        long limit = std::min(length, pos + kCheckpointSpacing);
        bool atOld = next < m_checkpoints.size() && CheckpointPos(next) <= limit;
        if (atOld) limit = CheckpointPos(next);
        FeedText(pos, limit);
        pos = limit;
        if (atOld) {
            if (m_lexer.IsClean() && Converge(pos, next)) {
                converged = true;
                break;
            }
            // Behind the edit the old state there no longer holds: take the new one, or drop it.
            if (m_lexer.IsClean()) {
                m_checkpoints[next].state = m_lexer.State();
                lastCheckpoint = pos;
            } else {
                m_checkpoints[next].state.mode = kInvalidMode;
            }
            next = CheckpointAfter(pos);
        } else if (m_lexer.IsClean() && pos - lastCheckpoint >= kCheckpointSpacing && pos < length) {
            m_added.push_back({pos, m_lexer.State()});
            lastCheckpoint = pos;
        }
    }
    if (!converged) {
        m_nValidEnd = pos;
        m_resume = m_lexer.State();
        if (pos >= length) FinishText();
        if (m_nValidEnd >= m_nStaleEnd) {
            m_nStaleEnd = m_nDirtyEnd = m_nValidEnd;
            m_endState = m_resume;
        }
    }
    m_nDirtyEnd = std::max(m_nDirtyEnd, m_nValidEnd);
    MergeNewCheckpoints();
    ReportChanges();
}

bool CSyntaxState::Converge(long pos, size_t oldIndex) {
    const CLexState& now = m_lexer.State();
    if (pos < m_nDirtyEnd || pos >= m_nStaleEnd || !now.SameAs(m_checkpoints[oldIndex].state)) return false;
    // Behind here the old codes hold. An unterminated value that the old classification ran
    // into at the end is this same value: it is an error from its quote on, as before.
    if (m_nOpenValue >= 0 && now.InQuotedValue() && m_nOpenValue <= pos) {
        Emit(now.valueStart, pos, SK_ERROR);
        m_nOpenValue = now.valueStart;
    }
    m_checkpoints[oldIndex].state = now;
    m_nValidEnd = m_nDirtyEnd = m_nStaleEnd;
    m_resume = m_endState;
    // Old codes that reached the end of the text were finished there.
    m_bFinished = m_nValidEnd >= m_text.Length();
    return true;
}

void CSyntaxState::MergeNewCheckpoints() {
    if (m_added.empty()) return;
    MaterializeShift();
    std::vector<CCheckpoint> merged;
    merged.reserve(m_checkpoints.size() + m_added.size());
    auto byPos = [](const CCheckpoint& a, const CCheckpoint& b) { return a.pos < b.pos; };
    std::merge(m_checkpoints.begin(), m_checkpoints.end(), m_added.begin(), m_added.end(), std::back_inserter(merged), byPos);
    std::erase_if(merged, [](const CCheckpoint& c) { return c.state.mode == kInvalidMode; });
    m_checkpoints = std::move(merged);
    m_added.clear();
}

void CSyntaxState::NoteChange(long from, long to, uint8_t code) {
    if (from >= to || !m_store.Differs(from, to - from, code)) return;
    if (!m_changed.empty() && m_changed.back().second >= from && m_changed.back().first <= to)
        m_changed.back() = {std::min(m_changed.back().first, from), std::max(m_changed.back().second, to)};
    else
        m_changed.emplace_back(from, to);
}

void CSyntaxState::Emit(long start, long end, uint8_t code) {
    // Codes that replace stale ones are compared first; a difference outside the latest edit's
    // new text is a span to repaint.
    long to = std::min(end, m_nStaleEnd);
    if (start < to) {
        NoteChange(start, std::min(to, m_nSkipStart), code);
        NoteChange(std::max(start, m_nSkipEnd), to, code);
    }
    m_store.Fill(start, end - start, code);
}

void CSyntaxState::ReportChanges() {
    if (m_changed.empty()) return;
    std::vector<std::pair<long, long>> spans;
    spans.swap(m_changed);
    std::sort(spans.begin(), spans.end());
    std::vector<std::pair<long, long>> merged;
    for (const auto& s : spans) {
        if (!merged.empty() && s.first <= merged.back().second) merged.back().second = std::max(merged.back().second, s.second);
        else merged.push_back(s);
    }
    if (m_repaint)
        for (const auto& [start, end] : merged) m_repaint(start, end);
}

void CSyntaxState::ScheduleSlice() {
    if (m_bSlicePosted || (m_bFinished && m_nValidEnd >= m_text.Length())) return;
    if (!m_hwnd) {
        if (!GetPlatformBackend()) return;
        m_hwnd = CreateWindowFor(this, nullptr, RECT{});
        if (!m_hwnd) return;
    }
    m_bSlicePosted = PostMessage(m_hwnd, kSliceMessage, 0, 0) != FALSE;
}

LRESULT CSyntaxState::WindowProc(HWND hwnd, UINT message, WPARAM, LPARAM) {
    if (message == kSliceMessage) {
        m_bSlicePosted = false;
        if (RunSlice()) ScheduleSlice();
        return 0;
    }
    if (message == WM_DESTROY && hwnd == m_hwnd) m_hwnd = nullptr;
    return 0;
}
