// Limits of calls and their cancellation.
#include "python/module/Bindings.h"

#include <cmath>

namespace OrvanePython {
namespace {

using Orvane::Cancellation;

std::chrono::nanoseconds durationOf(double seconds) {
    constexpr double kForever = 1e9; // longer than anybody waits, and far from where nanoseconds end
    if (std::isnan(seconds) || seconds < 0)
        throw py::value_error("a time limit is 0 seconds or more");
    return std::chrono::nanoseconds(static_cast<std::int64_t>(std::min(seconds, kForever) * 1e9));
}

Limits makeLimits(double seconds, unsigned reads, unsigned writes, bool heal,
                  std::shared_ptr<Cancellation> cancellation) {
    Limits limits;
    limits.within.time = durationOf(seconds);
    limits.within.repeat = {reads, writes};
    limits.within.heal = heal;
    limits.within.cancellation = cancellation.get();
    limits.cancellation = std::move(cancellation);
    return limits;
}

thread_local std::shared_ptr<Cancellation> ofThread;

} // namespace

std::shared_ptr<Cancellation> cancellationOfThread() {
    return ofThread;
}

void bindLimits(py::module_& module) {
    py::class_<Cancellation, std::shared_ptr<Cancellation>>(
        module, "Cancellation",
        "Ends calls from another thread: Within(cancellation=...). cancel() makes them, and later ones, "
        "raise "
        "Cancelled\nwithin 50 ms; reset() lets calls go on again; `cancelled` tells which it is.")
        .def(py::init<>())
        .def("cancel", &Cancellation::cancel, "From now on calls raise Cancelled.")
        .def("reset", &Cancellation::reset, "From now on calls are not cancelled.")
        .def_property_readonly("cancelled", &Cancellation::cancelled, "Whether calls are cancelled.")
        .def("__repr__", [](const Cancellation& self) {
            return std::string("<orvane.Cancellation") + (self.cancelled() ? ", cancelled>" : ">");
        });
    py::class_<Limits>(module, "Limits").def(py::init(&makeLimits));
    module.def(
        "cancel_thread_by", [](std::shared_ptr<Cancellation> which) { ofThread = std::move(which); },
        py::arg("cancellation").none(true));
    module.attr("UP_TO_THE_DEADLINE") = Orvane::Repeat::kUpToTheDeadline;
}

} // namespace OrvanePython
