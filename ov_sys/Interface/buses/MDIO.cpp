// The MDIO service: lists that agree, a live session, then the call.
#include "ov_sys/Interface/buses/MDIO.h"

#include "ov_sys/Interface/buses/rpc/RPCMDIO.h"

namespace Orvane::MDIO {
namespace {

using Words = std::vector<unsigned int>;

unsigned int low32(unsigned long address) {
    return static_cast<unsigned int>(address);
}

} // namespace

unsigned int MDIO::read(SessionWrapper session, unsigned long address) {
    return RPC::read(session.usable(), low32(address));
}

void MDIO::write(SessionWrapper session, unsigned long address, unsigned int data) {
    RPC::write(session.usable(), low32(address), data);
}

unsigned int MDIO::read_c22(SessionWrapper session, unsigned long address) {
    return RPC::read_c22(session.usable(), low32(address));
}

void MDIO::write_c22(SessionWrapper session, unsigned long address, unsigned int data) {
    RPC::write_c22(session.usable(), low32(address), data);
}

unsigned int MDIO::read_c22_zrExt32(SessionWrapper session, unsigned int address) {
    return RPC::read_c22_zrExt32(session.usable(), address);
}

void MDIO::write_c22_zrExt32(SessionWrapper session, unsigned int address, unsigned int data) {
    RPC::write_c22_zrExt32(session.usable(), address, data);
}

unsigned int MDIO::read_preinc_c22_zrExt32(SessionWrapper session) {
    return RPC::read_preinc_c22_zrExt32(session.usable());
}

unsigned int MDIO::read_curraddr_c22_zrExt32(SessionWrapper session) {
    return RPC::read_curraddr_c22_zrExt32(session.usable());
}

void MDIO::write_preinc_c22_zrExt32(SessionWrapper session, unsigned int data) {
    RPC::write_preinc_c22_zrExt32(session.usable(), data);
}

void MDIO::write_curraddr_c22_zrExt32(SessionWrapper session, unsigned int data) {
    RPC::write_curraddr_c22_zrExt32(session.usable(), data);
}

void MDIO::flush(SessionWrapper session) {
    RPC::flush(session.usable());
}

void MDIO::setSingleWire(SessionWrapper session, bool on) {
    RPC::setSingleWire(session.usable(), on);
}

void MDIO::setPreambleCount(SessionWrapper session, unsigned int count) {
    RPC::setPreambleCount(session.usable(), count);
}

Words MDIO::blockRead(SessionWrapper session, Words const& addresses) {
    return RPC::blockRead(session.usable(), addresses);
}

void MDIO::blockWrite(SessionWrapper session, Words const& addresses, Words const& data) {
    RPC::blockWrite(session.usable(), addresses, data);
}

Words MDIO::mixedBlock(SessionWrapper session, Words const& writeAddresses, Words const& writeData,
                       Words const& readAddresses, Words const& runs) {
    return RPC::mixedBlock(session.usable(), writeAddresses, writeData, readAddresses, runs);
}

Words MDIO::mixedBlock_c22(SessionWrapper session, Words const& writeAddresses, Words const& writeData,
                           Words const& readAddresses, Words const& runs) {
    return RPC::mixedBlock_c22(session.usable(), writeAddresses, writeData, readAddresses, runs);
}

Words MDIO::mixedBlock_c22_32bit(SessionWrapper session, Words const& writeAddresses, Words const& writeData,
                                 Words const& readAddresses, Words const& runs) {
    return RPC::mixedBlock_c22_32bit(session.usable(), writeAddresses, writeData, readAddresses, runs);
}

} // namespace Orvane::MDIO
