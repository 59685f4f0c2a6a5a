// One session of this host on one board: its identity, its state and its recovery from errors.
#pragma once

#include "ov_sys/Interface/foundation/AddressResponse.h"
#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/Interface/foundation/Threads.h"
#include "ov_sys/Interface/sessions/MdioExclusive.h"
#include "ov_sys/Interface/sessions/Pause.h"

#include <atomic>
#include <chrono>
#include <memory>
#include <mutex>
#include <string>
#include <sys/types.h>
#include <vector>

namespace Orvane {

class BoardConnection;

// The board's verdict on a call: 0, or a negative Linux errno value.
using RPCretCode_t = int;

// Owns the connection to its board and, once started, a keep-alive thread that pings the board every 2 s. Any
// number of threads may call through one session; when a call fails in transport, the first thread to see it
// retrains the connection and the others wait for the outcome.
//
// The state and the recovery stand in sessions/PhySession.cpp; what makes calls of its own, the keep-alive
// thread and close(), in buses/rpc/PhySessionLife.cpp.
//
// A session belongs to the process that made it. In a forked child nothing is sent for it: close() and the
// destructor leave the board, the connection and the parent's thread alone.
//
// Lock order: keepAliveMutex or errorHandlingMutex, then stateMutex. None is held across a call to the board,
// but keepAliveMutex while the keep-alive thread is joined.
class ORVANE_API PhySession {
public:
    // Where a session is between opening and end; a fixed type, so that any number is a legal value.
    enum SessionState_t : int {
        SESSION_VALID = 0,          // usable
        SESSION_ERROR_HANDLING = 1, // one thread is retraining the connection
        SESSION_RETRAINED = 2,      // retrained; the next good keep-alive ping makes the session valid
        SESSION_INVALID = 3,        // dead: every later call is refused
        SESSION_BUSY = 4            // a remote command is running; pings wait
    };

    std::vector<unsigned long> pingRecordSamples; // 2000 values of 4294967295; constant
    unsigned int pingRecordType;                  // 2; constant
    unsigned int mdioAddressPrefix; // bits 24 to 31 of every MDIO address: PHY, then device index; constant
    MdioExclusive mdio;             // `key` is the board's once the session is open; otherwise constant
    unsigned int deviceIndexCopy;   // mdio.deviceIndex; constant
    unsigned int phyAddressCopy;    // mdio.phyAddress; constant
    std::atomic<unsigned short> pingSequence; // grows with every good ping
    thread_id_t keepAliveThread;              // guarded by keepAliveMutex
    std::atomic<bool> keepAliveRunning;       // written under keepAliveMutex
    std::atomic<SessionState_t> state;        // written under stateMutex
    std::mutex stateMutex;                    // guards changes of `state`
    std::mutex errorHandlingMutex;            // makes the claim of error handling one step
    std::mutex keepAliveMutex;                // start and stop of the keep-alive thread
    std::atomic<unsigned int> sessionId; // the board's number for the session; all ones before the opening
    std::atomic<unsigned short> callSequence; // grows with every completed call
    std::atomic<std::chrono::system_clock::time_point>
        busySince;                               // last setSessionBusy() or resetSessionBusy()
    std::atomic<int> busyTimeoutMs;              // of the running command; 0 for none
    std::unique_ptr<BoardConnection> connection; // never null

    // Make the connection to the board of that name or at that address (and block as its constructors do).
    // The board's session service is not contacted: Setup::openConnection() opens the session.
    PhySession(std::string deviceName, MdioExclusive const& mode);
    PhySession(AddressResponse const& board, MdioExclusive const& mode);
    // Closes the session, or only stops its keep-alive thread when it was abandoned, and drops the
    // connection.
    ~PhySession();
    PhySession(const PhySession&) = delete;
    PhySession& operator=(const PhySession&) = delete;

    // Stops the keep-alive thread and tells the board; failures of that call are ignored. Blocks for what is
    // under way, 4 s at most for a ping or a step of a search for the board (15 s where the system's resolver
    // knows the board's name), and then 2 s for the board's answer. A call that another thread has under way
    // on the setup client is waited for.
    void close();
    // Lets what close() waits for end early: the keep-alive thread and a search for the board. Does not
    // block, so that many sessions can be asked before the first is closed; close() is to follow.
    void askToClose();
    // The destructor is not to send a close request: the session never opened, or was closed already.
    void abandon();
    // Make a device the owner that deletes the session: true for the first that asks, and again after
    // disown().
    bool adopt();
    void disown();

