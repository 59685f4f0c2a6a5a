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

} // namespace

void bindLimits(py::module_& module) {
    py::class_<Cancellation, std::shared_ptr<Cancellation>>(module, "Cancellation")
        .def(py::init<>())
        .def("cancel", &Cancellation::cancel)
        .def("reset", &Cancellation::reset)
        .def_property_readonly("cancelled", &Cancellation::cancelled);
    py::class_<Limits>(module, "Limits").def(py::init(&makeLimits));
    module.attr("UP_TO_THE_DEADLINE") = Orvane::Repeat::kUpToTheDeadline;
}

} // namespace OrvanePython
