// One call of a board's service, from the public edge down.
#pragma once

#include "ov_sys/rack/core/LogEntry.h"
#include "ov_sys/rack/link/Drive.h"
#include "ov_sys/rack/link/TypedCall.h"

#include <string>
#include <utility>
#include <vector>

namespace Orvane::RackCore {

// Its argument is filled before run(), its result good afterwards. The entry is the caller's.
template <class Param, class Result>
class ServiceCall : public RackLink::TypedCall<Param, Result> {
public:
    template <class Procedure>
    ServiceCall(LogEntry& entry, RackLink::Program which, Procedure number, RackLink::Effect does)
        : RackLink::TypedCall<Param, Result>(which, static_cast<std::uint32_t>(number), does), entry_(entry) {
        this->session = &entry.session().state();
    }

    // Throws the Failure of `operation` at `location`.
    void run(const char* operation, const Within& within, const std::string& location = {}) {
        RackLink::Limits limits(within);
        RackLink::drive(entry_.session().link(), *this, limits);
        entry_.check(this->trouble, operation, location, limits);
    }

private:
    LogEntry& entry_;
};

// Lists of the caller as a record takes them; XDR only reads what it encodes.
template <class Counted, class Element>
void pointAt(Counted& member, const std::vector<Element>& list) {
    auto& [count, values] = member;
    using Pointer = std::remove_reference_t<decltype(values)>;
    count = static_cast<u_int>(list.size());
    values = reinterpret_cast<Pointer>(const_cast<Element*>(list.data())); // NOLINT(*-const-cast)
}
template <class Counted>
void pointAt(Counted& member, const std::string& text) {
    auto& [count, values] = member;
    count = static_cast<u_int>(text.size());
    values = const_cast<char*>(text.data()); // NOLINT(*-const-cast)
}

// What a record's list holds.
template <class Element, class Counted>
std::vector<Element> listOf(const Counted& member) {
    const auto& [count, values] = member;
    return values == nullptr ? std::vector<Element>{} : std::vector<Element>(values, values + count);
}

// Throws the Failure of an answer with another number of values than asked for.
inline void requireCount(std::size_t got, std::size_t wanted, const OpenSession& session,
                         const char* operation) {
    const Within within;
    RackLink::Limits limits(within);
    limits.attempts = 1;
    if (got != wanted)
        throw session.failure(FailureKind::BadReply, operation, {}, limits);
}

// Throws the Failure of arguments that do not fit.
inline void require(bool fits, const OpenSession& session, const char* operation, const char* why) {
    const Within within;
    const RackLink::Limits limits(within);
    if (!fits)
        throw session.failure(FailureKind::InvalidArgument, operation, {}, limits, why);
}

// A call whose argument is one value beside the session word, and in whose result nothing points anywhere.
template <class Result, class Procedure>
Result runSimple(LogEntry& entry, RackLink::Program program, Procedure procedure, RackLink::Effect effect,
                 std::uint32_t value, const char* operation, const Within& within) {
    ServiceCall<Simple_Param, Result> call(entry, program, procedure, effect);
    call.argument.value = value;
    call.run(operation, within);
    return call.result;
}

} // namespace Orvane::RackCore
