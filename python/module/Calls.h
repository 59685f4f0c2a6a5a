// How the module calls what may wait: without the GIL, and so that Ctrl-C ends it.
#pragma once

#include "ov_sys/rack/values/Failure.h"
#include "ov_sys/rack/values/Within.h"
#include "python/module/Interruptible.h"

#include <memory>
#include <pybind11/pybind11.h>
#include <utility>

namespace OrvanePython {

namespace py = pybind11;

// Limits of a call, with the cancellation that they name.
struct Limits {
    Orvane::Within within;
    std::shared_ptr<Orvane::Cancellation> cancellation;
};

// What ends the calls of this thread that bring no cancellation of their own; null: nothing.
std::shared_ptr<Orvane::Cancellation> cancellationOfThread();

// Runs `call(const Within&)`. What it has captured is let go without the GIL, too: the last handle of a
// session closes it.
template <class Call>
auto outside(const Limits& limits, Call call) {
    Orvane::Within within = limits.within;
    const std::shared_ptr<Orvane::Cancellation> ofThread = cancellationOfThread(); // a hook may replace it
    if (within.cancellation == nullptr)
        within.cancellation = ofThread.get();
    const Interruptible interruptible(within);
    try {
        const py::gil_scoped_release released;
        Call own = std::move(call);
        return own(within);
    } catch (const Orvane::Failure& failure) {
        if (failure.kind() == Orvane::FailureKind::Cancelled)
            Interruptible::raise();
        throw;
    }
}

// The same for what takes no limits and ends by itself.
template <class Call>
auto outside(Call call) {
    const py::gil_scoped_release released;
    Call own = std::move(call);
    return own();
}

} // namespace OrvanePython
