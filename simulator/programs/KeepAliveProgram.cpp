// Pings that keep a session alive.
#include "simulator/board/Procedure.h"
#include "simulator/programs/Programs.h"

namespace OrvaneSim {
namespace {

void pingKeepAlive(ProcedureCall&, const sim_ID_Param&, sim_Simple_Result&) {
    // That the session was found is the whole answer.
}

constexpr Procedure kProcedures[] = {
    {SIM_PINGKEEPALIVE, "pingkeepalive", handler<pingKeepAlive>},
};

} // namespace

const Program kKeepAliveProgram{"keepAlive", SIM_KEEPALIVE, SIM_KEEPALIVE_VERSION, kProcedures};

} // namespace OrvaneSim
