// ZentrelWidget in Qt Designer: the widget for the widget box and forms, and a task menu entry
// that opens the control's property sheet on the widget under the mouse.
#pragma once
#include <QtUiPlugin/QDesignerCustomWidgetInterface>
#include <QDesignerTaskMenuExtension>
#include <QExtensionFactory>

class ZentrelWidget;

class ZentrelDesignerPlugin : public QObject, public QDesignerCustomWidgetInterface {
    Q_OBJECT
    Q_PLUGIN_METADATA(IID "org.qt-project.Qt.QDesignerCustomWidgetInterface")
    Q_INTERFACES(QDesignerCustomWidgetInterface)
public:
    explicit ZentrelDesignerPlugin(QObject* parent = nullptr) : QObject(parent) {}

    QString name() const override { return QStringLiteral("ZentrelWidget"); }
    QString group() const override { return QStringLiteral("Zentrel"); }
    QString toolTip() const override { return QStringLiteral("HTML source-editing view"); }
    QString whatsThis() const override { return toolTip(); }
    QString includeFile() const override { return QStringLiteral("widget/zentrelwidget.h"); }
    QIcon icon() const override { return {}; }
    bool isContainer() const override { return false; }
    QWidget* createWidget(QWidget* parent) override;
    bool isInitialized() const override { return m_bInitialized; }
    void initialize(QDesignerFormEditorInterface* core) override;
    QString domXml() const override;

private:
    bool m_bInitialized = false;
};

class ZentrelTaskMenu : public QObject, public QDesignerTaskMenuExtension {
    Q_OBJECT
    Q_INTERFACES(QDesignerTaskMenuExtension)
public:
    ZentrelTaskMenu(ZentrelWidget* widget, QObject* parent);
    QAction* preferredEditAction() const override { return m_pEdit; }
    QList<QAction*> taskActions() const override { return {m_pEdit}; }

private:
    ZentrelWidget* m_pWidget;
    QAction* m_pEdit;
};

class ZentrelTaskMenuFactory : public QExtensionFactory {
    Q_OBJECT
public:
    explicit ZentrelTaskMenuFactory(QExtensionManager* parent) : QExtensionFactory(parent) {}

protected:
    QObject* createExtension(QObject* object, const QString& iid, QObject* parent) const override;
};
