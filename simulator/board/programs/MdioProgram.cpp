// Register accesses: single, listed and in mixed blocks.
#include "simulator/board/Procedure.h"

using namespace OrvaneSim;

namespace {

constexpr std::uint32_t kWordBytes = 4; // step of the pre-incremented address

PhyAddress phyOfSession(const Session& session) {
    return {session.deviceIndex, session.phyAddress};
}

/// The PHY that a 16-bit access goes to: bits 24 to 28 of the address word are its address, bits 29 to 31 the
/// low bits of its device index. The session's own index completes them where they agree, so that ports 8 and
/// 9 are not ports 0 and 1.
PhyAddress phyOfAddress(const Session& session, std::uint32_t address) {
    const unsigned lowBits = address >> 29;
    const unsigned device = (session.deviceIndex & 7U) == lowBits ? session.deviceIndex : lowBits;
    return {device, (address >> 24) & 0x1FU};
}

/// Accesses in one frame format.
template <Space space>
struct Access {
    static PhyAddress where(const Service& service, std::uint32_t address) {
        return space == Space::Ext32 ? phyOfSession(*service.session)
                                     : phyOfAddress(*service.session, address);
    }

    static std::uint32_t read(Service& service, std::uint32_t address) {
        return service.board.mdio.read(where(service, address), space, address);
    }

    static void write(Service& service, std::uint32_t address, std::uint32_t value) {
        service.board.mdio.write(where(service, address), space, address, value);
    }
};

template <Space space>
void readList(Service& service, const sim_MDIO_Read_Param& argument, sim_MDIO_Read_Result& result) {
    const u_int count = argument.addresses.addresses_len;
    result.data.data_len = count;
    result.data.data_val = service.room<u_int>(count);
    for (u_int i = 0; i < count; ++i)
        result.data.data_val[i] = Access<space>::read(service, argument.addresses.addresses_val[i]);
}

template <Space space>
void writeList(Service& service, const sim_MDIO_Write_Param& argument, sim_MDIO_Result& result) {
    if (argument.addresses.addresses_len != argument.values.values_len) {
        result.error = -EINVAL;
        return;
    }
    for (u_int i = 0; i < argument.addresses.addresses_len; ++i)
        Access<space>::write(service, argument.addresses.addresses_val[i], argument.values.values_val[i]);
}

/// Runs alternate between the two lists, a write run first; what the runs leave over is not executed, and its
/// reads are answered with 0.
template <Space space>
void mixedBlock(Service& service, const sim_MDIO_Mixed_Param& argument, sim_MDIO_Read_Result& result) {
    const auto& data = argument.writeData;
    const auto& writeAddresses = argument.writeAddresses;
    const auto& readAddresses = argument.readAddresses;
    const auto& runs = argument.runs;
    if (data.writeData_len != writeAddresses.writeAddresses_len) {
        result.error = -EINVAL;
        return;
    }
    result.data.data_len = readAddresses.readAddresses_len;
    result.data.data_val = service.room<u_int>(readAddresses.readAddresses_len);
    u_int written = 0;
    u_int read = 0;
    for (u_int run = 0; run < runs.runs_len; ++run) {
        const u_int length = runs.runs_val[run];
        if (run % 2 == 0) {
            for (u_int i = 0; i < length && written < writeAddresses.writeAddresses_len; ++i, ++written)
                Access<space>::write(service, writeAddresses.writeAddresses_val[written],
                                     data.writeData_val[written]);
        } else {
            for (u_int i = 0; i < length && read < readAddresses.readAddresses_len; ++i, ++read)
                result.data.data_val[read] =
                    Access<space>::read(service, readAddresses.readAddresses_val[read]);
        }
    }
}

template <std::uint32_t step>
std::uint32_t nextAddress(const Service& service) {
    return service.board.mdio.currentAddress(phyOfSession(*service.session)) + step;
}

template <std::uint32_t step>
void readAhead(Service& service, const sim_MDIO_Read_Param_No_Addr&, sim_MDIO_Read_Result_Single& result) {
    result.value = Access<Space::Ext32>::read(service, nextAddress<step>(service));
}

template <std::uint32_t step>
void writeAhead(Service& service, const sim_MDIO_Write_Param_No_Addr& argument, sim_MDIO_Result&) {
    Access<Space::Ext32>::write(service, nextAddress<step>(service), argument.value);
}

// A simulated PHY raises no interrupt: requests are accepted and a wait ends at once, with none pending.
template <class Argument>
void acceptInterrupt(Service&, const Argument&, sim_MDIO_Result&) {}

void flushPort(Service&, const sim_MDIO_FlushPort_Param&, sim_MDIO_Result&) {
    // Accesses are complete when they are answered.
}

template <class Result>
void echoValue(Service&, const sim_Simple_Param& argument, Result& result) {
    result.value = static_cast<int>(argument.value);
}

} // namespace

