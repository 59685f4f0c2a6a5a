// Each access by MDIO or by SMBus, as the port has it.
#include "ov_sys/Interface/devices/SimpleSessionEntry.h"

#include "ov_sys/Interface/buses/MDIO.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "ov_sys/Interface/sessions/PhySession.h"

namespace Orvane {
namespace {

constexpr int kFirstSmbusPort = 10;

} // namespace

SimpleSessionEntry::SimpleSessionEntry(PhySession* openSession, int phyId_, int port_)
    : phyId(phyId_), port(port_), session(openSession) {}

SimpleSessionEntry::~SimpleSessionEntry() = default;

bool SimpleSessionEntry::onMdio() const {
    return port < kFirstSmbusPort;
}

SmbusAccess SimpleSessionEntry::smbus() const {
    return {session.get(), static_cast<unsigned char>(port - kFirstSmbusPort),
            static_cast<unsigned int>(phyId)};
}

void SimpleSessionEntry::refuseOnSmbus(const char* message) const {
    if (onMdio())
        return;
    Diagnostics::error(message);
    throw Exceptions::Standard("NotImplemented: MDIO C22 over SMB");
}

void SimpleSessionEntry::refuseClause22OnSmbus() const {
    refuseOnSmbus("MDIO Clause 22 over SMBus is not implemented");
}

void SimpleSessionEntry::refuseAddressRegisterOnSmbus() const {
    refuseOnSmbus("MDIO Clause 22 32bit smb is not supported");
}

unsigned SimpleSessionEntry::read_16bit_c45(unsigned long address) {
    return onMdio() ? mdio.read(session.get(), address) : smbus().read16(address);
}

void SimpleSessionEntry::write_16bit_c45(unsigned long address, unsigned data) {
    if (onMdio())
        mdio.write(session.get(), address, data);
    else
        smbus().write16(address, data);
}

unsigned SimpleSessionEntry::read_16bit_c22(unsigned long reg) {
    refuseClause22OnSmbus();
    return mdio.read_c22(session.get(), reg);
}

void SimpleSessionEntry::write_16bit_c22(unsigned long reg, unsigned data) {
    refuseClause22OnSmbus();
    mdio.write_c22(session.get(), reg, data);
}

unsigned SimpleSessionEntry::read_32bit(unsigned long address, KelSmbProto proto) {
    return onMdio() ? mdio.read_c22_zrExt32(session.get(), static_cast<unsigned int>(address))
                    : smbus().read32(address, proto);
}

void SimpleSessionEntry::write_32bit(unsigned long address, unsigned data, KelSmbProto proto) {
    if (onMdio())
        mdio.write_c22_zrExt32(session.get(), static_cast<unsigned int>(address), data);
    else
        smbus().write32(address, data, proto);
}

unsigned SimpleSessionEntry::read_32bit_preincrement_address() {
    refuseAddressRegisterOnSmbus();
    return mdio.read_preinc_c22_zrExt32(session.get());
}

unsigned SimpleSessionEntry::read_32bit_current_address() {
    refuseAddressRegisterOnSmbus();
    return mdio.read_curraddr_c22_zrExt32(session.get());
}

void SimpleSessionEntry::write_32bit_preincrement_address(unsigned data) {
    refuseAddressRegisterOnSmbus();
    mdio.write_preinc_c22_zrExt32(session.get(), data);
}

void SimpleSessionEntry::write_32bit_current_address(unsigned data) {
    refuseAddressRegisterOnSmbus();
    mdio.write_curraddr_c22_zrExt32(session.get(), data);
}

void SimpleSessionEntry::addBlockRead_16bit(unsigned long address) {
    if (onMdio())
        async.read(static_cast<unsigned int>(address));
    else
        smbResults.push_back(smbus().read16(address));
}

void SimpleSessionEntry::addBlockRead_32bit(unsigned long address) {
    if (onMdio())
        async.read(static_cast<unsigned int>(address));
    else
        smbResults.push_back(smbus().read32(address, Paged16));
}

void SimpleSessionEntry::addBlockWrite_16bit(unsigned long address, unsigned data) {
    if (onMdio())
        async.write(static_cast<unsigned int>(address), data);
    else
        smbus().write16(address, data);
}

void SimpleSessionEntry::addBlockWrite_32bit(unsigned long address, unsigned data) {
    if (onMdio())
        async.write(static_cast<unsigned int>(address), data);
    else
        smbus().write32(address, data, Paged16);
}

template <class Execute>
std::vector<unsigned>* SimpleSessionEntry::finishBlock(Execute execute) {
    blockResult.clear();
    if (onMdio())
        blockResult = (async.*execute)(session.get());
    else
        blockResult.swap(smbResults);
    return &blockResult;
}

std::vector<unsigned>* SimpleSessionEntry::executeBlock() {
    return finishBlock(&MDIO::MdioAsync::execute);
}

std::vector<unsigned>* SimpleSessionEntry::executeBlock_c22() {
    return finishBlock(&MDIO::MdioAsync::execute_c22);
}

std::vector<unsigned>* SimpleSessionEntry::executeBlock_c22_32bit() {
    return finishBlock(&MDIO::MdioAsync::execute_c22_32bit);
}

} // namespace Orvane
