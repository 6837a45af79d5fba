// The undo and redo history of a document: steps of recorded replacements, groups opened and
// closed by the undo manager, merging of consecutive typed characters, and the point at which
// the text was last saved.
#pragma once
#include <string>
#include <vector>

#include "htmldoc/loadmarks.h"

// One replacement: at `pos`, `removed` made way for `inserted`; `marks` are the marks of loading
// at or inside the removed span as they were before, which undoing the edit brings back, and
// `made` those of references made for characters of `inserted`, at positions within it.
struct CEdit {
    long pos = 0;
    std::string removed;
    std::string inserted;
    std::vector<CLoadMark> marks;
    std::vector<CLoadMark> made;
};

enum class EditKind { Insert, Delete, Replace, Typing, Overtype, Indent, Unindent, Paste, Group };

struct CUndoStep {
    std::string title;
    EditKind kind = EditKind::Replace;
    std::vector<CEdit> edits;  // in the order they were made
};

class CUndoStack {
public:
    void Clear();

    // Records edits already made as one step, or adds them to the open group, or merges a typed
    // character into the typing step in front of it. Clears the redo history.
    void Record(std::vector<CEdit> edits, EditKind kind);

    // Groups nest; the outermost title names the step.
    void BeginGroup(const std::string& title);
    // False if no group was open.
    bool EndGroup();
    void CloseGroups();
    int GroupDepth() const { return m_nDepth; }

    bool CanUndo() const { return !m_undo.empty(); }
    bool CanRedo() const { return !m_redo.empty(); }
    const CUndoStep* NextUndo() const { return m_undo.empty() ? nullptr : &m_undo.back(); }
    const CUndoStep* NextRedo() const { return m_redo.empty() ? nullptr : &m_redo.back(); }
    CUndoStep TakeUndo();
    CUndoStep TakeRedo();
    void PushUndo(CUndoStep step);  // a redone step, keeping the redo history
    void PushRedo(CUndoStep step);

    // The saved point: the history position at which the text equals the file.
    void MarkSaved();
    void MarkUnsaved() { m_nSaved = -1; }
    bool IsAtSaved() const { return m_nSaved == static_cast<long>(m_undo.size()); }

    // Typing behind this point starts a new step.
    void BreakMerge() { m_bMergeBroken = true; }

    static const char* DefaultTitle(EditKind kind);

private:
    bool CanMerge(const std::vector<CEdit>& edits, EditKind kind) const;
    static void AppendMarks(CEdit& last, const CEdit& next);
    void ClearRedo();

    std::vector<CUndoStep> m_undo;
    std::vector<CUndoStep> m_redo;
    long m_nSaved = 0;  // -1: the saved text is no longer reachable
    int m_nDepth = 0;
    bool m_bGroupPushed = false;  // the open group has its step on the undo stack
    std::string m_strGroupTitle;
    bool m_bMergeBroken = true;
};
