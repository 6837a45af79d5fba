// The syntax state of the document: the code of every classified byte (CClassStore), lexer
// states saved every kilobyte or so (checkpoints), and the bookkeeping that keeps them true
// through edits without classifying the whole text again.
//
// Classification is lazy: [0, ValidEnd()) is classified, the rest waits until someone asks for
// a position in it, or until the background slices of the state's own hidden window get to it.
// An edit throws away what follows the last checkpoint in front of it and classifies again from
// there; the codes behind that point stay as they were (stale) and serve two ends: a change of
// a code outside the edited span is reported as a repaint span, and as soon as the lexer arrives
// at an old checkpoint behind the edit in the state that was saved there, everything behind is
// known to be unchanged and classification stops.
//
// Invariants: ValidEnd() <= m_nDirtyEnd <= m_nStaleEnd <= text length. Codes in
// [ValidEnd, m_nStaleEnd) are those of an earlier classification, right for the text behind
// m_nDirtyEnd given the lexer state saved at a checkpoint there; m_endState is the lexer state
// at m_nStaleEnd. Checkpoints lie at clean lexer positions and are sorted.
//
// Guessed windows. A position asked for far behind ValidEnd() (a jump to the end of a large
// page) is not worth classifying everything in front of it. Instead a window around it is
// classified from a guessed state: the lexer starts in plain text at a '<' that opens markup a
// little in front of the position, and reads a few kilobytes on; a window that is asked for
// just behind its end grows, and one that grows large is continued by the next. Its codes are
// answered at once, and the background classification from the top goes on as before. The
// guess is right wherever the guessed start really is in text, which is nearly everywhere on a
// page; it is wrong inside a comment, a script or style, a quoted value that holds '<', or a
// textarea, and the window then shows wrong colours until the background arrives.
//
// Why that converges: a guess never makes a checkpoint, never moves ValidEnd() and never
// touches codes in front of it, so the classification from the top is exactly what it would
// be without guesses. When it writes a code over a window it compares the code with the
// guessed one, as it does with stale codes, and a difference becomes a repaint span (the
// posted repaint); windows in front of ValidEnd() are dropped. So once the background has
// passed a window, its codes are the ones of a classification from the top and every byte
// whose colour changed was repainted, and that happens as soon as the background gets there
// (a slice per turn of the message loop), never later. An edit inside a window classifies
// it again, comparing as well, from the last state saved in front of the edit to a little
// behind it, and cuts the window there; an edit in front of ValidEnd() only moves the windows
// behind it. In both cases the background then confirms or corrects the codes behind.
#pragma once
#include <cstdint>
#include <functional>
#include <vector>

#include "htmldoc/classstore.h"
#include "htmldoc/gapbuffer.h"
#include "htmldoc/htmllexer.h"
#include "platform/window/window.h"

class CSyntaxState final : private ISyntaxCodeSink, private IMessageHandler {
public:
    // Classification asked for at once that is larger than this announces itself as busy.
    static constexpr long kBusyBytes = 16 << 20;
    // Distance between saved lexer states: what an edit classifies again in front of itself
    // and, on average, behind itself.
    static constexpr long kCheckpointSpacing = 1024;
    // What an edit classifies at once behind itself when the codes do not settle before; the
    // rest goes to the background.
    static constexpr long kEagerBytes = 16 << 10;
    // The time one background slice may take.
    static constexpr double kSliceMilliseconds = 1.0;
    // A position no further than this behind ValidEnd() is classified from the top; one
    // further is answered from a guessed window.
    static constexpr long kNearBytes = 64 << 10;
    // A new window starts at most this far in front of the position asked for (plus as far
    // again to find a '<' that opens markup), and is read this far behind it.
    static constexpr long kGuessBack = 2 << 10;
    static constexpr long kGuessAhead = 16 << 10;
    // A window that has grown to this size is continued by a new one.
    static constexpr long kMaxGuess = 256 << 10;

    explicit CSyntaxState(const CGapBuffer& text);
    ~CSyntaxState();
    CSyntaxState(const CSyntaxState&) = delete;
    CSyntaxState& operator=(const CSyntaxState&) = delete;

    // Called with the spans whose codes changed outside of an edit's new text.
    void SetRepaint(std::function<void(long start, long end)> repaint) { m_repaint = std::move(repaint); }
    void SetBusy(std::function<void(bool busy)> busy) { m_busy = std::move(busy); }

    // The text had `oldCount` bytes at `pos` replaced by `newCount` bytes.
    void OnReplace(long pos, long oldCount, long newCount);