    std::string name();   // the board's name, in upper case
    bool isRemote();      // whether the connection was made
    bool isValid() const; // whether the state is not SESSION_INVALID
    // Get and set `state`, whatever it was.
    SessionState_t getSessionState() const;
    void setSessionState(SessionState_t newState);

    // Stores what the board gave at the opening.
    void initSessionInfo(unsigned int newSessionId, unsigned short sequence);
    // The word that names session and call to the board: callSequence << 8 | sessionId.
    unsigned int identityWord() const;
    // The same with the ping sequence.
    unsigned int pingIdentityWord() const;

    // A remote command of at most `timeoutMs` begins; resetSessionBusy() makes the session valid whatever its
    // state was.
    void setSessionBusy(int timeoutMs);
    void resetSessionBusy();
    // Polls every 50 ms until the session is not busy (0) or its busy time has run out (2).
    int waitForSessionNotBusy();

    // Starts the keep-alive thread unless it runs. A thread that cannot be made is reported, and the session
    // still counts as kept alive.
    void startKeepAlive();
    // Stops and joins the keep-alive thread. Blocks for a ping that is under way, 2 s at most, and for a
    // recovery that this ping has begun, 12.5 s as long as the board does not move.
    void stopKeepAlive();
    bool isKeepAliveRunning() const;
    // Whether this is called by the session's keep-alive thread after that was asked to end.
    bool keepAliveEnds() const;
    using PingFunction = int (*)(PhySession&);
    // The ping of the keep-alive service when its client is connected, otherwise that of the setup service.
    static PingFunction selectPingFunction(PhySession* session);
    // Body of the keep-alive thread; `argument` is a PhySession, the result is null.
    static void* doKeepAlive(void* argument);

    // Claims error handling when the session is valid; returns the state before the claim.
    SessionState_t errorHandlingState();
    // A call failed in transport with `clntStat` on the client of that name. True when it may be repeated.
    // The thread that claims the handling retrains the connection (blocking as BoardConnection::problem());
    // others wait. Never throws for a failed retraining: the session becomes invalid instead.
    bool onRPCCallError(int clntStat, std::string clientName);
    // The board answered with `code`. True when the call is to be repeated, false when it is done. Throws
    // Exceptions::AccessDenied (-13), Exceptions::InvalidSession (-56) or Exceptions::Standard (unknown
    // codes).
    bool onRPCResultError(RPCretCode_t code, std::string clientName);
    // Retrieves the connection; returns true. Throws as BoardConnection::retrieveConnection().
    bool onRPRetryWarning();
    // Reports the error and throws Exceptions::Standard "Remote error.".
    [[noreturn]] void onRPCCallFatalError(int clntStat);
    // Throws Exceptions::InvalidSession.
    [[noreturn]] void onSessionFatalError();
    bool canRetryRPCCall() const; // whether the session is not invalid

    // The board's code in its last answer to a call of this session, whichever thread made it: 0, or a
    // negative Linux errno value; 0 before the first. A ping counts when its code is not 0, the close request
    // never does. A call without an answer changes nothing. Any thread.
    RPCretCode_t lastResult() const { return lastResult_.load(std::memory_order_relaxed); }
    // For the call frames.
    void setLastResult(RPCretCode_t code) { lastResult_.store(code, std::memory_order_relaxed); }

    // Poll every 50 ms for the end of error handling: 0 reached, 1 session invalid, 2 limit met. The limit is
    // met when the elapsed milliseconds times 100000 (32-bit, wrapping) reach `timeoutMs`: after the first
    // pause for every value below 5,000,000; a limit of 0 does not wait at all.
    int waitForErrorHandling(unsigned int timeoutMs);     // reached: valid or retrained
    int waitForSessionValidation(unsigned int timeoutMs); // reached: valid

private:
    PhySession(std::unique_ptr<BoardConnection> board, MdioExclusive const& mode);
    void retrainFailed(const std::string& clientName, const char* reason) noexcept;
    template <class Reached>
    int waitForState(unsigned int timeoutMs, Reached reached);

    bool inOwnProcess() const;

    bool abandoned_ = false;
    std::atomic<bool> adopted_{false};
    std::atomic<bool> closing_{false}; // askToClose() was called
    std::atomic<RPCretCode_t> lastResult_{0};
    const pid_t process_; // that made the session
    Pause pause_;         // the keep-alive thread's, between two pings
};

} // namespace Orvane