// Frames of one kind of argument and result, in one format.
#define MDIO_READ(stub, function)                                                                            \
    ORVANE_SIM_PROCEDURE("mdio", 1, stub, sim_MDIO_Read_Param, xdr_sim_MDIO_Read_Param,                      \
                         sim_MDIO_Read_Result, function)
#define MDIO_WRITE(stub, function)                                                                           \
    ORVANE_SIM_PROCEDURE("mdio", 1, stub, sim_MDIO_Write_Param, xdr_sim_MDIO_Write_Param, sim_MDIO_Result,   \
                         function)
#define MDIO_MIXED(stub, function)                                                                           \
    ORVANE_SIM_PROCEDURE("mdio", 1, stub, sim_MDIO_Mixed_Param, xdr_sim_MDIO_Mixed_Param,                    \
                         sim_MDIO_Read_Result, function)
#define MDIO_READ_NEXT(stub, function)                                                                       \
    ORVANE_SIM_PROCEDURE("mdio", 1, stub, sim_MDIO_Read_Param_No_Addr, xdr_sim_MDIO_Read_Param_No_Addr,      \
                         sim_MDIO_Read_Result_Single, function)
#define MDIO_WRITE_NEXT(stub, function)                                                                      \
    ORVANE_SIM_PROCEDURE("mdio", 1, stub, sim_MDIO_Write_Param_No_Addr, xdr_sim_MDIO_Write_Param_No_Addr,    \
                         sim_MDIO_Result, function)
#define MDIO_SIMPLE(stub, Result, function)                                                                  \
    ORVANE_SIM_PROCEDURE("mdio", 1, stub, sim_Simple_Param, xdr_sim_Simple_Param, Result, function)

MDIO_READ(mdio_read, readList<Space::C45>)
MDIO_WRITE(mdio_write, writeList<Space::C45>)
MDIO_MIXED(mdio_mixedblock, mixedBlock<Space::C45>)
MDIO_READ(mdio_read_c22, readList<Space::C22>)
MDIO_WRITE(mdio_write_c22, writeList<Space::C22>)
MDIO_MIXED(mdio_mixedblock_c22, mixedBlock<Space::C22>)
MDIO_READ(mdio_read_c22_zrext32, readList<Space::Ext32>)
MDIO_WRITE(mdio_write_c22_zrext32, writeList<Space::Ext32>)
MDIO_MIXED(mdio_mixedblock_c22_zrext32, mixedBlock<Space::Ext32>)
MDIO_READ_NEXT(mdio_read_preinc_c22_zrext32, readAhead<kWordBytes>)
MDIO_READ_NEXT(mdio_read_curraddr_c22_zrext32, readAhead<0>)
MDIO_WRITE_NEXT(mdio_write_preinc_c22_zrext32, writeAhead<kWordBytes>)
MDIO_WRITE_NEXT(mdio_write_curraddr_c22_zrext32, writeAhead<0>)
MDIO_SIMPLE(mdio_singlewire, sim_MDIO_Result, echoValue<sim_MDIO_Result>)
MDIO_SIMPLE(mdio_setpreamblecount, sim_Simple_Result, echoValue<sim_Simple_Result>)
MDIO_SIMPLE(mdio_interruptwait, sim_MDIO_Result, acceptInterrupt<sim_Simple_Param>)
MDIO_SIMPLE(mdio_interrutprelease, sim_MDIO_Result, acceptInterrupt<sim_Simple_Param>)
ORVANE_SIM_PROCEDURE("mdio", 1, mdio_interruptrequest, sim_MDIO_InterruptRequest_Param,
                     xdr_sim_MDIO_InterruptRequest_Param, sim_MDIO_Result,
                     acceptInterrupt<sim_MDIO_InterruptRequest_Param>)
ORVANE_SIM_PROCEDURE("mdio", 1, mdio_interruptprocessed, sim_MDIO_InterruptProcessed_Param,
                     xdr_sim_MDIO_InterruptProcessed_Param, sim_MDIO_Result,
                     acceptInterrupt<sim_MDIO_InterruptProcessed_Param>)
ORVANE_SIM_PROCEDURE("mdio", 1, mdio_flushport, sim_MDIO_FlushPort_Param, xdr_sim_MDIO_FlushPort_Param,
                     sim_MDIO_Result, flushPort)
ORVANE_SIM_RESULTS(mdio, 1)
