#include "tools/orvane/shared/Interrupts.h"

#include "ov_sys/Interface/buses/rpc/RPCSetup.h"
#include "tools/orvane/shared/Errors.h"

#include <array>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <exception>
#include <orvane/orvane.hpp>
#include <poll.h>
#include <string_view>
#include <sys/eventfd.h>
#include <sys/signalfd.h>
#include <system_error>
#include <unistd.h>

namespace OrvaneTool {
namespace {

constexpr std::chrono::milliseconds kPatience{500}; // for a command to notice
constexpr std::array kSignals{SIGINT, SIGTERM, SIGHUP};

int blockedSignals() {
    sigset_t set;
    sigemptyset(&set);
    for (const int number : kSignals)
        sigaddset(&set, number);
    ::pthread_sigmask(SIG_BLOCK, &set, nullptr);
    const int descriptor = ::signalfd(-1, &set, SFD_CLOEXEC);
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "cannot wait for signals");
    return descriptor;
}

int stopEvent() {
    const int descriptor = ::eventfd(0, EFD_CLOEXEC);
    if (descriptor < 0)
        throw std::system_error(errno, std::generic_category(), "cannot make an event");
    return descriptor;
}

// A session like that one, by which the board can be told about it.
void closeOnBoard(const Orvane::PhySession& session, const Orvane::SimpleDeviceEntry& device) {
    Orvane::PhySession twin(Orvane::AddressResponse(device.boardSerial, device.address), session.mdio);
    twin.initSessionInfo(session.sessionId, session.callSequence);
    Orvane::Setup::closeConnection(twin);
    twin.abandon();
}

bool haveSessions() {
    for (const auto& device : HW_Interface_Object.devices)
        if (device->isOpen != 0)
            return true;
    return false;
}

} // namespace

void closeSessionsFromOutside() {
    for (const auto& device : HW_Interface_Object.devices) {
        // Held while a session is being opened, which is not to be closed yet.
        const std::unique_lock<std::mutex> lock(device->lock, std::try_to_lock);
        if (device->isOpen == 0 || !lock)
            continue;
        for (const auto& entry : device->sessions) {
            try {
                closeOnBoard(*entry->session, *device);
            } catch (const std::exception&) { // the board is gone; so is its session, in a while
            }
        }
    }
}

Interrupts::Interrupts(int terminal)
    : signals_(blockedSignals()), stop_(stopEvent()), terminal_(terminal), watcher_([this] { watch(); }) {}

Interrupts::~Interrupts() {
    closing();
    const std::uint64_t one = 1;
    [[maybe_unused]] const ssize_t written = ::write(stop_, &one, sizeof one);
    watcher_.join();
    ::close(signals_);
    ::close(stop_);
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

void Interrupts::closing() {
    const std::lock_guard<std::mutex> lock(mutex_);
    closing_ = true;
    changed_.notify_all();
}

void Interrupts::watch() {
    std::array<pollfd, 2> events{{{signals_, POLLIN, 0}, {stop_, POLLIN, 0}}};
    for (;;) {
        if (::poll(events.data(), events.size(), -1) < 0)
            continue;
        if (events[1].revents != 0)
            return;
        signalfd_siginfo information{};
        if (::read(signals_, &information, sizeof information) == sizeof information)
            onSignal(static_cast<int>(information.ssi_signo));
    }
}

void Interrupts::onSignal(int number) {
    std::unique_lock<std::mutex> lock(mutex_);
    if (signal_ != 0) // asked twice
        ::_exit(128 + number);
    signal_ = number;
    changed_.notify_all();
    if (changed_.wait_for(lock, haveSessions() ? kPatience : std::chrono::milliseconds(0),
                          [this] { return closing_; }))
        return;
    lock.unlock();
    endFromOutside(number);
}

void Interrupts::endFromOutside(int number) const {
    closeSessionsFromOutside();
    constexpr std::string_view kClearLine = "\r\033[K";
    if (terminal_ >= 0) [[maybe_unused]]
        const ssize_t written = ::write(terminal_, kClearLine.data(), kClearLine.size());
    ::_exit(128 + number);
}

} // namespace OrvaneTool
