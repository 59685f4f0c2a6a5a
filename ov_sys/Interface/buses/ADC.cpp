// The ADC service: a live session, then the call.
#include "ov_sys/Interface/buses/ADC.h"

#include "ov_sys/Interface/buses/rpc/RPCADC.h"

#include <utility>

namespace Orvane::ADC {

ADC::~ADC() = default;

void ADC::initialize(SessionWrapper session) {
    RPC::initialize(session.usable());
}

void ADC::start(SessionWrapper session) {
    RPC::start(session.usable());
}

void ADC::stop(SessionWrapper session) {
    RPC::stop(session.usable());
}

void ADC::setChannelMask(SessionWrapper session, unsigned mask) {
    RPC::setChannelMask(session.usable(), mask);
}

void ADC::setDumpFile(SessionWrapper session, std::string name) {
    RPC::setDumpFile(session.usable(), std::move(name));
}

void ADC::setEventName(SessionWrapper session, std::string name) {
    RPC::setEventName(session.usable(), std::move(name));
}

std::vector<unsigned char> ADC::getData(SessionWrapper session, int count) {
    return RPC::getData(session.usable(), count);
}

std::vector<unsigned char> ADC::maxADC(SessionWrapper session) {
    return RPC::maxADC(session.usable());
}

std::vector<unsigned char> ADC::getEvents(SessionWrapper session) {
    return RPC::getEvents(session.usable());
}

} // namespace Orvane::ADC
