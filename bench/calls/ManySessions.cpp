// What runs in the background: a thousand idle sessions, and the listener of a search for boards.
#include "bench/calls/BareClient.h"
#include "bench/calls/Measure.h"
#include "bench/calls/Session.h"

#include "simulator/engine/Sockets.h"

#include <orvane/orvane.h>
#include <thread>
#include <unistd.h>

namespace OrvaneBench {
namespace {

constexpr std::size_t kSessions = 1000;
constexpr unsigned kSeconds = 10;

// The handles of a session and a thread that pings as the library does.
class BareIdle {
public:
    explicit BareIdle(const std::string& host) : handles_(host), thread_([this] { run(); }) {}
    ~BareIdle() = delete; // ends with the process
    BareIdle(const BareIdle&) = delete;
    BareIdle& operator=(const BareIdle&) = delete;

private:
    void run() {
        for (;;) {
            for (int step = 0; step < 10; ++step)
                usleep(200'000);
            ID_Param param{0}; // of no session: the board refuses, which costs the same
            Simple_Result result{};
            handles_.keepAlive.call(Orvane::Programs::KeepAliveProcedure::Ping, param, result);
        }
    }

    BareHandles handles_;
    std::thread thread_;
};

// Makes the sessions, spread over the boards, and reports what they take while they idle. They end with the
// process: closing one after the other would take minutes.
template <class Idle>
nlohmann::json idle(const Arrangement& arrangement) {
    OrvaneSim::raiseDescriptorLimit();
    const double residentBefore = residentKilobytes();
    static std::vector<Idle*> sessions;
    for (std::size_t i = 0; i < kSessions; ++i)
        sessions.push_back(new Idle(arrangement.boards[i % arrangement.boards.size()]));
    sleep(3); // everybody has pinged
    const double before = processorSeconds();
    sleep(kSeconds);
    const double percent = 100 * (processorSeconds() - before) / kSeconds;
    const double resident = residentKilobytes() - residentBefore;
    return {{"core percent", percent}, {"kilobytes for each", resident / kSessions}};
}

} // namespace

void measureIdleSessions(const Arrangement& arrangement) {
    reportFromChild({"1000 idle sessions, bare", [&] { return idle<BareIdle>(arrangement); }});
    reportFromChild({"1000 idle sessions", [&] { return idle<OpenedSession>(arrangement); }});
}

void measureListener(const Arrangement&) {
    const auto search = [] {
        HW_Initialize();
        const double before = processorSeconds();
        const double seconds = secondsOf([] { HW_Open("NOBODY:0"); });
        return nlohmann::json{{"core percent", 100 * (processorSeconds() - before) / seconds},
                              {"seconds", seconds}};
    };
    reportFromChild({"search for a board that is not there", search});
}

} // namespace OrvaneBench
