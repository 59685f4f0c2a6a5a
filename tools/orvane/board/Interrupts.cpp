// The thread that waits for signals while the command works.
#include "tools/orvane/board/Interrupts.h"

#include "tools/orvane/output/Errors.h"
#include "tools/orvane/output/Keys.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <poll.h>
#include <string_view>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

namespace OrvaneTool {
namespace {

constexpr std::chrono::milliseconds kFarewell{3000}; // for a rack whose boards may be silent
constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};

Orvane::FileDescriptor blockedSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : kSignals)
        sigaddset(&set, number);
    ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
    Orvane::FileDescriptor descriptor(::signalfd(-1, &set, SFD_CLOEXEC));
    if (!descriptor)
        throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
    return descriptor;
}

Orvane::FileDescriptor stopEvent() {
    Orvane::FileDescriptor descriptor(::eventfd(0, EFD_CLOEXEC));
    if (!descriptor)
        throw std::system_error(errno, std::generic_category(), "cannot make an event");
    return descriptor;
}

} // namespace

Interrupts::Interrupts(int terminal)
    : signals_(blockedSignals()), stop_(stopEvent()), terminal_(terminal), watcher_([this] { watch(); }) {}

Interrupts::~Interrupts() {
    closing();
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(stop_.get(), &one, sizeof one);
    watcher_.join();
}

int Interrupts::signal() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return signal_;
}

void Interrupts::check() const {
    if (const int number = signal())
        throw Interrupted{number};
}

void Interrupts::sleep(std::chrono::milliseconds time) const {
    std::unique_lock<std::mutex> lock(mutex_);
    if (changed_.wait_for(lock, time, [this] { return signal_ != 0; }))
        throw Interrupted{signal_};
}

void Interrupts::giveTimeToClose() {
    const std::lock_guard<std::mutex> lock(mutex_);
    closesItself_ = true;
}

void Interrupts::closing() {
    const std::lock_guard<std::mutex> lock(mutex_);
    closing_ = true;
    changed_.notify_all();
}

void Interrupts::watch() {
    std::array<pollfd, 2> events{{{signals_.get(), POLLIN, 0}, {stop_.get(), POLLIN, 0}}};
    for (;;) {
        if (::poll(events.data(), events.size(), -1) < 0)
            continue;
        if (events[1].revents != 0)
            return;
        signalfd_siginfo information{};
        if (::read(signals_.get(), &information, sizeof information) == sizeof information)
            onSignal(static_cast<int>(information.ssi_signo));
    }
}

void Interrupts::onSignal(int number) {
    std::unique_lock<std::mutex> lock(mutex_);
    if (signal_ != 0) // asked twice
        ::_exit(128 + number);
    signal_ = number;
    cancellation_.cancel();
    changed_.notify_all();
    const auto patience = closesItself_ ? kFarewell : std::chrono::milliseconds(0);
    if (changed_.wait_for(lock, patience, [this] { return closing_; }))
        return;
    lock.unlock();
    endFromOutside(number);
}

void Interrupts::endFromOutside(int number) const {
    restoreTerminal();
    constexpr std::string_view kClearLine = "\r\033[K";
    if (terminal_ >= 0) [[maybe_unused]]
        const ssize_t written = ::write(terminal_, kClearLine.data(), kClearLine.size());
    ::_exit(128 + number);
}

} // namespace OrvaneTool
