// orvane._lab: simulated boards in the process of a program of Python; orvane.lab makes it pleasant.
#include "simulator/commands/RunningLab.h"
#include "simulator/network/PrivateNetwork.h"
#include "simulator/script/LabPlace.h"

#include <memory>
#include <pybind11/pybind11.h>
#include <string>
#include <unistd.h>

namespace py = pybind11;

namespace {

using namespace OrvaneSim;

LabFlags flagsOf(unsigned boards, const std::string& file, const std::string& control) {
    LabFlags flags;
    flags.boards = boards;
    flags.labFile = file;
    flags.controlPath = control;
    return flags;
}

// Boards and their control socket, served by threads of the process that made it. A child that came by fork()
// has none of these threads and leaves them alone.
class OwnLab {
public:
    OwnLab(unsigned boards, const std::string& file, const std::string& control)
        : flags_(flagsOf(boards, file, control)) {
        const py::gil_scoped_release released;
        running_ = std::make_unique<RunningLab>(flags_.setup(privatePlace()), flags_);
    }
    // NOLINTNEXTLINE(bugprone-exception-escape): what ends here throws nothing that a program could mend
    ~OwnLab() { stop(); }
    OwnLab(const OwnLab&) = delete;
    OwnLab& operator=(const OwnLab&) = delete;

    void stop() {
        if (::getpid() != owner_)
            return static_cast<void>(running_.release());
        const py::gil_scoped_release released;
        running_.reset();
    }

private:
    const pid_t owner_ = ::getpid();
    const LabFlags flags_;
    std::unique_ptr<RunningLab> running_;
};

} // namespace

PYBIND11_MODULE(_lab, module) {
    module.def("enter", [](int interfaces) { PrivateNetwork::enter({interfaces, {}}); });
    module.def("entered", &PrivateNetwork::entered);
    py::class_<OwnLab>(module, "OwnLab")
        .def(py::init<unsigned, const std::string&, const std::string&>())
        .def("stop", &OwnLab::stop);
}
