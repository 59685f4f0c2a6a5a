// The indirect paths of the flat interface that may be taken by name.
#include "ov_sys/capi/LoggedAccess.h"
#include "ov_sys/routing/Mailbox.h"
#include "ov_sys/routing/SerdesBridge.h"
#include "ov_sys/routing/TgeRegisters.h"

#include <orvane/orvane.h>

using namespace Orvane;

namespace {

LoggedAccess on(unsigned adapter, unsigned phy) {
    return {adapter, phy, LoggedAccess::Phy::OnAdapter};
}

} // namespace

extern "C" {

void writeRegisterViaPifMailbox(unsigned int adapter, unsigned int phy, unsigned int mmd,
                                unsigned int address, unsigned int value) {
    LoggedAccess access = on(adapter, phy);
    Routing::writeByMailbox(access, mmd, address, value);
}

unsigned int readRegisterViaPifMailbox(unsigned int adapter, unsigned int phy, unsigned int mmd,
                                       unsigned int address) {
    LoggedAccess access = on(adapter, phy);
    return Routing::readByMailbox(access, mmd, address).value_or(0);
}

void synSdControlRegWrite(unsigned int adapter, unsigned int phy, unsigned int address, unsigned int value) {
    LoggedAccess access = on(adapter, phy);
    Routing::writeSerdes(access, address, value);
}

unsigned int synSdControlRegRead(unsigned int adapter, unsigned int phy, unsigned int address) {
    LoggedAccess access = on(adapter, phy);
    return Routing::readSerdes(access, address).value_or(0);
}

void gfeSmiRegisterSet(unsigned int adapter, unsigned int phy, unsigned int reg, unsigned int value) {
    LoggedAccess access = on(adapter, phy);
    Routing::writeSmi(access, reg, value);
}

unsigned int gfeSmiRegisterGet(unsigned int adapter, unsigned int phy, unsigned int reg) {
    LoggedAccess access = on(adapter, phy);
    return Routing::readSmi(access, reg).value_or(0);
}

void gfeIndirectRegisterSet(unsigned int adapter, unsigned int phy, unsigned int address, unsigned int bank,
                            unsigned int value) {
    LoggedAccess access = on(adapter, phy);
    Routing::writeGfe(access, address, bank, value);
}

unsigned int gfeIndirectRegisterGet(unsigned int adapter, unsigned int phy, unsigned int address,
                                    unsigned int bank) {
    LoggedAccess access = on(adapter, phy);
    return Routing::readGfe(access, address, bank).value_or(0);
}

void tgeIndirectRegisterWrite(unsigned int adapter, unsigned int phy, unsigned int address,
                              unsigned int value) {
    LoggedAccess access = on(adapter, phy);
    Routing::writeTge(access, address, value);
}

unsigned int tgeIndirectRegisterRead(unsigned int adapter, unsigned int phy, unsigned int address) {
    LoggedAccess access = on(adapter, phy);
    return Routing::readTge(access, address).value_or(0);
}
}
