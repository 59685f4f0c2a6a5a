// The thermal service's calls.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

namespace Orvane {

class PhySession;

// Control of the board's temperature forcing unit. Temperatures are in the unit's own scale, as
// single-precision floats; `channel` and `flag` are the unit's. All calls block for the answer, 2 s at most
// for each attempt and its recovery, and throw as DO_RPC. Any number of threads.
namespace Thermal::RPC {

// The connection to the unit, and its temperature control.
ORVANE_API void connect(PhySession& session);
ORVANE_API void disconnect(PhySession& session);
ORVANE_API void stopControl(PhySession& session);
ORVANE_API void startControl(PhySession& session, unsigned channel);

// The unit's state, and the present, the settled and the wanted temperature of a channel.
ORVANE_API int getState(PhySession& session);
ORVANE_API float getTemperature(PhySession& session, unsigned channel);
ORVANE_API float getSettledTemperature(PhySession& session, unsigned channel);
ORVANE_API void setTemperature(PhySession& session, unsigned channel, float temperature, unsigned char flag);
ORVANE_API void setDefaultTemperature(PhySession& session, unsigned channel, float temperature,
                                      unsigned char flag);

} // namespace Thermal::RPC
} // namespace Orvane
