// The control's own property page. It shows a group for a syntax highlight style (a list of
// names, Bold, Italic and a sample) that is bound to no property of the control: the format
// styles are set through the automation properties, and applying the page writes nothing.
// The page beeps each time it opens, and its list of names stays empty.
#pragma once
#include "platform/window/proppage.h"
#include "src/view/entrypoints.h"

class CZentrelPropPage final : public COlePropertyPage {
public:
    const DialogTemplate& GetPageTemplate() override;

    CDialogItemRef m_comboName;
    CDialogItemRef m_staticSample;
    BOOL m_bBold = FALSE;
    BOOL m_bItalic = FALSE;

protected:
    void DoDataExchange(CDataExchange* pDX) override;
    void OnInitDialog() override;
};
