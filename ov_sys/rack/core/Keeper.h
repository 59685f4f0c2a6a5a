// The one thread of a rack: keeps sessions alive, delivers events, looks for boards that are missing.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "ov_sys/rack/core/Board.h"
#include "ov_sys/rack/core/EventQueue.h"
#include "ov_sys/rack/core/Hunt.h"
#include "ov_sys/rack/core/Job.h"

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace Orvane::RackCore {

// Pings every session each two seconds. The thread exists from the first wake() on.
class Keeper {
public:
    using Boards = std::function<std::vector<std::shared_ptr<Board>>()>;

    // All of them must outlive the keeper.
    Keeper(Boards boards, EventQueue& events, RackLink::Surroundings& around);
    ~Keeper();
    Keeper(const Keeper&) = delete;
    Keeper& operator=(const Keeper&) = delete;

    // Begins the thread, or tells it that there are events. Throws std::system_error.
    void wake();
    void lookFor(const std::string& board);
    // Ends the thread; it does not begin again.
    void stop();

private:
    void run();
    void sleep(RackLink::TimePoint until) const;
    void hunt();
    void found(const FoundBoard& where);
    void ping(const std::function<bool()>& stop);
    void settle(const Job& job, RackLink::Trouble trouble,
                std::vector<std::shared_ptr<OpenSession>>& reopened);
    void restore(OpenSession& session);

    const Boards boards_;
    EventQueue& events_;
    RackLink::Surroundings& around_;
    FileDescriptor event_;
    std::atomic<bool> running_{false};
    std::atomic<bool> stopping_{false};
    std::unique_ptr<Hunt> hunt_; // the thread's
    std::mutex mutex_;           // guards everything below
    std::thread thread_;
    std::set<std::string> missing_;
};

} // namespace Orvane::RackCore
