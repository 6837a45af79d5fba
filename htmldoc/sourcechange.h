// One change as the document reports it: the action code and the span.
#pragma once
#include "src/document/sourcetext.h"

class CSourceChange final : public CUnknownImpl<ISourceChange, IID_ISourceChange> {
public:
    CSourceChange(long action, long start, long end) : m_nAction(action), m_range{start, end} {}

    long GetAction() override { return m_nAction; }
    HRESULT GetRange(ISourceChangeRange* out) override;

    // The object as the IUnknown that travels in OnChange and in the repaint message.
    IUnknown* AsUnknown() { return static_cast<ISourceChange*>(this); }

private:
    ~CSourceChange() override = default;
    long m_nAction;
    ISourceChangeRange m_range;
};
