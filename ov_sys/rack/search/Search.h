// A search for boards, by the thread that wants it.
#pragma once

#include "ov_sys/rack/link/Limits.h"
#include "ov_sys/rack/search/AnswerSocket.h"
#include "ov_sys/rack/search/Sharing.h"

#include <functional>
#include <poll.h>
#include <set>

namespace Orvane::RackSearch {

// Listens for all of its time, however many answer, and asks again and again. It listens on the network
// itself, or to a program of this host that does; when that one falls silent it goes on by itself. One
// thread.
class Search {
public:
    // Ends early when `enough`, which may be empty, says so of an answer.
    explicit Search(std::function<bool(const Answer&)> enough = {}) : enough_(std::move(enough)) {}

    // Blocks up to limits.end. Trouble is a port that is not to be had, or a cancellation.
    RackLink::Trouble run(RackLink::Limits& limits);

    // The same for who has other things to do: does what can be done without waiting; true when it is over.
    bool step(RackLink::Limits& limits);
    // Why it is over without a result.
    RackLink::Trouble trouble() const noexcept { return trouble_; }
    // What to wait for before the next step; returns the number of entries.
    static constexpr std::size_t kMostWatched = 2;
    std::size_t watch(pollfd* entries) const noexcept;
    // When a step is due though nothing arrives.
    RackLink::TimePoint wake(const RackLink::Limits& limits) const noexcept;

    // Every different answer.
    const std::set<Answer>& answers() const noexcept { return answers_; }
    // What they say.
    Discovery result() const { return discoveryOf(answers_); }

private:
    bool join(RackLink::Limits& limits);
    bool listenHere(RackLink::TimePoint now);
    bool receive(RackLink::TimePoint now);
    bool take(const Answer& answer);
    void askWhenDue(const RackLink::Limits& limits);

    std::function<bool(const Answer&)> enough_;
    std::set<Answer> answers_;
    AnswerSocket network_;
    Speaker speaker_;
    Listener listener_;
    bool trusts_ = true;  // listens to others
    bool behind_ = false; // others have not yet been told all
    RackLink::TimePoint nextQuestion_{};
    RackLink::TimePoint lastHeard_{};
    RackLink::Trouble trouble_;
};

} // namespace Orvane::RackSearch
