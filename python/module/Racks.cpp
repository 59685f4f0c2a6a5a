// Racks and ports: finding, opening, closing, events, counters.
#include "python/module/Bindings.h"
#include "python/module/Callback.h"
#include "python/module/Errors.h"

#include <algorithm>
#include <cstdio>
#include <pybind11/stl.h>

namespace OrvanePython {
namespace {

using namespace Orvane;

py::tuple tupleOf(const FoundBoard& board) {
    return py::make_tuple(board.serial, board.address, board.ports, board.kind);
}

// The boards, and how many answers were malformed.
py::tuple tupleOf(const Discovery& found) {
    py::list boards;
    for (const FoundBoard& one : found.boards)
        boards.append(tupleOf(one));
    return py::make_tuple(boards, found.malformed);
}

// With a function, until it says of a board that this is enough.
py::tuple discover(RackHandle& self, const py::object& enough, const Limits& limits) {
    if (enough.is_none())
        return tupleOf(
            outside(limits, [rack = self.rack()](const Within& within) { return rack->discover(within); }));
    return tupleOf(outside(limits, [rack = self.rack(), call = Callback(enough)](const Within& within) {
        return rack->discover(
            [&](const FoundBoard& board) { return call.callFor<bool>([&] { return tupleOf(board); }); },
            within);
    }));
}

py::tuple ask(RackHandle& self, const std::vector<std::string>& addresses, const Limits& limits) {
    return tupleOf(outside(
        limits, [&, rack = self.rack()](const Within& within) { return rack->ask(addresses, within); }));
}

void logToFile(RackHandle& self, const std::string& path) {
    outside([&, rack = self.rack()] { rack->logTo(path); });
}

void logToFunction(RackHandle& self, const py::function& function) {
    outside([rack = self.rack(), call = Callback(function)] {
        rack->logTo([call](std::string_view lines) {
            call.call([&] { return py::make_tuple(py::str(lines.data(), lines.size())); });
        });
    });
}

// How a port is shared: the mode, its key, and whether a refused opening waits.
using GivenAccess = std::tuple<unsigned, std::uint16_t, bool>;

Access accessOf(const GivenAccess& given) {
    const auto [mode, key, queues] = given;
    return {static_cast<Access::Mode>(mode), key, queues};
}

std::shared_ptr<PortHandle> open(RackHandle& self, const std::string& name, const GivenAccess& access,
                                 const Limits& limits) {
    return self.keep(outside(limits, [&, rack = self.rack()](const Within& within) {
        return rack->open(name, accessOf(access), within);
    }));
}

// For each name or port of a pattern: its name, the port or none, the failure or none.
py::list openAll(RackHandle& self, const std::vector<std::string>& names, const std::vector<unsigned>& phys,
                 const GivenAccess& access, const Limits& limits) {
    const std::vector<OpenedPort> opened = outside(limits, [&, rack = self.rack()](const Within& within) {
        return rack->openAll(names, phys, accessOf(access), within);
    });
    const auto cancelled = [](const OpenedPort& one) {
        return one.failure && one.failure->kind() == FailureKind::Cancelled;
    };
    if (std::any_of(opened.begin(), opened.end(), cancelled)) {
        for (const OpenedPort& one : opened)
            if (one.port)
                self.leave(*one.port);
        Interruptible::raise();
    }
    py::list all;
    for (const OpenedPort& one : opened)
        all.append(py::make_tuple(one.name, one.port ? py::cast(self.keep(*one.port)) : py::none(),
                                  one.failure ? toPython(*one.failure) : py::none()));
    return all;
}

py::list closeSessions(RackHandle& self, const Limits& limits) {
    py::list failures;
    for (const Failure& one :
         outside(limits, [rack = self.rack()](const Within& within) { return rack->closeAll(within); }))
        failures.append(toPython(one));
    return failures;
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

// Calls within each of the bounds (seconds), and the seconds that all calls took together.
py::tuple cumulative(const LatencyHistogram& self, const std::vector<double>& bounds) {
    std::vector<std::uint64_t> within(bounds.size());
    double sum = 0;
    for (unsigned bucket = 0; bucket < self.buckets().size(); ++bucket) {
        const std::uint64_t calls = self.buckets()[bucket];
        const double seconds = static_cast<double>(LatencyHistogram::middleOf(bucket).count()) / 1e6;
        sum += static_cast<double>(calls) * seconds;
        for (std::size_t i = 0; i < bounds.size(); ++i)
            within[i] += seconds <= bounds[i] ? calls : 0;
    }
    return py::make_tuple(within, sum);
}

std::string textOf(const LatencyHistogram& self) {
    char text[80];
    std::snprintf(text, sizeof text, "<orvane.Latency of %llu calls, half of them within %.3g ms>",
                  static_cast<unsigned long long>(self.count()), percentile(self, 50) * 1e3);
    return text;
}

} // namespace

void bindRacks(py::module_& module) {
    py::class_<LatencyHistogram>(module, "Latency",
                                 "How long calls took: `count` of them, and percentile(99) in seconds, right "
                                 "within 3.2 %: the time that so many percent of the calls did not exceed.")
        .def_property_readonly("count", &LatencyHistogram::count, "The calls that were counted.")
        .def("__repr__", textOf)
        .def("cumulative", cumulative,
             "The calls that took no longer than each of `bounds` (seconds), as a list, and the seconds that "
             "all took "
             "together; right within 3.2 %.")
        .def("percentile", percentile, "Seconds that `percent` (0 to 100) of the calls did not exceed.");
    py::class_<PortHandle, std::shared_ptr<PortHandle>>(module, "Port")
        .def_property_readonly("board", &PortHandle::board)
        .def_property_readonly("number", &PortHandle::number)
        .def("phy", &PortHandle::phy)
        .def("close", &PortHandle::close);
    py::class_<RackHandle, std::shared_ptr<RackHandle>>(module, "Rack")
        .def(py::init(&RackHandle::make))
        .def("open", open)
        .def("open_all", openAll)
        .def("close_sessions", closeSessions)
        .def("discover", discover)
        .def("ask", ask)
        .def("log_to_file", logToFile)
        .def("log_to_function", logToFunction)
        .def("end_log", [](RackHandle& self) { outside([rack = self.rack()] { rack->endLog(); }); })
        .def("note", [](RackHandle& self,
                        const std::string& text) { outside([&, rack = self.rack()] { rack->note(text); }); })
        .def("know", [](RackHandle& self, const std::string& board,
                        const std::string& address) { self.rack()->know(board, address); })
        .def("on_event", onEvent)
        .def("counters", counters)
        .def_property_readonly("usable", &RackHandle::usable)
        .def("close", &RackHandle::close);
    module.def("close_all", RackHandle::closeAll);
}

} // namespace OrvanePython
