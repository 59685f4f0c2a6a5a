// The general-purpose lines.
#include "simulator/board/Procedure.h"
#include "simulator/programs/Programs.h"

namespace OrvaneSim {
namespace {

constexpr std::uint8_t kSample = 1; // a mode of the bit-bang

Bytes bytesOf(const char* first, u_int count) {
    return {first, first + count};
}

bool allExist(const Bytes& lines) {
    return std::all_of(lines.begin(), lines.end(), [](std::uint8_t line) { return GpioBank::exists(line); });
}

// Answers with one byte for each line asked for.
template <class Level>
void answerLevels(const ProcedureCall& call, const sim_GPIO_Indexes_Param& argument,
                  sim_GPIO_Read_Result& result, Level level) {
    Bytes lines = bytesOf(argument.indexes.indexes_val, argument.indexes.indexes_len);
    if (!allExist(lines)) {
        result.error = -EINVAL;
        return;
    }
    std::transform(lines.begin(), lines.end(), lines.begin(),
                   [&](std::uint8_t line) { return level(line) ? 1 : 0; });
    call.fill(result.states.states_len, result.states.states_val, lines);
}

// Does `change(line, state)` for each line named.
template <class Change>
void changeLines(const sim_GPIO_States_Param& argument, sim_Simple_Result& result, Change change) {
    const Bytes lines = bytesOf(argument.indexes.indexes_val, argument.indexes.indexes_len);
    const Bytes states = bytesOf(argument.states.states_val, argument.states.states_len);
    if (lines.size() != states.size() || !allExist(lines)) {
        result.error = -EINVAL;
        return;
    }
    for (std::size_t i = 0; i < lines.size(); ++i)
        change(lines[i], states[i] != 0);
}

void read(ProcedureCall& call, const sim_GPIO_Indexes_Param& argument, sim_GPIO_Read_Result& result) {
    answerLevels(call, argument, result, [&](std::uint8_t line) { return call.board.gpio.level(line); });
}

void readOutputEnable(ProcedureCall& call, const sim_GPIO_Indexes_Param& argument,
                      sim_GPIO_Read_Result& result) {
    answerLevels(call, argument, result,
                 [&](std::uint8_t line) { return call.board.gpio.outputEnabled(line); });
}

void write(ProcedureCall& call, const sim_GPIO_States_Param& argument, sim_Simple_Result& result) {
    changeLines(argument, result,
                [&](std::uint8_t line, bool state) { call.board.gpio.setOutput(line, state); });
}

void enableOutput(ProcedureCall& call, const sim_GPIO_States_Param& argument, sim_Simple_Result& result) {
    changeLines(argument, result,
                [&](std::uint8_t line, bool state) { call.board.gpio.enableOutput(line, state); });
}

void setDefault(ProcedureCall& call, const sim_GPIO_Indexes_Param& argument, sim_Simple_Result& result) {
    const Bytes lines = bytesOf(argument.indexes.indexes_val, argument.indexes.indexes_len);
    if (!allExist(lines)) {
        result.error = -EINVAL;
        return;
    }
    for (const std::uint8_t line : lines)
        call.board.gpio.setDefault(line);
}

void reset(ProcedureCall& call, const sim_Simple_Param&, sim_Simple_Result&) {
    call.board.gpio.reset();
}

// Steps in order: each latches a state into a line, unless its mode is 1, and then samples the line's level
// into the answer.
void bitBang(ProcedureCall& call, const sim_GPIO_BitBang_Param& argument, sim_GPIO_Read_Result& result) {
    const Bytes lines = bytesOf(argument.indexes.indexes_val, argument.indexes.indexes_len);
    const Bytes states = bytesOf(argument.states.states_val, argument.states.states_len);
    const Bytes modes = bytesOf(argument.modes.modes_val, argument.modes.modes_len);
    if (lines.size() != states.size() || lines.size() != modes.size() || !allExist(lines)) {
        result.error = -EINVAL;
        return;
    }
    Bytes levels;
    for (std::size_t i = 0; i < lines.size(); ++i) {
        if (modes[i] != kSample)
            call.board.gpio.setOutput(lines[i], states[i] != 0);
        levels.push_back(call.board.gpio.level(lines[i]) ? 1 : 0);
    }
    call.fill(result.states.states_len, result.states.states_val, levels);
}

constexpr Procedure kProcedures[] = {
    {SIM_GPIO_READ, "gpio_read", handler<read>},
    {SIM_GPIO_WRITE, "gpio_write", handler<write>},
    {SIM_GPIO_SETDEFAULT, "gpio_setdefault", handler<setDefault>},
    {SIM_GPIO_RESET, "gpio_reset", handler<reset>},
    {SIM_GPIO_ENABLEOUTPUT, "gpio_enableoutput", handler<enableOutput>},
    {SIM_GPIO_BITBANG, "gpio_bitbang", handler<bitBang>},
    {SIM_GPIO_READOUTPUTENABLE, "gpio_readoutputenable", handler<readOutputEnable>},
};

} // namespace

const Program kGpioProgram{"gpio", SIM_GPIO, SIM_GPIO_VERSION, kProcedures};

} // namespace OrvaneSim
