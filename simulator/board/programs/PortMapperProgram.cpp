// The port mapper's procedures.
#include "simulator/board/Procedure.h"

using OrvaneSim::PortMapping;
using OrvaneSim::Service;

namespace {

PortMapping mappingOf(const sim_Port_Mapping& record) {
    return {record.prog, record.vers, record.prot, record.port};
}

void set(Service& service, const sim_Port_Mapping& argument, bool_t& result) {
    result = service.board.ports.set(mappingOf(argument)) ? TRUE : FALSE;
}

void unset(Service& service, const sim_Port_Mapping& argument, bool_t& result) {
    result = service.board.ports.unset(argument.prog, argument.vers) ? TRUE : FALSE;
}

void getPort(Service& service, const sim_Port_Mapping& argument, u_int& result) {
    result = service.board.ports.port(argument.prog, argument.vers, argument.prot);
}

void dump(Service& service, const char&, sim_Port_Dump& result) {
    sim_Port_List** end = &result.first;
    for (const PortMapping& mapping : service.board.ports.all()) {
        *end = service.room<sim_Port_List>(1);
        (*end)->mapping = {mapping.program, mapping.version, mapping.protocol, mapping.port};
        end = &(*end)->next;
    }
}

} // namespace

ORVANE_SIM_PROCEDURE("portmap", 2, portmap_set, sim_Port_Mapping, xdr_sim_Port_Mapping, bool_t, set)
ORVANE_SIM_PROCEDURE("portmap", 2, portmap_unset, sim_Port_Mapping, xdr_sim_Port_Mapping, bool_t, unset)
ORVANE_SIM_PROCEDURE("portmap", 2, portmap_getport, sim_Port_Mapping, xdr_sim_Port_Mapping, u_int, getPort)

// Indirect calls would let one board be used against another; port mappers refuse them.
extern "C" bool_t sim_portmap_callit_2_svc(sim_Port_Call*, sim_Port_Call_Result*, svc_req* request) {
    svcerr_noproc(request->rq_xprt);
    return FALSE;
}

extern "C" bool_t sim_portmap_dump_2_svc(void*, sim_Port_Dump* result, svc_req* request) {
    static constexpr OrvaneSim::ProcedureInfo info{"portmap", "portmap_dump", nullptr};
    char nothing = 0;
    return OrvaneSim::runProcedure<char, sim_Port_Dump>(request, info, nothing, *result, dump);
}

ORVANE_SIM_RESULTS(portmap, 2)
