// The life of a session that makes calls: its keep-alive thread and its close.
#include "ov_sys/Interface/buses/rpc/RPCKeepAlive.h"
#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
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

// The session whose keep-alive thread this thread is.
thread_local const PhySession* keptAlive = nullptr;

// The wait between two pings, false as soon as the thread is to end. In steps, for `keepAliveRunning` may be
// cleared without a word.
bool pauseBetweenPings(const PhySession& session, Pause& pause) {
    constexpr int kStepMs = 200;
    constexpr int kSteps = 10;
    const LooseTimers loose;
    for (int step = 0; step < kSteps; ++step) {
        if (session.keepAliveEnds())
            return false;
        pause.sleep(kStepMs);
    }
    return !session.keepAliveEnds();
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
    keptAlive = &session;
    const PingFunction ping = selectPingFunction(&session);
    int failures = 0;
    while (pauseBetweenPings(session, session.pause_)) {
        if (!session.isValid()) {
            Diagnostics::error("Keep alive: session was marked as INVALID.");
            break;
        }
        if (!pingOnce(session, ping, failures))
            break;
    }
    keptAlive = nullptr;
    return nullptr;
}

bool PhySession::keepAliveEnds() const {
    return keptAlive == this && (!keepAliveRunning || closing_);
}

void PhySession::startKeepAlive() {
    const std::lock_guard<std::mutex> lock(keepAliveMutex);
    if (keepAliveRunning)
        return;
    keepAliveRunning = true;
    pause_.reset();
    keepAliveThread = create_thread(doKeepAlive, this);
    if (!is_thread_valid(keepAliveThread))
        Diagnostics::error("Keep alive cannot be started");
}

void PhySession::stopKeepAlive() {
    if (!inOwnProcess()) // the thread is the parent's
        return;
    const std::lock_guard<std::mutex> lock(keepAliveMutex);
    if (!keepAliveRunning)
        return;
    keepAliveRunning = false;
    pause_.end();
    if (keepAliveThread.status == 0)
        thread_join(keepAliveThread);
}

void PhySession::askToClose() {
    if (!inOwnProcess())
        return;
    closing_ = true;
    connection->giveUp(true);
    pause_.end();
}

void PhySession::close() {
    if (!inOwnProcess())
        return;
    askToClose();
    stopKeepAlive();
    try {
        Setup::closeConnection(*this);
    } catch (...) { // the session ends whatever the board says
    }
    closing_ = false;
    connection->giveUp(false);
}

} // namespace Orvane
