// Operations on many boards at once, and those that an event loop waits for.
#include "python/module/Bindings.h"
#include "python/module/Errors.h"

#include "ov_sys/rack/Flight.h"

#include <cstddef>
#include <map>
#include <poll.h>
#include <pybind11/stl.h>

namespace OrvanePython {
namespace {

using namespace Orvane;
using Values = std::vector<Pending<std::uint32_t>>;

// Waits for all, until `within` is cancelled: the rest is not waited for then.
void land(Flight& flight, const Within& within) {
    pollfd entries[2] = {{flight.descriptor(), POLLIN, 0}, {-1, POLLIN, 0}};
    if (within.cancellation != nullptr)
        entries[1].fd = within.cancellation->descriptor();
    for (flight.step(); flight.underWay() > 0; flight.step()) {
        poll(entries, 2, 1000);
        if (within.cancellation == nullptr || !within.cancellation->cancelled())
            continue;
        FailureDetails details;
        details.kind = FailureKind::Cancelled;
        details.operation = "read all";
        throw Failure(details);
    }
}

// The values, whether each was read, and for those that were not why.
py::tuple readAll(const std::vector<std::shared_ptr<PhyHandle>>& handles, unsigned space, std::uint32_t mmd,
                  std::uint32_t number, const Limits& limits) {
    std::vector<Phy> phys;
    phys.reserve(handles.size());
    for (const std::shared_ptr<PhyHandle>& handle : handles)
        phys.push_back(handle->phy());
    const auto address = registerAt(space, mmd, number);
    const Values pending = outside(limits, [all = std::move(phys), address](const Within& within) {
        Flight flight;
        Values values;
        values.reserve(all.size());
        for (const Phy& phy : all)
            values.push_back(flight.read(phy, address, within));
        land(flight, within);
        return values;
    });
    py::array_t<std::uint32_t> values(static_cast<py::ssize_t>(pending.size()));
    py::array_t<bool> failed(static_cast<py::ssize_t>(pending.size()));
    py::dict failures;
    for (std::size_t i = 0; i < pending.size(); ++i) {
        const std::optional<Failure>& failure = pending[i].failure();
        failed.mutable_data()[i] = failure.has_value();
        values.mutable_data()[i] = failure ? 0 : pending[i].get();
        if (failure)
            failures[py::int_(i)] = toPython(*failure);
    }
    return py::make_tuple(values, failed, failures);
}

// A flight whose operations have numbers, for an event loop. One thread.
class NumberedFlight {
public:
    NumberedFlight() : flight_(std::make_shared<Flight>()) {}

    void read(std::size_t token, PhyHandle& phy, unsigned space, std::uint32_t mmd, std::uint32_t number,
              const Limits& limits) {
        reads_.emplace(token, flight_.get()->read(phy.phy(), registerAt(space, mmd, number), limits.within));
    }
    void write(std::size_t token, PhyHandle& phy, unsigned space, std::uint32_t mmd, std::uint32_t number,
               std::uint32_t value, const Limits& limits) {
        reads_.emplace(token,
                       flight_.get()->write(phy.phy(), registerAt(space, mmd, number), value, limits.within));
    }
    void run(std::size_t token, PhyHandle& phy, const Batch& batch, const Limits& limits) {
        runs_.emplace(token, flight_.get()->run(phy.phy(), batch, limits.within));
    }

    int descriptor() const { return flight_.get()->descriptor(); }
    std::size_t size() const noexcept { return reads_.size() + runs_.size(); }
    // Moves on, and gives what has ended: token, value or None, exception or None.
    py::list step() {
        outside([flight = flight_.get()] { flight->step(); });
        py::list ended;
        take(reads_, ended);
        take(runs_, ended);
        return ended;
    }

private:
    template <class Value>
    static void take(std::map<std::size_t, Pending<Value>>& all, py::list& ended) {
        for (auto next = all.begin(); next != all.end();) {
            const Pending<Value>& one = next->second;
            if (!one.done()) {
                ++next;
                continue;
            }
            ended.append(one.failure() ? py::make_tuple(next->first, py::none(), toPython(*one.failure()))
                                       : py::make_tuple(next->first, one.get(), py::none()));
            next = all.erase(next);
        }
    }

    Remote<std::shared_ptr<Flight>> flight_;
    std::map<std::size_t, Pending<std::uint32_t>> reads_;
    std::map<std::size_t, Pending<BatchResult>> runs_;
};

} // namespace

void bindFlights(py::module_& module) {
    module.def("read_all", readAll);
    py::class_<NumberedFlight>(module, "Flight")
        .def(py::init<>())
        .def("read", &NumberedFlight::read)
        .def("write", &NumberedFlight::write)
        .def("run", &NumberedFlight::run)
        .def_property_readonly("descriptor", &NumberedFlight::descriptor)
        .def("__len__", &NumberedFlight::size)
        .def("step", &NumberedFlight::step);
}

} // namespace OrvanePython
