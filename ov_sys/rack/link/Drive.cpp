// Takes the turn, and waits, sends and receives until the calls have ended or a limit is reached.
#include "ov_sys/rack/link/Drive.h"

#include <algorithm>
#include <ctime>
#include <poll.h>
#include <utility>

namespace Orvane::RackLink {
namespace {

// The session whose hook runs on this thread: its calls go before those that wait for the hook.
thread_local const Session* hooked = nullptr;

timespec duration(TimePoint now, TimePoint end) noexcept {
    constexpr std::chrono::hours kLongest{1};
    const Clock::duration left = std::min<Clock::duration>(end - std::min(now, end), kLongest);
    const auto whole = std::chrono::duration_cast<std::chrono::seconds>(left);
    return {static_cast<time_t>(whole.count()), std::chrono::nanoseconds(left - whole).count()};
}

// `entries`, which may be null when there are none, has room for one more. A signal is as good as an answer:
// all is looked at.
inline void waitFor(pollfd* entries, std::size_t count, const Cancellation* cancellation, TimePoint now,
                    TimePoint end) {
    pollfd lone;
    pollfd* const all = entries != nullptr ? entries : &lone;
    if (cancellation != nullptr)
        all[count++] = {cancellation->descriptor(), POLLIN, 0};
    const timespec wait = duration(now, end);
    ppoll(all, static_cast<nfds_t>(count), &wait, nullptr);
}

// Whatever happens, no link keeps a call that its maker forgets.
class CallsInDrive {
public:
    CallsInDrive(BoardLink& link, Call* const* calls, std::size_t count, Limits& limits)
        : link_(link), calls_(calls), count_(count), limits_(limits) {}
    ~CallsInDrive() {
        end(FailureKind::Cancelled);
        for (std::size_t i = 0; i < count_; ++i)
            limits_.attempts += calls_[i]->sends;
    }
    CallsInDrive(const CallsInDrive&) = delete;
    CallsInDrive& operator=(const CallsInDrive&) = delete;

    void start() {
        for (std::size_t i = 0; i < count_; ++i) {
            Call& call = *calls_[i];
            call.limit(limits_.within, limits_.now, limits_.end);
            call.isHook = hooked != nullptr && call.session == hooked;
        }
        if (count_ == 0)
            return;
        // Those of a hook go to the front one by one.
        const bool backwards = calls_[0]->isHook;
        for (std::size_t i = 0; i < count_; ++i)
            link_.start(*calls_[backwards ? count_ - 1 - i : i], limits_.now);
    }

    // Lets others have the turn while there is nothing to do but wait: what a refused opening waits for may
    // be theirs to close.
    void giveWay(TurnGuard& turn) {
        const TimePoint next = link_.wake(limits_.now);
        for (std::size_t i = next_; i < count_; ++i)
            if (!calls_[i]->done())
                link_.withdraw(*calls_[i]);
        turn.leave();
        waitFor(nullptr, 0, limits_.within.cancellation, limits_.now, std::min(next, limits_.end));
        limits_.now = Clock::now();
        const Trouble why = takeTurn(link_, limits_);
        if (why)
            return end(calls_[next_]->trouble ? calls_[next_]->trouble : why);
        turn.guard(link_.turn);
        limits_.now = Clock::now();
        for (std::size_t i = next_; i < count_; ++i)
            if (!calls_[i]->done())
                link_.start(*calls_[i], limits_.now);
    }

    bool done() noexcept {
        while (next_ < count_ && calls_[next_]->done())
            ++next_;
        return next_ == count_;
    }

    void end(Trouble why) {
        for (std::size_t i = 0; i < count_; ++i)
            if (!calls_[i]->done() && calls_[i]->stage != Call::Stage::New)
                link_.drop(*calls_[i], why, limits_.now);
            else if (!calls_[i]->done())
                skip(*calls_[i], why);
    }

    static void skip(Call& call, Trouble why) noexcept {
        call.trouble = why;
        call.stage = Call::Stage::Done;
    }

private:
    BoardLink& link_;
    Call* const* calls_;
    std::size_t count_;
    Limits& limits_;
    std::size_t next_ = 0;
};

} // namespace

bool waitFor(const BoardLink& link, const Cancellation* cancellation, TimePoint now, TimePoint end) {
    pollfd entries[BoardLink::kMostWatched + 1];
    const std::size_t count = link.watch(entries);
    waitFor(entries, count, cancellation, now, std::min(end, link.wake(now)));
    return count > 1 &&
           std::any_of(entries + 1, entries + count, [](const pollfd& one) { return one.revents != 0; });
}

void waitFor(pollfd* entries, std::size_t count, const Limits& limits, TimePoint until) {
    waitFor(entries, count, limits.within.cancellation, limits.now, std::min(until, limits.end));
}

void pause(Limits& limits, Clock::duration time) {
    const TimePoint end = std::min(limits.end, limits.now + time);
    while (limits.now < end && !limits.cancelled()) {
        waitFor(nullptr, 0, limits.within.cancellation, limits.now, end);
        limits.now = Clock::now();
    }
}

void runHook(BoardLink& link, Session& session) {
    if (!session.hookDue)
        return;
    struct Mark {
        const Session* former = hooked;
        ~Mark() { hooked = former; }
    } mark;
    hooked = &session;
    if (const std::function<void()> hook = session.onReopen)
        hook();
    session.hookDue = false;
    link.step(Clock::now());
}

void runHooks(BoardLink& link) {
    for (;;) {
        Session* const session = link.awaitingHook();
        if (session == nullptr || session == hooked) // its hook is what runs here
            return;
        runHook(link, *session);
    }
}

Trouble takeTurn(BoardLink& link, const Limits& limits) {
    if (link.turn.tryTake())
        return {};
    switch (link.turn.take(limits.end, limits.within.cancellation)) {
    case Turn::Taken::TooLate:
        return FailureKind::Busy;
    case Turn::Taken::Cancelled:
        return FailureKind::Cancelled;
    case Turn::Taken::Yes:
        break;
    }
    return {};
}

namespace {

// Of one call the compiler makes a way of its own.
inline void driveAll(BoardLink& link, Call* const* calls, std::size_t count, Limits& limits) {
    if (const Trouble why = takeTurn(link, limits)) {
        for (std::size_t i = 0; i < count; ++i)
            CallsInDrive::skip(*calls[i], why);
        return;
    }
    TurnGuard turn(link.turn);
    CallsInDrive all(link, calls, count, limits);
    if (limits.cancelled())
        return all.end(FailureKind::Cancelled);
    all.start();
    while (!all.done()) {
        runHooks(link);
        const bool streams = waitFor(link, limits.within.cancellation, limits.now, limits.end);
        limits.now = Clock::now();
        if (limits.cancelled())
            return all.end(FailureKind::Cancelled);
        link.step(limits.now, streams);
        if (link.resting() && !all.done() && link.turn.blocks())
            all.giveWay(turn);
    }
}

} // namespace

void drive(BoardLink& link, Call* const* calls, std::size_t count, Limits& limits) {
    driveAll(link, calls, count, limits);
}

Trouble drive(BoardLink& link, Call& call, Limits& limits) {
    Call* const one = &call;
    driveAll(link, &one, 1, limits);
    return call.trouble;
}

} // namespace Orvane::RackLink
