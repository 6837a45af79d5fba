#include "src/view/proppage.h"

#include "src/resources/dialogs.h"

const CLSID CLSID_ZentrelPropPage = MakeGuid("{5F908D45-7604-11D0-9725-0000C051C3E3}");

const DialogTemplate& CZentrelPropPage::GetPageTemplate() { return PropPageDialog(); }

void CZentrelPropPage::DoDataExchange(CDataExchange* pDX) {
    DDX_Control(pDX, IDC_STYLE_NAME, m_comboName);
    DDX_Control(pDX, IDC_STYLE_SAMPLE, m_staticSample);
    DDX_Check(pDX, IDC_STYLE_BOLD, m_bBold);
    DDX_Check(pDX, IDC_STYLE_ITALIC, m_bItalic);
}

void CZentrelPropPage::OnInitDialog() {
    COlePropertyPage::OnInitDialog();
    MessageBeep(static_cast<UINT>(-1));
}
