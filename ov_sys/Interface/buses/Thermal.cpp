// The thermal service: a live session, then the call.
#include "ov_sys/Interface/buses/Thermal.h"

#include "ov_sys/Interface/buses/rpc/RPCThermal.h"

namespace Orvane::Thermal {

Thermal::~Thermal() = default;

void Thermal::selectCommonCall(SessionWrapper& session, void (*call)(PhySession&)) {
    call(session.usable());
}

void Thermal::connect(SessionWrapper session) {
    selectCommonCall(session, RPC::connect);
}

void Thermal::disconnect(SessionWrapper session) {
    selectCommonCall(session, RPC::disconnect);
}

void Thermal::stopControl(SessionWrapper session) {
    selectCommonCall(session, RPC::stopControl);
}

int Thermal::getState(SessionWrapper session) {
    return RPC::getState(session.usable());
}

float Thermal::getTemperature(SessionWrapper session, unsigned channel) {
    return RPC::getTemperature(session.usable(), channel);
}

float Thermal::getSettledTemperature(SessionWrapper session, unsigned channel) {
    return RPC::getSettledTemperature(session.usable(), channel);
}

void Thermal::setTemperature(SessionWrapper session, unsigned channel, float temperature,
                             unsigned char flag) {
    RPC::setTemperature(session.usable(), channel, temperature, flag);
}

void Thermal::setDefaultTemperature(SessionWrapper session, unsigned channel, float temperature,
                                    unsigned char flag) {
    RPC::setDefaultTemperature(session.usable(), channel, temperature, flag);
}

void Thermal::startControl(SessionWrapper session, unsigned channel) {
    RPC::startControl(session.usable(), channel);
}

} // namespace Orvane::Thermal
