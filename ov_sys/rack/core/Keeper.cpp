// When the thread pings, reopens, searches and sleeps.
#include "ov_sys/rack/core/Keeper.h"

#include "ov_sys/rack/core/Fleet.h"
#include "ov_sys/rack/core/SessionJobs.h"
#include "ov_sys/rack/link/Drive.h"
#include "ov_sys/rack/link/Endpoint.h"

#include <algorithm>
#include <cerrno>
#include <poll.h>
#include <sys/eventfd.h>
#include <system_error>
#include <utility>

namespace Orvane::RackCore {
namespace {

using namespace RackLink;

constexpr std::chrono::seconds kPeriod{2};

int newEvent() {
    const int event = eventfd(0, EFD_NONBLOCK | EFD_CLOEXEC);
    if (event < 0)
        throw std::system_error(errno, std::generic_category(), "eventfd");
    return event;
}

} // namespace

// One ping of every open session. A board that another thread wants is left to it: it is being talked to.
void Keeper::ping(const std::function<bool()>& stop) {
    Fleet fleet;
    fleet.yield();
    std::vector<std::shared_ptr<OpenSession>> reopened;
    const Within within{std::chrono::milliseconds(1500), Repeat{}, true, nullptr};
    for (const std::shared_ptr<Board>& board : boards_()) {
        if (!board->link.turn.tryTake())
            continue;
        const TurnGuard turn(board->link.turn);
        for (const std::shared_ptr<OpenSession>& session : board->sessions())
            if (session->state().everOpened)
                fleet.add(std::make_unique<PingJob>(session, within, [&](const Job& job, Trouble trouble) {
                    settle(job, trouble, reopened);
                }));
    }
    fleet.run(stop);
    for (const std::shared_ptr<OpenSession>& session : reopened)
        restore(*session);
}

void Keeper::settle(const Job& job, Trouble trouble, std::vector<std::shared_ptr<OpenSession>>& reopened) {
    OpenSession& session = *job.session;
    if (!trouble && session.state().hookDue)
        reopened.push_back(job.session);
    else if (trouble && trouble.kind() != FailureKind::Cancelled)
        around_.report(session.link(), &session.state(), Event::Kind::PingLost, Event::Level::Warning,
                       toText(trouble.kind()));
}

// Runs a hook that is due. What it throws is told; the next call on the session tries it again.
void Keeper::restore(OpenSession& session) {
    if (!session.link().turn.tryTake())
        return;
    const TurnGuard turn(session.link().turn);
    try {
        runHook(session.link(), session.state());
    } catch (const std::exception& problem) {
        around_.report(session.link(), &session.state(), Event::Kind::Lost, Event::Level::Warning,
                       problem.what());
    }
}

Keeper::Keeper(Boards boards, EventQueue& events, Surroundings& around)
    : boards_(std::move(boards)), events_(events), around_(around), event_(newEvent()) {}

Keeper::~Keeper() {
    stop();
}

void Keeper::wake() {
    if (stopping_.load(std::memory_order_acquire))
        return;
    if (!running_.load(std::memory_order_acquire)) {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (!running_.exchange(true) && !stopping_)
            thread_ = std::thread([this] { run(); });
    }
    eventfd_write(event_.get(), 1);
}

void Keeper::lookFor(const std::string& board) {
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        missing_.insert(board);
    }
    wake();
}

void Keeper::stop() {
    std::thread ended;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        stopping_ = true;
        ended.swap(thread_);
    }
    eventfd_write(event_.get(), 1);
    if (ended.joinable())
        ended.join();
    events_.deliver();
}

void Keeper::sleep(TimePoint until) const {
    pollfd entries[RackSearch::Search::kMostWatched + 1] = {{event_.get(), POLLIN, 0}};
    std::size_t count = 1;
    if (hunt_) {
        count += hunt_->watch(entries + count);
        until = std::min(until, hunt_->wake());
    }
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now()).count();
    poll(entries, static_cast<nfds_t>(count), static_cast<int>(std::max<decltype(left)>(left, 0)));
    eventfd_t times = 0;
    eventfd_read(event_.get(), &times);
}

// Begins a search when boards are missing, and takes it a step further.
void Keeper::hunt() {
    if (!hunt_) {
        std::set<std::string> names;
        {
            const std::lock_guard<std::mutex> lock(mutex_);
            names.swap(missing_);
        }
        if (names.empty())
            return;
        hunt_ = std::make_unique<Hunt>(std::move(names), [this](const FoundBoard& where) { found(where); });
    }
    if (hunt_->step())
        hunt_.reset();
}

void Keeper::found(const FoundBoard& where) {
    const std::optional<in_addr_t> address = parseDotted(where.address);
    for (const std::shared_ptr<Board>& one : boards_())
        if (one->link.board() == where.serial && address)
            one->link.found(*address);
}

void Keeper::run() {
    const auto stopping = [this] {
        events_.deliver();
        hunt();
        return stopping_.load(std::memory_order_acquire);
    };
    TimePoint next = Clock::now() + kPeriod;
    while (!stopping()) {
        if (Clock::now() >= next) {
            ping(stopping);
            next += kPeriod;
        }
        sleep(next);
    }
}

} // namespace Orvane::RackCore
