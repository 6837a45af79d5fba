// A host of the control: a window with a ZentrelWidget over a new HTML document.
//
//   zentrel-example                 shows the window
//   zentrel-example --check         builds it headless, prints what the control reports, exits
//   zentrel-example --store FILE    registers the module in FILE and makes a control by its
//                                   programmatic identifier through the store, as a host that
//                                   knows only the identifiers does
#include <QApplication>
#include <QTimer>
#include <cstdio>
#include <cstring>

#include "htmldoc/htmldocfactory.h"
#include "platform/com/regstore.h"
#include "src/view/entrypoints.h"
#include "widget/zentrelwidget.h"

namespace {

const char* kPage = "<!DOCTYPE html>\n<html>\n<body>\n  <p class=\"greeting\">Hello from a host</p>\n</body>\n</html>\n";

// Sets a property of an automation object by name.
bool Put(IDispatch* object, const char* name, Variant value) {
    DISPID id = 0;
    if (FAILED(object->GetIDsOfNames(name, &id))) return false;
    std::vector<Variant> args{std::move(value)};
    ExcepInfo error;
    return SUCCEEDED(object->Invoke(id, DISPATCH_PROPERTYPUT, args, nullptr, &error));
}

int CreateThroughStore(const char* path) {
    ZentrelSetRegistrationStore(path);
    if (FAILED(DllRegisterServer())) {
        std::fprintf(stderr, "registration failed: %s\n", ZentrelRegistrationError());
        return 1;
    }
    CRegistrationStore store(path);
    CLSID clsid{};
    ComPtr<IDispatch> control;
    HRESULT hr = store.Load().hr;
    if (SUCCEEDED(hr)) hr = CLSIDFromProgID(store, "Morvane.Zentrel2.1", &clsid);
    if (SUCCEEDED(hr)) hr = CreateInstanceFromStore(store, clsid, IID_IDispatch, reinterpret_cast<void**>(control.Out()));
    std::printf("created %s: 0x%08X\n", StringFromGuid(clsid).c_str(), static_cast<unsigned>(hr));
    return SUCCEEDED(hr) && Put(control.Get(), "TabSize", Variant::Long(4)) ? 0 : 1;
}

}  // namespace

int main(int argc, char** argv) {
    QApplication app(argc, argv);
    if (argc == 3 && std::strcmp(argv[1], "--store") == 0) return CreateThroughStore(argv[2]);
    const bool check = argc == 2 && std::strcmp(argv[1], "--check") == 0;

    ZentrelWidget view;
    view.setWindowTitle("Zentrel example");
    view.resize(640, 400);
    ComPtr<IDispatch> document;
    document.Attach(ZentrelCreateHtmlDocument());
    if (!Put(document.Get(), "Text", Variant::Str(kPage))) return 1;
    view.setDocument(document);
    view.setShowLineNumber(true);
    view.setTabSize(4);
    QObject::connect(&view, &ZentrelWidget::documentChanged, [](int action, int at, int count) {
        std::printf("changed %d at %d count %d\n", action, at, count);
    });
    view.show();
    if (!check) return app.exec();

    QTimer::singleShot(0, [&] {
        view.setSelection(16, 20);
        view.cut();
        const QPair<int, int> selection = view.getSelection();
        std::printf("lines %d tabSize %d showLineNumber %d selection %d-%d\n", view.lineCount(), view.tabSize(),
                    int(view.showLineNumber()), selection.first, selection.second);
        app.exit(view.lastError().IsError() ? 1 : 0);
    });
    return app.exec();
}
