// One poll loop over the links of all boards: jobs start, calls settle, deadlines expire.
#include "ov_sys/rack/core/Fleet.h"

#include "ov_sys/rack/link/Drive.h"

#include <algorithm>
#include <cerrno>
#include <cstddef>
#include <sys/epoll.h>
#include <sys/timerfd.h>
#include <system_error>
#include <utility>

namespace Orvane::RackCore {

using namespace RackLink;

namespace {

// Beside the address of a lane: not its first descriptor.
constexpr std::uint64_t kStream = 1;

constexpr std::chrono::milliseconds kLook{10}; // between two looks at a turn that another thread has

FileDescriptor checked(int fd, const char* what) {
    if (fd < 0)
        throw std::system_error(errno, std::generic_category(), what);
    return FileDescriptor(fd);
}

// Calls of one board that are made in its life travel together.
class Journey {
public:
    Journey(BoardLink& link, BoardLink::Trains& trains) noexcept : link_(link), trains_(trains) {
        link_.travelBy(&trains_);
    }
    ~Journey() {
        link_.travelBy(nullptr);
        trains_.departures.leave();
    }
    Journey(const Journey&) = delete;
    Journey& operator=(const Journey&) = delete;

private:
    BoardLink& link_;
    BoardLink::Trains& trains_;
};

bool cancelled(const Job& job) noexcept {
    return job.within.cancellation != nullptr && job.within.cancellation->cancelled();
}

} // namespace

Fleet::Fleet()
    : epoll_(checked(epoll_create1(EPOLL_CLOEXEC), "epoll_create1")),
      timer_(checked(timerfd_create(CLOCK_MONOTONIC, TFD_NONBLOCK | TFD_CLOEXEC), "timerfd_create")),
      now_(Clock::now()) {
    memoryRanOut();
    epoll_event event{};
    event.events = EPOLLIN;
    if (epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, timer_.get(), &event) != 0)
        throw std::system_error(errno, std::generic_category(), "epoll_ctl");
}

Fleet::~Fleet() {
    for (auto& entry : lanes_) {
        cancel(*entry.second, FailureKind::Cancelled);
        leaveTurn(*entry.second);
    }
}

void Fleet::add(std::unique_ptr<Job> job) {
    const std::shared_ptr<Board> board = job->session->board();
    const auto found = lanes_.find(board.get());
    Lane* lane = found != lanes_.end() ? found->second.get() : nullptr;
    if (lane == nullptr) {
        auto made = std::make_unique<Lane>();
        made->board = board;
        ready_.reserve(lanes_.size() + 1);
        stepping_.reserve(lanes_.size() + 1);
        lane = lanes_.emplace(board.get(), std::move(made)).first->second.get();
    }
    attend(*job);
    lane->waiting.push_back(std::move(job));
    ++jobs_;
    makeReady(*lane);
    if (ready_.size() == 1)
        setTimer();
}

void Fleet::makeReady(Lane& lane) noexcept {
    if (!std::exchange(lane.ready, true))
        ready_.push_back(&lane);
}

// What may be cancelled from another thread wakes whoever waits for the descriptor.
void Fleet::attend(const Job& job) {
    const Cancellation* const who = job.within.cancellation;
    if (who == nullptr || cancellations_[who]++ != 0)
        return;
    epoll_event event{};
    event.events = EPOLLIN;
    epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, who->descriptor(), &event);
}

void Fleet::dismiss(const Job& job) {
    const auto found = cancellations_.find(job.within.cancellation);
    if (found == cancellations_.end() || --found->second != 0)
        return;
    epoll_ctl(epoll_.get(), EPOLL_CTL_DEL, found->first->descriptor(), nullptr);
    cancellations_.erase(found);
}

bool Fleet::takeTurn(Lane& lane) {
    if (!lane.hasTurn && !lane.waiting.empty() && lane.board->link.turn.tryTake()) {
        lane.hasTurn = true;
        lane.board->link.setWindow(window_);
    }
    return lane.hasTurn;
}

void Fleet::leaveTurn(Lane& lane) {
    if (!lane.hasTurn)
        return;
    watchOnly(lane, nullptr, std::min<std::size_t>(lane.watched.size(), 1));
    lane.hasTurn = false;
    lane.board->link.turn.leave();
}

// Others get their turn as soon as what has begun is done.
void Fleet::begin(Lane& lane) {
    while (!lane.waiting.empty() && (lane.begun.empty() || !lane.board->link.turn.wanted())) {
        Job& first = *lane.waiting.front();
        const bool busy = !lane.begun.empty();
        if (busy && (first.alone() || lane.begun.front()->alone() || lane.begun.size() >= 2 * window_))
            return;
        lane.begun.splice(lane.begun.end(), lane.waiting, lane.waiting.begin());
        startCalls(lane, *lane.begun.back());
        if (lane.begun.back()->calls.empty())
            makeReady(lane); // it is to be collected
    }
}

