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

// A RoutedPhy shares the session as a Phy does.
class RoutedHandle {
public:
    RoutedHandle(PhyHandle& phy, const std::array<bool, 5>& byFirmware, bool overClause22)
        : remote_(phy.phy().routed(pathsOf(byFirmware, overClause22))) {}

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

// Runs `work` in the board's turn; Ctrl-C ends the wait for that.
template <class Work>
void inTurn(PhyHandle& self, const Limits& limits, Work work) {
    outside(limits, [phy = self.phy(), own = std::move(work)](const Within& within) {
        phy.together([&] { own(phy); }, within);
    });
}

// However long another thread's call may take.
Limits patient() {
    Limits limits;
    limits.within.time = std::chrono::hours(24 * 365);
    return limits;
}

bool isOpen(PhyHandle& self) {
    bool open = false;
    inTurn(self, patient(), [&open](const Phy& phy) { open = phy.isOpen(); });
    return open;
}

std::uint16_t key(PhyHandle& self) {
    std::uint16_t key = 0;
    inTurn(self, patient(), [&key](const Phy& phy) { key = phy.key(); });
    return key;
}

void onReopen(PhyHandle& self, const py::object& function) {
    std::function<void()> hook;
    if (!function.is_none())
        hook = [call = Callback(function)] { call.call([] { return py::tuple(); }); };
    inTurn(self, patient(), [next = std::move(hook)](const Phy& phy) { phy.onReopen(next); });
}

void together(PhyHandle& self, const py::function& work, const Limits& limits) {
    inTurn(self, limits, [call = Callback(work)](const Phy&) { call.call([] { return py::tuple(); }); });
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
        .def_property_readonly("is_open", isOpen)
        .def_property_readonly("key", key)
        .def("together", together)
        .def("on_reopen", onReopen)
        .def("set_smbus_protocol", [](PhyHandle& self, int protocol) {
            self.phy().setSmbusProtocol(static_cast<SmbusProtocol>(protocol));
        });
    return phy;
}

} // namespace OrvanePython
