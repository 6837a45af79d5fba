// Outgoing events: a host advises an IDispatch sink and receives every event as
// Invoke(dispid, DISPATCH_METHOD, args). By-reference arguments are readable by the firer
// after the call, so a sink can answer through them.
#pragma once
#include <vector>

#include "platform/com/dispatch.h"

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