void Fleet::startCalls(Lane& lane, Job& job) {
    job.calls.clear();
    job.calls.reserve(Job::kMostCalls); // so that none gets lost between the job and its list
    job.torn = true;
    job.next(job.calls);
    for (Call* const call : job.calls) {
        call->limit(job.within, now_, job.limits.end);
        lane.board->link.start(*call, now_);
    }
    job.torn = false;
    if (!job.calls.empty() && job.calls.front()->done())
        makeReady(lane); // nothing will arrive for it
}

void Fleet::settle(Lane& lane, std::unique_ptr<Job> job, Trouble trouble) {
    for (Call* const call : job->calls) {
        if (!call->done())
            lane.board->link.drop(*call, trouble, now_);
    }
    --jobs_;
    dismiss(*job);
    job->limits.now = now_;
    job->settle(trouble);
}

void Fleet::collect(Lane& lane) {
    for (auto next = lane.begun.begin(); next != lane.begun.end();) {
        Job& job = **next;
        Trouble trouble;
        bool done = true;
        for (const Call* const call : job.calls) {
            done = done && call->done();
            if (call->done() && call->trouble && !trouble)
                trouble = call->trouble;
        }
        if (cancelled(job) || job.torn)
            trouble = FailureKind::Cancelled;
        if (done && !trouble) {
            for (const Call* const call : job.calls)
                job.limits.attempts += call->sends;
            startCalls(lane, job);
            done = job.calls.empty();
        }
        if (!done && trouble.kind() != FailureKind::Cancelled) {
            ++next;
            continue;
        }
        for (const Call* const call : job.calls)
            job.limits.attempts += call->sends;
        std::unique_ptr<Job> ended = std::move(*next);
        next = lane.begun.erase(next);
        settle(lane, std::move(ended), trouble);
    }
}

// Of those that have not begun.
void Fleet::expire(Lane& lane) {
    for (auto next = lane.waiting.begin(); next != lane.waiting.end();) {
        const Job& job = **next;
        if (now_ < job.limits.end && !cancelled(job)) {
            lane.wake = std::min(lane.wake, job.limits.end);
            ++next;
        } else {
            const Trouble why = cancelled(job) ? FailureKind::Cancelled : FailureKind::Busy;
            std::unique_ptr<Job> ended = std::move(*next);
            next = lane.waiting.erase(next);
            settle(lane, std::move(ended), why);
        }
    }
}

void Fleet::cancel(Lane& lane, Trouble why) {
    for (Jobs* const jobs : {&lane.begun, &lane.waiting})
        while (!jobs->empty()) {
            std::unique_ptr<Job> job = std::move(jobs->front());
            jobs->pop_front();
            settle(lane, std::move(job), why);
        }
}

void Fleet::stepLane(Lane& lane) {
    const bool timed = now_ >= lane.wake;
    lane.wake = TimePoint::max();
    if (timed)
        expire(lane);
    if (takeTurn(lane)) {
        BoardLink& link = lane.board->link;
        if (!lane.begun.empty()) {
            const Journey journey(link, trains_);
            link.step(now_, timed || lane.streams);
        }
        lane.streams = false;
        runHooks(link);
        {
            const Journey journey(link, trains_);
            collect(lane);
            begin(lane);
        }
        if (yields_ && link.turn.wanted())
            cancel(lane, FailureKind::Cancelled);
        if (lane.begun.empty()) {
            leaveTurn(lane);
        } else {
            watch(lane);
            lane.wake = std::min(lane.wake, link.wake(now_));
        }
    }
    if (!lane.waiting.empty())
        lane.wake = std::min(lane.wake, now_ + kLook);
}

void Fleet::watch(Lane& lane) {
    pollfd entries[BoardLink::kMostWatched];
    const std::size_t all = lane.board->link.watch(entries);
    const std::size_t count = lane.board->link.awaitsStreams() ? all : std::min<std::size_t>(all, 1);
    const auto same = [](const pollfd& a, const pollfd& b) { return a.fd == b.fd && a.events == b.events; };
    if (lane.socketsMade == lane.board->link.socketsMade() &&
        std::equal(entries, entries + count, lane.watched.begin(), lane.watched.end(), same))
        return;
    lane.socketsMade = lane.board->link.socketsMade();
    watchOnly(lane, entries, count);
}

