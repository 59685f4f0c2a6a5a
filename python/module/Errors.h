// Failures as exceptions of the package.
#pragma once

#include "ov_sys/rack/values/Failure.h"

#include <pybind11/pybind11.h>

namespace OrvanePython {

// The exception object, of the class that orvane.errors has for the kind. With the GIL.
pybind11::object toPython(const Orvane::Failure& failure);

// From now on a Failure that leaves a function of the module is raised as such an exception.
void translateFailures();

} // namespace OrvanePython
