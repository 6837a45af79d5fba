#include "widget/scriptbridge.h"

#include <QJSEngine>

#include "widget/dispatchhost.h"
#include "widget/scriptvalues.h"

namespace {

// The name the prelude is evaluated under; frames in it are hidden from the script's errors.
const QString kPreludeFile = QStringLiteral("zentrel-scriptbridge.js");

// Makes the proxy of a host. Reads, writes and calls by name go to the host; the helpers on,
// off, put and toString are the bridge's own; names that JavaScript itself probes objects for
// (then, toJSON, valueOf...) read as undefined unless the object has them, so that printing an
// object or awaiting it does not throw. Proxies passed back as arguments travel as their hosts.
const char* const kPrelude = R"JS(
(function () {
    "use strict";
    const hostKey = Symbol("dispatch host");
    const callable = Object.freeze({});
    // Names with a meaning of their own: the helpers (made per object), and the names JavaScript
    // probes objects for (null).
    const specials = new Map([
        ["on", host => (name, f) => host.on(String(name), f)],
        ["off", host => (name, f) => host.off(String(name), f)],
        ["put", host => (name, ...args) => host.put(String(name), args.map(unwrap))],
        ["toString", host => () => host.describe()],
        ["then", null], ["toJSON", null], ["valueOf", null], ["constructor", null], ["inspect", null],
    ]);
    function unwrap(v) {
        return (v !== null && typeof v === "object" && v[hostKey]) || v;
    }
    function wrap(host) {
        const functions = new Map();  // made once per name
        const memo = (name, make) => {
            let f = functions.get(name);
            if (!f) functions.set(name, f = make());
            return f;
        };
        return new Proxy({}, {
            get(target, key) {
                if (key === hostKey) return host;
                if (typeof key !== "string") return undefined;
                const special = specials.get(key);
                if (special) return memo(key, () => special(host));
                if (special === null && !host.has(key)) return undefined;
                const value = host.read(key);
                return value === callable ? memo(key, () => (...args) => host.call(key, args.map(unwrap))) : value;
            },
            set(target, key, value) {
                if (typeof key !== "string") return false;
                host.write(key, unwrap(value));
                return true;
            },
            has(target, key) {
                return typeof key === "string" && (Boolean(specials.get(key)) || host.has(key));
            },
        });
    }
    return { wrap, callable };
})()
)JS";

}  // namespace

CScriptBridge::CScriptBridge(QJSEngine* engine) : m_pEngine(engine) {
    const QJSValue prelude = engine->evaluate(QString::fromUtf8(kPrelude), kPreludeFile);
    m_wrap = prelude.property("wrap");
    m_callable = prelude.property("callable");
}

CScriptBridge::~CScriptBridge() {
    // Hosts with handlers belong to the bridge (see CDispatchHost::on); the others to the engine.
    const auto hosts = m_hosts;
    for (CDispatchHost* host : hosts) {
        host->Detach();
        if (QJSEngine::objectOwnership(host) == QJSEngine::CppOwnership) delete host;
    }
}

QJSValue CScriptBridge::Wrap(IDispatch* object) {
    if (!object) return QJSValue(QJSValue::NullValue);
    auto* host = new CDispatchHost(this, object);
    return m_wrap.call({m_pEngine->newQObject(host)});
}

void CScriptBridge::Throw(QJSValue error) {
    PlaceErrorAtCaller(error, kPreludeFile);
    m_pEngine->throwError(error);
}

void CScriptBridge::ThrowFailure(HRESULT hr, const ExcepInfo& excep, const QString& member) {
    Throw(AutomationErrorObject(*m_pEngine, hr, excep, member));
}

void CScriptBridge::ThrowTypeError(const QString& message) {
    Throw(m_pEngine->newErrorObject(QJSValue::TypeError, message));
}

void CScriptBridge::ReportHandlerError(const QJSValue& error, const QString& event) {
    if (m_reporter) m_reporter(error, event);
}

bool CScriptBridge::ArgumentFromScript(const QJSValue& value, Variant* out) {
    if (auto* host = qobject_cast<CDispatchHost*>(value.toQObject())) {
        *out = Variant::Dispatch(host->Dispatch());
        return true;
    }
    if (!value.isQObject() && VariantFromScriptValue(value, out)) return true;
    ThrowTypeError(QString("%1 cannot be passed to an automation object").arg(value.toString()));
    return false;
}

QJSValue CScriptBridge::ScriptFromResult(const Variant& value) {
    IDispatch* object = nullptr;
    if (value.Type() == VT_DISPATCH && value.ToDispatch(&object)) return Wrap(object);
    if (value.Type() == VT_UNKNOWN) {
        IUnknown* unknown = value.UnknownVal();
        if (!unknown) return QJSValue(QJSValue::NullValue);
        return Wrap(QueryAs<IDispatch>(unknown, IID_IDispatch).Get());
    }
    return ScriptValueFromVariant(value);
}
