// The automation walks played through the widget's Qt face: properties by their Qt names,
// indexed properties, setters and methods through the meta-object, errors from lastError().
// Steps that only a late-bound caller can make (wrong types or counts, unknown names) are
// skipped; so are values that a Qt type cannot carry (a colour that is no colour).
#include <gtest/gtest.h>

#include <QMetaMethod>
#include <QMetaProperty>
#include <array>

#include "htmldoc/htmldocument.h"
#include "tests/automation/walkfile.h"
#include "widget/zentrelwidget.h"

namespace {

// A walk's value as the Qt value of an automation type; nothing when no Qt value stands for it.
std::optional<QVariant> ToQt(const walk::Value& v, AutoType type) {
    using Kind = walk::Value::Kind;
    switch (v.kind) {
        case Kind::Null:
            if (type == AutoType::Font) return QVariant::fromValue(QFont());
            return QVariant::fromValue(ComPtr<IDispatch>());
        case Kind::String: return QVariant(QString::fromStdString(v.text));
        case Kind::Bool: return QVariant(v.flag);
        case Kind::Any: return std::nullopt;
        case Kind::Integer: break;
    }
    if (type != AutoType::Color) return QVariant(static_cast<int>(v.integer));
    const auto color = static_cast<OLE_COLOR>(v.integer);
    if ((color >> 24) != 0 && (color >> 24) != 0x80) return std::nullopt;
    return QVariant(QtColorFromOle(color));
}

// A Qt value as a walk writes it, for comparison with an expectation.
walk::Value FromQt(const QVariant& q) {
    walk::Value v;
    switch (q.metaType().id()) {
        case QMetaType::Bool: v.kind = walk::Value::Kind::Bool; v.flag = q.toBool(); return v;
        case QMetaType::QString: v.kind = walk::Value::Kind::String; v.text = q.toString().toStdString(); return v;
        case QMetaType::QColor: v.kind = walk::Value::Kind::Integer; v.integer = OleColorFromQt(q.value<QColor>()); return v;
        case QMetaType::QFont:
            if (q.value<QFont>() == QFont()) return v;
            v.kind = walk::Value::Kind::String;
            v.text = q.value<QFont>().family().toStdString();
            return v;
        default: break;
    }
    if (q.metaType() == QMetaType::fromType<ComPtr<IDispatch>>()) {
        if (q.value<ComPtr<IDispatch>>()) v.kind = walk::Value::Kind::String, v.text = "<object>";
        return v;
    }
    v.kind = walk::Value::Kind::Integer;
    v.integer = q.toLongLong();
    return v;
}

// What a step gave through the Qt face.
struct Answer {
    bool expressible = true;
    std::optional<QVariant> result;
    QVariantList outs;
};

class WidgetWalker {
public:
    WidgetWalker() { m_widget.resize(400, 300); }

    void Play(const walk::Step& step) {
        SCOPED_TRACE("line " + std::to_string(step.line) + ": " + step.source);
        using Verb = walk::Step::Verb;
        using Kind = walk::Expectation::Kind;
        if (step.verb == Verb::Document || step.verb == Verb::NoDocument) return SetDocument(step);
        const Kind kind = step.expect.kind;
        const CMemberInfo* member = m_widget.dispatch()->GetTypeInfo()->FindName(step.member);
        if (!member || kind == Kind::Mismatch || kind == Kind::BadCount || kind == Kind::Unknown || kind == Kind::NotFound) return;
        m_expect = step.expect;
        const Answer answer = step.verb == Verb::Get ? Get(*member, step.args)
                              : step.verb == Verb::Put ? Put(*member, step.args)
                                                      : Call(*member, step.args);
        if (answer.expressible) Check(*member, step.expect, answer);
    }

private:
    void SetDocument(const walk::Step& step) {
        m_doc = nullptr;
        if (step.verb == walk::Step::Verb::Document) {
            m_doc = CreateHtmlDocument();
            m_doc->SetText(step.args.at(0).text);
        }
        m_widget.setDocument(static_cast<IDispatch*>(m_doc.Get()));
    }

    // Calls the widget's invokable or slot `name` with the arguments converted to its types.
    Answer Invoke(const QByteArray& name, const std::vector<QVariant>& args) {
        const QMetaObject* mo = m_widget.metaObject();
        for (int i = mo->methodOffset(); i < mo->methodCount(); ++i) {
            const QMetaMethod method = mo->method(i);
            if (method.name() != name || method.parameterCount() != static_cast<int>(args.size())) continue;
            std::array<QVariant, 10> values;
            std::array<QGenericArgument, 10> generic;
            for (size_t a = 0; a < args.size(); ++a) {
                values[a] = args[a];
                if (!values[a].convert(method.parameterMetaType(static_cast<int>(a)))) return {false, {}, {}};
                generic[a] = QGenericArgument(values[a].metaType().name(), values[a].constData());
            }
            QVariant result(method.returnMetaType());
            QGenericReturnArgument ret(method.typeName(), result.data());
            EXPECT_TRUE(method.invoke(&m_widget, Qt::DirectConnection, result.isValid() ? ret : QGenericReturnArgument(),
                                      generic[0], generic[1], generic[2], generic[3], generic[4], generic[5],
                                      generic[6], generic[7], generic[8], generic[9]));
            return {true, result, {}};
        }
        ADD_FAILURE() << "no invokable " << name.constData() << " of " << args.size() << " arguments";
        return {false, {}, {}};
    }

