// One change as the document reports it: the action code and the span.
#pragma once
#include "src/document/sourcetext.h"

class CSourceChange final : public ISourceChange {
public:
    CSourceChange(long action, long start, long end) : m_nAction(action), m_range{start, end} {}

    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    ULONG AddRef() override { return m_refs.Increment(); }
    ULONG Release() override;

    long GetAction() override { return m_nAction; }
    HRESULT GetRange(ISourceChangeRange* out) override;

    // The object as the IUnknown that travels in OnChange and in the repaint message.
    IUnknown* AsUnknown() { return static_cast<ISourceChange*>(this); }

private:
    ~CSourceChange() = default;
    CRefCount m_refs;
    long m_nAction;
    ISourceChangeRange m_range;
};
