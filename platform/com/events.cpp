#include "platform/com/events.h"

DWORD CConnectionPoint::Advise(IDispatch* sink) {
    if (!sink) return 0;
    m_sinks.push_back({m_nextCookie, ComPtr<IDispatch>(sink)});
    return m_nextCookie++;
}

HRESULT CConnectionPoint::Unadvise(DWORD cookie) {
    for (auto it = m_sinks.begin(); it != m_sinks.end(); ++it) {
        if (it->cookie == cookie) {
            m_sinks.erase(it);
            return S_OK;
        }
    }
    return CONNECT_E_NOCONNECTION;
}

void CConnectionPoint::UnadviseAll() { m_sinks.clear(); }

void CConnectionPoint::Fire(DISPID dispid, std::vector<Variant>& args) {
    // The copy holds a reference to each sink for the whole round.
    std::vector<Connection> round = m_sinks;
    for (const Connection& c : round) {
        Variant result;
        ExcepInfo excep;
        c.sink->Invoke(dispid, DISPATCH_METHOD, args, &result, &excep);
    }
}
