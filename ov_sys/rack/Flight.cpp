// Operations become jobs of a fleet, and a fleet's ends become results.
#include "ov_sys/rack/Flight.h"

#include "ov_sys/rack/core/Fleet.h"
#include "ov_sys/rack/core/RegisterJobs.h"
#include "ov_sys/rack/core/SessionJobs.h"

#include <algorithm>
#include <new>

namespace Orvane {

using RackCore::Job;
using RackLink::Limits;
using RackLink::Trouble;

Flight::Flight(unsigned window) : fleet_(std::make_unique<RackCore::Fleet>()) {
    fleet_->setWindow(std::clamp(window, 1U, 64U));
}

Flight::~Flight() = default;

template <class Value>
Pending<Value> Flight::pending() {
    Pending<Value> result;
    result.state_->flight = this;
    return result;
}

Pending<std::uint32_t> Flight::read(const Phy& phy, RegisterAddress address, const Within& within) {
    phy.session_->object("read", address, 0, Limits(within));
    Pending<std::uint32_t> result = pending<std::uint32_t>();
    fleet_->add(std::make_unique<RackCore::RegisterJob>(
        phy.session_, within, address, std::nullopt,
        [state = result.state_](std::uint32_t value, std::optional<Failure> failure) {
            state->failure = std::move(failure);
            if (!state->failure)
                state->value = value;
        }));
    return result;
}

Pending<std::uint32_t> Flight::write(const Phy& phy, RegisterAddress address, std::uint32_t value,
                                     const Within& within) {
    phy.session_->object("write", address, value, Limits(within));
    Pending<std::uint32_t> result = pending<std::uint32_t>();
    fleet_->add(std::make_unique<RackCore::RegisterJob>(
        phy.session_, within, address, value,
        [state = result.state_](std::uint32_t written, std::optional<Failure> failure) {
            state->failure = std::move(failure);
            if (!state->failure)
                state->value = written;
        }));
    return result;
}

namespace {

// What keeps a batch from flying; empty when nothing does.
void object(RackCore::OpenSession& session, const Batch& batch, const Within& within) {
    const Limits limits(within);
    for (const Batch::Operation& one : batch.operations())
        session.object(one.writes ? "write" : "read", one.address, one.value, limits);
}

} // namespace

namespace {

template <class State>
void storeValues(State& state, const BatchResult& done, Batch::Readings readings) noexcept {
    try {
        state.value = done[readings];
    } catch (const std::bad_alloc&) {
        state.failure = RackCore::memoryRanOut();
    }
}

} // namespace

Pending<std::vector<std::uint32_t>> Flight::read(const Phy& phy, RegisterAddress first, std::size_t count,
                                                 const Within& within) {
    auto result = pending<std::vector<std::uint32_t>>();
    auto list = std::make_unique<RackCore::ListJob>(
        phy.session_, within, first,
        [state = result.state_](std::vector<std::uint32_t> values, std::optional<Failure> failure) {
            state->failure = std::move(failure);
            if (!state->failure)
                state->value = std::move(values);
        });
    if (list->take(count)) {
        fleet_->add(std::move(list));
        return result;
    }
    Batch batch;
    const Batch::Readings all = batch.read(first, count);
    object(*phy.session_, batch, within);
    fleet_->add(RackCore::jobOf(phy.session_, within, std::move(batch),
                                [state = result.state_, all](const BatchResult& done) {
                                    state->failure = done.failure();
                                    if (done.complete())
                                        storeValues(*state, done, all);
                                }));
    return result;
}

Pending<BatchResult> Flight::run(const Phy& phy, Batch batch, const Within& within) {
    object(*phy.session_, batch, within);
    Pending<BatchResult> result = pending<BatchResult>();
    fleet_->add(
        RackCore::jobOf(phy.session_, within, std::move(batch),
                        [state = result.state_](BatchResult done) { state->value = std::move(done); }));
    return result;
}

namespace {

template <class State>
RackCore::Settled tell(const std::shared_ptr<State>& state, const char* operation) {
    return [state, operation](const Job& job, Trouble trouble) {
        if (trouble)
            state->failure =
                Job::failureBy([&] { return job.session->failure(trouble, operation, {}, job.limits); });
        else
            state->value = true;
    };
}

} // namespace

Pending<bool> Flight::open(const Phy& phy, const Within& within) {
    Pending<bool> result = pending<bool>();
    fleet_->add(std::make_unique<RackCore::PingJob>(
        phy.session_, within, [told = tell(result.state_, "open")](const Job& job, Trouble trouble) {
            job.session->log().service(job.session->place(), "session.open", trouble);
            told(job, trouble);
        }));
    return result;
}

Pending<bool> Flight::close(const Phy& phy, const Within& within) {
    Pending<bool> result = pending<bool>();
    fleet_->add(std::make_unique<RackCore::CloseJob>(phy.session_, within, tell(result.state_, "close")));
    return result;
}

int Flight::descriptor() const noexcept {
    return fleet_->descriptor();
}

void Flight::step() {
    fleet_->step();
}

void Flight::wait() {
    fleet_->run({});
}

void Flight::waitSome() {
    fleet_->stepSome();
}

std::size_t Flight::underWay() const noexcept {
    return fleet_->underWay();
}

} // namespace Orvane
