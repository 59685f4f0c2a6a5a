// orvane._orvane: the Rack interface, thin; the package orvane makes it pleasant.
#include "python/module/Bindings.h"
#include "python/module/Errors.h"
#include "python/module/Fork.h"

namespace OrvanePython {
namespace {

PyModuleDef definition;

void fill(py::module_& module) {
    const py::object mainThread = py::module_::import("threading").attr("main_thread")();
    Interruptible::begin(py::cast<unsigned long>(mainThread.attr("ident")));
    module.attr("version") = ORVANE_VERSION;
    watchForks();
    translateFailures();
    bindLimits(module);
    bindRacks(module);
    PhyClass phy = bindPhys(module);
    bindServices(phy);
    bindBatches(module, phy);
    bindNames(module, phy);
    bindFlights(module);
}

PyObject* load() {
    PYBIND11_CHECK_PYTHON_VERSION
    PYBIND11_ENSURE_INTERNALS_READY
    auto module = py::module_::create_extension_module("_orvane", nullptr, &definition);
    try {
        fill(module);
        return module.ptr();
    }
    PYBIND11_CATCH_INIT_EXCEPTIONS
}

} // namespace
} // namespace OrvanePython

// What PYBIND11_MODULE makes, but for the first question: what is kept for the whole process (the main
// thread, SIGINT) belongs to one interpreter, and pybind11's own beginning never ends in another.
extern "C" PYBIND11_EXPORT PyObject* PyInit__orvane() {
    if (PyInterpreterState_Get() == PyInterpreterState_Main())
        return OrvanePython::load();
    PyErr_SetString(PyExc_ImportError, "orvane works in the main interpreter only, not in a sub-interpreter");
    return nullptr;
}
