// From flags to a lab.
#include "simulator/commands/LabFlags.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <stdexcept>

namespace OrvaneSim {
namespace {

constexpr unsigned kMostBoards = 30000;
constexpr std::size_t kSerialDigits = 4;
constexpr std::size_t kHelpColumn = 34; // where the help text's explanations begin

std::string numberedSerial(const std::string& prefix, std::size_t number) {
    const std::string digits = std::to_string(number);
    const std::size_t zeros = kSerialDigits - std::min(kSerialDigits, digits.size());
    return prefix + std::string(zeros, '0') + digits;
}

void addBoardFlags(CLI::App& app, LabFlags& flags) {
    auto* group = app.add_option_group("Boards");
    group->add_option("--boards", flags.boards, "Number of boards")
        ->check(CLI::Range(0U, kMostBoards))
        ->capture_default_str();
    group
        ->add_option("--serial-prefix", flags.serialPrefix,
                     "Serial numbers are this and a number from 0001 up")
        ->capture_default_str();
    group->add_option("--address", flags.addresses, "Address of a board; repeat for the next ones")
        ->check(CLI::ValidIPV4);
    group->add_option("--serial", flags.serials, "Serial number of a board; repeat for the next ones");
    group->add_option("--device", flags.devices,
                      "Device name of the only board, such as OV0001:10; may be repeated");
    group->add_option("--first-word", flags.firstWord, "First word of the board names sent in discovery")
        ->capture_default_str();
    group->add_flag("--allow-shell", flags.allowShell,
                    "Run remote commands in a real shell of this machine, as nobody when root");
    group->add_option("--seed", flags.seed, "Everything the boards make up follows from this number")
        ->capture_default_str();
    group->set_help_flag();
    group->excludes(app.add_option("--lab", flags.labFile, "JSON file that describes the boards instead"));
}

} // namespace

void LabFlags::addTo(CLI::App& app) {
    app.get_formatter()->column_width(kHelpColumn);
    addBoardFlags(app, *this);
    app.add_option("--script", scriptFile, "JSON list of actions and when they are due");
    app.add_option("--snapshot", snapshotFile, "Begin with the registers of this snapshot");
    app.add_option("--save-snapshot", savedSnapshotFile, "Write every register to this file at the end");
    app.add_option("--record", recordFile, "Write every request to this file, one JSON object on a line");
    app.add_option("--control", controlPath,
                   "Socket for orvane-sim ctl (default: orvane-sim-PID.sock in $XDG_RUNTIME_DIR or /tmp)");
}

std::vector<BoardSetup> LabFlags::boardsOfFlags() const {
    const std::size_t count = std::max({std::size_t{boards}, addresses.size(), serials.size()});
    if (!devices.empty() && count != 1)
        throw std::invalid_argument("--device is for a single board");
    std::vector<BoardSetup> list(count);
    for (std::size_t i = 0; i < count; ++i) {
        BoardOptions& board = list[i].options;
        if (i < addresses.size())
            board.address = addresses[i];
        board.serial = i < serials.size() ? serials[i] : numberedSerial(serialPrefix, i + 1);
        board.devices = devices.empty() ? defaultDevices(board.serial) : devices;
        board.firstWord = firstWord;
        board.seed = seed + i;
        board.allowShell = allowShell;
    }
    return list;
}

LabSetup LabFlags::setup(const LabPlace& place) const {
    LabSetup lab;
    if (labFile.empty()) {
        lab.boards = boardsOfFlags();
    } else {
        const Json json = readJsonFile(labFile);
        try {
            lab = readLab(json, place);
        } catch (const ScriptError& problem) {
            throw ScriptError(labFile, problem.what());
        }
    }
    if (!scriptFile.empty()) {
        const Json json = readJsonFile(scriptFile);
        try {
            for (TimelineEntry& entry : readScript(json, lab, place))
                lab.timeline.push_back(std::move(entry));
        } catch (const ScriptError& problem) {
            throw ScriptError(scriptFile, problem.what());
        }
    }
    return lab;
}

} // namespace OrvaneSim
