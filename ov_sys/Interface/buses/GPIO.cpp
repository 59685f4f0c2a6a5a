// The GPIO service: a live session, then the call.
#include "ov_sys/Interface/buses/GPIO.h"

#include "ov_sys/Interface/buses/rpc/RPCGPIO.h"

namespace Orvane::GPIO {
namespace {

using Bytes = std::vector<unsigned char>;

} // namespace

void GPIO::set(SessionWrapper session, Bytes const& indexes, Bytes const& states) {
    RPC::set(session.usable(), indexes, states);
}

void GPIO::enableOutput(SessionWrapper session, Bytes const& indexes, Bytes const& enables) {
    RPC::enableOutput(session.usable(), indexes, enables);
}

Bytes GPIO::read(SessionWrapper session, Bytes const& indexes) {
    return RPC::read(session.usable(), indexes);
}

Bytes GPIO::readOutputEnable(SessionWrapper session, Bytes const& indexes) {
    return RPC::readOutputEnable(session.usable(), indexes);
}

void GPIO::setDefault(SessionWrapper session, Bytes const& indexes) {
    RPC::setDefault(session.usable(), indexes);
}

void GPIO::reset(SessionWrapper session) {
    RPC::reset(session.usable());
}

Bytes GPIO::bitBang(SessionWrapper session, Bytes const& first, Bytes const& second, Bytes const& third) {
    return RPC::bitBang(session.usable(), first, second, third);
}

} // namespace Orvane::GPIO
