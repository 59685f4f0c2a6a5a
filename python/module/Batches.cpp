// Batches of register accesses, in words, and what became of each.
#include "ov_sys/names/Plan.h"
#include "python/module/Bindings.h"
#include "python/module/Errors.h"

#include <optional>
#include <pybind11/stl.h>

namespace OrvanePython {
namespace {

using namespace Orvane;

// One member of every outcome.
template <class Element, class Member>
py::array_t<Element> column(const BatchResult& self, Member member) {
    std::vector<Element> values;
    values.reserve(self.size());
    for (std::size_t i = 0; i < self.size(); ++i)
        values.push_back(static_cast<Element>(self.outcome(i).*member));
    return arrayOf<Element>(values);
}

// What is to be written, 0 for each read.
py::array_t<std::uint32_t> written(const Batch& self) {
    std::vector<std::uint32_t> values;
    for (const Batch::Operation& each : self.operations())
        values.push_back(each.writes ? each.value : 0);
    return arrayOf<std::uint32_t>(values);
}

} // namespace

void bindBatches(py::module_& module, PhyClass& phy) {
    py::class_<Batch>(module, "Batch")
        .def(py::init<>())
        .def("read", [](Batch& self, unsigned space, std::uint32_t mmd,
                        std::uint32_t number) { return self.read(registerAt(space, mmd, number)).index; })
        .def("write", [](Batch& self, unsigned space, std::uint32_t mmd, std::uint32_t number,
                         std::uint32_t value) { self.write(registerAt(space, mmd, number), value); })
        .def("written", written)
        .def("__len__", &Batch::size);
    module.def("plan", plan);
    module.def("routed_steps", [](std::uint32_t mmd, std::uint32_t number, std::optional<std::uint32_t> value,
                                  const std::array<bool, 5>& byFirmware, bool overClause22) {
        return routedSteps({mmd, number}, value, pathsOf(byFirmware, overClause22));
    });
    py::class_<BatchResult>(module, "BatchResult")
        .def_property_readonly(
            "states",
            [](const BatchResult& self) { return column<std::uint8_t>(self, &OperationOutcome::state); })
        .def_property_readonly(
            "values",
            [](const BatchResult& self) { return column<std::uint32_t>(self, &OperationOutcome::value); })
        .def_property_readonly(
            "codes",
            [](const BatchResult& self) { return column<std::int32_t>(self, &OperationOutcome::code); })
        .def_property_readonly("failure", [](const BatchResult& self) -> py::object {
            return self.failure() ? toPython(*self.failure()) : py::none();
        });
    phy.def("run", [](PhyHandle& self, const Batch& batch, const Limits& limits) {
        return outside(
            limits, [phy = self.phy(), copy = batch](const Within& within) { return phy.run(copy, within); });
    });
}

} // namespace OrvanePython
