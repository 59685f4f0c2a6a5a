// The epoll loop: readiness, timers, and tasks handed over from other threads.
#include "simulator/engine/EventLoop.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <exception>
#include <future>
#include <stdexcept>
#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <system_error>

namespace OrvaneSim {
namespace {

constexpr std::uint64_t kWakeUpToken = ~std::uint64_t{0};
constexpr std::size_t kScratchBytes = 65536;

[[noreturn]] void throwSystemError(const char* what) {
    throw std::system_error(errno, std::generic_category(), what);
}

std::uint64_t tokenOf(std::uint32_t index, std::uint32_t generation) {
    return (std::uint64_t{generation} << 32) | index;
}

// One board's trouble must not end the others'; the loop goes on after a line on standard error.
template <class Work>
void guarded(const Work& task) {
    try {
        task();
    } catch (const std::exception& problem) {
        std::fprintf(stderr, "simulator: %s\n", problem.what());
    }
}

} // namespace

EventLoop::EventLoop(const Task& prologue)
    : epoll_(::epoll_create1(EPOLL_CLOEXEC)),
      wakeUp_(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)),
      scratch_(kScratchBytes) {
    if (!epoll_ || !wakeUp_)
        throwSystemError("cannot create the event loop");
    epoll_event event{};
    event.events = EPOLLIN;
    event.data.u64 = kWakeUpToken;
    if (::epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, wakeUp_.get(), &event) != 0)
        throwSystemError("cannot watch the event loop's wake-up");

    std::promise<void> started;
    auto outcome = started.get_future();
    thread_ = std::thread([this, &prologue, &started] {
        try {
            if (prologue)
                prologue();
        } catch (...) {
            started.set_exception(std::current_exception());
            return;
        }
        started.set_value();
        run();
    });
    try {
        outcome.get();
    } catch (...) {
        thread_.join();
        throw;
    }
}

EventLoop::~EventLoop() {
    stop();
}

void EventLoop::stop() {
    {
        const std::lock_guard<std::mutex> lock(tasksMutex_);
        stopping_ = true;
    }
    wake();
    if (thread_.joinable())
        thread_.join();
}

bool EventLoop::post(Task task) {
    {
        const std::lock_guard<std::mutex> lock(tasksMutex_);
        if (stopping_)
            return false;
        tasks_.push_back(std::move(task));
    }
    wake();
    return true;
}

// `call` whatever the work returns, so that it is compiled once.
void EventLoop::runThere(const Task& work) {
    if (isHere())
        return work();
    std::packaged_task<void()> packaged(work);
    auto outcome = packaged.get_future();
    if (!post([&packaged] { packaged(); }))
        throw std::logic_error("the event loop has stopped");
    outcome.get();
}

void EventLoop::wake() {
    const std::uint64_t one = 1;
    // The only failure is a full counter, and then the loop is awake already.
    [[maybe_unused]] const auto written = ::write(wakeUp_.get(), &one, sizeof one);
}

EventLoop::Watch EventLoop::watch(int fd, std::uint32_t events, Ready ready) {
    if (freeSlots_.empty()) {
        slots_.emplace_back();
        freeSlots_.push_back(static_cast<std::uint32_t>(slots_.size() - 1));
    }
    const std::uint32_t index = freeSlots_.back();
    epoll_event event{};
    event.events = events;
    event.data.u64 = tokenOf(index, slots_[index].generation);
    if (::epoll_ctl(epoll_.get(), EPOLL_CTL_ADD, fd, &event) != 0)
        throwSystemError("cannot watch a socket");
    freeSlots_.pop_back();
    slots_[index].ready = std::make_shared<Ready>(std::move(ready));
    Watch watch;
    watch.loop_ = this;
    watch.fd_ = fd;
    watch.token_ = event.data.u64;
    return watch;
}

void EventLoop::unwatch(int fd, std::uint64_t token) {
    ::epoll_ctl(epoll_.get(), EPOLL_CTL_DEL, fd, nullptr);
    const auto index = static_cast<std::uint32_t>(token);
    slots_[index].ready.reset();
    ++slots_[index].generation;
    freeSlots_.push_back(index);
}

EventLoop::Watch& EventLoop::Watch::operator=(Watch&& other) noexcept {
    std::swap(loop_, other.loop_);
    std::swap(fd_, other.fd_);
    std::swap(token_, other.token_);
    return *this;
}

EventLoop::Watch::~Watch() {
    if (loop_)
        loop_->unwatch(fd_, token_);
}

void EventLoop::Watch::setEvents(std::uint32_t events) {
    epoll_event event{};
    event.events = events;
    event.data.u64 = token_;
    ::epoll_ctl(loop_->epoll_.get(), EPOLL_CTL_MOD, fd_, &event);
}

void EventLoop::after(Clock::duration delay, const Life& life, Task task) {
    timers_.emplace(Clock::now() + delay, Timer{life, std::move(task)});
}

bool EventLoop::isWanted() {
    if (!timers_.empty() && timers_.begin()->first <= Clock::now())
        return true;
    const std::lock_guard<std::mutex> lock(tasksMutex_);
    return !tasks_.empty();
}

int EventLoop::millisecondsToNextTimer() const {
    if (timers_.empty())
        return -1;
    const auto left = timers_.begin()->first - Clock::now();
    if (left <= Clock::duration::zero())
        return 0;
    return static_cast<int>(std::chrono::ceil<std::chrono::milliseconds>(left).count());
}

void EventLoop::runTimers() {
    const auto now = Clock::now();
    while (!timers_.empty() && timers_.begin()->first <= now) {
        const auto due = timers_.extract(timers_.begin());
        if (!due.mapped().life.expired())
            guarded(due.mapped().task);
    }
}

void EventLoop::runTasks() {
    std::uint64_t count = 0;
    [[maybe_unused]] const auto drained = ::read(wakeUp_.get(), &count, sizeof count);
    std::vector<Task> tasks;
    {
        const std::lock_guard<std::mutex> lock(tasksMutex_);
        tasks.swap(tasks_);
    }
    for (const Task& task : tasks)
        guarded(task);
}

void EventLoop::dispatch(std::uint64_t token, std::uint32_t events) {
    const auto index = static_cast<std::uint32_t>(token);
    const Slot& slot = slots_[index];
    // An earlier event of the same batch may have ended this watch, or given its slot to another.
    if (!slot.ready || tokenOf(index, slot.generation) != token)
        return;
    const std::shared_ptr<Ready> ready = slot.ready;
    guarded([&] { (*ready)(events); });
}

void EventLoop::run() {
    std::array<epoll_event, 64> events{};
    for (;;) {
        const int count = ::epoll_wait(epoll_.get(), events.data(), static_cast<int>(events.size()),
                                       millisecondsToNextTimer());
        auto* const end = events.begin() + std::max(count, 0);
        const auto wakesUp = [](const epoll_event& event) { return event.data.u64 == kWakeUpToken; };
        // Tasks go first: a board that is told to stop must not answer what came after that.
        if (std::any_of(events.begin(), end, wakesUp))
            runTasks();
        std::for_each(events.begin(), end, [&](const epoll_event& event) {
            if (!wakesUp(event))
                dispatch(event.data.u64, event.events);
        });
        if (!timers_.empty())
            runTimers();
        const std::lock_guard<std::mutex> lock(tasksMutex_);
        if (stopping_ && tasks_.empty())
            return;
    }
}

} // namespace OrvaneSim
