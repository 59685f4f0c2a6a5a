// Pings that keep a session alive.
#include "simulator/board/Procedure.h"

using OrvaneSim::Service;

namespace {

void pingKeepAlive(Service&, const sim_ID_Param&, sim_Simple_Result&) {
    // That the session was found is the whole answer.
}

} // namespace

ORVANE_SIM_PROCEDURE("keepAlive", 1, pingkeepalive, sim_ID_Param, xdr_sim_ID_Param, sim_Simple_Result,
                     pingKeepAlive)
ORVANE_SIM_RESULTS(keepalive, 1)
