// The general-purpose lines.
#include "simulator/board/Procedure.h"

using namespace OrvaneSim;

namespace {

constexpr std::uint8_t kSample = 1; // a mode of the bit-bang

Bytes bytesOf(const char* first, u_int count) {
    return {first, first + count};
}

bool allExist(const Bytes& lines) {
    return std::all_of(lines.begin(), lines.end(), [](std::uint8_t line) { return GpioBank::exists(line); });
}

/// Answers with one byte for each line asked for.
template <class Level>
void answerLevels(const Service& service, const sim_GPIO_Indexes_Param& argument,
                  sim_GPIO_Read_Result& result, Level level) {
    Bytes lines = bytesOf(argument.indexes.indexes_val, argument.indexes.indexes_len);
    if (!allExist(lines)) {
        result.error = -EINVAL;
        return;
    }
    std::transform(lines.begin(), lines.end(), lines.begin(),
                   [&](std::uint8_t line) { return level(line) ? 1 : 0; });
    service.fill(result.states.states_len, result.states.states_val, lines);
}

/// Does `change(line, state)` for each line named.
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

void read(Service& service, const sim_GPIO_Indexes_Param& argument, sim_GPIO_Read_Result& result) {
    answerLevels(service, argument, result,
                 [&](std::uint8_t line) { return service.board.gpio.level(line); });
}

void readOutputEnable(Service& service, const sim_GPIO_Indexes_Param& argument,
                      sim_GPIO_Read_Result& result) {
    answerLevels(service, argument, result,
                 [&](std::uint8_t line) { return service.board.gpio.outputEnabled(line); });
}

void write(Service& service, const sim_GPIO_States_Param& argument, sim_Simple_Result& result) {
    changeLines(argument, result,
                [&](std::uint8_t line, bool state) { service.board.gpio.setOutput(line, state); });
}

void enableOutput(Service& service, const sim_GPIO_States_Param& argument, sim_Simple_Result& result) {
    changeLines(argument, result,
                [&](std::uint8_t line, bool state) { service.board.gpio.enableOutput(line, state); });
}

void setDefault(Service& service, const sim_GPIO_Indexes_Param& argument, sim_Simple_Result& result) {
    const Bytes lines = bytesOf(argument.indexes.indexes_val, argument.indexes.indexes_len);
    if (!allExist(lines)) {
        result.error = -EINVAL;
        return;
    }
    for (const std::uint8_t line : lines)
        service.board.gpio.setDefault(line);
}

void reset(Service& service, const sim_Simple_Param&, sim_Simple_Result&) {
    service.board.gpio.reset();
}

/// Steps in order: each latches a state into a line, unless its mode is 1, and then samples the line's level
/// into the answer.
void bitBang(Service& service, const sim_GPIO_BitBang_Param& argument, sim_GPIO_Read_Result& result) {
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
            service.board.gpio.setOutput(lines[i], states[i] != 0);
        levels.push_back(service.board.gpio.level(lines[i]) ? 1 : 0);
    }
    service.fill(result.states.states_len, result.states.states_val, levels);
}

} // namespace

ORVANE_SIM_PROCEDURE("gpio", 1, gpio_read, sim_GPIO_Indexes_Param, xdr_sim_GPIO_Indexes_Param,
                     sim_GPIO_Read_Result, read)
ORVANE_SIM_PROCEDURE("gpio", 1, gpio_write, sim_GPIO_States_Param, xdr_sim_GPIO_States_Param,
                     sim_Simple_Result, write)
ORVANE_SIM_PROCEDURE("gpio", 1, gpio_setdefault, sim_GPIO_Indexes_Param, xdr_sim_GPIO_Indexes_Param,
                     sim_Simple_Result, setDefault)
ORVANE_SIM_PROCEDURE("gpio", 1, gpio_reset, sim_Simple_Param, xdr_sim_Simple_Param, sim_Simple_Result, reset)
ORVANE_SIM_PROCEDURE("gpio", 1, gpio_enableoutput, sim_GPIO_States_Param, xdr_sim_GPIO_States_Param,
                     sim_Simple_Result, enableOutput)
ORVANE_SIM_PROCEDURE("gpio", 1, gpio_bitbang, sim_GPIO_BitBang_Param, xdr_sim_GPIO_BitBang_Param,
                     sim_GPIO_Read_Result, bitBang)
ORVANE_SIM_PROCEDURE("gpio", 1, gpio_readoutputenable, sim_GPIO_Indexes_Param, xdr_sim_GPIO_Indexes_Param,
                     sim_GPIO_Read_Result, readOutputEnable)
ORVANE_SIM_RESULTS(gpio, 1)
