// The widget's meta-object against the control's type description: every member of the table
// has its Qt property, invokable, slot or signal with the Qt types of its automation types.
#include <gtest/gtest.h>

#include <QMetaMethod>
#include <QMetaProperty>
#include <set>

#include "src/view/zentrelctrl.h"
#include "widget/zentrelwidget.h"

namespace {

// "name(type,type)" of the given parameters, those passed by reference left out when `inOnly`.
QByteArray Signature(const QByteArray& name, const std::vector<CParamInfo>& params, bool inOnly,
                     const QByteArray& extra = {}) {
    QByteArrayList types;
    for (const CParamInfo& p : params) {
        if (!(inOnly && p.byRef)) types << QtParamTypeName(p);
    }
    if (!extra.isEmpty()) types << extra;
    return name + '(' + types.join(',') + ')';
}

// The method of the widget with this signature and kind; null when there is none.
std::optional<QMetaMethod> Find(const QByteArray& signature, QMetaMethod::MethodType kind) {
    const QMetaObject& mo = ZentrelWidget::staticMetaObject;
    const int index = mo.indexOfMethod(QMetaObject::normalizedSignature(signature.constData()));
    if (index < mo.methodOffset() || mo.method(index).methodType() != kind) return std::nullopt;
    return mo.method(index);
}

class WidgetTable : public ::testing::Test {
protected:
    WidgetTable() : ctrl(CreateZentrelCtrl()) {}
    ~WidgetTable() override { ctrl->Release(); }

    const CInterfaceInfo& Dispatch() const { return *ctrl->GetTypeInfo(); }
    const CInterfaceInfo& Events() const { return *ctrl->GetClassInfo()->events; }

    CZentrelCtrl* ctrl;
};

TEST_F(WidgetTable, EveryPropertyIsAQtPropertyOrAnIndexedAccessor) {
    const QMetaObject& mo = ZentrelWidget::staticMetaObject;
    for (const CMemberInfo& m : Dispatch().Members()) {
        if (m.kind != MemberKind::Property) continue;
        SCOPED_TRACE(m.name);
        const QByteArray name = QtMemberName(m.name);
        if (m.params.empty()) {
            const int index = mo.indexOfProperty(name);
            ASSERT_GE(index, 0);
            EXPECT_EQ(QByteArray(mo.property(index).typeName()), QtTypeName(m.result.type));
            EXPECT_EQ(mo.property(index).isWritable(), m.writable);
            continue;
        }
        const auto getter = Find(Signature(name, m.params, false), QMetaMethod::Method);
        ASSERT_TRUE(getter);
        EXPECT_EQ(QByteArray(getter->typeName()), QtTypeName(m.result.type));
        const QByteArray setter = "set" + QByteArray::fromStdString(m.name);
        EXPECT_EQ(Find(Signature(setter, m.params, false, QtTypeName(m.result.type)), QMetaMethod::Method).has_value(), m.writable);
    }
}

TEST_F(WidgetTable, EveryMethodIsASlotAnsweringItsOutValues) {
    const std::set<QByteArray> outResults = {"QPoint", "std::pair<int,int>", "QVariant"};
    for (const CMemberInfo& m : Dispatch().Members()) {
        if (m.kind != MemberKind::Method) continue;
        SCOPED_TRACE(m.name);
        const auto slot = Find(Signature(QtMemberName(m.name), m.params, true), QMetaMethod::Slot);
        ASSERT_TRUE(slot);
        const QByteArray result = slot->typeName();
        if (m.OutParamCount() > 0) EXPECT_TRUE(outResults.count(result)) << result.constData();
        else EXPECT_EQ(result, QtTypeName(m.result.type));
    }
}

TEST_F(WidgetTable, EveryEventIsASignalWithPointersForItsByReferenceArguments) {
    EXPECT_EQ(Events().Members().size(), 27u);
    for (const CMemberInfo& e : Events().Members()) {
        SCOPED_TRACE(e.name);
        EXPECT_TRUE(Find(Signature(QtMemberName(e.name), e.params, false), QMetaMethod::Signal));
    }
}

}  // namespace
