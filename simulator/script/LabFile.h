// A lab described in a JSON file.
#pragma once

#include "simulator/lab/Lab.h"
#include "simulator/script/JsonReader.h"
#include "simulator/script/LabPlace.h"
#include "simulator/script/Timeline.h"

#include <optional>
#include <string>
#include <utility>
#include <vector>

namespace OrvaneSim {

// A board and what it has at its start.
struct BoardSetup {
    BoardOptions options;
    std::vector<RegisterValue> registers;
    std::vector<UseMap> maps;
    std::optional<double> ambient;
    std::vector<double> temperatures; // of the first channels
    std::vector<std::pair<std::string, CommandOutcome>> commands;
    std::vector<Action> actions; // done in order before the board is told to anybody
};

// What a lab consists of.
struct LabSetup {
    int interfaces = 1;
    std::vector<BoardSetup> boards;
    std::vector<TimelineEntry> timeline;
};

// Serial number and devices that a board has unless told otherwise: ports 0, 1 and 10.
std::vector<std::string> defaultDevices(const std::string& serial);

// Reads a lab whose boards are to be served at `place`. Nothing is started. Throws ScriptError.
LabSetup readLab(const Json& json, const LabPlace& place);

// Reads a time line for the boards of a lab, a list. Throws ScriptError.
std::vector<TimelineEntry> readScript(const Json& json, const LabSetup& lab, const LabPlace& place);

// Starts the boards in order. Throws std::runtime_error that names the board that cannot be served.
void addBoards(Lab& lab, const std::vector<BoardSetup>& boards);

} // namespace OrvaneSim
