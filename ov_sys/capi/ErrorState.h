// The error state of the flat interface, and the one place where its functions catch exceptions.
#pragma once

#include "ov_sys/Interface/foundation/Uncancelled.h"

#include <orvane/orvane.h>
#include <type_traits>

namespace Orvane {

// Runs `body` and returns its result. Any exception ends in HW_CallException(print), and the result is then
// zero, null or nothing. Nothing is thrown, and the thread is not cancelled in between.
template <class Body>
auto guarded(bool print, Body body) noexcept -> std::invoke_result_t<Body> {
    using Result = std::invoke_result_t<Body>;
    const Uncancelled uncancelled;
    try {
        return body();
    } catch (...) {
        HW_CallException(print);
    }
    if constexpr (!std::is_void_v<Result>)
        return Result{};
}

// Whether a function of the flat interface reports its failures on the standard error stream.
constexpr bool kQuiet = false;
constexpr bool kReported = true;

} // namespace Orvane
