// Register accesses: single, listed and in mixed blocks.
#include "simulator/board/Procedure.h"
#include "simulator/programs/Programs.h"

#include <algorithm>
#include <chrono>

namespace OrvaneSim {
namespace {

constexpr std::uint32_t kWordBytes = 4; // step of the pre-incremented address

PhyAddress phyOfSession(const Session& session) {
    return {session.deviceIndex, session.phyAddress};
}

// The PHY that a 16-bit access goes to: bits 24 to 28 of the address word are its address, bits 29 to 31 the
// low bits of its device index. The session's own index completes them where they agree, so that ports 8 and
// 9 are not ports 0 and 1.
PhyAddress phyOfAddress(const Session& session, std::uint32_t address) {
    const unsigned lowBits = address >> 29;
    const unsigned device = (session.deviceIndex & 7U) == lowBits ? session.deviceIndex : lowBits;
    return {device, (address >> 24) & 0x1FU};
}

// Accesses in one frame format.
template <Space space>
struct Access {
    static PhyAddress where(const ProcedureCall& call, std::uint32_t address) {
        return space == Space::Ext32 ? phyOfSession(*call.session) : phyOfAddress(*call.session, address);
    }

    static std::uint32_t read(ProcedureCall& call, std::uint32_t address) {
        return call.board.mdio.read(where(call, address), space, address);
    }

