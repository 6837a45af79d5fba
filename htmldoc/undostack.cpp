#include "htmldoc/undostack.h"

#include <utility>

const char* CUndoStack::DefaultTitle(EditKind kind) {
    switch (kind) {
        case EditKind::Insert: return "Insert";
        case EditKind::Delete: return "Delete";
        case EditKind::Replace: return "Replace";
        case EditKind::Typing: return "Typing";
        case EditKind::Overtype: return "Overtype";
        case EditKind::Indent: return "Indent";
        case EditKind::Unindent: return "Unindent";
        case EditKind::Paste: return "Paste";
        case EditKind::Group: return "";
    }
    return "";
}

void CUndoStack::Clear() {
    m_undo.clear();
    m_redo.clear();
    m_nSaved = 0;
    m_nDepth = 0;
    m_bGroupPushed = false;
    m_bMergeBroken = true;
}

void CUndoStack::ClearRedo() {
    if (m_redo.empty()) return;
    if (m_nSaved > static_cast<long>(m_undo.size())) m_nSaved = -1;
    m_redo.clear();
}

bool CUndoStack::CanMerge(const std::vector<CEdit>& edits, EditKind kind) const {
    if (m_bMergeBroken || m_undo.empty() || IsAtSaved() || edits.size() != 1) return false;
    const CUndoStep& top = m_undo.back();
    if (top.kind != kind || top.edits.size() != 1) return false;
    const CEdit& last = top.edits.back();
    return last.pos + static_cast<long>(last.inserted.size()) == edits.front().pos;
}

// The marks of `next`, an edit right behind `last`, join those of `last` in the positions from
// before `last`. A shift sequence at the start of `next` is one that `last` touched already.
void CUndoStack::AppendMarks(CEdit& last, const CEdit& next) {
    const auto shift = static_cast<long>(last.removed.size()) - static_cast<long>(last.inserted.size());
    for (CLoadMark mark : next.marks) {
        if (mark.length == 0 && mark.pos == next.pos) continue;
        mark.pos = static_cast<int32_t>(mark.pos + shift);
        last.marks.push_back(mark);
    }
    for (CLoadMark mark : next.made) {
        mark.pos = static_cast<int32_t>(mark.pos + static_cast<long>(last.inserted.size()));
        last.made.push_back(mark);
    }
}

void CUndoStack::Record(std::vector<CEdit> edits, EditKind kind) {
    ClearRedo();
    if (m_nDepth > 0) {
        if (!m_bGroupPushed) {
            m_undo.push_back({m_strGroupTitle, EditKind::Group, {}});
            m_bGroupPushed = true;
        } else if (IsAtSaved()) {
            m_nSaved = -1;  // the saved step itself changes
        }
        for (CEdit& e : edits) m_undo.back().edits.push_back(std::move(e));
        return;
    }
    bool typing = kind == EditKind::Typing || kind == EditKind::Overtype;
    if (typing && CanMerge(edits, kind)) {
        CEdit& last = m_undo.back().edits.back();
        AppendMarks(last, edits.front());
        last.removed += edits.front().removed;
        last.inserted += edits.front().inserted;
    } else {
        m_undo.push_back({DefaultTitle(kind), kind, std::move(edits)});
    }
    m_bMergeBroken = !typing;
}

void CUndoStack::BeginGroup(const std::string& title) {
    if (m_nDepth++ == 0) {
        m_strGroupTitle = title;
        m_bGroupPushed = false;
    }
    m_bMergeBroken = true;
}

bool CUndoStack::EndGroup() {
    if (m_nDepth == 0) return false;
    if (--m_nDepth == 0) m_bGroupPushed = false;
    m_bMergeBroken = true;
    return true;
}

void CUndoStack::CloseGroups() {
    while (m_nDepth > 0) EndGroup();
}

CUndoStep CUndoStack::TakeUndo() {
    CUndoStep step = std::move(m_undo.back());
    m_undo.pop_back();
    m_bMergeBroken = true;
    return step;
}

CUndoStep CUndoStack::TakeRedo() {
    CUndoStep step = std::move(m_redo.back());
    m_redo.pop_back();
    m_bMergeBroken = true;
    return step;
}

void CUndoStack::PushUndo(CUndoStep step) { m_undo.push_back(std::move(step)); }
void CUndoStack::PushRedo(CUndoStep step) { m_redo.push_back(std::move(step)); }

void CUndoStack::MarkSaved() {
    m_nSaved = static_cast<long>(m_undo.size());
    m_bMergeBroken = true;
}
