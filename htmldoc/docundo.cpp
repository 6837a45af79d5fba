// Undo and redo of the document, and the undo manager through which callers group edits.
#include "htmldoc/changespan.h"
#include "htmldoc/htmldocument.h"
#include "htmldoc/sourcerange.h"

namespace {

// Handed out anew for each use. The group state lives in the document's history, so a group
// may end through another manager than the one that began it.
class CUndoManager final : public CUnknownImpl<ISourceUndo, IID_ISourceUndo> {
public:
    explicit CUndoManager(CHtmlDocument* doc) : m_pDoc(doc) {}

    HRESULT BeginGroup(const char* title) override {
        m_pDoc->UndoStack().BeginGroup(title ? title : "");
        return S_OK;
    }
    HRESULT EndGroup() override { return m_pDoc->UndoStack().EndGroup() ? S_OK : E_UNEXPECTED; }

private:
    ~CUndoManager() override = default;
    ComPtr<CHtmlDocument> m_pDoc;
};

}  // namespace

HRESULT CHtmlDocument::GetUndoManager(ISourceUndo** out) {
    if (!out) return E_POINTER;
    *out = new CUndoManager(this);
    (*out)->AddRef();
    return S_OK;
}

long CHtmlDocument::ReplayStep(const CUndoStep& step, bool undo) {
    // A block step (indent) reports once, as it did when it was made; any other step reports
    // each of its edits as that edit's own kind of change.
    bool block = step.kind == EditKind::Indent || step.kind == EditKind::Unindent;
    CChangeSpan span;
    long caret = -1;
    size_t count = step.edits.size();
    for (size_t i = 0; i < count; ++i) {
        const CEdit& e = step.edits[undo ? count - 1 - i : i];
        const std::string& from = undo ? e.inserted : e.removed;
        const std::string& to = undo ? e.removed : e.inserted;
        long oldCount = static_cast<long>(from.size());
        long newCount = static_cast<long>(to.size());
        Apply(e.pos, oldCount, to, nullptr, undo ? &e.marks : nullptr, undo ? nullptr : &e.made);
        caret = e.pos + newCount;
        if (block) {
            span.Add(e.pos, oldCount, newCount);
        } else if (to.empty()) {
            NotifyChange(SA_DELETE, e.pos, e.pos + oldCount);
        } else {
            NotifyChange(from.empty() ? SA_INSERT : SA_REPLACE, e.pos, caret);
        }
    }
    if (block && !span.Empty()) NotifyChange(SA_REPLACE, span.Start(), span.End());
    return caret;
}

HRESULT CHtmlDocument::Rewind(bool undo, long* caretPos) {
    if (caretPos) *caretPos = -1;
    if (m_bLocked) return E_ACCESSDENIED;
    // A group left open would swallow the step; it ends here.
    m_undo.CloseGroups();
    if (undo ? !m_undo.CanUndo() : !m_undo.CanRedo()) return E_FAIL;
    ComPtr<CHtmlDocument> alive(this);
    CSelectionMark mark = MarkSelectionEnds();
    CUndoStep step = undo ? m_undo.TakeUndo() : m_undo.TakeRedo();
    long caret = ReplayStep(step, undo);
    if (undo) m_undo.PushRedo(std::move(step));
    else m_undo.PushUndo(std::move(step));
    if (m_pSelection && caret >= 0) m_pSelection->PlaceSilently(caret, caret);
    if (caretPos) *caretPos = caret;
    ReportSelection(mark);
    return S_OK;
}

HRESULT CHtmlDocument::Undo(ISourceTextSink*, long* caretPos) { return Rewind(true, caretPos); }
HRESULT CHtmlDocument::Redo(ISourceTextSink*, long* caretPos) { return Rewind(false, caretPos); }

std::string CHtmlDocument::UndoTitle() const {
    const CUndoStep* step = m_undo.NextUndo();
    return step ? step->title : std::string();
}

std::string CHtmlDocument::RedoTitle() const {
    const CUndoStep* step = m_undo.NextRedo();
    return step ? step->title : std::string();
}
