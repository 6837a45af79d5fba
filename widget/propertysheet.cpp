#include "widget/propertysheet.h"

#include <QDialogButtonBox>
#include <QPushButton>
#include <QTabWidget>
#include <QVBoxLayout>
#include <vector>

#include "platform/qt/qtdialogform.h"
#include "platform/qt/qttext.h"
#include "platform/window/proppage.h"
#include "src/view/entrypoints.h"
#include "widget/stockpages.h"
#include "widget/zentrelwidget.h"

namespace {

// The control's own page of the given class, made through the module's class factory.
ComPtr<IPropertyPage> MakePage(REFCLSID clsid) {
    ComPtr<IClassFactory> factory;
    if (FAILED(DllGetClassObject(clsid, IID_IClassFactory, reinterpret_cast<void**>(factory.Out())))) return nullptr;
    ComPtr<IPropertyPage> page;
    factory->CreateInstance(nullptr, IID_IPropertyPage, reinterpret_cast<void**>(page.Out()));
    return page;
}

}  // namespace

// The pages of the sheet: the module's pages with the forms the sheet built for them, and the
// stock pages.
struct ZentrelPropertySheet::Pages {
    std::vector<ComPtr<IPropertyPage>> module;
    std::vector<CStockPropertyPage*> stock;
};

ZentrelPropertySheet::ZentrelPropertySheet(ZentrelWidget* control, QWidget* parent)
    : QDialog(parent), m_pages(std::make_unique<Pages>()), m_pTabs(new QTabWidget) {
    setWindowTitle(tr("Zentrel Control Properties"));
    auto* buttons = new QDialogButtonBox(QDialogButtonBox::Ok | QDialogButtonBox::Cancel | QDialogButtonBox::Apply);
    m_pApply = buttons->button(QDialogButtonBox::Apply);
    m_pApply->setEnabled(false);
    auto markDirty = [this] { m_pApply->setEnabled(true); };
    for (const CLSID& clsid : ZentrelPropertyPages()) {
        if (clsid == CLSID_StockFontPage || clsid == CLSID_StockColorPage) {
            CStockPropertyPage* page = clsid == CLSID_StockFontPage ? static_cast<CStockPropertyPage*>(new CStockFontPage(control))
                                                                    : new CStockColorPage(control);
            m_pTabs->addTab(page, clsid == CLSID_StockFontPage ? tr("Fonts") : tr("Colors"));
            connect(page, &CStockPropertyPage::changed, this, markDirty);
            m_pages->stock.push_back(page);
            continue;
        }
        ComPtr<IPropertyPage> page = MakePage(clsid);
        if (!page) continue;
        page->SetObjects({control->dispatch()});
        auto* form = new CQtDialogForm(page->GetPageTemplate());
        m_pTabs->addTab(form, QtTextFromCodePage(page->GetPageTemplate().caption));
        page->Activate(form);
        connect(form, &CQtDialogForm::itemChanged, this, markDirty);
        m_pages->module.push_back(page);
    }
    auto* layout = new QVBoxLayout(this);
    layout->addWidget(m_pTabs);
    layout->addWidget(buttons);
    connect(buttons, &QDialogButtonBox::accepted, this, [this] {
        apply();
        accept();
    });
    connect(buttons, &QDialogButtonBox::rejected, this, &QDialog::reject);
    connect(m_pApply, &QPushButton::clicked, this, &ZentrelPropertySheet::apply);
}

ZentrelPropertySheet::~ZentrelPropertySheet() {
    for (const ComPtr<IPropertyPage>& page : m_pages->module) page->Deactivate();
}

void ZentrelPropertySheet::apply() {
    for (const ComPtr<IPropertyPage>& page : m_pages->module) page->Apply();
    for (CStockPropertyPage* page : m_pages->stock) page->apply();
    m_pApply->setEnabled(false);
}
