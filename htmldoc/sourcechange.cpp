#include "htmldoc/sourcechange.h"

HRESULT CSourceChange::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_ISourceChange) return HandOut(static_cast<ISourceChange*>(this), ppv);
    *ppv = nullptr;
    return E_NOINTERFACE;
}

ULONG CSourceChange::Release() {
    ULONG n = m_refs.Decrement();
    if (n == 0) delete this;
    return n;
}

HRESULT CSourceChange::GetRange(ISourceChangeRange* out) {
    if (!out) return E_POINTER;
    *out = m_range;
    return S_OK;
}
