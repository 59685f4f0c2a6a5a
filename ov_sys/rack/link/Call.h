// One call of a board's procedure on its way, seen from below its records.
#pragma once

#include "ov_sys/rack/link/Program.h"
#include "ov_sys/rack/values/Trouble.h"
#include "ov_sys/rack/values/Within.h"

#include <algorithm>
#include <chrono>
#include <cstddef>
#include <cstdint>

namespace Orvane::RackLink {

struct Session;

using Clock = std::chrono::steady_clock;
using TimePoint = Clock::time_point;

// What it does to the board when it is executed twice, or when calls around it overtake it.
enum class Effect : std::uint8_t { Reads, Writes, Alone };

// Belongs to whoever makes the call, who keeps it until it is done; a link changes what is below the line.
class Call {
public:
    Call(Program which, std::uint32_t number, Effect does) noexcept
        : program(which), procedure(number), effect(does) {}
    virtual ~Call() = default;
    Call(const Call&) = delete;
    Call& operator=(const Call&) = delete;

    // Writes the request with its transaction id and session word; its length, 0 when it does not fit.
    virtual std::size_t encode(char* buffer, std::size_t capacity) = 0;
    // Takes the reply whose transaction id fits. May be called again for an answer to a repeated request.
    virtual Trouble decode(char* reply, std::size_t length) = 0;

    // Sets what the caller may say.
    void limit(const Within& within, TimePoint now, TimePoint end) noexcept {
        begun = now;
        deadline = end;
        const Repeat& most = within.repeat;
        repeatsLeft = effect == Effect::Reads    ? most.reads
                      : effect == Effect::Writes ? most.writes
                                                 : std::min(most.reads, most.writes);
        heals = within.heal;
    }

    bool done() const noexcept { return stage == Stage::Done; }

    const Program program;
    const std::uint32_t procedure;
    const Effect effect;
    bool heals = true;
    bool isHook = false;        // made by the hook that follows a reopening
    bool isPing = false;        // counted apart from the session's other calls
    std::uint32_t room = 8800;  // bytes that neither request nor answer exceed
    unsigned repeatsLeft = 0;   // times that a request without answer may still be sent again
    Session* session = nullptr; // null: carries no session word
    TimePoint begun{};
    TimePoint deadline{};

    // ---- the link's ----
    enum class Stage : std::uint8_t { New, Waiting, Flying, Answered, Done };
    Stage stage = Stage::New;
    bool everSent = false;      // an answer may be missing for it, so that the board may have executed it
    unsigned sends = 0;         // in all
    unsigned losses = 0;        // sends without answer since the last sign of life
    std::uint32_t id = 0;       // transaction id
    std::uint32_t identity = 0; // session word
    std::uint32_t size = 0;     // bytes of the request
    TimePoint sentAt{};
    TimePoint notBefore{}; // a busy board asked to wait
    Trouble trouble;
    Call* next = nullptr;
    Call* previous = nullptr;
};

// Calls in order, linked through themselves. Owns nothing.
class CallList {
public:
    bool empty() const noexcept { return first_ == nullptr; }
    Call* front() const noexcept { return first_; }
    Call* back() const noexcept { return last_; }

    void pushBack(Call& call) noexcept { insertBefore(nullptr, call); }
    void pushFront(Call& call) noexcept { insertBefore(first_, call); }

    // `place` null: at the end.
    void insertBefore(Call* place, Call& call) noexcept {
        call.next = place;
        call.previous = place != nullptr ? place->previous : last_;
        (call.previous != nullptr ? call.previous->next : first_) = &call;
        (place != nullptr ? place->previous : last_) = &call;
    }

    void remove(Call& call) noexcept {
        (call.previous != nullptr ? call.previous->next : first_) = call.next;
        (call.next != nullptr ? call.next->previous : last_) = call.previous;
        call.next = call.previous = nullptr;
    }

private:
    Call* first_ = nullptr;
    Call* last_ = nullptr;
};

} // namespace Orvane::RackLink
