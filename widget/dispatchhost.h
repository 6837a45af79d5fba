// One wrapped IDispatch object as the script bridge's JavaScript proxy calls it. The proxy
// (made in scriptbridge.cpp) turns property reads, writes and calls into these invokables; they
// throw JavaScript errors through the bridge when the object refuses.
#pragma once
#include <QHash>
#include <QJSValue>
#include <QList>
#include <QObject>
#include <QPointer>
#include <vector>

#include "platform/com/dispatch.h"
#include "platform/com/events.h"
#include "platform/com/typeinfo.h"

class CScriptBridge;

class CDispatchHost : public QObject {
    Q_OBJECT
public:
    CDispatchHost(CScriptBridge* bridge, IDispatch* object);
    ~CDispatchHost() override;

    IDispatch* Dispatch() const { return m_pObject.Get(); }
    // Unadvises and releases the object; calls afterwards throw.
    void Detach();
    // Runs the handlers of one firing; by-reference arguments take back what they leave.
    void FireHandlers(DISPID id, std::vector<Variant>& args);

    // The value of a property, or the bridge's callable marker for a method or an indexed property.
    Q_INVOKABLE QJSValue read(const QString& name);
    Q_INVOKABLE bool has(const QString& name);
    Q_INVOKABLE void write(const QString& name, const QJSValue& value);
    // `args` is an array; proxies in it are already hosts.
    Q_INVOKABLE QJSValue call(const QString& name, const QJSValue& args);
    Q_INVOKABLE void put(const QString& name, const QJSValue& args);
    Q_INVOKABLE void on(const QString& event, const QJSValue& handler);
    Q_INVOKABLE void off(const QString& event, const QJSValue& handler);
    Q_INVOKABLE QString describe() const;

private:
    struct Binding {
        DISPID id = DISPID_UNKNOWN;
        const CMemberInfo* member = nullptr;  // null without a type description
    };
    struct Handlers {
        QString event;
        QList<QJSValue> functions;
    };

    bool Usable();
    bool Lookup(const QString& name, Binding* out, bool quiet = false);
    bool ArgumentsFromScript(const QJSValue& args, std::vector<Variant>* out);
    bool Invoke(const QString& name, DISPID id, WORD flags, std::vector<Variant>& args, Variant* result);
    QJSValue CallDeclared(const QString& name, const Binding& b, std::vector<Variant> in);
    bool EventIdOf(const QString& event, DISPID* out);
    bool Advise();
    void Unadvise();

    QPointer<CScriptBridge> m_pBridge;
    ComPtr<IDispatch> m_pObject;
    const CInterfaceInfo* m_pInfo = nullptr;
    QHash<QString, Binding> m_bindings;  // by the name as the script wrote it
    QHash<DISPID, Handlers> m_handlers;
    ComPtr<IConnectionPointContainer> m_pEvents;
    ComPtr<CEventSink> m_pSink;  // while advised
    DWORD m_dwCookie = 0;
};
