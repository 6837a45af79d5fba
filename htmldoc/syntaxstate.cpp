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

// The same for a start: one inside the removed bytes goes behind the new ones too.
long MapStart(long x, long pos, long oldCount, long newCount) {
    if (x <= pos) return x;
    return MapEnd(x, pos, oldCount, newCount);
}

bool OpensMarkup(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '/' || c == '!' || c == '?';
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
    m_guesses.clear();
    ForgetHit();
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
    ForgetHit();
    m_store.Replace(pos, oldCount, newCount);
    ShiftCheckpoints(pos, oldCount, newCount);
    MapGuesses(pos, oldCount, newCount);
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
    if (pos <= oldValidEnd)
        Advance(m_nSkipEnd + kEagerBytes);
    else
        RelexGuessesAt(pos, newCount);
    // The view repaints the new text for the edit; a later change of its codes is reported.
    m_nSkipStart = m_nSkipEnd = 0;
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
        // An old checkpoint less than two spacings ahead is the next stop, with no new one in
        // front of it: else typing in front of a checkpoint would add one at every keystroke
        // once the gap grew past a spacing, each an insert into the middle of the list.
        const bool atOld =
            next < m_checkpoints.size() && CheckpointPos(next) <= std::min(length, pos + 2 * kCheckpointSpacing);
        const long limit = atOld ? CheckpointPos(next) : std::min(length, pos + kCheckpointSpacing);
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
    DropConfirmedGuesses();
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
    if (m_added.size() <= kFewAdded) {
        // Typing adds one now and then: into a free slot in front of it, or into the vector,
        // keeping a pending shift pending. Merging would copy every checkpoint of the text.
        for (const CCheckpoint& c : m_added) InsertCheckpoint(c);
        m_added.clear();
        return;
    }
    MaterializeShift();
    std::vector<CCheckpoint> merged;
    merged.reserve(m_checkpoints.size() + m_added.size());
    auto byPos = [](const CCheckpoint& a, const CCheckpoint& b) { return a.pos < b.pos; };
    std::merge(m_checkpoints.begin(), m_checkpoints.end(), m_added.begin(), m_added.end(), std::back_inserter(merged), byPos);
    std::erase_if(merged, [](const CCheckpoint& c) { return c.state.mode == kInvalidMode; });
    m_checkpoints = std::move(merged);
    m_added.clear();
}

void CSyntaxState::InsertCheckpoint(const CCheckpoint& c) {
    size_t k = FirstCheckpointBehind(c.pos);
    const bool shiftedFrom = m_nShiftFrom < m_checkpoints.size();
    if (k > 0 && m_checkpoints[k - 1].state.mode == kInvalidMode) {
        --k;
    } else {
        m_checkpoints.insert(m_checkpoints.begin() + static_cast<long>(k), c);
        if (shiftedFrom && k <= m_nShiftFrom) ++m_nShiftFrom;
    }
    m_checkpoints[k] = {c.pos - (shiftedFrom && k >= m_nShiftFrom ? m_nShiftBy : 0), c.state};
}

void CSyntaxState::NoteChange(long from, long to, uint8_t code) {
    if (from >= to || !m_store.Differs(from, to - from, code)) return;
    if (!m_changed.empty() && m_changed.back().second >= from && m_changed.back().first <= to)
        m_changed.back() = {std::min(m_changed.back().first, from), std::max(m_changed.back().second, to)};
    else
        m_changed.emplace_back(from, to);
}

void CSyntaxState::NoteOutsideEdit(long from, long to, uint8_t code) {
    NoteChange(from, std::min(to, m_nSkipStart), code);
    NoteChange(std::max(from, m_nSkipEnd), to, code);
}

void CSyntaxState::NoteOverGuesses(long from, long end, uint8_t code) {
    if (from >= end || m_guesses.empty() || end <= m_guesses.front().start) return;
    // Found by halving: thousands of far jumps leave thousands of windows, and every run of
    // codes the lexer gives comes here.
    for (size_t i = GuessAfter(from); i < m_guesses.size() && m_guesses[i].start < end; ++i) {
        const CGuess& g = m_guesses[i];
        NoteOutsideEdit(std::max(from, g.start), std::min(end, g.end), code);
    }
}

