// Jobs on many boards at once, driven by one thread.
#pragma once

#include "ov_sys/Interface/foundation/FileDescriptor.h"
#include "ov_sys/rack/core/Board.h"
#include "ov_sys/rack/core/Job.h"

#include <chrono>
#include <functional>
#include <list>
#include <map>
#include <memory>
#include <unordered_map>
#include <vector>

namespace Orvane::RackCore {

// Takes the turn of a board while it has jobs there. One thread.
class Fleet {
public:
    // Throws std::system_error.
    Fleet();
    // Cancels what is still under way.
    ~Fleet();
    Fleet(const Fleet&) = delete;
    Fleet& operator=(const Fleet&) = delete;

    // Jobs of one board begin in order.
    void add(std::unique_ptr<Job> job);
    // Does what can be done now. Throws what a session's hook throws, and std::bad_alloc.
    void step();
    // Readable when step() has something to do, from the first time on that it was asked for.
    int descriptor() noexcept;
    std::size_t underWay() const noexcept { return jobs_; }
    // Calls in flight on one board at most.
    void setWindow(unsigned calls) noexcept { window_ = calls; }
    // Gives a board up, its jobs cancelled, as soon as another thread wants it.
    void yield() noexcept { yields_ = true; }

    // Waits for something to do, a second at most, and does it.
    void stepSome();
    // Steps until nothing is under way, or `stop` says so. Blocks.
    void run(const std::function<bool()>& stop);

private:
    using Jobs = std::list<std::unique_ptr<Job>>;
    struct Lane {
        std::shared_ptr<Board> board;
        Jobs waiting;
        Jobs begun;
        bool hasTurn = false;
        bool ready = false; // it is among those to be stepped
        RackLink::TimePoint wake{};
        bool streams = false; // something arrived that is no datagram
        unsigned socketsMade = 0;
        std::vector<pollfd> watched;
    };

    void stepLane(Lane& lane);
    bool takeTurn(Lane& lane);
    void leaveTurn(Lane& lane);
    void begin(Lane& lane);
    void startCalls(Lane& lane, Job& job);
    void collect(Lane& lane);
    void expire(Lane& lane);
    void cancel(Lane& lane, RackLink::Trouble why);
    void settle(Lane& lane, std::unique_ptr<Job> job, RackLink::Trouble trouble);
    void watch(Lane& lane);
    void watchOnly(Lane& lane, const pollfd* entries, std::size_t count);
    void attend(const Job& job);
    void dismiss(const Job& job);
    void advance(std::chrono::milliseconds longest);
    void makeReady(Lane& lane) noexcept;
    void takeEvents(std::chrono::milliseconds longest);
    void takeTimeouts();
    void takeCancellations();
    void setTimer() noexcept;
    std::chrono::milliseconds untilWake() const noexcept;

    FileDescriptor epoll_;
    FileDescriptor timer_;
    std::unordered_map<Board*, std::unique_ptr<Lane>> lanes_;
    std::vector<Lane*> ready_;                                  // with room for all
    std::vector<Lane*> stepping_;                               // the same
    RackLink::TimePoint nextWake_ = RackLink::TimePoint::max(); // of the lanes, or before it
    RackLink::TimePoint armed_ = RackLink::TimePoint::max();    // when the timer rings
    std::map<const Cancellation*, std::size_t> cancellations_;  // and how many jobs each may end
    RackLink::TimePoint now_;
    RackLink::BoardLink::Trains trains_;
    std::size_t jobs_ = 0;
    unsigned window_ = 8;
    bool polled_ = false; // somebody waits for the descriptor
    bool yields_ = false;
};

} // namespace Orvane::RackCore
