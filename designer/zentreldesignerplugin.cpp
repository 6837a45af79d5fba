#include "zentreldesignerplugin.h"

#include <QAction>
#include <QDesignerFormEditorInterface>
#include <QDesignerFormWindowCursorInterface>
#include <QDesignerFormWindowInterface>
#include <QMetaProperty>
#include <QExtensionManager>

#include "widget/propertysheet.h"
#include "widget/zentrelwidget.h"

QWidget* ZentrelDesignerPlugin::createWidget(QWidget* parent) { return new ZentrelWidget(parent); }

void ZentrelDesignerPlugin::initialize(QDesignerFormEditorInterface* core) {
    if (m_bInitialized) return;
    if (QExtensionManager* manager = core ? core->extensionManager() : nullptr)
        manager->registerExtensions(new ZentrelTaskMenuFactory(manager), Q_TYPEID(QDesignerTaskMenuExtension));
    m_bInitialized = true;
}

QString ZentrelDesignerPlugin::domXml() const {
    return QStringLiteral(
        "<ui language=\"c++\">\n"
        " <widget class=\"ZentrelWidget\" name=\"zentrelWidget\">\n"
        "  <property name=\"geometry\"><rect><x>0</x><y>0</y><width>400</width><height>300</height></rect></property>\n"
        " </widget>\n"
        "</ui>\n");
}

ZentrelTaskMenu::ZentrelTaskMenu(ZentrelWidget* widget, QObject* parent)
    : QObject(parent), m_pWidget(widget), m_pEdit(new QAction(tr("Zentrel Control Properties..."), this)) {
    connect(m_pEdit, &QAction::triggered, this, [this] {
        // The sheet writes the widget's properties; the form hears of each change through its
        // cursor, so that the .ui file and undo know them.
        const QMetaObject* meta = m_pWidget->metaObject();
        QVariantList before;
        for (int i = 0; i < meta->propertyCount(); ++i) before << meta->property(i).read(m_pWidget);
        ZentrelPropertySheet sheet(m_pWidget, m_pWidget->window());
        sheet.exec();
        QDesignerFormWindowInterface* form = QDesignerFormWindowInterface::findFormWindow(m_pWidget);
        for (int i = 0; form && i < meta->propertyCount(); ++i) {
            QVariant now = meta->property(i).read(m_pWidget);
            if (meta->property(i).isWritable() && now != before[i])
                form->cursor()->setWidgetProperty(m_pWidget, QString::fromLatin1(meta->property(i).name()), now);
        }
    });
}

QObject* ZentrelTaskMenuFactory::createExtension(QObject* object, const QString& iid, QObject* parent) const {
    auto* widget = qobject_cast<ZentrelWidget*>(object);
    if (!widget || iid != Q_TYPEID(QDesignerTaskMenuExtension)) return nullptr;
    return new ZentrelTaskMenu(widget, parent);
}
