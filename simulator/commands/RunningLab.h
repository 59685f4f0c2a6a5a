// A lab with all that the commands' flags put around it.
#pragma once

#include "simulator/commands/LabFlags.h"
#include "simulator/control/ControlSocket.h"

#include <memory>
#include <string>

namespace OrvaneSim {

// Boards that serve, their control socket, recording and time line.
class RunningLab {
public:
    // Starts everything; throws what its parts throw, with the boards gone again. `flags` must outlive it.
    RunningLab(const LabSetup& setup, const LabFlags& flags);
    RunningLab(const RunningLab&) = delete;
    RunningLab& operator=(const RunningLab&) = delete;

    Lab& lab() { return lab_; }

    // Writes the snapshot that was asked for. Throws ScriptError when it cannot be written.
    void finish();

private:
    const LabFlags& flags_;
    Lab lab_;
    std::unique_ptr<ControlServer> control_;
};

// Path of the control socket that the flags ask for.
std::string controlPathOf(const LabFlags& flags);

} // namespace OrvaneSim
