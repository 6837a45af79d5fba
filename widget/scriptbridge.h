// The JavaScript bridge: any IDispatch object, reached from QJSEngine by name. It knows nothing
// of the objects it wraps; it asks each for its type description (IDispatch::GetTypeInfo, and
// IProvideClassInfo for events) and, where none is given, finds out by trying.
//
// What a script sees of a wrapped object `obj`:
//   obj.Name                 reads a property (a property without index parameters).
//   obj.Name = v             writes it; the object checks and converts the value.
//   obj.Method(a, b)         calls a method. Only the in-parameters are passed; a method with
//                            by-reference parameters answers an object that holds them by their
//                            parameter names, plus `result` when the method has a result:
//                            obj.GetSelection() gives {pnStart: 10, pnEnd: 5}.
//   obj.Indexed(i)           reads an indexed property (a property with index parameters).
//   obj.put("Indexed", i, v) writes one: the indices, then the value. put works for any
//                            property; plain assignment cannot carry an index.
//   obj.on("Event", f)       calls f for every firing of the event, with the event's arguments
//                            in order. A by-reference argument arrives as an object {value: v};
//                            what the handler leaves in `value` goes back to the firer:
//                            obj.on("KeyPress", k => { if (k.value === 9) k.value = 0; }).
//                            A handler that throws is reported to the bridge's error reporter;
//                            the firer carries on. An object with handlers stays alive while it
//                            has them, even when the script drops it.
//   obj.off("Event", f)      removes the handler (all of the event's handlers without f).
// Objects that members answer (obj.Document, obj.Selection.Text) are wrapped in turn, and a
// wrapped object passed as an argument travels as its IDispatch. Names follow automation and
// are compared without regard to case; a name the object does not know throws. The lower-case
// names on, off and put are the bridge's, never the object's.
//
// A failed call throws an Error with `number` (380, 381, 383 for control errors, 0 for a raised
// text, the HRESULT otherwise), `scode`, `description` and `message`, at the script's line.
//
// Without a type description the bridge reads a name as a property and, where the object
// refuses that, answers a function that calls it; an object that lets a method without
// parameters be read as a property runs it on the read. By-reference parameters are then
// unknown, so out arguments need a type description.
#pragma once
#include <QJSValue>
#include <QObject>
#include <functional>
#include <unordered_set>

#include "platform/com/dispatch.h"

class QJSEngine;
class CDispatchHost;

class CScriptBridge : public QObject {
    Q_OBJECT
public:
    // Called with the error a handler threw and the name of its event.
    using ErrorReporter = std::function<void(const QJSValue& error, const QString& event)>;

    explicit CScriptBridge(QJSEngine* engine);
    // Lets go of every wrapped object (releases, unadvises) even while the engine keeps the
    // JavaScript wrappers; a wrapper used afterwards throws.
    ~CScriptBridge() override;

    // The script's face of `object` (null gives JavaScript's null). Holds a reference.
    QJSValue Wrap(IDispatch* object);
    void SetErrorReporter(ErrorReporter reporter) { m_reporter = std::move(reporter); }

    // For the bridge's own objects.
    QJSEngine& Engine() const { return *m_pEngine; }
    const QJSValue& CallableMarker() const { return m_callable; }
    void Throw(QJSValue error);
    void ThrowFailure(HRESULT hr, const ExcepInfo& excep, const QString& member);
    void ThrowTypeError(const QString& message);
    void ReportHandlerError(const QJSValue& error, const QString& event);
    // A JavaScript value as an argument: as VariantFromScriptValue, and wrapped objects as their
    // IDispatch. False, with a TypeError thrown, for a value that has none.
    bool ArgumentFromScript(const QJSValue& value, Variant* out);
    QJSValue ScriptFromResult(const Variant& value);
    void Register(CDispatchHost* host) { m_hosts.insert(host); }
    void Unregister(CDispatchHost* host) { m_hosts.erase(host); }

private:
    QJSEngine* m_pEngine;
    QJSValue m_wrap;      // the prelude's function that makes the proxy of a host
    QJSValue m_callable;  // what a host's read answers for a name that is to be called
    std::unordered_set<CDispatchHost*> m_hosts;
    ErrorReporter m_reporter;
};
