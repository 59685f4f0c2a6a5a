// The edge of the C interface: exceptions become a status and a struct of the caller's, and back.
#pragma once

#include "ov_sys/Interface/foundation/Uncancelled.h"
#include "ov_sys/rack/values/Failure.h"

#include <exception>
#include <initializer_list>
#include <orvane/rack.h>

namespace Orvane::RackC {

// Fills `out`, which may be null, and returns the kind. Allocate nothing.
int fail(orvane_failure* out, const Failure& failure) noexcept;
int fail(orvane_failure* out, const char* message) noexcept; // ORVANE_OUT_OF_RESOURCES

// Throws the Failure that a hook of the caller's returned with `status`.
[[noreturn]] void rethrow(int status, const orvane_failure& said);

// Throws the Failure of an argument.
[[noreturn]] void refuse(const char* advice);

// Refuses a null among what must not be null.
void need(std::initializer_list<const void*> pointers);

// Runs what a function of the C interface is about; no exception leaves, and the thread is not cancelled in
// between.
template <class Action>
int guarded(orvane_failure* out, Action action) noexcept {
    const Uncancelled uncancelled;
    try {
        action();
        return ORVANE_DONE;
    } catch (const Failure& failure) {
        return fail(out, failure);
    } catch (const std::exception& problem) { // no memory, no descriptors, no threads
        return fail(out, problem.what());
    } catch (...) { // of a callback that is no C
        return fail(out, "Unknown error.");
    }
}

} // namespace Orvane::RackC
