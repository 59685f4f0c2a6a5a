// Start and end of a lab.
#include "simulator/commands/RunningLab.h"

#include "simulator/script/Recorder.h"
#include "simulator/script/Snapshot.h"

namespace OrvaneSim {

std::string controlPathOf(const LabFlags& flags) {
    return flags.controlPath.empty() ? defaultControlPath() : flags.controlPath;
}

RunningLab::RunningLab(const LabSetup& setup, const LabFlags& flags) : flags_(flags) {
    addBoards(lab_, setup.boards);
    if (!flags.snapshotFile.empty()) {
        const Json snapshot = readJsonFile(flags.snapshotFile);
        try {
            restoreSnapshot(lab_.boards(), snapshot);
        } catch (const ScriptError& problem) {
            throw ScriptError(flags.snapshotFile, problem.what());
        }
    }
    if (!flags.recordFile.empty())
        recordRequests(lab_, flags.recordFile);
    startTimeline(lab_, setup.timeline);
    control_ = std::make_unique<ControlServer>(lab_, controlPathOf(flags));
}

void RunningLab::finish() {
    if (!flags_.savedSnapshotFile.empty())
        writeSnapshot(flags_.savedSnapshotFile, snapshotOf(lab_.boards()));
}

} // namespace OrvaneSim
