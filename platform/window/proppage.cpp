#include "platform/window/proppage.h"

#include "platform/com/classfactory.h"

const IID IID_IPropertyPage = MakeGuid("{B196B28D-BAB4-101A-B69C-00AA00341D07}");

void DDX_Check(CDataExchange* pDX, int id, BOOL& value) {
    if (pDX->Saving()) value = pDX->Items()->GetCheck(id);
    else pDX->Items()->SetCheck(id, value ? 1 : 0);
}

void DDX_Control(CDataExchange*, int id, CDialogItemRef& item) { item.id = id; }

COlePropertyPage::COlePropertyPage() { ModuleAddObject(); }

COlePropertyPage::~COlePropertyPage() { ModuleReleaseObject(); }

HRESULT COlePropertyPage::QueryInterface(REFIID riid, void** ppv) {
    if (!ppv) return E_POINTER;
    if (riid == IID_IUnknown || riid == IID_IPropertyPage) return HandOut(static_cast<IPropertyPage*>(this), ppv);
    *ppv = nullptr;
    return E_NOINTERFACE;
}

ULONG COlePropertyPage::Release() {
    ULONG n = m_refs.Decrement();
    if (n == 0) delete this;
    return n;
}

HRESULT COlePropertyPage::SetObjects(const std::vector<IUnknown*>& objects) {
    m_objects.assign(objects.begin(), objects.end());
    return S_OK;
}

HRESULT COlePropertyPage::Activate(IDialogItems* items) {
    if (!items) return E_POINTER;
    m_pItems = items;
    CDataExchange dx(items, false);
    DoDataExchange(&dx);
    OnInitDialog();
    return S_OK;
}

HRESULT COlePropertyPage::Deactivate() {
    m_pItems = nullptr;
    return S_OK;
}

HRESULT COlePropertyPage::Apply() {
    if (!m_pItems) return E_UNEXPECTED;
    CDataExchange dx(m_pItems, true);
    DoDataExchange(&dx);
    return S_OK;
}
