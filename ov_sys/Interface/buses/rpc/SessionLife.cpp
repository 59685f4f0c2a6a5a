// The life of a session that makes calls: its keep-alive thread and its close.
#include "ov_sys/Interface/buses/rpc/RPCKeepAlive.h"
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/foundation/HWIHelper.h"
#include "ov_sys/Interface/sessions/PhySession.h"

#include <sys/prctl.h>

namespace Orvane {
namespace {

// While it lives, the calling thread's sleeps may end up to 5 ms late: the kernel then wakes the threads of
// many idle sessions together, which costs a host with a thousand of them a third less.
class LooseTimers {
public:
    LooseTimers() { prctl(PR_SET_TIMERSLACK, kSlackNs, 0UL, 0UL, 0UL); }
    ~LooseTimers() { prctl(PR_SET_TIMERSLACK, kDefault, 0UL, 0UL, 0UL); }
    LooseTimers(const LooseTimers&) = delete;
    LooseTimers& operator=(const LooseTimers&) = delete;

private:
    static constexpr unsigned long kSlackNs = 5'000'000;
    static constexpr unsigned long kDefault = 0; // what the thread was created with
};

// The wait between two pings, false as soon as the thread is to end.
bool pauseBetweenPings(const PhySession& session) {
    constexpr int kStepMs = 200;
    constexpr int kSteps = 10;
    const LooseTimers loose;
    for (int step = 0; step < kSteps; ++step) {
        if (!session.keepAliveRunning)
            return false;
        HWIHelper::mSleep(kStepMs);
    }
    return session.keepAliveRunning;
}

bool endSession(PhySession& session) {
    session.setSessionState(PhySession::SESSION_INVALID);
    return false;
}

// One ping and what follows from it; false when the thread is to end.
bool pingOnce(PhySession& session, PhySession::PingFunction ping, int& failures) {
    constexpr int kMostFailures = 4;
    try {
        ping(session);
        failures = 0;
        if (session.getSessionState() == PhySession::SESSION_RETRAINED)
            session.setSessionState(PhySession::SESSION_VALID);
        return true;
    } catch (const Exceptions::InvalidSession&) {
        if (failures > kMostFailures) {
            Diagnostics::error("Exceed the number of attempts to recover session.");
            return endSession(session);
        }
        Diagnostics::error("Session validation failed. Next attempt...");
        ++failures;
        return true;
    } catch (const Exceptions::Standard& problem) {
        Diagnostics::error("Session ping exception: ", problem.what());
    } catch (...) {
        Diagnostics::error("Unknown pinging session error.");
    }
    return endSession(session);
}

} // namespace

PhySession::PingFunction PhySession::selectPingFunction(PhySession* session) {
    if (session->connection->getClient(BoardConnection::KEEPALIVE)->client != nullptr)
        return KeepAlive::RPC::ping;
    return Setup::RPC::ping;
}

void* PhySession::doKeepAlive(void* argument) {
    PhySession& session = *static_cast<PhySession*>(argument);
    const Diagnostics::BoardScope board(session.connection->name);
    const PingFunction ping = selectPingFunction(&session);
    int failures = 0;
    while (pauseBetweenPings(session)) {
        if (!session.isValid()) {
            Diagnostics::error("Keep alive: session was marked as INVALID.");
            break;
        }
        if (!pingOnce(session, ping, failures))
            break;
    }
    return nullptr;
}

void PhySession::startKeepAlive() {
    const std::lock_guard<std::mutex> lock(keepAliveMutex);
    if (keepAliveRunning)
        return;
    keepAliveRunning = true;
    keepAliveThread = create_thread(doKeepAlive, this);
    if (!is_thread_valid(keepAliveThread))
        Diagnostics::error("Keep alive cannot be started");
}

void PhySession::stopKeepAlive() {
    const std::lock_guard<std::mutex> lock(keepAliveMutex);
    if (!keepAliveRunning)
        return;
    keepAliveRunning = false;
    if (keepAliveThread.status == 0)
        thread_join(keepAliveThread);
}

void PhySession::close() {
    stopKeepAlive();
    try {
        Setup::closeConnection(*this);
    } catch (...) { // the session ends whatever the board says
    }
}

} // namespace Orvane