    static std::optional<std::vector<QVariant>> Arguments(const std::vector<walk::Value>& values, const std::vector<CParamInfo>& params) {
        std::vector<QVariant> args;
        size_t p = 0;
        for (const walk::Value& v : values) {
            while (p < params.size() && params[p].byRef) ++p;
            const std::optional<QVariant> q = ToQt(v, p < params.size() ? params[p++].type : AutoType::Long);
            if (!q) return std::nullopt;
            args.push_back(*q);
        }
        return args;
    }

    Answer Get(const CMemberInfo& m, const std::vector<walk::Value>& index) {
        if (m.params.empty()) return {true, m_widget.property(QtMemberName(m.name)), {}};
        const auto args = Arguments(index, m.params);
        return args ? Invoke(QtMemberName(m.name), *args) : Answer{false, {}, {}};
    }

    Answer Put(const CMemberInfo& m, std::vector<walk::Value> args) {
        const std::optional<QVariant> value = ToQt(args.back(), m.result.type);
        args.pop_back();
        auto index = Arguments(args, m.params);
        if (!value || !index) return {false, {}, {}};
        // A read-only property has no setter in the Qt face: the write that the table refuses
        // with error 383 cannot be made.
        if (!m.writable) {
            EXPECT_EQ(m_expect.errorNumber, 383);
            if (m.params.empty()) {
                EXPECT_FALSE(m_widget.setProperty(QtMemberName(m.name), *value));
            }
            return {false, {}, {}};
        }
        if (!m.params.empty()) {
            index->push_back(*value);
            return Invoke("set" + QByteArray::fromStdString(m.name), *index);
        }
        EXPECT_TRUE(m_widget.setProperty(QtMemberName(m.name), *value));
        return {true, {}, {}};
    }

    // A method's answer, with its out values taken apart from the shape the widget gives them.
    Answer Call(const CMemberInfo& m, const std::vector<walk::Value>& in) {
        const auto args = Arguments(in, m.params);
        if (!args) return {false, {}, {}};
        Answer answer = Invoke(QtMemberName(m.name), *args);
        if (!answer.expressible || m.OutParamCount() == 0) return answer;
        QVariant shaped = *answer.result;
        if (shaped.metaType() == QMetaType::fromType<QVariant>()) shaped = shaped.value<QVariant>();
        answer.result.reset();
        if (m.result.type != AutoType::Void) {
            // A method with a result and out values answers a QVariant, null for FALSE, when
            // the out values stay as the caller gave them (zero).
            answer.result = QVariant(shaped.isValid());
            if (!shaped.isValid()) shaped = QVariant::fromValue(QPoint());
        }
        if (shaped.metaType().id() == QMetaType::QPoint) answer.outs = {shaped.toPoint().x(), shaped.toPoint().y()};
        else if (shaped.canConvert<std::pair<int, int>>()) {
            const auto pair = shaped.value<std::pair<int, int>>();
            answer.outs = {pair.first, pair.second};
        } else answer.outs = {shaped};
        answer.outs.resize(static_cast<qsizetype>(m.OutParamCount()));
        return answer;
    }

    // Whether an answer meets an expected value, taken in the form the Qt face answers it:
    // colours as the colour they draw.
    static void ExpectMatch(const walk::Value& expected, const QVariant& actual, AutoType type) {
        if (expected.kind == walk::Value::Kind::Any) return;
        const std::optional<QVariant> q = ToQt(expected, type);
        const walk::Value shown = q && type == AutoType::Color ? FromQt(*q) : expected;
        EXPECT_EQ(walk::Format(FromQt(actual)), walk::Format(shown));
    }

    void Check(const CMemberInfo& m, const walk::Expectation& expect, const Answer& answer) {
        using Kind = walk::Expectation::Kind;
        const ZentrelWidget::Error error = m_widget.lastError();
        if (expect.kind == Kind::Error) {
            EXPECT_EQ(error.number, expect.errorNumber);
            if (expect.errorText) {
                EXPECT_EQ(error.text.toStdString(), *expect.errorText);
            }
            return;
        }
        EXPECT_FALSE(error.IsError()) << error.number << " " << error.text.toStdString();
        if (expect.result && answer.result) ExpectMatch(*expect.result, *answer.result, m.result.type);
        if (expect.kind != Kind::Out) return;
        ASSERT_EQ(answer.outs.size(), static_cast<qsizetype>(expect.out.size()));
        for (size_t i = 0; i < expect.out.size(); ++i) ExpectMatch(expect.out[i], answer.outs[static_cast<qsizetype>(i)], AutoType::Long);
    }

    ZentrelWidget m_widget;
    ComPtr<CHtmlDocument> m_doc;
    walk::Expectation m_expect;  // of the step being played
};

TEST(WidgetWalk, EveryWalkGivesThroughTheQtFaceWhatItGivesThroughInvoke) {
    const std::vector<std::string> walks = walk::WalkNames();
    ASSERT_FALSE(walks.empty());
    for (const std::string& name : walks) {
        SCOPED_TRACE(name);
        std::string error;
        const auto steps = walk::Parse(walk::ReadWalk(name), &error);
        ASSERT_TRUE(steps) << error;
        WidgetWalker walker;
        for (const walk::Step& step : *steps) walker.Play(step);
    }
}

}  // namespace
