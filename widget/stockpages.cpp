#include "widget/stockpages.h"

#include <QFormLayout>
#include <QMetaProperty>
#include <QVBoxLayout>

namespace {

// Qt's chooser dialogs as a plain child widget, without their own buttons.
template <class Dialog>
Dialog* EmbeddedChooser() {
    auto* dialog = new Dialog;
    dialog->setWindowFlags(Qt::Widget);
    dialog->setOptions(Dialog::NoButtons | Dialog::DontUseNativeDialog);
    return dialog;
}

}  // namespace

CStockPropertyPage::CStockPropertyPage(QObject* target, QMetaType::Type type, QWidget* chooser, QWidget* parent)
    : QWidget(parent), m_pChooser(chooser), m_target(target), m_names(new QComboBox) {
    const QMetaObject* meta = target->metaObject();
    for (int i = meta->propertyOffset(); i < meta->propertyCount(); ++i) {
        QMetaProperty p = meta->property(i);
        if (p.typeId() == type && p.isWritable()) m_names->addItem(QString::fromLatin1(p.name()));
    }
    auto* form = new QFormLayout;
    form->addRow(tr("&Property Name:"), m_names);
    auto* layout = new QVBoxLayout(this);
    layout->addLayout(form);
    layout->addWidget(chooser);
    connect(m_names, &QComboBox::currentIndexChanged, this, &CStockPropertyPage::select);
}

void CStockPropertyPage::select(int index) {
    if (index < 0 || index >= m_names->count()) return;
    const QString name = m_names->itemText(index);
    m_bShowing = true;
    show(m_changed.contains(name) ? m_changed[name] : m_target->property(name.toLatin1()));
    m_bShowing = false;
}

void CStockPropertyPage::chooserChanged() {
    if (m_bShowing || m_names->currentIndex() < 0) return;
    m_changed[m_names->currentText()] = chosen();
    emit changed();
}

void CStockPropertyPage::apply() {
    for (auto it = m_changed.cbegin(); it != m_changed.cend(); ++it) m_target->setProperty(it.key().toLatin1(), it.value());
    m_changed.clear();
}

CStockFontPage::CStockFontPage(QObject* target, QWidget* parent)
    : CStockPropertyPage(target, QMetaType::QFont, EmbeddedChooser<QFontDialog>(), parent) {
    connect(chooser(), &QFontDialog::currentFontChanged, this, &CStockFontPage::chooserChanged);
    select(0);
}

CStockColorPage::CStockColorPage(QObject* target, QWidget* parent)
    : CStockPropertyPage(target, QMetaType::QColor, EmbeddedChooser<QColorDialog>(), parent) {
    connect(chooser(), &QColorDialog::currentColorChanged, this, &CStockColorPage::chooserChanged);
    select(0);
}
