// The handler of SIGINT around a call of the main thread.
#include "python/module/Interruptible.h"

#include <atomic>
#include <pthread.h>
#include <pybind11/pybind11.h>
#include <sched.h>

namespace OrvanePython {
namespace {

using Orvane::Cancellation;

// What the handler reads.
struct sigaction former;                     // what it did before; written while the handler is not in place
std::atomic<Cancellation*> own{nullptr};     // of calls without one; never freed, for a handler may come late
std::atomic<Cancellation*> current{nullptr}; // that the program gave to the outermost call
std::atomic<int> handling{0};                // threads inside the handler

pthread_t mainThread;
bool inCall = false; // of the main thread

extern "C" void onInterrupt(int number, siginfo_t* info, void* context) {
    ++handling;
    for (Cancellation* const one : {own.load(), current.load()})
        if (one != nullptr)
            one->cancel();
    --handling;
    if ((former.sa_flags & SA_SIGINFO) != 0)
        former.sa_sigaction(number, info, context);
    else
        former.sa_handler(number);
}

bool isOurs(const struct sigaction& action) noexcept {
    return (action.sa_flags & SA_SIGINFO) != 0 && action.sa_sigaction == onInterrupt;
}

// On another thread the handler takes a few instructions.
void awaitHandlers() {
    while (handling.load() != 0)
        sched_yield();
}

// False when nobody handles SIGINT. The handler stays between calls, where it does nothing of its own, for
// putting it there and taking it away costs as much as a third of a read; one that the program has set
// meanwhile is found here.
bool install() {
    struct sigaction found {};
    if (sigaction(SIGINT, nullptr, &found) != 0)
        return false;
    if (isOurs(found))
        return true;
    if (found.sa_handler == SIG_DFL || found.sa_handler == SIG_IGN)
        return false;
    awaitHandlers();
    former = found;
    struct sigaction action {};
    action.sa_sigaction = onInterrupt;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    return sigaction(SIGINT, &action, nullptr) == 0;
}

} // namespace

void Interruptible::begin(unsigned long thread) noexcept {
    mainThread = thread;
}

void Interruptible::forget() noexcept {
    mainThread = pthread_self();
    own = nullptr;
    current = nullptr;
    inCall = false;
}

Interruptible::Interruptible(Orvane::Within& limits) {
    if (pthread_equal(pthread_self(), mainThread) == 0)
        return;
    if (own == nullptr)
        own = new Cancellation;
    if (!inCall) {
        if (own.load()->cancelled()) { // since the last call, and perhaps nobody has looked yet
            own.load()->reset();
            raise();
        }
        current =
            const_cast<Cancellation*>(limits.cancellation); // NOLINT(*-const-cast): the program could, too
        installed_ = install();
        if (!installed_)
            current = nullptr;
        inCall = installed_;
    }
    if (inCall && limits.cancellation == nullptr)
        limits.cancellation = own;
}

Interruptible::~Interruptible() {
    if (!installed_)
        return;
    inCall = false;
    if (current.exchange(nullptr) != nullptr)
        awaitHandlers(); // it may end with the call
}

void Interruptible::raise() {
    if (PyErr_CheckSignals() != 0)
        throw pybind11::error_already_set();
}

} // namespace OrvanePython
