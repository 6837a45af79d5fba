// The About box and the property page: on the scripted dialogs of the test backend, and as Qt
// forms (offscreen) in the property sheet a host shows in design mode.
#include <gtest/gtest.h>

#include <QApplication>
#include <QCheckBox>
#include <QColorDialog>
#include <QComboBox>
#include <QDialog>
#include <QFontDialog>
#include <QLabel>
#include <QMetaProperty>
#include <QPushButton>
#include <QTabWidget>
#include <QTimer>

#include "platform/qt/qtdialogform.h"
#include "platform/testing/testforms.h"
#include "platform/testing/testplatform.h"
#include "platform/window/proppage.h"
#include "src/resources/dialogs.h"
#include "src/view/module.h"
#include "src/view/proppage.h"
#include "src/view/zentrelctrl.h"
#include "widget/propertysheet.h"
#include "widget/stockpages.h"
#include "widget/zentrelwidget.h"

namespace {

HRESULT CallAboutBox(IDispatch* control) {
    std::vector<Variant> none;
    ExcepInfo error;
    return control->Invoke(DISPID_ABOUTBOX, DISPATCH_METHOD, none, nullptr, &error);
}

ComPtr<IPropertyPage> MakePage() {
    ComPtr<IClassFactory> factory;
    EXPECT_EQ(DllGetClassObject(CLSID_ZentrelPropPage, IID_IClassFactory, reinterpret_cast<void**>(factory.Out())), S_OK);
    ComPtr<IPropertyPage> page;
    EXPECT_EQ(factory->CreateInstance(nullptr, IID_IPropertyPage, reinterpret_cast<void**>(page.Out())), S_OK);
    return page;
}

TEST(AboutBox, ShowsTheModulesDialogOverTheControl) {
    CTestPlatformScope platform;
    ComPtr<IDispatch> control;
    control.Attach(CreateZentrelCtrl());
    EXPECT_EQ(CallAboutBox(control.Get()), S_OK) << "without dialogs nothing shows, and nothing fails";

    CTestForms dialogs;
    ASSERT_EQ(CallAboutBox(control.Get()), S_OK);
    ASSERT_EQ(dialogs.shown.size(), 1u);
    const DialogTemplate& about = dialogs.shown[0].dialog;
    EXPECT_EQ(about.id, IDD_ABOUTBOX);
    EXPECT_EQ(about.caption, "About Zentrel Control");
    std::vector<std::string> texts;
    for (const DialogItem& item : about.items) texts.push_back(item.text);
    EXPECT_EQ(texts, (std::vector<std::string>{"", "Zentrel Control, Version 2.0", "OK"}));
    EXPECT_EQ(about.items[0].kind, DialogItemKind::Icon);
    EXPECT_EQ(about.items[2].id, IDOK);
}

TEST(PropertyPage, BeepsOnEveryOpeningAndAppliesNothing) {
    CTestPlatformScope platform;
    ComPtr<IPropertyPage> page = MakePage();
    const DialogTemplate& form = page->GetPageTemplate();
    EXPECT_EQ(form.id, IDD_PROPPAGE);
    EXPECT_EQ(form.caption, "General");
    EXPECT_EQ(form.cx, 250);
    EXPECT_EQ(form.cy, 121);

    CTestFormItems items(form);
    items.SetCheck(IDC_STYLE_BOLD, 1);
    ASSERT_EQ(page->Activate(&items), S_OK);
    EXPECT_EQ(platform->BeepCount(), 1);
    EXPECT_EQ(platform->LastBeepType(), static_cast<UINT>(-1));
    EXPECT_EQ(items.GetCheck(IDC_STYLE_BOLD), 0) << "the fields start clear and are shown so";
    EXPECT_EQ(items.GetListCount(IDC_STYLE_NAME), 0);

    items.SetCheck(IDC_STYLE_ITALIC, 1);
    ASSERT_EQ(page->Apply(), S_OK);
    auto* zentrelPage = static_cast<CZentrelPropPage*>(page.Get());
    EXPECT_EQ(zentrelPage->m_bItalic, TRUE);
    EXPECT_EQ(zentrelPage->m_bBold, FALSE);
    EXPECT_EQ(zentrelPage->m_comboName.id, IDC_STYLE_NAME);
    EXPECT_EQ(zentrelPage->m_staticSample.id, IDC_STYLE_SAMPLE);
    page->Deactivate();
    EXPECT_EQ(page->Apply(), E_UNEXPECTED);
    page->Activate(&items);
    EXPECT_EQ(platform->BeepCount(), 2);
    EXPECT_EQ(items.GetCheck(IDC_STYLE_ITALIC), 1) << "reopened, it shows what it held";
}

// Every Qt property of the widget whose value Qt can compare.
QVariantMap Properties(const QObject& object) {
    QVariantMap values;
    const QMetaObject* meta = object.metaObject();
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
        QMetaProperty p = meta->property(i);
        if (p.typeId() < QMetaType::User) values[p.name()] = p.read(&object);
    }
    return values;
}

