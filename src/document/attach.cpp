// Attaching and detaching a document. A new document is made ready (text interface, selection
// range) before the old one goes, so a failed attach leaves the old document working.
#include "src/view/zentrelctrl.h"

BOOL CZentrelCtrl::AttachDocument(IDispatch* pDocument) {
    if (!pDocument) {
        DetachDocument();
        Reformat(FALSE);
        return TRUE;
    }
    ComPtr<ISourceText> doc = QueryAs<ISourceText>(pDocument, IID_ISourceText);
    if (!doc) return FALSE;
    ComPtr<ISourceRange> selection;
    if (FAILED(doc->CreateRange(selection.Out())) || !selection) return FALSE;
    selection->MarkAsSelection(TRUE);

    DetachDocument();

    // The document's advice and the selection's owner must not keep the control alive, or a
    // host that lets go of the control while a document is attached would leave both behind:
    // the references that they take are given back at once, and taken again before they are
    // withdrawn.
    const ULONG before = CurrentRefs();
    selection->SetOwner(static_cast<IDispatch*>(this));
    doc->AdviseTextSink(&m_xTextSink);
    DWORD cookie = 0;
    selection->AdviseRangeSink(&m_xRangeSink, &cookie);
    m_nAdviceRefs = CurrentRefs() - before;
    for (ULONG i = 0; i < m_nAdviceRefs; ++i) Release();
    m_Bookmarks.SetDocument(doc.Get());
    ComPtr<ISourceSyntax> syntax = QueryAs<ISourceSyntax>(pDocument, IID_ISourceSyntax);
    ComPtr<ISourceTokens> tokens = QueryAs<ISourceTokens>(pDocument, IID_ISourceTokens);

    m_pSelection = selection.Detach();
    m_pDoc = doc.Detach();
    m_dwSelCookie = cookie;
    m_pSyntax = syntax.Detach();
    m_pTokens = tokens.Detach();

    if (m_pSyntax) {
        ComPtr<IDispatch> schema;
        if (SUCCEEDED(m_pSyntax->GetSchema(schema.Out()))) m_dispSchema = std::move(schema);
    }

    m_Lines.RemoveAll();
    m_Lines.InsertAt(0, m_pDoc->GetLength());
    if (!HasWindow()) return TRUE;
    Reformat(FALSE);
    return TRUE;
}

void CZentrelCtrl::DetachDocument() {
    m_RowCheckpoints.Clear();
    if (m_pDoc) {
        for (; m_nAdviceRefs > 0; --m_nAdviceRefs) AddRef();
        m_Bookmarks.RemoveAll();
        m_CollapseRoot.RemoveAllChildren();
        m_Bookmarks.SetDocument(nullptr);
        m_pSelection->UnadviseRangeSink(m_dwSelCookie);
        m_pSelection->SetOwner(nullptr);
        m_pDoc->UnadviseTextSink(&m_xTextSink);
        std::exchange(m_pSelection, nullptr)->Release();
        if (m_pTokens) std::exchange(m_pTokens, nullptr)->Release();
        if (m_pSyntax) {
            m_dispSchema = nullptr;
            std::exchange(m_pSyntax, nullptr)->Release();
        }
        std::exchange(m_pDoc, nullptr)->Release();
    }
    m_Lines.RemoveAll();
    m_Lines.InsertAt(0, 0);
}

ULONG CZentrelCtrl::CurrentRefs() {
    AddRef();
    return Release();
}

IDispatch* CZentrelCtrl::GetDocument() {
    if (!m_pDoc) return nullptr;
    IDispatch* disp = nullptr;
    m_pDoc->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&disp));
    return disp;
}

void CZentrelCtrl::SetDocument(IDispatch* pDocument) {
    AttachDocument(pDocument);
    Refresh();
}

IDispatch* CZentrelCtrl::GetSelection() {
    if (!m_pDoc || !m_pSelection) return nullptr;
    IDispatch* disp = nullptr;
    m_pSelection->QueryInterface(IID_IDispatch, reinterpret_cast<void**>(&disp));
    return disp;
}
