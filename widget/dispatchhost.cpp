#include "widget/dispatchhost.h"

#include <QJSEngine>

#include "platform/com/automation.h"
#include "platform/com/unknown.h"
#include "widget/scriptbridge.h"
#include "widget/scriptvalues.h"

namespace {

bool IsPlainProperty(const CMemberInfo& m) { return m.kind == MemberKind::Property && m.params.empty(); }

}  // namespace

CDispatchHost::CDispatchHost(CScriptBridge* bridge, IDispatch* object)
    : m_pBridge(bridge), m_pObject(object), m_pInfo(object->GetTypeInfo()) {
    bridge->Register(this);
}

CDispatchHost::~CDispatchHost() {
    Detach();
    if (m_pBridge) m_pBridge->Unregister(this);
}

void CDispatchHost::Detach() {
    Unadvise();
    m_handlers.clear();
    m_pEvents = nullptr;
    m_pObject = nullptr;
    m_pInfo = nullptr;
    m_bindings.clear();
}

bool CDispatchHost::Usable() {
    if (m_pObject && m_pBridge) return true;
    if (m_pBridge) m_pBridge->ThrowTypeError("The object has been released");
    return false;
}

bool CDispatchHost::Lookup(const QString& name, Binding* out, bool quiet) {
    if (auto it = m_bindings.constFind(name); it != m_bindings.constEnd()) {
        *out = *it;
        return true;
    }
    const std::string text = name.toStdString();
    Binding b;
    if (m_pInfo) b.member = m_pInfo->FindName(text);
    if (b.member) {
        b.id = b.member->id;
    } else if (HRESULT hr = m_pObject->GetIDsOfNames(text, &b.id); FAILED(hr)) {
        if (!quiet) m_pBridge->ThrowFailure(hr, {}, name);
        return false;
    }
    m_bindings.insert(name, b);
    *out = b;
    return true;
}

bool CDispatchHost::Invoke(const QString& name, DISPID id, WORD flags, std::vector<Variant>& args, Variant* result) {
    ExcepInfo excep;
    const HRESULT hr = m_pObject->Invoke(id, flags, args, result, &excep);
    if (SUCCEEDED(hr)) return true;
    m_pBridge->ThrowFailure(hr, excep, name);
    return false;
}

bool CDispatchHost::ArgumentsFromScript(const QJSValue& args, std::vector<Variant>* out) {
    const int n = args.property("length").toInt();
    out->resize(static_cast<size_t>(n));
    for (int i = 0; i < n; ++i) {
        if (!m_pBridge->ArgumentFromScript(args.property(static_cast<quint32>(i)), &(*out)[static_cast<size_t>(i)])) return false;
    }
    return true;
}

QJSValue CDispatchHost::read(const QString& name) {
    Binding b;
    if (!Usable() || !Lookup(name, &b)) return {};
    if (b.member && !IsPlainProperty(*b.member)) return m_pBridge->CallableMarker();
    std::vector<Variant> none;
    Variant result;
    if (b.member) return Invoke(name, b.id, DISPATCH_PROPERTYGET, none, &result) ? m_pBridge->ScriptFromResult(result) : QJSValue();
    // Without a description: a property if the object lets it be read so, else something to call.
    ExcepInfo excep;
    const HRESULT hr = m_pObject->Invoke(b.id, DISPATCH_PROPERTYGET, none, &result, &excep);
    if (hr == DISP_E_MEMBERNOTFOUND || hr == DISP_E_BADPARAMCOUNT) return m_pBridge->CallableMarker();
    if (FAILED(hr)) {
        m_pBridge->ThrowFailure(hr, excep, name);
        return {};
    }
    return m_pBridge->ScriptFromResult(result);
}

bool CDispatchHost::has(const QString& name) {
    Binding b;
    return m_pObject && Lookup(name, &b, true);
}

void CDispatchHost::write(const QString& name, const QJSValue& value) {
    Binding b;
    std::vector<Variant> args(1);
    if (!Usable() || !Lookup(name, &b) || !m_pBridge->ArgumentFromScript(value, &args[0])) return;
    Invoke(name, b.id, DISPATCH_PROPERTYPUT, args, nullptr);
}

void CDispatchHost::put(const QString& name, const QJSValue& args) {
    Binding b;
    std::vector<Variant> values;
    if (!Usable() || !Lookup(name, &b) || !ArgumentsFromScript(args, &values)) return;
    Invoke(name, b.id, DISPATCH_PROPERTYPUT, values, nullptr);
}

QJSValue CDispatchHost::call(const QString& name, const QJSValue& args) {
    Binding b;
    std::vector<Variant> in;
    if (!Usable() || !Lookup(name, &b) || !ArgumentsFromScript(args, &in)) return {};
    if (b.member) return CallDeclared(name, b, std::move(in));
    Variant result;
    return Invoke(name, b.id, DISPATCH_METHOD | DISPATCH_PROPERTYGET, in, &result) ? m_pBridge->ScriptFromResult(result) : QJSValue();
}

