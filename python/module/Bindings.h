// What each source of the module adds to it.
#pragma once

#include "ov_sys/rack/RoutedPhy.h"
#include "ov_sys/rack/values/RegisterAddress.h"
#include "python/module/Handles.h"

#include <array>
#include <cstdint>
#include <pybind11/numpy.h>
#include <pybind11/pybind11.h>
#include <vector>

namespace OrvanePython {

using PhyClass = py::class_<PhyHandle, std::shared_ptr<PhyHandle>>;

void bindLimits(py::module_& module);
void bindRacks(py::module_& module);
PhyClass bindPhys(py::module_& module);
void bindServices(PhyClass& phy);
void bindBatches(py::module_& module, PhyClass& phy);
void bindNames(py::module_& module, PhyClass& phy);
void bindFlights(py::module_& module);

// `space` as in RegisterAddress::Space; the package has checked the numbers.
inline Orvane::RegisterAddress registerAt(unsigned space, std::uint32_t mmd, std::uint32_t number) {
    return {static_cast<Orvane::RegisterAddress::Space>(space), mmd, number};
}

// By firmware: the classes, paged writes, paged reads, TGE and SerDes registers that the five say.
inline Orvane::RegisterPaths pathsOf(const std::array<bool, 5>& byFirmware, bool overClause22) {
    Orvane::RegisterPaths paths;
    paths.byFirmware = {byFirmware[0], byFirmware[1], byFirmware[2], byFirmware[3], byFirmware[4]};
    paths.overClause22 = overClause22;
    return paths;
}

// A numpy array of its own.
template <class Element, class Value>
py::array_t<Element> arrayOf(const std::vector<Value>& values) {
    py::array_t<Element> array(static_cast<py::ssize_t>(values.size()));
    Element* const out = array.mutable_data();
    for (std::size_t i = 0; i < values.size(); ++i)
        out[i] = static_cast<Element>(values[i]);
    return array;
}

// What registers of that space hold: uint16, or uint32 of the 32-bit extension.
inline py::array valuesOf(const std::vector<std::uint32_t>& values, bool wide) {
    if (wide)
        return arrayOf<std::uint32_t>(values);
    return arrayOf<std::uint16_t>(values);
}

} // namespace OrvanePython
