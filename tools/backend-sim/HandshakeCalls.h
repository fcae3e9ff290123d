#pragma once

#include "Exchange.h"
#include "SessionRegistry.h"

namespace Velmora::BackendSim {

// GET "session" hands out a session text; POST "session" takes {"session", "hash"} and answers
// {"authenticated": true|false}. A wrong hash is a verdict, not an error: the client then waits
// for its next retransmission tick. A body that is not such an object is refused with 400.
class HandshakeCalls {
public:
    explicit HandshakeCalls(SessionRegistry& sessions);
    void addRoutes(Router& router);

private:
    void openSession(Exchange& exchange);
    void verifySession(Exchange& exchange);
    void expireSessions(Exchange& exchange);

    SessionRegistry& m_sessions;
};

} // namespace Velmora::BackendSim
