// Clipboard commands and text drags. Text leaves the view as CF_TEXT in the document's code
// page; what comes in goes to the document unread, which picks the form it takes.
#include <algorithm>
#include <new>

#include <utility>

#include "platform/com/automation.h"
#include "platform/com/textdataobject.h"
#include "platform/window/caret.h"
#include "platform/window/clipboard.h"
#include "platform/window/dragdrop.h"
#include "src/view/zentrelctrl.h"

namespace {

// Automation error 7, out of memory.
constexpr SCODE kOutOfMemory = MakeHr(0x800A0007u);

}  // namespace

ComPtr<IDataObject> CZentrelCtrl::CreateDataSource(long nFirst, long nSecond) {
    if (!m_pDoc || nFirst == nSecond) return {};
    const long start = std::min(nFirst, nSecond);
    std::string text(static_cast<size_t>(std::abs(nSecond - nFirst)), '\0');
    m_pDoc->CopyText(text.data(), start, static_cast<long>(text.size()));
    // Clipboard text ends at its first zero byte.
    text.resize(std::min(text.size(), text.find('\0')));
    return ComPtr<IDataObject>::Adopt(CreateTextDataObject(text).Detach());
}

BOOL CZentrelCtrl::Copy() {
    if (!m_pDoc || m_nSelActive == m_nSelAnchor) return FALSE;
    ComPtr<IDataObject> data = CreateDataSource(m_nSelActive, m_nSelAnchor);
    return data && SUCCEEDED(OleSetClipboard(data.Get())) ? TRUE : FALSE;
}

void CZentrelCtrl::CopyForHost() {
    try {
        Copy();
    } catch (const std::bad_alloc&) {
        ThrowError(kOutOfMemory);
    }
}

// The text goes before the clipboard is set; a failure on the way is swallowed.
BOOL CZentrelCtrl::Cut() {
    if (!m_pDoc || m_nSelActive == m_nSelAnchor) return FALSE;
    try {
        const long active = m_nSelActive, anchor = m_nSelAnchor;
        m_pSelection->Collapse();
        ComPtr<IDataObject> data = CreateDataSource(active, anchor);
        if (!data) return FALSE;
        m_pDoc->DeleteText(std::min(active, anchor), std::abs(active - anchor), &m_xTextSink);
        return SUCCEEDED(OleSetClipboard(data.Get())) ? TRUE : FALSE;
    } catch (const std::bad_alloc&) {
        return FALSE;
    }
}

// The clipboard's data goes to the document over the selection; the document moves the caret.
void CZentrelCtrl::Paste() {
    if (!m_pDoc) return;
    ComPtr<IDataObject> data;
    if (FAILED(OleGetClipboard(data.Out()))) return;
    long inserted = 0;
    m_pDoc->InsertData(std::min(m_nSelActive, m_nSelAnchor), std::abs(m_nSelActive - m_nSelAnchor), &inserted,
                       data.Get(), &m_xTextSink);
}

// Drags the selection, modally: a drop on this view runs inside the call. The source is then
// deleted through a range the document kept up to date across the drop, so a drop in front of
// it needs no offsets adjusted; a move within the view closes the undo group its drop opened.
// A drag that never happens or ends in nothing puts the caret at the press.
BOOL CZentrelCtrl::BeginTextDrag(long nPos) {
    ComPtr<IDataObject> data = CreateDataSource(m_nSelActive, m_nSelAnchor);
    if (!data) return FALSE;
    if (FAILED(m_pDoc->CreateRange(&m_pDragRange)) || !m_pDragRange) {
        m_pDragRange = nullptr;
        return FALSE;
    }
    HideCaret(m_hWnd);
    m_pDragRange->SetRange(m_nSelActive, m_nSelAnchor);
    m_bMoveUndoOpen = 0;
    const DROPEFFECT effect = DoDragDrop(m_hWnd, data.Get(), DROPEFFECT_COPY | DROPEFFECT_MOVE);
    if (effect == DROPEFFECT_MOVE) {
        m_pDragRange->DeleteText(&m_xTextSink);
        ComPtr<ISourceUndo> undo;
        if (m_bMoveUndoOpen && SUCCEEDED(m_pDoc->GetUndoManager(undo.Out())) && undo) undo->EndGroup();
    } else if (effect != DROPEFFECT_COPY) {
        MoveCaret(nPos, 0);
    }
    m_bMoveUndoOpen = 0;
    // The document gives the range up, and the reference that came with it goes too.
    if (m_pDoc) m_pDoc->DestroyRange(m_pDragRange);
    std::exchange(m_pDragRange, nullptr)->Release();
    ShowCaret(m_hWnd);
    return TRUE;
}
