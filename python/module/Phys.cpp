// Registers and the session of a PHY.
#include "python/module/Bindings.h"
#include "python/module/Callback.h"

#include <pybind11/stl.h>

namespace OrvanePython {
namespace {

using namespace Orvane;
using std::uint32_t;

uint32_t read(PhyHandle& self, unsigned space, uint32_t mmd, uint32_t number, const Limits& limits) {
    return outside(limits, [phy = self.phy(), address = registerAt(space, mmd, number)](
                               const Within& within) { return phy.read(address, within); });
}

void write(PhyHandle& self, unsigned space, uint32_t mmd, uint32_t number, uint32_t value,
           const Limits& limits) {
    outside(limits, [phy = self.phy(), address = registerAt(space, mmd, number),
                     value](const Within& within) { phy.write(address, value, within); });
}

uint32_t modify(PhyHandle& self, unsigned space, uint32_t mmd, uint32_t number, uint32_t mask, uint32_t value,
                const Limits& limits) {
    return outside(limits, [phy = self.phy(), address = registerAt(space, mmd, number), mask, value](
                               const Within& within) { return phy.modify(address, mask, value, within); });
}

// `count` registers, each `step` behind the one before.
py::array readRow(PhyHandle& self, unsigned space, uint32_t mmd, uint32_t first, std::int64_t step,
                  std::size_t count, const Limits& limits) {
    std::vector<RegisterAddress> addresses;
    addresses.reserve(count);
    for (std::size_t i = 0; i < count; ++i)
        addresses.push_back(
            registerAt(space, mmd, static_cast<uint32_t>(first + static_cast<std::int64_t>(i) * step)));
    return valuesOf(outside(limits, [phy = self.phy(), list = std::move(addresses)](
                                        const Within& within) { return phy.read(list, within); }),
                    space == static_cast<unsigned>(RegisterAddress::Space::Ext32));
}

// By firmware: the classes, paged writes, paged reads, TGE and SerDes registers that the five say.
RoutedPhy routed(PhyHandle& self, const std::array<bool, 5>& byFirmware, bool overClause22) {
    RegisterPaths paths;
    paths.byFirmware = {byFirmware[0], byFirmware[1], byFirmware[2], byFirmware[3], byFirmware[4]};
    paths.overClause22 = overClause22;
    return self.phy().routed(paths);
}

// A RoutedPhy shares the session as a Phy does.
class RoutedHandle {
public:
    RoutedHandle(PhyHandle& phy, const std::array<bool, 5>& byFirmware, bool overClause22)
        : remote_(routed(phy, byFirmware, overClause22)) {}

    uint32_t read(uint32_t mmd, uint32_t number, const Limits& limits) const {
        return outside(limits, [phy = remote_.get(), mmd, number](const Within& within) {
            return phy.read({mmd, number}, within);
        });
    }
    void write(uint32_t mmd, uint32_t number, uint32_t value, const Limits& limits) const {
        outside(limits, [phy = remote_.get(), mmd, number, value](const Within& within) {
            phy.write({mmd, number}, value, within);
        });
    }
    uint32_t modify(uint32_t mmd, uint32_t number, uint32_t mask, uint32_t value,
                    const Limits& limits) const {
        return outside(limits, [phy = remote_.get(), mmd, number, mask, value](const Within& within) {
            return phy.modify({mmd, number}, mask, value, within);
        });
    }

private:
    Remote<RoutedPhy> remote_;
};

void onReopen(PhyHandle& self, const py::object& function) {
    std::function<void()> hook;
    if (!function.is_none())
        hook = [call = Callback(function)] { call.call([] { return py::tuple(); }); };
    outside([phy = self.phy(), next = std::move(hook)] { phy.onReopen(next); });
}

} // namespace

PhyClass bindPhys(py::module_& module) {
    py::class_<RoutedHandle>(module, "Routed")
        .def(py::init<PhyHandle&, const std::array<bool, 5>&, bool>())
        .def("read", &RoutedHandle::read)
        .def("write", &RoutedHandle::write)
        .def("modify", &RoutedHandle::modify);
    PhyClass phy(module, "Phy");
    phy.def("read", read)
        .def("write", write)
        .def("modify", modify)
        .def("read_row", readRow)
        .def("open",
             [](PhyHandle& self, const Limits& limits) {
                 outside(limits, [phy = self.phy()](const Within& within) { phy.open(within); });
             })
        .def("close",
             [](PhyHandle& self, const Limits& limits) {
                 outside(limits, [phy = self.phy()](const Within& within) { phy.close(within); });
             })
        .def_property_readonly(
            "is_open", [](PhyHandle& self) { return outside([phy = self.phy()] { return phy.isOpen(); }); })
        .def_property_readonly(
            "key", [](PhyHandle& self) { return outside([phy = self.phy()] { return phy.key(); }); })
        .def("on_reopen", onReopen)
        .def("set_smbus_protocol", [](PhyHandle& self, int protocol) {
            self.phy().setSmbusProtocol(static_cast<SmbusProtocol>(protocol));
        });
    return phy;
}

} // namespace OrvanePython
