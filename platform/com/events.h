// Outgoing events: a host advises an IDispatch sink and receives every event as
// Invoke(dispid, DISPATCH_METHOD, args). By-reference arguments are readable by the firer
// after the call, so a sink can answer through them.
#pragma once
#include <functional>
#include <vector>

#include "platform/com/dispatch.h"
#include "platform/com/unknown.h"

class CConnectionPoint {
public:
    CConnectionPoint() = default;
    CConnectionPoint(const CConnectionPoint&) = delete;
    CConnectionPoint& operator=(const CConnectionPoint&) = delete;

    // Gives a cookie above 0; 0 for a null sink.
    DWORD Advise(IDispatch* sink);
    // FALSE (CONNECT_E_NOCONNECTION) for an unknown cookie.
    HRESULT Unadvise(DWORD cookie);
    void UnadviseAll();
    size_t SinkCount() const { return m_sinks.size(); }

    // Calls every sink advised at the time of the call, in the order of advice. A sink that
    // unadvises itself or another during the call does not disturb the others.
    void Fire(DISPID dispid, std::vector<Variant>& args);

private:
    struct Connection {
        DWORD cookie;
        ComPtr<IDispatch> sink;
    };
    std::vector<Connection> m_sinks;
    DWORD m_nextCookie = 1;
};

// The host's side of events: a counted sink that hands every event to a function. Its owner
// calls Disconnect when it goes, so that a firing still under way hears nothing more.
class CEventSink final : public CUnknownImpl<IDispatch, IID_IDispatch> {
public:
    using Handler = std::function<void(DISPID id, std::vector<Variant>& args)>;

    static ComPtr<CEventSink> Create(Handler handler) { return ComPtr<CEventSink>(new CEventSink(std::move(handler))); }
    void Disconnect() { m_handler = nullptr; }

    HRESULT GetIDsOfNames(const std::string&, DISPID* pDispId) override {
        if (pDispId) *pDispId = DISPID_UNKNOWN;
        return DISP_E_UNKNOWNNAME;
    }
    HRESULT Invoke(DISPID id, WORD, std::vector<Variant>& args, Variant*, ExcepInfo*) override {
        if (m_handler) m_handler(id, args);
        return S_OK;
    }

private:
    explicit CEventSink(Handler handler) : m_handler(std::move(handler)) {}
    Handler m_handler;
};
