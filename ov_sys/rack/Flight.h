// Operations on any number of boards under way at once, from one thread.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/rack/Phy.h"
#include "ov_sys/rack/values/Batch.h"
#include "ov_sys/rack/values/Failure.h"
#include "ov_sys/rack/values/Within.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <utility>
#include <vector>

namespace Orvane {

namespace RackCore {
class Fleet;
}

class Flight;

// What becomes of one operation of a flight. A handle; copies share it. To be used by the thread of the
// flight.
template <class Value>
class Pending {
public:
    // Whether it has ended, well or not.
    bool done() const noexcept { return state_->value || state_->failure; }
    // The failure of an operation that has ended badly.
    const std::optional<Failure>& failure() const noexcept { return state_->failure; }
    // Waits for the end; blocks up to the operation's limits. Throws its Failure.
    const Value& get() const;

private:
    friend class Flight;
    struct State {
        std::optional<Value> value;
        std::optional<Failure> failure;
        Flight* flight = nullptr; // until it has ended
    };
    std::shared_ptr<State> state_ = std::make_shared<State>();
};

// Starts operations and collects what they come to. Operations of one board are sent in the order in which
// they were started, several in flight at a time; those with side effects (Within::once()) and all of SMBus
// ports fly alone on their board. Without a thread of its own: nothing moves but in start, step(), wait() and
// Pending::get(). While operations are under way on a board, other threads' calls on it wait for them; hooks
// of sessions that are opened again run in here. One thread at a time.
//
// For an event loop: watch descriptor() and call step() when it is readable.
class ORVANE_API Flight {
public:
    // `window`: calls in flight on one board at most, 1 to 64. Neither they nor their answers are more than
    // 32 KiB together. Throws std::system_error.
    explicit Flight(unsigned window = 8);
    // Cancels what is under way.
    ~Flight();
    Flight(const Flight&) = delete;
    Flight& operator=(const Flight&) = delete;

    // As the member functions of Phy, but do not block. Throw Failure (InvalidArgument); what goes wrong
    // later is the result's.
    Pending<std::uint32_t> read(const Phy& phy, RegisterAddress address, const Within& within = {});
    Pending<std::uint32_t> write(const Phy& phy, RegisterAddress address, std::uint32_t value,
                                 const Within& within = {});
    // `count` registers from `first` on, any number.
    Pending<std::vector<std::uint32_t>> read(const Phy& phy, RegisterAddress first, std::size_t count,
                                             const Within& within = {});
    Pending<BatchResult> run(const Phy& phy, Batch batch, const Within& within = {});

    // Opens or closes the session.
    Pending<bool> open(const Phy& phy, const Within& within = {});
    Pending<bool> close(const Phy& phy, const Within& within = {});

    // Readable when step() has something to do. Owned by the flight.
    int descriptor() const noexcept;
    // Does what can be done without waiting.
    void step();
    // Blocks until nothing is under way.
    void wait();
    // Blocks for something to happen, and steps.
    void waitSome();
    std::size_t underWay() const noexcept;

private:
    template <class Value>
    Pending<Value> pending();

    std::unique_ptr<RackCore::Fleet> fleet_;
};

template <class Value>
const Value& Pending<Value>::get() const {
    while (!done())
        state_->flight->waitSome();
    if (state_->failure)
        throw Failure(*state_->failure);
    return *state_->value;
}

} // namespace Orvane
