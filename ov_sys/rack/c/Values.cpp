// Copies between the C structs and the C++ values.
#include "ov_sys/rack/c/Values.h"

#include "ov_sys/rack/c/Failures.h"
#include "ov_sys/rack/c/Handles.h"

#include <algorithm>
#include <chrono>
#include <cmath>

namespace Orvane::RackC {

static_assert(static_cast<int>(RegisterAddress::Space::Clause45) == ORVANE_CLAUSE45);
static_assert(static_cast<int>(RegisterAddress::Space::Clause22) == ORVANE_CLAUSE22);
static_assert(static_cast<int>(RegisterAddress::Space::Ext32) == ORVANE_EXT32);
static_assert(static_cast<int>(Access::Mode::Exclusive) == ORVANE_EXCLUSIVE);
static_assert(static_cast<int>(Access::Mode::Shared) == ORVANE_SHARED);
static_assert(static_cast<int>(Access::Mode::Simple) == ORVANE_SIMPLE);
static_assert(static_cast<int>(OperationOutcome::State::NotSent) == ORVANE_OPERATION_NOT_SENT);
static_assert(static_cast<int>(OperationOutcome::State::Done) == ORVANE_OPERATION_DONE);
static_assert(static_cast<int>(OperationOutcome::State::Refused) == ORVANE_OPERATION_REFUSED);
static_assert(static_cast<int>(OperationOutcome::State::Unknown) == ORVANE_OPERATION_UNKNOWN);

Within withinOf(const orvane_limits* limits, const Within& usual) noexcept {
    constexpr double kLongest = 1e9; // seconds
    if (limits == nullptr)
        return usual;
    const double seconds = std::isnan(limits->seconds) ? 0 : std::clamp(limits->seconds, 0.0, kLongest);
    Within within = Orvane::within(
        std::chrono::duration_cast<std::chrono::nanoseconds>(std::chrono::duration<double>(seconds)));
    within.repeat = {limits->read_repeats, limits->write_repeats};
    within.heal = limits->heals != 0;
    within.cancellation = limits->cancellation != nullptr ? &limits->cancellation->cancellation : nullptr;
    return within;
}

RegisterPaths pathsOf(const orvane_paths* paths) noexcept {
    RegisterPaths wanted;
    if (paths == nullptr)
        return wanted;
    wanted.byFirmware = {paths->read_classes != 0, paths->write_paged != 0, paths->read_paged != 0,
                         paths->tge != 0, paths->serdes != 0};
    wanted.overClause22 = paths->over_clause22 != 0;
    return wanted;
}

RegisterAddress addressOf(const orvane_register& address) {
    if (address.space > ORVANE_EXT32)
        refuse("There is no such register space.");
    const auto space = static_cast<RegisterAddress::Space>(address.space);
    return {space, space == RegisterAddress::Space::Clause45 ? address.mmd : 0, address.number};
}

Access accessOf(const orvane_access& access) {
    if (access.mode > ORVANE_SIMPLE)
        refuse("There is no such mode of access.");
    return {static_cast<Access::Mode>(access.mode), access.key, access.queues != 0};
}

Batch batchOf(const orvane_operation* operations, std::size_t count) {
    Batch batch;
    for (std::size_t i = 0; i < count; ++i)
        if (operations[i].writes != 0)
            batch.write(addressOf(operations[i].address), operations[i].value);
        else
            batch.read(addressOf(operations[i].address));
    return batch;
}

void store(const BatchResult& result, orvane_operation* operations) {
    for (std::size_t i = 0; i < result.size(); ++i) {
        const OperationOutcome& outcome = result.outcome(i);
        operations[i].state = static_cast<int>(outcome.state);
        operations[i].code = outcome.code;
        if (outcome.state == OperationOutcome::State::Done)
            operations[i].value = outcome.value;
    }
    if (result.failure())
        throw Failure(*result.failure());
}

} // namespace Orvane::RackC

extern "C" const char* orvane_operation_state_text(int state) {
    if (state < ORVANE_OPERATION_NOT_SENT || state > ORVANE_OPERATION_UNKNOWN)
        return "unknown state";
    return toText(static_cast<Orvane::OperationOutcome::State>(state));
}
