// The thermal service of a board.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/Interface/sessions/SessionWrapper.h"

namespace Orvane::Thermal {

// Stateless; any number of threads. Every method throws Exceptions::InvalidSession for a null or invalid
// session before anything is sent, and otherwise does, blocks and throws as the function of the same name in
// RPCThermal.h.
class ORVANE_API Thermal {
public:
    virtual ~Thermal();

    // Runs one of the calls that take nothing but the session.
    void selectCommonCall(SessionWrapper& session, void (*call)(PhySession&));

    // As the functions of the same names in RPCThermal.h.
    void connect(SessionWrapper session);
    void disconnect(SessionWrapper session);
    void stopControl(SessionWrapper session);
    int getState(SessionWrapper session);
    float getTemperature(SessionWrapper session, unsigned channel);
    float getSettledTemperature(SessionWrapper session, unsigned channel);
    void setTemperature(SessionWrapper session, unsigned channel, float temperature, unsigned char flag);
    void setDefaultTemperature(SessionWrapper session, unsigned channel, float temperature,
                               unsigned char flag);
    void startControl(SessionWrapper session, unsigned channel);
};

} // namespace Orvane::Thermal
