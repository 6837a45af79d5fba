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
        if (pos >= m_nValidEnd || m_nGeneration != m_text.Generation()) ClassifyTo(pos + 1);
        return m_store.Get(pos);
    }
    // Classifies [0, end) if it is not yet.
    void ClassifyTo(long end);
    // One background slice; true while work remains.
    bool RunSlice();
    long ValidEnd() const { return m_nValidEnd; }
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

    void Emit(long start, long end, uint8_t code) override;
    void NoteChange(long from, long to, uint8_t code);
    LRESULT WindowProc(HWND hwnd, UINT message, WPARAM wParam, LPARAM lParam) override;

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
};
