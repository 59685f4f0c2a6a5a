// How functions of the program are held and let go.
#include "python/module/Callback.h"

#include <utility>

namespace OrvanePython {

namespace py = pybind11;

namespace {

thread_local unsigned depth = 0;

void destroy(const py::function* function) {
    const py::gil_scoped_acquire gil;
    delete function; // NOLINT(cppcoreguidelines-owning-memory): a deleter
}

} // namespace

Callback::Callback(py::function function) : function_(new py::function(std::move(function)), destroy) {}

bool Callback::running() noexcept {
    return depth > 0;
}

Callback::Mark::Mark() noexcept {
    ++depth;
}

Callback::Mark::~Mark() {
    --depth;
}

} // namespace OrvanePython
