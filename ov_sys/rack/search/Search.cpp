// When a search asks, how long it listens, and whom it tells.
#include "ov_sys/rack/search/Search.h"

#include "ov_sys/rack/link/Drive.h"

#include <algorithm>
#include <cerrno>

namespace Orvane::RackSearch {
namespace {

using namespace RackLink;
using Milliseconds = std::chrono::milliseconds;

constexpr Milliseconds kBetweenQuestions{150};
constexpr Milliseconds kLastQuestion{200}; // before the end: what is asked later is not answered in time
constexpr Milliseconds kSilence{400}; // of a program that is listened to, which speaks with each question

} // namespace

bool Search::listenHere(TimePoint now) {
    nextQuestion_ = now;
    return network_.open();
}

// Finds somebody to listen to, or listens itself. False when it cannot.
bool Search::join(Limits& limits) {
    if (network_.descriptor() >= 0 || listener_.isOpen())
        return true;
    if (!trusts_ || speaker_.open()) {
        for (const Answer& answer : answers_) // of whom it listened to before
            speaker_.tell(answer);
        return listenHere(limits.now);
    }
    listener_.open(); // otherwise its holder has just ended, or is overrun: once more in a moment
    if (lastHeard_ == TimePoint{} || listener_.isOpen())
        lastHeard_ = limits.now;
    return true;
}

std::size_t Search::watch(pollfd* entries) const noexcept {
    std::size_t count = 0;
    for (const int fd : {network_.descriptor(), speaker_.descriptor(), listener_.descriptor()})
        if (fd >= 0 && count < kMostWatched) // one listens, or speaks
            entries[count++] = {fd, POLLIN, 0};
    return count;
}

TimePoint Search::wake(const Limits& limits) const noexcept {
    constexpr Milliseconds kMoment{10};
    const bool listens = network_.descriptor() >= 0;
    const TimePoint next = std::min(limits.end, listens ? nextQuestion_ : lastHeard_ + kSilence);
    return behind_ || (!listens && !listener_.isOpen()) ? std::min(next, limits.now + kMoment) : next;
}

// True when that is enough.
bool Search::take(const Answer& answer) {
    if (!answers_.insert(answer).second)
        return false;
    speaker_.tell(answer);
    behind_ = speaker_.isOpen();
    return enough_ && enough_(answer);
}

bool Search::receive(TimePoint now) {
    constexpr std::size_t kMost = 65536; // different answers: beyond it somebody makes them up
    while (network_.descriptor() >= 0) {
        const std::optional<Answer> answer = network_.receive();
        if (!answer)
            break;
        if (answers_.size() < kMost && take(*answer))
            return true;
    }
    while (listener_.isOpen()) {
        Answer answer{};
        const Listener::Heard heard = listener_.hear(answer);
        if (heard == Listener::Heard::Nothing)
            break;
        if (heard == Listener::Heard::End) {
            listener_.close();
            lastHeard_ = now;
            break;
        }
        lastHeard_ = now;
        if (heard == Listener::Heard::Answer && answers_.size() < kMost && take(answer))
            return true;
    }
    return false;
}

void Search::askWhenDue(const Limits& limits) {
    if (network_.descriptor() < 0 || limits.now < nextQuestion_)
        return;
    speaker_.beat();
    if (nextQuestion_ + kLastQuestion < limits.end || answers_.empty())
        network_.ask();
    nextQuestion_ = limits.now + kBetweenQuestions;
}

bool Search::step(Limits& limits) {
    limits.now = Clock::now();
    if (limits.cancelled()) {
        trouble_ = FailureKind::Cancelled;
        return true;
    }
    if (receive(limits.now) || limits.now >= limits.end)
        return true;
    behind_ = !speaker_.step();
    if (network_.descriptor() < 0 && lastHeard_ != TimePoint{} && limits.now - lastHeard_ >= kSilence) {
        trusts_ = false; // stopped, or not one of us
        listener_.close();
    }
    if (!join(limits)) {
        trouble_ = {FailureKind::Unreachable, -errno};
        return true;
    }
    askWhenDue(limits);
    return false;
}

Trouble Search::run(Limits& limits) {
    while (!step(limits)) {
        pollfd entries[kMostWatched + 1];
        waitFor(entries, watch(entries), limits, wake(limits));
    }
    return trouble_;
}

} // namespace Orvane::RackSearch
