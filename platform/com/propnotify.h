// IPropertyNotifySink: what a font holder tells its owner when the font changes.
#pragma once
#include "platform/com/unknown.h"

extern const IID IID_IPropertyNotifySink;

class IPropertyNotifySink : public IUnknown {
public:
    virtual HRESULT OnChanged(DISPID dispid) = 0;
    virtual HRESULT OnRequestEdit(DISPID dispid) = 0;

protected:
    ~IPropertyNotifySink() = default;
};
