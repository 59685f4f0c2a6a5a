// Racks and ports: finding, opening, closing, events, counters.
#include "python/module/Bindings.h"
#include "python/module/Callback.h"

#include <pybind11/stl.h>

namespace OrvanePython {
namespace {

using namespace Orvane;

py::tuple discover(RackHandle& self, const Limits& limits) {
    const Discovery found =
        outside(limits, [rack = self.rack()](const Within& within) { return rack->discover(within); });
    py::list boards;
    for (const FoundBoard& one : found.boards)
        boards.append(py::make_tuple(one.serial, one.address, one.ports));
    return py::make_tuple(boards, found.malformed);
}

std::shared_ptr<PortHandle> open(RackHandle& self, const std::string& name, unsigned mode, std::uint16_t key,
                                 bool queues, const Limits& limits) {
    return self.open(name, {static_cast<Access::Mode>(mode), key, queues}, limits);
}

py::tuple tupleOf(const Event& event) {
    return py::make_tuple(std::chrono::duration<double>(event.time.time_since_epoch()).count(), event.board,
                          event.port, event.phy, static_cast<int>(event.kind), static_cast<int>(event.level),
                          event.text);
}

void onEvent(RackHandle& self, const py::object& function) {
    EventCallback callback;
    if (!function.is_none())
        callback = [call = Callback(function)](const Event& event) {
            call.callOrReport([&] { return tupleOf(event); });
        };
    outside([rack = self.rack(), next = std::move(callback)] { rack->onEvent(next); });
}

py::dict dictOf(const ProgramCounters& program) {
    using namespace py::literals;
    return py::dict("calls"_a = program.calls, "succeeded"_a = program.succeeded, "failed"_a = program.failed,
                    "timed_out"_a = program.timedOut, "board_errors"_a = program.boardErrors,
                    "repeats"_a = program.repeats, "bytes_sent"_a = program.bytesSent,
                    "bytes_received"_a = program.bytesReceived, "latency"_a = program.latency);
}

py::dict counters(RackHandle& self) {
    using namespace py::literals;
    py::dict all;
    for (const auto& [serial, board] : outside([rack = self.rack()] { return rack->counters(); })) {
        py::dict programs;
        for (const auto& [name, program] : board.programs)
            programs[py::str(name)] = dictOf(program);
        all[py::str(serial)] =
            py::dict("programs"_a = programs, "opens"_a = board.opens, "reopens"_a = board.reopens,
                     "moves"_a = board.moves, "strays"_a = board.strays);
    }
    return all;
}

double percentile(const LatencyHistogram& self, double percent) {
    if (!(percent >= 0 && percent <= 100))
        throw py::value_error("a percentile is 0 to 100");
    return static_cast<double>(self.percentile(percent).count()) / 1e6;
}

} // namespace

void bindRacks(py::module_& module) {
    py::class_<LatencyHistogram>(module, "Latency")
        .def_property_readonly("count", &LatencyHistogram::count)
        .def("percentile", percentile);
    py::class_<PortHandle, std::shared_ptr<PortHandle>>(module, "Port")
        .def_property_readonly("board", &PortHandle::board)
        .def_property_readonly("number", &PortHandle::number)
        .def("phy", &PortHandle::phy)
        .def("close", &PortHandle::close);
    py::class_<RackHandle, std::shared_ptr<RackHandle>>(module, "Rack")
        .def(py::init(&RackHandle::make))
        .def("open", open)
        .def("discover", discover)
        .def("know", [](RackHandle& self, const std::string& board,
                        const std::string& address) { self.rack()->know(board, address); })
        .def("on_event", onEvent)
        .def("counters", counters)
        .def_property_readonly("usable", &RackHandle::usable)
        .def("close", &RackHandle::close);
    module.def("close_all", RackHandle::closeAll);
}

} // namespace OrvanePython
