// Deleting, undo and redo, select all, and the two typing modes. Every change is a call on the
// document; what it removes and where the caret goes after an undo are the document's answers.
#include <algorithm>

#include "platform/window/caret.h"
#include "src/view/zentrelctrl.h"

namespace {

constexpr UINT kBeep = static_cast<UINT>(-1);

// A range of the document for one look-up, given back when it goes out of scope.
class CScratchRange {
public:
    explicit CScratchRange(ISourceText* doc) : m_pDoc(doc) {
        if (FAILED(doc->CreateRange(&m_pRange))) m_pRange = nullptr;
    }
    ~CScratchRange() {
        if (!m_pRange) return;
        m_pRange->Release();
        m_pDoc->DestroyRange(m_pRange);
    }
    CScratchRange(const CScratchRange&) = delete;
    CScratchRange& operator=(const CScratchRange&) = delete;
    ISourceRange* operator->() const { return m_pRange; }
    explicit operator bool() const { return m_pRange != nullptr; }

private:
    ISourceText* m_pDoc;
    ISourceRange* m_pRange = nullptr;
};

}  // namespace

// With Ctrl the word in front of the selection goes with it; without, a selection goes (Shift
// cuts it), or else the character in front of the caret.
void CZentrelCtrl::Backspace(int mods) {
    if (mods & 2) {
        const long start = m_pSelection->GetStart(), end = m_pSelection->GetEnd();
        if (start > 0) {
            long newStart = start;
            {
                CScratchRange scratch(m_pDoc);
                if (!scratch) return;
                scratch->SetActive(start, FALSE);
                scratch->MoveWordLeft(FALSE, 1);
                newStart = scratch->GetStart();
            }
            if (end - newStart > 0) m_pDoc->DeleteText(newStart, end - newStart, &m_xTextSink);
        } else if (end > 0) {
            // At the start of the text there is no word in front; a selection still goes. (The
            // range's IsEmpty answers whether it spans lines, not whether it holds text.)
            m_pDoc->DeleteText(0, end, &m_xTextSink);
        }
    } else if (m_nSelActive != m_nSelAnchor) {
        DeleteForward(mods);
    } else if (m_nSelActive == 0) {
        if (mods == 0) MessageBeep(kBeep);
    } else {
        CharLeft(mods);
        DeleteForward(mods);
    }
    if (IsPickerVisible()) ShowPicker();
}

void CZentrelCtrl::DeleteForward(int mods) {
    const long selMin = std::min(m_nSelActive, m_nSelAnchor);
    long count = std::abs(m_nSelActive - m_nSelAnchor);
    switch (mods) {
        case 2: {
            {
                CScratchRange scratch(m_pDoc);
                if (!scratch) break;
                scratch->SetActive(m_pSelection->GetEnd(), FALSE);
                scratch->MoveWordRight(FALSE, 1);
                count = scratch->GetEnd() - selMin;
            }
            if (count > 0) m_pDoc->DeleteText(selMin, count, &m_xTextSink);
            break;
        }
        case 1:
            if (count > 0) Cut();
            break;
        case 0:
            if (count == 0) count = NextCharPos(selMin) - selMin;
            if (count > 0)
                m_pDoc->DeleteText(selMin, count, &m_xTextSink);
            else
                MessageBeep(kBeep);
            break;
        default:
            break;  // Ctrl+Shift deletes nothing
    }
    PlaceCaret();
    if (IsPickerVisible()) ShowPicker();
}

// The active end goes to the end of the text, the anchor to its start.
void CZentrelCtrl::SelectAll() { m_pSelection->SetRange(m_pDoc->GetLength(), 0); }

namespace {

// Undo and redo differ in which list they read and which step they take.
struct HistoryStep {
    BOOL (ISourceText::*isEmpty)();
    HRESULT (ISourceText::*take)(ISourceTextSink*, long*);
};

void TakeHistoryStep(CZentrelCtrl& view, HistoryStep step) {
    if (view.IsPickerVisible()) view.HidePicker();
    ISourceText* doc = view.m_pDoc;
    if (!doc || (doc->*step.isEmpty)()) {
        MessageBeep(kBeep);
        return;
    }
    long pos = -1;
    if (FAILED((doc->*step.take)(&view.m_xTextSink, &pos))) {
        MessageBeep(kBeep);
        return;
    }
    if (pos == -1) return;
    view.MoveCaret(pos, 0);
    UpdateWindow(view.GetSafeHwnd());
}

}  // namespace

void CZentrelCtrl::DoUndo() { TakeHistoryStep(*this, {&ISourceText::IsUndoEmpty, &ISourceText::Undo}); }
void CZentrelCtrl::DoRedo() { TakeHistoryStep(*this, {&ISourceText::IsRedoEmpty, &ISourceText::Redo}); }

void CZentrelCtrl::ToggleOverwrite() {
    m_Options ^= OPT_OVERWRITE;
    OnOverwriteChanged();
}

// The caret's width is the mode's only mark on the screen: a character wide to overtype, one
// pixel to insert.
void CZentrelCtrl::OnOverwriteChanged() {
    if (!m_bFocused) return;
    if (HasWindow()) {
        HideCaret(m_hWnd);
        DestroyCaret();
        CreateViewCaret();
        PlaceCaret();
        ShowCaret(m_hWnd);
    }
    FireEvent(EVENT_EDITMODETOGGLED, {Variant::Bool(GetOption(OPT_OVERWRITE) != FALSE)});
}

void CZentrelCtrl::ToggleAutoConvert() {
    m_Options ^= OPT_AUTOCONVERT;
    FireEvent(EVENT_AUTOCONVERTTOGGLED, {});
}
