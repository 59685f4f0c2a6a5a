// The handler of SIGINT around a call of the main thread.
#include "python/module/Interruptible.h"

#include <atomic>
#include <pthread.h>
#include <pybind11/pybind11.h>
#include <sched.h>

namespace OrvanePython {
namespace {

using Orvane::Cancellation;

// What the handler reads; written by the main thread while the handler is not in place.
struct sigaction former;
std::atomic<Cancellation*> own{nullptr};     // of calls without one; never freed, for a handler may come late
std::atomic<Cancellation*> current{nullptr}; // that the program gave to the outermost call
std::atomic<int> handling{0};                // threads inside the handler

pthread_t mainThread;
bool inPlace = false; // of the main thread

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

// False when nobody handles SIGINT.
bool install() {
    struct sigaction action {};
    action.sa_sigaction = onInterrupt;
    action.sa_flags = SA_SIGINFO | SA_ONSTACK;
    struct sigaction before {};
    if (sigaction(SIGINT, nullptr, &before) != 0 || before.sa_handler == SIG_DFL ||
        before.sa_handler == SIG_IGN)
        return false;
    former = before;
    return sigaction(SIGINT, &action, nullptr) == 0;
}

// A handler that the program has set meanwhile stays.
void remove() {
    struct sigaction found {};
    sigaction(SIGINT, &former, &found);
    if (!isOurs(found))
        sigaction(SIGINT, &found, nullptr);
}

} // namespace

void Interruptible::begin(unsigned long thread) noexcept {
    mainThread = thread;
}

void Interruptible::forget() noexcept {
    mainThread = pthread_self();
    own = nullptr;
    current = nullptr;
    inPlace = false;
}

Interruptible::Interruptible(Orvane::Within& limits) {
    if (pthread_equal(pthread_self(), mainThread) == 0)
        return;
    if (own == nullptr)
        own = new Cancellation;
    if (!inPlace) {
        if (own.load()->cancelled())
            own.load()->reset();
        current =
            const_cast<Cancellation*>(limits.cancellation); // NOLINT(*-const-cast): the program could, too
        installed_ = install();
        inPlace = installed_;
    }
    if (inPlace && limits.cancellation == nullptr)
        limits.cancellation = own;
}

Interruptible::~Interruptible() {
    if (!installed_)
        return;
    remove();
    current = nullptr;
    inPlace = false;
    while (handling.load() != 0) // on another thread, for a few instructions
        sched_yield();
}

void Interruptible::raise() {
    if (PyErr_CheckSignals() != 0)
        throw pybind11::error_already_set();
}

} // namespace OrvanePython