TEST(PropertySheet, ShowsTheControlsPagesInItsOrderAndItsPageWritesNothing) {
    ZentrelWidget control;
    const QVariantMap before = Properties(control);
    ZentrelPropertySheet sheet(&control);
    QTabWidget* tabs = sheet.pages();
    ASSERT_EQ(tabs->count(), 3);
    EXPECT_EQ(tabs->tabText(0), "General");
    EXPECT_EQ(tabs->tabText(1), "Fonts");
    EXPECT_EQ(tabs->tabText(2), "Colors");

    auto* form = qobject_cast<CQtDialogForm*>(tabs->widget(0));
    ASSERT_NE(form, nullptr);
    auto* bold = qobject_cast<QCheckBox*>(form->Item(IDC_STYLE_BOLD));
    auto* names = qobject_cast<QComboBox*>(form->Item(IDC_STYLE_NAME));
    auto* sample = qobject_cast<QLabel*>(form->Item(IDC_STYLE_SAMPLE));
    ASSERT_TRUE(bold && names && sample);
    EXPECT_EQ(bold->text(), "&Bold");
    EXPECT_EQ(sample->text(), "Sample");
    EXPECT_EQ(names->count(), 0);
    // Dialog units: the sample begins right of the check boxes and below the list.
    EXPECT_GT(sample->geometry().left(), bold->geometry().right());
    EXPECT_GT(sample->geometry().top(), names->geometry().top());

    EXPECT_FALSE(sheet.applyButton()->isEnabled());
    bold->setChecked(true);
    EXPECT_TRUE(sheet.applyButton()->isEnabled());
    sheet.apply();
    EXPECT_EQ(Properties(control), before);
}

TEST(PropertySheet, StockPagesWriteTheFontAndColourProperties) {
    ZentrelWidget control;
    ZentrelPropertySheet sheet(&control);
    auto* fonts = qobject_cast<CStockFontPage*>(sheet.pages()->widget(1));
    auto* colors = qobject_cast<CStockColorPage*>(sheet.pages()->widget(2));
    ASSERT_TRUE(fonts && colors);
    QStringList fontNames, colorNames;
    for (int i = 0; i < fonts->propertyList()->count(); ++i) fontNames << fonts->propertyList()->itemText(i);
    for (int i = 0; i < colors->propertyList()->count(); ++i) colorNames << colors->propertyList()->itemText(i);
    EXPECT_EQ(fontNames, (QStringList{"editFont", "gutterFont"}));
    EXPECT_EQ(colorNames, (QStringList{"backColor", "textColor"}));
    EXPECT_EQ(colors->chooser()->currentColor(), control.backColor());

    colors->propertyList()->setCurrentIndex(1);
    colors->chooser()->setCurrentColor(QColor(0x12, 0x34, 0x56));
    QFont font = control.editFont();
    font.setPointSize(17);
    fonts->chooser()->setCurrentFont(font);
    EXPECT_NE(control.textColor(), QColor(0x12, 0x34, 0x56)) << "nothing is written before Apply";
    EXPECT_TRUE(sheet.applyButton()->isEnabled());
    sheet.apply();
    EXPECT_EQ(control.textColor(), QColor(0x12, 0x34, 0x56));
    EXPECT_EQ(control.editFont().pointSize(), 17);
    EXPECT_FALSE(sheet.applyButton()->isEnabled());
}

TEST(AboutBox, RunsAsAQtDialogClosedByOk) {
    ZentrelWidget control;
    QString title, text;
    QTimer::singleShot(0, [&] {
        auto* box = qobject_cast<QDialog*>(QApplication::activeModalWidget());
        ASSERT_NE(box, nullptr);
        title = box->windowTitle();
        for (QLabel* label : box->findChildren<QLabel*>()) text += label->text();
        for (QPushButton* button : box->findChildren<QPushButton*>())
            if (button->text() == "OK") button->click();
    });
    control.aboutBox();
    EXPECT_EQ(title, "About Zentrel Control");
    EXPECT_EQ(text, "Zentrel Control, Version 2.0");
}

}  // namespace