void CSyntaxState::Emit(long start, long end, uint8_t code) {
    // Codes that replace stale or guessed ones, which a painter may have shown, are compared
    // first; a difference outside the latest edit's new text is a span to repaint.
    if (m_bGuessing) {
        // A guess never touches classified codes.
        start = std::max(start, m_nValidEnd);
        if (start >= end) return;
        if (m_bCompareGuess)
            NoteOutsideEdit(start, end, code);
        else
            NoteOverGuesses(start, end, code);
    } else {
        long to = std::min(end, m_nStaleEnd);
        if (start < to) NoteOutsideEdit(start, to, code);
        NoteOverGuesses(std::max(start, m_nStaleEnd), end, code);
    }
    m_store.Fill(start, end - start, code);
}

void CSyntaxState::ReportChanges() {
    if (m_changed.empty()) return;
    ++m_nVersion;
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

void CSyntaxState::Reach(long pos) {
    SyncGeneration();
    if (pos < m_nValidEnd) return;
    if (pos - m_nValidEnd <= kNearBytes) {
        ClassifyTo(pos + 1);
        return;
    }
    // Stale codes behind an edit are as good as a guess, and the background compares them too.
    if (pos >= m_nDirtyEnd && pos < m_nStaleEnd) {
        m_nHitStart = std::max(m_nDirtyEnd, m_nValidEnd);
        m_nHitEnd = m_nStaleEnd;
        return;
    }
    size_t i = GuessAfter(pos);
    if (i == m_guesses.size() || m_guesses[i].start > pos) {
        if (i > 0 && pos - m_guesses[i - 1].end <= kNearBytes)
            ExtendGuess(--i, pos + kGuessAhead);
        else
            StartGuess(i, pos);
        i = GuessAfter(pos);
    }
    if (i < m_guesses.size() && m_guesses[i].start <= pos) {
        m_nHitStart = m_guesses[i].start;
        m_nHitEnd = m_guesses[i].end;
    }
}

size_t CSyntaxState::GuessAfter(long pos) const {
    auto it = std::upper_bound(m_guesses.begin(), m_guesses.end(), pos, [](long p, const CGuess& g) { return p < g.end; });
    return static_cast<size_t>(it - m_guesses.begin());
}

long CSyntaxState::GuessStart(long pos, long floor) const {
    const long from = std::max(floor, pos - kGuessBack);
    for (long p = from; p > std::max(floor, from - kGuessBack); --p)
        if (m_text.At(p - 1) == '<' && OpensMarkup(m_text.At(p))) return p - 1;
    return from;
}

void CSyntaxState::StartGuess(size_t i, long pos) {
    const long floor = std::max(m_nValidEnd, i > 0 ? m_guesses[i - 1].end : 0L);
    const long start = GuessStart(pos, floor);
    m_guesses.insert(m_guesses.begin() + static_cast<long>(i), CGuess{start, start, CLexState{}, CLexState{}, true, {}});
    ExtendGuess(i, pos + kGuessAhead);
}

void CSyntaxState::ExtendGuess(size_t i, long target) {
    ForgetHit();
    if (m_guesses[i].end - m_guesses[i].start >= kMaxGuess) {
        // Continued by a new window, which starts where this one ends.
        const CGuess& full = m_guesses[i];
        CGuess next{full.end, full.end, full.endState, full.endState, full.endClean, {}};
        if (!next.endClean) next.startState = next.endState = CLexState{};
        m_guesses.insert(m_guesses.begin() + static_cast<long>(++i), next);
    }
    const long length = m_text.Length();
    target = std::min(target, length);
    const CGuess& g = m_guesses[i];
    m_lexer.Start(g.endClean ? g.endState : CLexState{}, g.end);
    long pos = g.end;
    const size_t n = i + 1;
    m_bGuessing = true;
    long lastMark = pos;
    while (pos < length && (pos < target || !m_lexer.IsClean()) && pos < target + kGuessAhead) {
        long limit = std::min(length, pos + kCheckpointSpacing);
        if (pos < target) limit = std::min(limit, target);
        if (n < m_guesses.size() && m_guesses[n].start > pos) limit = std::min(limit, m_guesses[n].start);
        FeedText(pos, limit);
        pos = limit;
        if (m_lexer.IsClean() && pos - lastMark >= kCheckpointSpacing) {
            m_guesses[i].marks.push_back({pos, m_lexer.State()});
            lastMark = pos;
        }
        // A window that this one ran over is gone; one that it reaches goes on from here.
        while (n < m_guesses.size() && m_guesses[n].end <= pos) m_guesses.erase(m_guesses.begin() + static_cast<long>(n));
        if (n < m_guesses.size() && m_guesses[n].start <= pos && m_lexer.IsClean()) break;
    }
    if (pos >= length) m_lexer.Finish();
    m_bGuessing = false;
    CGuess& grown = m_guesses[i];
    grown.end = pos;
    grown.endState = m_lexer.State();
    grown.endClean = m_lexer.IsClean();
    if (n < m_guesses.size() && m_guesses[n].start < pos) {
        m_guesses[n].start = pos;
        m_guesses[n].startState = grown.endClean ? grown.endState : CLexState{};
    }
    ++m_nVersion;
    ReportChanges();
}

void CSyntaxState::MapGuesses(long pos, long oldCount, long newCount) {
    for (CGuess& g : m_guesses) {
        if (g.end < pos) continue;
        g.start = MapStart(g.start, pos, oldCount, newCount);
        g.end = MapEnd(g.end, pos, oldCount, newCount);
        // A state saved in front of the edit still holds; one in or behind it is read anew.
        std::erase_if(g.marks, [&](const CCheckpoint& m) { return m.pos > pos; });
    }
    std::erase_if(m_guesses, [](const CGuess& g) { return g.start >= g.end; });
}

size_t CSyntaxState::CutGuess(size_t i, long at, const CLexState& state) {
    CGuess& g = m_guesses[i];
    if (at <= g.start) {
        g.startState = state;
    } else {
        CGuess tail{at, g.end, state, g.endState, g.endClean, {}};
        auto behind = std::find_if(g.marks.begin(), g.marks.end(), [&](const CCheckpoint& m) { return m.pos > at; });
        tail.marks.assign(behind, g.marks.end());
        g.marks.erase(std::find_if(g.marks.begin(), g.marks.end(), [&](const CCheckpoint& m) { return m.pos >= at; }), g.marks.end());
        g.end = at;
        g.endState = state;
        g.endClean = true;
        m_guesses.insert(m_guesses.begin() + static_cast<long>(++i), std::move(tail));
    }
    return i;
}

void CSyntaxState::RelexGuessesAt(long pos, long newCount) {
    size_t i = GuessAfter(pos);
    if (i == m_guesses.size() || m_guesses[i].start > pos) {
        if (i == 0 || m_guesses[i - 1].end != pos) return;
        --i;  // new text right behind a window
    }
    // Read again from the last saved state in front of the edit up to a little behind its new
    // text: the part in front keeps its codes, the part behind goes on from where this ends.
    const CGuess& g = m_guesses[i];
    auto mark = std::find_if(g.marks.rbegin(), g.marks.rend(), [&](const CCheckpoint& m) { return m.pos <= pos; });
    const long from = mark != g.marks.rend() ? mark->pos : g.start;
    const CLexState state = mark != g.marks.rend() ? mark->state : g.startState;
    const long until = std::min(g.end, pos + newCount + 2 * kCheckpointSpacing);
    if (until < g.end) CutGuess(i, until, CLexState{});
    i = CutGuess(i, from, state);
    CGuess& redo = m_guesses[i];
    redo.end = redo.start;
    redo.endState = redo.startState;
    redo.endClean = true;
    redo.marks.clear();
    m_bCompareGuess = true;
    ExtendGuess(i, until);
    m_bCompareGuess = false;
}

void CSyntaxState::DropConfirmedGuesses() {
    if (m_guesses.empty() || m_guesses.front().start >= m_nValidEnd) return;
    ForgetHit();
    auto confirmed = std::find_if(m_guesses.begin(), m_guesses.end(), [&](const CGuess& g) { return g.end > m_nValidEnd; });
    m_guesses.erase(m_guesses.begin(), confirmed);
    if (!m_guesses.empty() && m_guesses.front().start < m_nValidEnd) {
        m_guesses.front().start = m_nValidEnd;
        m_guesses.front().startState = m_resume;
        std::erase_if(m_guesses.front().marks, [&](const CCheckpoint& m) { return m.pos <= m_nValidEnd; });
    }
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
