// The I2C service: a live session, then the call.
#include "ov_sys/Interface/buses/I2C.h"

#include "ov_sys/Interface/buses/rpc/RPCI2C.h"

namespace Orvane::I2C {
namespace {

using Bytes = std::vector<unsigned char>;
using Words = std::vector<unsigned int>;

} // namespace

void I2C::write(SessionWrapper session, unsigned char bus, unsigned int address, Bytes& data) {
    RPC::write(session.usable(), bus, address, data);
}

Bytes I2C::read(SessionWrapper session, unsigned char bus, unsigned int address, unsigned char command,
                unsigned int length) {
    return RPC::read(session.usable(), bus, address, command, length);
}

Bytes I2C::readReg(SessionWrapper session, unsigned char bus, unsigned int address, unsigned int reg,
                   unsigned char regFormat, unsigned int length) {
    return RPC::readReg(session.usable(), bus, address, reg, regFormat, length);
}

void I2C::blockWriteRegister(SessionWrapper session, Bytes const& buses, Words const& addresses,
                             Words const& regs, Bytes& data, Words const& lengths, Words const& regFormats) {
    RPC::blockWriteRegister(session.usable(), buses, addresses, regs, data, lengths, regFormats);
}

void I2C::blockWriteMask(SessionWrapper session, Bytes const& buses, Words const& addresses,
                         Words const& regs, Bytes& data, Words const& lengths, Words const& regFormats,
                         unsigned char mask) {
    RPC::blockWriteMask(session.usable(), buses, addresses, regs, data, lengths, regFormats, mask);
}

Bytes I2C::blockReadRegister(SessionWrapper session, Bytes const& buses, Words const& addresses,
                             Words const& regs, Words const& lengths, Words const& regFormats) {
    return RPC::blockReadRegister(session.usable(), buses, addresses, regs, lengths, regFormats);
}

} // namespace Orvane::I2C