    static void write(ProcedureCall& call, std::uint32_t address, std::uint32_t value) {
        call.board.mdio.write(where(call, address), space, address, value);
    }
};

template <Space space>
void readList(ProcedureCall& call, const sim_MDIO_Read_Param& argument, sim_MDIO_Read_Result& result) {
    const u_int count = argument.addresses.addresses_len;
    result.data.data_len = count;
    result.data.data_val = call.allocate<u_int>(count);
    const u_int* const addresses = argument.addresses.addresses_val;
    for (u_int i = 0; i < count;) {
        const u_int begin = i++;
        while (i < count && addresses[i] >> 24 == addresses[begin] >> 24) // of the same PHY
            ++i;
        call.board.mdio.read(Access<space>::where(call, addresses[begin]), space, addresses + begin,
                             i - begin, result.data.data_val + begin);
    }
}

template <Space space>
void writeList(ProcedureCall& call, const sim_MDIO_Write_Param& argument, sim_MDIO_Result& result) {
    if (argument.addresses.addresses_len != argument.values.values_len) {
        result.error = -EINVAL;
        return;
    }
    for (u_int i = 0; i < argument.addresses.addresses_len; ++i)
        Access<space>::write(call, argument.addresses.addresses_val[i], argument.values.values_val[i]);
}

// Runs alternate between the two lists, a write run first; what the runs leave over is not executed, and its
// reads are answered with 0.
template <Space space>
void mixedBlock(ProcedureCall& call, const sim_MDIO_Mixed_Param& argument, sim_MDIO_Read_Result& result) {
    const auto& data = argument.writeData;
    const auto& writeAddresses = argument.writeAddresses;
    const auto& readAddresses = argument.readAddresses;
    const auto& runs = argument.runs;
    if (data.writeData_len != writeAddresses.writeAddresses_len) {
        result.error = -EINVAL;
        return;
    }
    result.data.data_len = readAddresses.readAddresses_len;
    result.data.data_val = call.allocate<u_int>(readAddresses.readAddresses_len);
    u_int written = 0;
    u_int read = 0;
    for (u_int run = 0; run < runs.runs_len; ++run) {
        const u_int length = runs.runs_val[run];
        if (run % 2 == 0) {
            for (u_int i = 0; i < length && written < writeAddresses.writeAddresses_len; ++i, ++written)
                Access<space>::write(call, writeAddresses.writeAddresses_val[written],
                                     data.writeData_val[written]);
        } else {
            for (u_int i = 0; i < length && read < readAddresses.readAddresses_len; ++i, ++read)
                result.data.data_val[read] = Access<space>::read(call, readAddresses.readAddresses_val[read]);
        }
    }
}

template <std::uint32_t step>
std::uint32_t nextAddress(const ProcedureCall& call) {
    return call.board.mdio.currentAddress(phyOfSession(*call.session)) + step;
}

template <std::uint32_t step>
void readAhead(ProcedureCall& call, const sim_MDIO_Read_Param_No_Addr&, sim_MDIO_Read_Result_Single& result) {
    result.value = Access<Space::Ext32>::read(call, nextAddress<step>(call));
}

template <std::uint32_t step>
void writeAhead(ProcedureCall& call, const sim_MDIO_Write_Param_No_Addr& argument, sim_MDIO_Result&) {
    Access<Space::Ext32>::write(call, nextAddress<step>(call), argument.value);
}

// The bytes are the port and the PHY whose interrupts the session asks for; the numbers mean nothing here.
void requestInterrupt(ProcedureCall& call, const sim_MDIO_InterruptRequest_Param& argument,
                      sim_MDIO_Result&) {
    call.board.interrupts.request(Sessions::idOf(argument.handle), {argument.byte1, argument.byte2});
}

// Lasts so many milliseconds at most; the value is the number of interrupts that wait to be dealt with.
void waitForInterrupt(ProcedureCall& call, const sim_Simple_Param& argument, sim_MDIO_Result& result) {
    MdioInterrupts& interrupts = call.board.interrupts;
    const std::uint32_t session = Sessions::idOf(argument.handle);
    const int pending = interrupts.pending(session);
    result.error = std::min(pending, 0);
    result.value = std::max(pending, 0);
    if (pending == 0 && argument.value > 0)
        interrupts.wait(session, std::chrono::milliseconds(argument.value),
                        [reply = call.rpc.answerLater()](int count) {
                            sim_MDIO_Result late{std::max(count, 0), std::min(count, 0)};
                            reply->send(reinterpret_cast<xdrproc_t>(xdr_sim_MDIO_Result), &late);
                        });
}

void interruptProcessed(ProcedureCall& call, const sim_MDIO_InterruptProcessed_Param& argument,
                        sim_MDIO_Result& result) {
    result.error = call.board.interrupts.processed(Sessions::idOf(argument.handle), argument.word1);
}

void releaseInterrupt(ProcedureCall& call, const sim_Simple_Param& argument, sim_MDIO_Result& result) {
    result.error = call.board.interrupts.release(Sessions::idOf(argument.handle));
}

void flushPort(ProcedureCall&, const sim_MDIO_FlushPort_Param&, sim_MDIO_Result&) {
    // Accesses are complete when they are answered.
}

template <class Result>
void echoValue(ProcedureCall&, const sim_Simple_Param& argument, Result& result) {
    result.value = static_cast<int>(argument.value);
}

constexpr Procedure kProcedures[] = {
    {SIM_MDIO_READ, "mdio_read", handler<readList<Space::C45>>},
    {SIM_MDIO_WRITE, "mdio_write", handler<writeList<Space::C45>>},
    {SIM_MDIO_INTERRUPTREQUEST, "mdio_interruptrequest", handler<requestInterrupt>},
    {SIM_MDIO_INTERRUPTWAIT, "mdio_interruptwait", handler<waitForInterrupt>},
    {SIM_MDIO_INTERRUPTPROCESSED, "mdio_interruptprocessed", handler<interruptProcessed>},
    {SIM_MDIO_INTERRUTPRELEASE, "mdio_interrutprelease", handler<releaseInterrupt>},
    {SIM_MDIO_FLUSHPORT, "mdio_flushport", handler<flushPort>},
    {SIM_MDIO_SINGLEWIRE, "mdio_singlewire", handler<echoValue<sim_MDIO_Result>>},
    {SIM_MDIO_MIXEDBLOCK, "mdio_mixedblock", handler<mixedBlock<Space::C45>>},
    {SIM_MDIO_SETPREAMBLECOUNT, "mdio_setpreamblecount", handler<echoValue<sim_Simple_Result>>},
    {SIM_MDIO_READ_C22, "mdio_read_c22", handler<readList<Space::C22>>},
    {SIM_MDIO_WRITE_C22, "mdio_write_c22", handler<writeList<Space::C22>>},
    {SIM_MDIO_MIXEDBLOCK_C22, "mdio_mixedblock_c22", handler<mixedBlock<Space::C22>>},
    {SIM_MDIO_READ_C22_ZREXT32, "mdio_read_c22_zrext32", handler<readList<Space::Ext32>>},
    {SIM_MDIO_WRITE_C22_ZREXT32, "mdio_write_c22_zrext32", handler<writeList<Space::Ext32>>},
    {SIM_MDIO_READ_PREINC_C22_ZREXT32, "mdio_read_preinc_c22_zrext32", handler<readAhead<kWordBytes>>},
    {SIM_MDIO_WRITE_PREINC_C22_ZREXT32, "mdio_write_preinc_c22_zrext32", handler<writeAhead<kWordBytes>>},
    {SIM_MDIO_READ_CURRADDR_C22_ZREXT32, "mdio_read_curraddr_c22_zrext32", handler<readAhead<0>>},
    {SIM_MDIO_WRITE_CURRADDR_C22_ZREXT32, "mdio_write_curraddr_c22_zrext32", handler<writeAhead<0>>},
    {SIM_MDIO_MIXEDBLOCK_C22_ZREXT32, "mdio_mixedblock_c22_zrext32", handler<mixedBlock<Space::Ext32>>},
};

} // namespace

const Program kMdioProgram{"mdio", SIM_MDIO, SIM_MDIO_VERSION, kProcedures};

} // namespace OrvaneSim