// A call by the member's declaration: the script gives the in-parameters; the by-reference ones
// get storage here and come back, with the result, in one object.
QJSValue CDispatchHost::CallDeclared(const QString& name, const Binding& b, std::vector<Variant> in) {
    const CMemberInfo& m = *b.member;
    const WORD flags = m.kind == MemberKind::Method ? DISPATCH_METHOD : DISPATCH_PROPERTYGET;
    Variant result;
    if (m.OutParamCount() == 0)
        return Invoke(name, b.id, flags, in, &result) ? m_pBridge->ScriptFromResult(result) : QJSValue();
    CDeclaredCall call(m, std::move(in));
    if (!Invoke(name, b.id, flags, call.Args(), &result)) return {};
    QJSValue answer = m_pBridge->Engine().newObject();
    if (m.result.type != AutoType::Void) answer.setProperty("result", m_pBridge->ScriptFromResult(result));
    const std::vector<Variant> outs = call.OutValues();
    size_t k = 0;
    for (const CParamInfo& p : m.params) {
        if (p.byRef) answer.setProperty(QString::fromStdString(p.name), ScriptValueFromVariant(outs[k++]));
    }
    return answer;
}

bool CDispatchHost::EventIdOf(const QString& event, DISPID* out) {
    bool isNumber = false;
    *out = event.toInt(&isNumber);
    if (isNumber) return true;
    auto provider = QueryAs<IProvideClassInfo>(m_pObject.Get(), IID_IProvideClassInfo);
    const CClassInfo* info = provider ? provider->GetClassInfo() : nullptr;
    const CMemberInfo* member = info && info->events ? info->events->FindName(event.toStdString()) : nullptr;
    if (member) {
        *out = member->id;
        return true;
    }
    m_pBridge->ThrowFailure(DISP_E_UNKNOWNNAME, {}, event);
    return false;
}

bool CDispatchHost::Advise() {
    if (m_pSink) return true;
    m_pEvents = QueryAs<IConnectionPointContainer>(m_pObject.Get(), IID_IConnectionPointContainer);
    if (!m_pEvents) {
        m_pBridge->ThrowTypeError(describe() + " fires no events");
        return false;
    }
    ComPtr<CEventSink> sink = CEventSink::Create([this](DISPID id, std::vector<Variant>& args) { FireHandlers(id, args); });
    if (HRESULT hr = m_pEvents->Advise(sink.Get(), &m_dwCookie); FAILED(hr)) {
        m_pBridge->ThrowFailure(hr, {}, "on");
        return false;
    }
    m_pSink = std::move(sink);
    return true;
}

void CDispatchHost::Unadvise() {
    if (!m_pSink) return;
    if (m_pEvents) m_pEvents->Unadvise(m_dwCookie);
    m_pSink->Disconnect();
    m_pSink = nullptr;
    m_dwCookie = 0;
}

void CDispatchHost::on(const QString& event, const QJSValue& handler) {
    DISPID id;
    if (!Usable() || !EventIdOf(event, &id)) return;
    if (!handler.isCallable()) {
        m_pBridge->ThrowTypeError(QString("The handler of %1 is not a function").arg(event));
        return;
    }
    if (!Advise()) return;
    Handlers& h = m_handlers[id];
    h.event = event;
    h.functions.append(handler);
    // Handlers keep their object alive, even when the script holds it no more.
    QJSEngine::setObjectOwnership(this, QJSEngine::CppOwnership);
}

void CDispatchHost::off(const QString& event, const QJSValue& handler) {
    DISPID id;
    if (!Usable() || !EventIdOf(event, &id)) return;
    if (auto it = m_handlers.find(id); it != m_handlers.end()) {
        if (handler.isUndefined()) it->functions.clear();
        else it->functions.removeIf([&](const QJSValue& f) { return f.strictlyEquals(handler); });
        if (it->functions.isEmpty()) m_handlers.erase(it);
    }
    if (m_handlers.isEmpty()) {
        Unadvise();
        QJSEngine::setObjectOwnership(this, QJSEngine::JavaScriptOwnership);
    }
}

void CDispatchHost::FireHandlers(DISPID id, std::vector<Variant>& args) {
    auto it = m_handlers.constFind(id);
    if (it == m_handlers.constEnd() || !m_pBridge) return;
    const Handlers handlers = *it;  // a handler may add or remove handlers
    QJSEngine& engine = m_pBridge->Engine();
    QJSValueList values;
    for (const Variant& arg : args) {
        QJSValue value = m_pBridge->ScriptFromResult(arg.Dereferenced());
        if (arg.IsByRef()) {
            QJSValue box = engine.newObject();
            box.setProperty("value", value);
            value = box;
        }
        values.append(value);
    }
    for (const QJSValue& f : handlers.functions) {
        QJSValue answer = QJSValue(f).call(values);
        if (answer.isError()) m_pBridge->ReportHandlerError(answer, handlers.event);
    }
    for (size_t i = 0; i < args.size(); ++i) {
        if (!args[i].IsByRef()) continue;
        const QJSValue value = values[static_cast<qsizetype>(i)].property("value");
        Variant v;
        if (!VariantFromScriptValue(value, &v) || !args[i].SetByRef(v)) {
            m_pBridge->ReportHandlerError(engine.newErrorObject(QJSValue::TypeError,
                QString("%1: argument %2 cannot take %3").arg(handlers.event).arg(i + 1).arg(value.toString())), handlers.event);
        }
    }
}

QString CDispatchHost::describe() const {
    return QString("[object %1]").arg(m_pInfo ? QString::fromStdString(m_pInfo->Name()) : QString("IDispatch"));
}
