#include "ov_sys/rack/core/Keeper.h"

#include "ov_sys/rack/core/Fleet.h"
#include "ov_sys/rack/link/SetupCalls.h"

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

// One ping of every open session.
class Keeper::Round {
public:
    Round(const std::vector<std::shared_ptr<Board>>& boards, Surroundings* around) : around_(around) {
        for (const std::shared_ptr<Board>& board : boards)
            for (std::shared_ptr<OpenSession>& session : board->sessions())
                add(board, std::move(session));
    }

    void run(const std::function<bool()>& stop) {
        for (One& one : pings_)
            fleet_.add(one.board, *one.ping);
        fleet_.run(true, stop);
        for (One& one : pings_)
            settle(one);
    }

private:
    struct One {
        std::shared_ptr<Board> board;
        std::shared_ptr<OpenSession> session;
        std::unique_ptr<PingCall> ping;
    };

    // A board whose turn is not to be had is being talked to.
    void add(const std::shared_ptr<Board>& board, std::shared_ptr<OpenSession> session) {
        if (!board->link.turn.tryTake())
            return;
        const TurnGuard turn(board->link.turn);
        if (session->state().everOpened)
            pings_.push_back({board, session, std::make_unique<PingCall>(session->state())});
    }

    void settle(One& one) {
        const Trouble trouble = one.ping->trouble;
        if (trouble && trouble.kind() != FailureKind::Cancelled && around_ != nullptr)
            around_->report(one.board->link, &one.session->state(), Event::Kind::PingLost,
                            Event::Level::Warning, toText(trouble.kind()));
        if (trouble || !one.board->link.turn.tryTake())
            return;
        const TurnGuard turn(one.board->link.turn);
        runHook(one.board->link, one.session->state());
    }

    Within within_{std::chrono::milliseconds(1500), Repeat{}, true, nullptr};
    Surroundings* around_;
    std::vector<One> pings_;
    Fleet fleet_{within_};
};

Keeper::Keeper(Boards boards, Search search, EventQueue& events, Surroundings& around)
    : boards_(std::move(boards)),
      search_(std::move(search)),
      events_(events),
      around_(around),
      event_(newEvent()) {}

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
    pollfd entry{event_.get(), POLLIN, 0};
    const auto left = std::chrono::ceil<std::chrono::milliseconds>(until - Clock::now()).count();
    poll(&entry, 1, static_cast<int>(std::max<decltype(left)>(left, 0)));
    eventfd_t count = 0;
    eventfd_read(event_.get(), &count);
}

void Keeper::searchOne() {
    std::string board;
    {
        const std::lock_guard<std::mutex> lock(mutex_);
        if (missing_.empty())
            return;
        board = *missing_.begin();
        missing_.erase(missing_.begin());
    }
    const in_addr_t address = search_(board);
    for (const std::shared_ptr<Board>& one : boards_())
        if (one->link.board() == board && address != 0)
            one->link.found(address);
}

void Keeper::run() {
    const auto stopping = [this] {
        events_.deliver();
        return stopping_.load(std::memory_order_acquire);
    };
    TimePoint next = Clock::now() + kPeriod;
    while (!stopping()) {
        searchOne();
        if (Clock::now() >= next) {
            Round(boards_(), &around_).run(stopping);
            next += kPeriod;
        }
        sleep(next);
    }
}

} // namespace Orvane::RackCore