    // The syntax code at pos, classifying as far as needed; 0 outside the text.
    uint8_t CodeAt(long pos) {
        if (static_cast<unsigned long>(pos) >= static_cast<unsigned long>(m_text.Length())) return 0;
        if ((pos >= m_nValidEnd && (pos < m_nHitStart || pos >= m_nHitEnd)) || m_nGeneration != m_text.Generation()) Reach(pos);
        return m_store.Get(pos);
    }
    // Classifies [0, end) if it is not yet.
    void ClassifyTo(long end);
    // One background slice; true while work remains.
    bool RunSlice();
    long ValidEnd() const { return m_nValidEnd; }
    // Whether a guessed window is waiting for the background to confirm it.
    bool HasGuesses() const { return !m_guesses.empty(); }
    // Changes when any code may have changed: token caches compare it.
    uint64_t Version() const { return m_nVersion; }
    // Bytes of memory that the state holds.
    size_t MemoryBytes() const;
    HWND Window() const { return m_hwnd; }

private:
    struct CCheckpoint {
        long pos;
        CLexState state;
    };
    static constexpr uint8_t kInvalidMode = 0xFF;
    // A window classified from a guessed state: [start, end), the state at each end, and states
    // saved inside it about every kilobyte, from which an edit in it classifies again.
    struct CGuess {
        long start;
        long end;
        CLexState startState;
        CLexState endState;
        bool endClean;  // the lexer was clean at end, so endState can be read on from
        std::vector<CCheckpoint> marks;
    };

    void Emit(long start, long end, uint8_t code) override;
    void NoteChange(long from, long to, uint8_t code);
    // Notes a change of [from, to) outside the latest edit's new text.
    void NoteOutsideEdit(long from, long to, uint8_t code);
    // Notes changes of codes in guessed windows within [from, end).
    void NoteOverGuesses(long from, long end, uint8_t code);
    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override;

    // Makes the code at pos, which lies behind ValidEnd(), answerable.
    void Reach(long pos);
    // The index of the first window that ends behind pos.
    size_t GuessAfter(long pos) const;
    void StartGuess(size_t i, long pos);
    // Reads window i on from its end to at least `target`.
    void ExtendGuess(size_t i, long target);
    // Where to start reading a window for pos: a '<' that opens markup, not in front of `floor`.
    long GuessStart(long pos, long floor) const;
    void MapGuesses(long pos, long oldCount, long newCount);
    // Classifies again, comparing, what an edit behind ValidEnd() changed in a window: from
    // the last state saved in front of it to a little behind it, where the window is cut.
    void RelexGuessesAt(long pos, long newCount);
    // Cuts window i at `at`, a saved state of it or its start; gives the index of the part
    // from `at` on, which holds nothing yet.
    size_t CutGuess(size_t i, long at, const CLexState& state);
    void DropConfirmedGuesses();
    void ForgetHit() { m_nHitStart = m_nHitEnd = 0; }

    void SyncGeneration();
    void Reset();
    // Classifies from ValidEnd() up to at least `target` and a clean position, or until the old
    // codes are reached again.
    void Advance(long target);
    bool Converge(long pos, size_t oldIndex);
    void FeedText(long from, long to);
    void FinishText();
    void ReportChanges();
    void ScheduleSlice();

    long CheckpointPos(size_t i) const { return m_checkpoints[i].pos + (i >= m_nShiftFrom ? m_nShiftBy : 0); }
    void MaterializeShift();
    void ShiftCheckpoints(long pos, long oldCount, long newCount);
    // The last valid checkpoint at or in front of `pos`, or -1.
    long CheckpointAtOrBefore(long pos) const;
    // The first valid checkpoint behind `pos`, or the count.
    size_t CheckpointAfter(long pos) const;
    // The index of the first checkpoint that stands behind `pos`, valid or not.
    size_t FirstCheckpointBehind(long pos) const;
    void MergeNewCheckpoints();
    // Puts one checkpoint made by Advance into its place.
    void InsertCheckpoint(const CCheckpoint& c);
    static constexpr size_t kFewAdded = 8;

    const CGapBuffer& m_text;
    unsigned long m_nGeneration = ~0UL;
    CClassStore m_store;
    CHtmlLexer m_lexer;
    std::vector<CCheckpoint> m_checkpoints;
    std::vector<CCheckpoint> m_added;  // made by the running Advance, merged at its end
    size_t m_nShiftFrom = ~size_t(0);  // checkpoints from this index on are m_nShiftBy further
    long m_nShiftBy = 0;
    long m_nValidEnd = 0;
    long m_nDirtyEnd = 0;
    long m_nStaleEnd = 0;
    CLexState m_resume;    // the lexer state at m_nValidEnd
    CLexState m_endState;  // the lexer state at m_nStaleEnd
    bool m_bFinished = false;  // the lexer has seen the end of the text
    long m_nOpenValue = -1;    // an unterminated quoted value runs from here to the end
    // Reporting of changed codes while classifying over stale codes.
    long m_nSkipStart = 0, m_nSkipEnd = 0;  // the latest edit's new text, reported by the edit
    std::vector<std::pair<long, long>> m_changed;
    uint64_t m_nVersion = 0;
    std::function<void(long, long)> m_repaint;
    std::function<void(bool)> m_busy;
    HWND m_hwnd = nullptr;
    bool m_bSlicePosted = false;
    // Guessed windows behind ValidEnd(), sorted and apart; what the lexer reads while
    // m_bGuessing goes to them, compared with the codes there when m_bCompareGuess.
    std::vector<CGuess> m_guesses;
    bool m_bGuessing = false;
    bool m_bCompareGuess = false;
    // A span behind ValidEnd() whose codes CodeAt answers without a look at the windows.
    long m_nHitStart = 0, m_nHitEnd = 0;
};
