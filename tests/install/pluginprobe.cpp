// Loads a Qt Designer plugin as Designer does, with QPluginLoader, makes its widget and checks
// the Qt properties a form would edit: prints what it found and fails on the first miss.
#include <QApplication>
#include <QtUiPlugin/QDesignerCustomWidgetInterface>
#include <QMetaProperty>
#include <QPluginLoader>
#include <QWidget>
#include <cstdio>

namespace {

int Fail(const QString& why) {
    std::fprintf(stderr, "plugin probe: %s\n", qPrintable(why));
    return 1;
}

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc != 2) return Fail("usage: install-plugin-probe PLUGIN");
    QPluginLoader loader(QString::fromLocal8Bit(argv[1]));
    auto* plugin = qobject_cast<QDesignerCustomWidgetInterface*>(loader.instance());
    if (!plugin) return Fail("not a Designer widget plugin: " + loader.errorString());
    if (plugin->name() != "ZentrelWidget" || !plugin->domXml().contains("class=\"ZentrelWidget\""))
        return Fail("the plugin offers " + plugin->name());
    plugin->initialize(nullptr);
    QWidget* widget = plugin->createWidget(nullptr);
    if (!widget || QString(widget->metaObject()->className()) != "ZentrelWidget") return Fail("no ZentrelWidget made");

    // Every property the form's editor shows, with the type it edits it as.
    const struct {
        const char* name;
        QMetaType::Type type;
        QVariant value;
    } kProperties[] = {
        {"tabSize", QMetaType::Int, 7},
        {"wordWrap", QMetaType::Bool, true},
        {"showLineNumber", QMetaType::Bool, true},
        {"backColor", QMetaType::QColor, QColor(10, 20, 30)},
        {"editFont", QMetaType::QFont, QVariant()},
    };
    for (const auto& p : kProperties) {
        const int index = widget->metaObject()->indexOfProperty(p.name);
        if (index < 0) return Fail(QString("no property ") + p.name);
        const QMetaProperty property = widget->metaObject()->property(index);
        if (property.typeId() != p.type || !property.isWritable()) return Fail(QString("property ") + p.name + " has the wrong type");
        if (p.value.isValid() && (!widget->setProperty(p.name, p.value) || widget->property(p.name) != p.value))
            return Fail(QString("property ") + p.name + " did not take " + p.value.toString());
    }
    std::printf("plugin %s: %d properties, tabSize %d\n", qPrintable(plugin->name()),
                widget->metaObject()->propertyCount() - widget->metaObject()->propertyOffset(),
                widget->property("tabSize").toInt());
    delete widget;
    return 0;
}
