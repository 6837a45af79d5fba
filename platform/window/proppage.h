// Property pages: forms that a host shows in its design mode to edit the properties of the
// objects it hands them. A page describes its form as a dialog template; the host builds the
// form (platform/qt) and lends the page its items while the page is active.
#pragma once
#include <vector>

#include "platform/com/unknown.h"
#include "platform/window/dialogtemplate.h"

extern const IID IID_IPropertyPage;

class IPropertyPage : public IUnknown {
public:
    // The objects the page edits; a page takes a reference to each.
    virtual HRESULT SetObjects(const std::vector<IUnknown*>& objects) = 0;
    // The page's title and form.
    virtual const DialogTemplate& GetPageTemplate() = 0;
    // The host has built the form: the page fills its items and runs its start-up. The items
    // stay lent until Deactivate.
    virtual HRESULT Activate(IDialogItems* items) = 0;
    virtual HRESULT Deactivate() = 0;
    // Reads the items back and writes what they are bound to into the objects.
    virtual HRESULT Apply() = 0;

protected:
    ~IPropertyPage() = default;
};

// Binds the fields of a page to the items of its form, in one direction at a time.
class CDataExchange {
public:
    CDataExchange(IDialogItems* items, bool save) : m_pItems(items), m_bSaveAndValidate(save) {}
    IDialogItems* Items() const { return m_pItems; }
    bool Saving() const { return m_bSaveAndValidate; }

private:
    IDialogItems* m_pItems;
    bool m_bSaveAndValidate;
};

// A field that stands for an item of the form itself (a list, a text) rather than a value.
struct CDialogItemRef {
    int id = 0;
};

void DDX_Check(CDataExchange* pDX, int id, BOOL& value);
void DDX_Control(CDataExchange* pDX, int id, CDialogItemRef& item);

// The base of a page: counted, counts itself in the module, keeps its objects and runs data
// exchange on activation and apply. A page overrides DoDataExchange and, for its start-up,
// OnInitDialog.
class COlePropertyPage : public IPropertyPage {
public:
    HRESULT QueryInterface(REFIID riid, void** ppv) override;
    ULONG AddRef() override { return m_refs.Increment(); }
    ULONG Release() override;
    HRESULT SetObjects(const std::vector<IUnknown*>& objects) override;
    HRESULT Activate(IDialogItems* items) override;
    HRESULT Deactivate() override;
    HRESULT Apply() override;

    const std::vector<ComPtr<IUnknown>>& GetObjects() const { return m_objects; }

protected:
    COlePropertyPage();
    virtual ~COlePropertyPage();
    virtual void DoDataExchange(CDataExchange* pDX) = 0;
    virtual void OnInitDialog() {}

private:
    CRefCount m_refs;
    std::vector<ComPtr<IUnknown>> m_objects;
    IDialogItems* m_pItems = nullptr;
};