// The socket for datagrams stays watched between two turns: each arrival is told once, so that what others
// receive there meanwhile wakes nobody for longer. `entries` null: as they are, but for those behind `count`.
void Fleet::watchOnly(Lane& lane, const pollfd* entries, std::size_t count) {
    std::vector<pollfd>& watched = lane.watched;
    while (watched.size() > 1) { // it may be closed by now, and so not be there
        epoll_ctl(epoll_.get(), EPOLL_CTL_DEL, watched.back().fd, nullptr);
        watched.pop_back();
    }
    while (watched.size() < count) {
        const pollfd& one = watched.emplace_back(entries[watched.size()]);
        const bool stream = watched.size() > 1;
        epoll_event event{};
        event.events = stream ? EPOLLIN : EPOLLIN | EPOLLET;
        if ((one.events & POLLOUT) != 0)
            event.events |= EPOLLOUT;
        event.data.u64 = reinterpret_cast<std::uintptr_t>(&lane) | (stream ? kStream : 0U);
        epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, one.fd, &event);
    }
}

// Rounded up, so that it has come then.
std::chrono::milliseconds Fleet::untilWake() const noexcept {
    constexpr std::chrono::hours kLongest{1};
    const Clock::duration left = std::clamp<Clock::duration>(nextWake_ - Clock::now(), {}, kLongest);
    return std::chrono::ceil<std::chrono::milliseconds>(left);
}

void Fleet::takeEvents(std::chrono::milliseconds longest) {
    epoll_event events[256];
    const int count = epoll_wait(epoll_.get(), events, 256, static_cast<int>(longest.count()));
    for (int i = 0; i < count; ++i)
        if (auto* const lane =
                reinterpret_cast<Lane*>(events[i].data.u64 & ~kStream)) { // NOLINT(*-int-to-ptr)
            makeReady(*lane);
            lane->streams = lane->streams || (events[i].data.u64 & kStream) != 0;
        }
}

// Every lane looks at its jobs, also at those that have not begun.
void Fleet::takeCancellations() {
    const auto called = [](const auto& entry) { return entry.first->cancelled(); };
    if (std::any_of(cancellations_.begin(), cancellations_.end(), called))
        for (auto& entry : lanes_)
            nextWake_ = entry.second->wake = now_;
}

void Fleet::takeTimeouts() {
    nextWake_ = TimePoint::max();
    for (auto& entry : lanes_)
        if (now_ >= entry.second->wake)
            makeReady(*entry.second);
        else
            nextWake_ = std::min(nextWake_, entry.second->wake);
}

int Fleet::descriptor() noexcept {
    polled_ = true;
    setTimer();
    return epoll_.get();
}

// Rings for whoever waits for the descriptor; to arm it takes longer than to send a datagram.
void Fleet::setTimer() noexcept {
    const TimePoint next = ready_.empty() ? nextWake_ : now_;
    if (!polled_ || (armed_ <= next && armed_ > now_))
        return; // what rings too early costs a look at the lanes
    armed_ = next;
    itimerspec when{};
    if (next != TimePoint::max()) {
        const auto nanoseconds =
            std::max(std::chrono::nanoseconds(next.time_since_epoch()), std::chrono::nanoseconds(1));
        when.it_value.tv_sec = static_cast<time_t>(nanoseconds.count() / 1'000'000'000);
        when.it_value.tv_nsec = static_cast<long>(nanoseconds.count() % 1'000'000'000);
    }
    timerfd_settime(timer_.get(), TFD_TIMER_ABSTIME, &when, nullptr);
}

void Fleet::step() {
    advance({});
}

void Fleet::stepSome() {
    if (jobs_ > 0)
        advance(kLook * 100);
}

void Fleet::advance(std::chrono::milliseconds longest) {
    takeEvents(ready_.empty() ? std::min(longest, untilWake()) : std::chrono::milliseconds(0));
    now_ = Clock::now();
    takeCancellations();
    if (now_ >= nextWake_)
        takeTimeouts();
    stepping_.clear();
    stepping_.swap(ready_);
    for (std::size_t i = 0; i < stepping_.size(); ++i) {
        Lane& lane = *stepping_[i];
        lane.ready = false;
        try {
            stepLane(lane);
        } catch (...) { // the rest is for the next time
            makeReady(lane);
            ready_.insert(ready_.end(), stepping_.begin() + static_cast<std::ptrdiff_t>(i) + 1,
                          stepping_.end());
            setTimer();
            throw;
        }
        nextWake_ = std::min(nextWake_, lane.wake);
    }
    setTimer();
}

void Fleet::run(const std::function<bool()>& stop) {
    while (jobs_ > 0 && !(stop && stop()))
        advance(stop ? kLook : kLook * 100);
}

} // namespace Orvane::RackCore
