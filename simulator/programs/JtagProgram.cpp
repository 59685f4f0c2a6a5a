// Shifts through the JTAG chain.
#include "simulator/board/Procedure.h"
#include "simulator/programs/Programs.h"

#include <string>

namespace OrvaneSim {
namespace {

constexpr int kMostBytes = 1024; // of one shift

bool isLevels(std::string_view text) {
    return text.size() <= std::size_t{kMostBytes} * 8 &&
           text.find_first_not_of("01") == std::string_view::npos;
}

std::string_view textOf(const sim_StringArrayEntry& entry) {
    return entry.text ? entry.text : "";
}

// Clocks the levels of `tms` with those of `data`, then the levels of `tmsAfter` with data low. The answer
// is the level of TDO for each clock of the first part. Data that is shorter goes on low.
std::string shift(JtagChain& chain, std::string_view data, std::string_view tms, std::string_view tmsAfter) {
    std::string answer;
    for (std::size_t i = 0; i < tms.size(); ++i)
        answer += chain.clock(tms[i] == '1', i < data.size() && data[i] == '1') ? '1' : '0';
    for (const char level : tmsAfter)
        chain.clock(level == '1', false);
    return answer;
}

void setEntry(const ProcedureCall& call, sim_StringArrayEntry& entry, const std::string& text) {
    entry.length = static_cast<u_int>(text.size());
    entry.text = call.allocate<char>(text.size() + 1);
    std::copy(text.begin(), text.end(), entry.text);
}

void maxBytes(ProcedureCall&, const sim_Simple_Param&, sim_Simple_Result& result) {
    result.value = kMostBytes;
}

void shiftMulti(ProcedureCall& call, const sim_JTAG_ShiftMulti_Param& argument,
                sim_JTAG_ShiftMulti_Result& result) {
    const u_int count = argument.data.data_len;
    bool valid = argument.tms.tms_len == count && argument.tmsAfter.tmsAfter_len == count;
    for (u_int i = 0; valid && i < count; ++i)
        valid = isLevels(textOf(argument.data.data_val[i])) && isLevels(textOf(argument.tms.tms_val[i])) &&
                isLevels(textOf(argument.tmsAfter.tmsAfter_val[i]));
    if (!valid) {
        result.error = -EINVAL;
        return;
    }
    result.entries.entries_len = count;
    result.entries.entries_val = call.allocate<sim_StringArrayEntry>(count);
    for (u_int i = 0; i < count; ++i)
        setEntry(call, result.entries.entries_val[i],
                 shift(call.board.jtag, textOf(argument.data.data_val[i]), textOf(argument.tms.tms_val[i]),
                       textOf(argument.tmsAfter.tmsAfter_val[i])));
}

constexpr Procedure kProcedures[] = {
    {SIM_JTAG_MAXBYTES, "jtag_maxbytes", handler<maxBytes>},
    {SIM_JTAG_SHIFTMULTI, "jtag_shiftmulti", handler<shiftMulti>},
};

} // namespace

const Program kJtagProgram{"jtag", SIM_JTAG, SIM_JTAG_VERSION, kProcedures};

} // namespace OrvaneSim
