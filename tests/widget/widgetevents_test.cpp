// The widget's signals carry the control's events, and what a directly connected slot writes
// through a by-reference argument is what the control reads back.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QKeyEvent>

#include "htmldoc/htmldocument.h"
#include "src/view/zentrelctrl.h"
#include "widget/zentrelwidget.h"

namespace {

class WidgetEvents : public ::testing::Test {
protected:
    WidgetEvents() {
        widget.resize(300, 200);
        widget.show();
        doc->SetText("abc");
        widget.setDocument(static_cast<IDispatch*>(doc.Get()));
    }

    void Type(Qt::Key key, const QString& text) {
        QWidget* view = widget.focusProxy();
        QKeyEvent press(QEvent::KeyPress, key, Qt::NoModifier, text);
        QCoreApplication::sendEvent(view, &press);
        QKeyEvent release(QEvent::KeyRelease, key, Qt::NoModifier, text);
        QCoreApplication::sendEvent(view, &release);
    }

    ComPtr<CHtmlDocument> doc = CreateHtmlDocument();
    ZentrelWidget widget;
};

TEST_F(WidgetEvents, WindowInputArrivesAsSignals) {
    QStringList seen;
    QObject::connect(&widget, &ZentrelWidget::keyDown, [&](int* keyCode, int shift) { seen << QString("down %1 %2").arg(*keyCode).arg(shift); });
    QObject::connect(&widget, &ZentrelWidget::documentChanged, [&](int action, int at, int count) { seen << QString("changed %1 %2 %3").arg(action).arg(at).arg(count); });
    widget.setSelection(3, 3);
    Type(Qt::Key_X, "x");
    EXPECT_EQ(doc->GetText(), "abcx");
    EXPECT_TRUE(seen.contains("down 88 0")) << seen.join(", ").toStdString();
    EXPECT_EQ(seen.filter("changed"), QStringList({"changed 5 3 1"}));
}

// What slots write through the pointers of a signal is what the firer reads after the event.
TEST_F(WidgetEvents, SlotsAnswerThroughByReferenceArguments) {
    QObject::connect(&widget, &ZentrelWidget::keyPress, [](int* keyAscii) { *keyAscii = *keyAscii == 'x' ? 'Y' : 0; });
    QObject::connect(&widget, &ZentrelWidget::requestColor, [](bool* dispatched, QColor* color, bool* accepted) {
        *dispatched = true;
        *color = QColor(1, 2, *color == QColor(0x10, 0x20, 0x30) ? 3 : 4);
        *accepted = true;
    });
    QObject::connect(&widget, &ZentrelWidget::error, [](int, QString* text, int, const QString& source, const QString&, int, bool* cancel) {
        *text = source + ": " + *text;
        *cancel = true;
    });
    auto* ctrl = static_cast<CZentrelCtrl*>(widget.dispatch());
    int16_t ascii = 'x';
    ctrl->FireEvent(DISPID_KEYPRESS, {Variant::RefShort(&ascii)});
    EXPECT_EQ(ascii, 'Y');
    VARIANT_BOOL dispatched = VARIANT_FALSE, accepted = VARIANT_FALSE;
    OLE_COLOR color = 0x302010;
    ctrl->FireEvent(EVENT_REQUESTCOLOR, {Variant::RefBool(&dispatched), Variant::RefColor(&color), Variant::RefBool(&accepted)});
    EXPECT_EQ(color, 0x030201u);
    EXPECT_TRUE(dispatched && accepted);
    std::string text = "broken";
    VARIANT_BOOL cancel = VARIANT_FALSE;
    ctrl->FireEvent(DISPID_ERROREVENT, {Variant::Short(1), Variant::RefStr(&text), Variant::Long(0), Variant::Str("here"),
                                        Variant::Str(""), Variant::Long(0), Variant::RefBool(&cancel)});
    EXPECT_EQ(text, "here: broken");
    EXPECT_TRUE(cancel);
}

// The walks check the errors through lastError(); hosts that listen hear them as a signal.
TEST_F(WidgetEvents, ErrorsAreSignalled) {
    QList<int> numbers;
    QObject::connect(&widget, &ZentrelWidget::automationError, [&](int number, const QString&) { numbers << number; });
    widget.setTabSize(0);
    widget.setTabSize(4);
    EXPECT_EQ(numbers, QList<int>({380}));
}

}  // namespace
