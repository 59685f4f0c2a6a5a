// Failures as exceptions of the package.
#include "python/module/Errors.h"

#include <exception>

namespace OrvanePython {

namespace py = pybind11;
using Orvane::Failure;

py::object toPython(const Failure& failure) {
    using namespace py::literals;
    const auto known = [](int number) -> py::object {
        return number < 0 ? py::none() : py::object(py::int_(number));
    };
    return py::module_::import("orvane.errors")
        .attr("make")(
            failure.what(), "kind"_a = static_cast<int>(failure.kind()), "board"_a = failure.board(),
            "port"_a = known(failure.port()), "phy"_a = known(failure.phy()),
            "operation"_a = failure.operation(), "location"_a = failure.location(), "code"_a = failure.code(),
            "attempts"_a = failure.attempts(),
            "seconds"_a = static_cast<double>(failure.spent().count()) / 1e6, "advice"_a = failure.advice());
}

void translateFailures() {
    py::register_exception_translator([](std::exception_ptr thrown) {
        try {
            if (thrown)
                std::rethrow_exception(thrown);
        } catch (const Failure& failure) {
            const py::object error = toPython(failure);
            PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
        }
    });
}

} // namespace OrvanePython
