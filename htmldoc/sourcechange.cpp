#include "htmldoc/sourcechange.h"

HRESULT CSourceChange::GetRange(ISourceChangeRange* out) {
    if (!out) return E_POINTER;
    *out = m_range;
    return S_OK;
}
