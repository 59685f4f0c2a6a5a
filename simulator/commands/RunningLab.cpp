// Start and end of a lab.
#include "simulator/commands/RunningLab.h"

#include "simulator/script/Recorder.h"
#include "simulator/script/Snapshot.h"

#include <algorithm>
#include <cstdio>

namespace OrvaneSim {

std::string controlPathOf(const LabFlags& flags) {
    return flags.controlPath.empty() ? defaultControlPath() : flags.controlPath;
}

namespace {

void warnOfShells(const std::vector<BoardSetup>& boards) {
    const auto hasShell = [](const BoardSetup& board) { return board.options.allowShell; };
    if (std::any_of(boards.begin(), boards.end(), hasShell))
        std::fputs(
            "warning: boards run remote commands in a shell of this machine; whoever reaches them can run "
            "anything there\n",
            stderr);
}

} // namespace

RunningLab::RunningLab(const LabSetup& setup, const LabFlags& flags) : flags_(flags) {
    warnOfShells(setup.boards);
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
