// From flags to a lab.
#include "simulator/commands/LabFlags.h"

#include <algorithm>
#include <CLI/CLI.hpp>
#include <stdexcept>

namespace OrvaneSim {
namespace {

constexpr unsigned kMostBoards = 30000;
constexpr std::size_t kSerialDigits = 4;

std::string numberedSerial(const std::string& prefix, std::size_t number) {
    const std::string digits = std::to_string(number);
    const std::size_t zeros = kSerialDigits - std::min(kSerialDigits, digits.size());
    return prefix + std::string(zeros, '0') + digits;
}

void addBoardFlags(CLI::App& app, LabFlags& flags) {
    CLI::Option* const file =
        app.add_option("--lab", flags.labFile, "JSON file that describes the boards instead")
            ->type_name("FILE");
    const auto ofBoards = [file](CLI::Option* option, const char* value = "") {
        return option->type_name(value)->group("Boards")->excludes(file);
    };
    ofBoards(app.add_option("--boards", flags.boards, "Number of boards (1)"), "N")
        ->check(CLI::Range(0U, kMostBoards).description(""));
    ofBoards(app.add_option("--serial-prefix", flags.serialPrefix,
                            "Serial numbers are this and a number from 0001 up (OV)"),
             "TEXT");
    ofBoards(app.add_option("--address", flags.addresses, "Address of a board; repeat for the next ones"),
             "IP")
        ->check(CLI::Validator(CLI::ValidIPV4).description(""));
    ofBoards(app.add_option("--serial", flags.serials, "Serial number of a board; repeat for the next ones"),
             "NAME");
    ofBoards(app.add_option("--device", flags.devices,
                            "Device name of the only board, such as OV0001:10; may be repeated"),
             "NAME");
    ofBoards(app.add_option("--first-word", flags.firstWord,
                            "First word of the board names sent in discovery (host)"),
             "WORD");
    ofBoards(app.add_flag("--allow-shell", flags.allowShell,
                          "Run remote commands in a real shell of this machine, as nobody when root"));
    ofBoards(
        app.add_option("--seed", flags.seed, "Everything the boards make up follows from this number (1)"),
        "N");
}

} // namespace

void LabFlags::addTo(CLI::App& app) {
    addBoardFlags(app, *this);
    const auto file = [&app](const char* name, std::string& path, const char* text) {
        app.add_option(name, path, text)->type_name("FILE");
    };
    file("--script", scriptFile, "JSON list of actions and when they are due");
    file("--snapshot", snapshotFile, "Begin with the registers of this snapshot");
    file("--save-snapshot", savedSnapshotFile, "Write every register to this file at the end");
    file("--record", recordFile, "Write every request to this file, one JSON object on a line");
    file("--control", controlPath,
         "Socket for orvane-sim ctl (orvane-sim-PID.sock in $XDG_RUNTIME_DIR or /tmp)");
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
