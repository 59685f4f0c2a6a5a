// The port mapper's procedures.
#include "simulator/board/Procedure.h"
#include "simulator/programs/Programs.h"

namespace OrvaneSim {
namespace {

PortMapping mappingOf(const sim_Port_Mapping& record) {
    return {record.prog, record.vers, record.prot, record.port};
}

void set(ProcedureCall& call, const sim_Port_Mapping& argument, bool_t& result) {
    result = call.board.ports.set(mappingOf(argument)) ? TRUE : FALSE;
}

void unset(ProcedureCall& call, const sim_Port_Mapping& argument, bool_t& result) {
    result = call.board.ports.unset(argument.prog, argument.vers) ? TRUE : FALSE;
}

void getPort(ProcedureCall& call, const sim_Port_Mapping& argument, u_int& result) {
    result = call.board.ports.port(argument.prog, argument.vers, argument.prot);
}

void dump(ProcedureCall& call, const Nothing&, sim_Port_Dump& result) {
    sim_Port_List** end = &result.first;
    for (const PortMapping& mapping : call.board.ports.all()) {
        *end = call.allocate<sim_Port_List>(1);
        (*end)->mapping = {mapping.program, mapping.version, mapping.protocol, mapping.port};
        end = &(*end)->next;
    }
}

constexpr Procedure kProcedures[] = {
    {SIM_PORTMAP_SET, "portmap_set", handler<set>},
    {SIM_PORTMAP_UNSET, "portmap_unset", handler<unset>},
    {SIM_PORTMAP_GETPORT, "portmap_getport", handler<getPort>},
    {SIM_PORTMAP_DUMP, "portmap_dump", handler<dump>},
    // No SIM_PORTMAP_CALLIT: indirect calls would let one board be used against another; port mappers refuse
    // them.
};

} // namespace

const Program kPortMapperProgram{"portmap", SIM_PORTMAP, SIM_PORTMAP_VERSION, kProcedures};

} // namespace OrvaneSim
