// The session's state machine, and its recovery after a failed call.
#include "ov_sys/Interface/sessions/PhySession.h"

#include "ov_sys/Interface/connection/BoardConnection.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/foundation/HWIHelper.h"
#include "ov_sys/Interface/foundation/Stopwatch.h"

#include <cerrno>
#include <exception>
#include <unistd.h>
#include <utility>

namespace Orvane {
namespace {

using std::chrono::system_clock;

constexpr std::size_t kPingSamples = 2000;
constexpr unsigned long kUnusedSample = 4294967295UL;
constexpr unsigned int kValidationWaitMs = 65000;
constexpr int kPollMs = 50;

unsigned int addressPrefix(MdioExclusive const& mode) {
    return ((mode.deviceIndex << 5U) | (static_cast<unsigned int>(mode.phyAddress) & 31U)) << 24U;
}

} // namespace

PhySession::PhySession(std::unique_ptr<BoardConnection> board, MdioExclusive const& mode)
    : pingRecordSamples(kPingSamples, kUnusedSample),
      pingRecordType(2),
      mdioAddressPrefix(addressPrefix(mode)),
      mdio(mode),
      deviceIndexCopy(mode.deviceIndex),
      phyAddressCopy(static_cast<unsigned int>(mode.phyAddress)),
      pingSequence(0),
      keepAliveThread{-1, {}},
      keepAliveRunning(false),
      state(board ? SESSION_VALID : SESSION_INVALID),
      sessionId(0xFFFFFFFFU),
      callSequence(0xFFFF),
      busySince(system_clock::now()),
      busyTimeoutMs(0),
      connection(std::move(board)),
      process_(getpid()) {}

PhySession::PhySession(std::string deviceName, MdioExclusive const& mode)
    : PhySession(std::make_unique<BoardConnection>(std::move(deviceName)), mode) {}

PhySession::PhySession(AddressResponse const& board, MdioExclusive const& mode)
    : PhySession(std::make_unique<BoardConnection>(board), mode) {}

PhySession::~PhySession() {
    if (abandoned_)
        stopKeepAlive();
    else
        close();
    if (!inOwnProcess()) // a thread that stayed in the parent may have held its locks
        static_cast<void>(connection.release());
}

void PhySession::abandon() {
    abandoned_ = true;
}

bool PhySession::adopt() {
    return !adopted_.exchange(true);
}

void PhySession::disown() {
    adopted_ = false;
}

bool PhySession::inOwnProcess() const {
    return getpid() == process_;
}

std::string PhySession::name() {
    return connection->name;
}

bool PhySession::isRemote() {
    return connection->interfaceSelected;
}

bool PhySession::isValid() const {
    return getSessionState() != SESSION_INVALID;
}

PhySession::SessionState_t PhySession::getSessionState() const {
    return state;
}

void PhySession::setSessionState(SessionState_t newState) {
    const std::lock_guard<std::mutex> lock(stateMutex);
    state = newState;
}

void PhySession::initSessionInfo(unsigned int newSessionId, unsigned short sequence) {
    sessionId = newSessionId;
    callSequence = sequence;
}

unsigned int PhySession::identityWord() const {
    return static_cast<unsigned int>(callSequence) << 8U | sessionId;
}

unsigned int PhySession::pingIdentityWord() const {
    return static_cast<unsigned int>(pingSequence) << 8U | sessionId;
}

void PhySession::setSessionBusy(int timeoutMs) {
    busyTimeoutMs = timeoutMs;
    busySince = system_clock::now();
    setSessionState(SESSION_BUSY);
}

void PhySession::resetSessionBusy() {
    busyTimeoutMs = 0;
    busySince = system_clock::now();
    setSessionState(SESSION_VALID);
}

int PhySession::waitForSessionNotBusy() {
    using std::chrono::milliseconds;
    while (getSessionState() == SESSION_BUSY) {
        const auto elapsed = std::chrono::duration_cast<milliseconds>(system_clock::now() - busySince.load());
        if (busyTimeoutMs < elapsed.count() || keepAliveEnds())
            return 2;
        HWIHelper::mSleep(kPollMs);
    }
    return 0;
}

bool PhySession::isKeepAliveRunning() const {
    return keepAliveRunning;
}

PhySession::SessionState_t PhySession::errorHandlingState() {
    const std::lock_guard<std::mutex> lock(errorHandlingMutex);
    const SessionState_t before = getSessionState();
    if (before == SESSION_VALID)
        setSessionState(SESSION_ERROR_HANDLING);
    return before;
}

bool PhySession::onRPCCallError(int clntStat, std::string clientName) {
    const Diagnostics::BoardScope board(connection->name);
    const SessionState_t before = errorHandlingState();
    if (before == SESSION_ERROR_HANDLING || before == SESSION_RETRAINED)
        return waitForSessionValidation(kValidationWaitMs) == 0;
    if (before == SESSION_INVALID) {
        Diagnostics::error(clientName, "Error. Session is invalid cannot start retraining");
        return false;
    }
    try {
        Diagnostics::error(clientName, "RPC call error: ", clntStat, ". Session error handling started...");
        const bool retrained = connection->onRPCCallError(static_cast<clnt_stat>(clntStat), clientName);
        setSessionState(SESSION_RETRAINED);
        return retrained;
    } catch (const Exceptions::NoDevice&) {
        retrainFailed(clientName, " No device found.");
    } catch (const std::exception& problem) {
        retrainFailed(clientName, problem.what());
    } catch (...) {
        retrainFailed(clientName, " Unexpected exception. Mark session as invalid.");
    }
    return false;
}

// Makes do without memory: nothing keeps the session from leaving the error handling.
void PhySession::retrainFailed(const std::string& clientName, const char* reason) noexcept {
    Diagnostics::error(clientName, "Error. RPC connection retrain failed.", reason);
    setSessionState(SESSION_INVALID);
}

bool PhySession::onRPCResultError(RPCretCode_t code, std::string clientName) {
    const Diagnostics::BoardScope board(connection->name);
    if (code != 0)
        setLastResult(code);
    switch (code) {
    case 0:
        return false;
    case -EBUSY:
        Diagnostics::error(clientName, " Board in busy. Retrying...", code);
        return canRetryRPCCall();
    case -ETIMEDOUT:
        Diagnostics::error(clientName, " Operation timeout. Retrying...", code);
        return canRetryRPCCall();
    case -EACCES:
        Diagnostics::error(clientName, " Board in in use. AccessDenied exception...", code);
        throw Exceptions::AccessDenied();
    case -EBADRQC:
        Diagnostics::error(clientName, " EBADRQC result error");
        setSessionState(SESSION_INVALID);
        throw Exceptions::InvalidSession();
    default:
        Diagnostics::error(clientName, " Result Error: ", code);
        throw Exceptions::Standard("raiseRemoteError: Error");
    }
}

bool PhySession::onRPRetryWarning() {
    const Diagnostics::BoardScope board(connection->name);
    Diagnostics::error("Warning level of attempts for RPC call was achieved. Resetting connection...");
    connection->retrieveConnection();
    return true;
}

void PhySession::onRPCCallFatalError(int clntStat) {
    const Diagnostics::BoardScope board(connection->name);
    Diagnostics::error("Error level of attempts for RPC call was achieved.");
    connection->onRPCCallFatalError(static_cast<clnt_stat>(clntStat));
}

void PhySession::onSessionFatalError() {
    throw Exceptions::InvalidSession();
}

bool PhySession::canRetryRPCCall() const {
    return isValid();
}

template <class Reached>
int PhySession::waitForState(unsigned int timeoutMs, Reached reached) {
    const Stopwatch stopwatch;
    if (timeoutMs == 0)
        return 2;
    for (;;) {
        const SessionState_t now = getSessionState();
        if (reached(now))
            return 0;
        if (now == SESSION_INVALID)
            return 1;
        HWIHelper::mSleep(kPollMs);
        if (timeoutMs <= stopwatch.scaledElapsed())
            return 2;
    }
}

int PhySession::waitForErrorHandling(unsigned int timeoutMs) {
    return waitForState(timeoutMs,
                        [](SessionState_t now) { return now == SESSION_VALID || now == SESSION_RETRAINED; });
}

int PhySession::waitForSessionValidation(unsigned int timeoutMs) {
    return waitForState(timeoutMs, [](SessionState_t now) { return now == SESSION_VALID; });
}

} // namespace Orvane
