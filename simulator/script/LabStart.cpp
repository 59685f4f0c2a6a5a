// From the description of boards to boards that serve.
#include "simulator/script/LabFile.h"

#include <stdexcept>

namespace OrvaneSim {
namespace {

constexpr std::size_t kLoopedLines = 16; // GPIO lines 0 to 15 are wired to lines 16 to 31

void setUp(Board& board, const BoardSetup& setup) {
    for (std::size_t line = 0; line < kLoopedLines; ++line)
        board.wireGpio(line, line + kLoopedLines);
    for (const RegisterValue& value : setup.registers)
        board.setRegister(value.space, value.device, value.phy, value.address, value.value);
    for (const UseMap& map : setup.maps)
        board.useMap(map);
    if (setup.ambient)
        board.setAmbientTemperature(*setup.ambient);
    for (std::size_t channel = 0; channel < setup.temperatures.size(); ++channel)
        board.setTemperature(channel, setup.temperatures[channel]);
    for (const auto& [command, outcome] : setup.commands)
        board.setCommand(command, outcome);
    for (const Action& action : setup.actions)
        board.apply(action);
}

} // namespace

void addBoards(Lab& lab, const std::vector<BoardSetup>& boards) {
    for (const BoardSetup& setup : boards) {
        try {
            setUp(lab.add(setup.options), setup);
        } catch (const std::exception& problem) {
            throw std::runtime_error("board " + setup.options.serial + ": " + problem.what());
        }
    }
}

} // namespace OrvaneSim
