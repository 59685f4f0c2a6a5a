// The records of the MDIO service's calls, with a session's PHY and port put into every address.
#include "ov_sys/Interface/buses/rpc/RPCMDIO.h"

#include "ov_sys/Interface/buses/rpc/CallInto.h"
#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Requirement.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"

#include <utility>

namespace Orvane::MDIO {
namespace {

using Words = std::vector<unsigned int>;
constexpr const char* kSource = "ov_sys/Interface/buses/rpc/RPCMDIO";
constexpr BoardConnection::clientId kClient = BoardConnection::MDIO;

template <class Param, class Result>
using Stub = clnt_stat (*)(Param, Result*, CLIENT*);

unsigned int onThisPhy(const PhySession& session, unsigned int address) {
    return (address & 0xFFFFFFU) | session.mdioAddressPrefix;
}

void toThisPhy(const PhySession& session, Words& addresses) {
    for (unsigned int& address : addresses)
        address = onThisPhy(session, address);
}

// One call that answers with words, which go straight into `values`. Returns how many the board sent.
template <class Param>
u_int readInto(Stub<Param, MDIO_Read_Result> stub, PhySession& session, const Param& param, u_int* values,
               std::size_t capacity) {
    return callInto(stub, session, kClient, param, &MDIO_Read_Result::data, values, capacity);
}

unsigned int readOne(Stub<MDIO_Read_Param, MDIO_Read_Result> stub, PhySession& session,
                     unsigned int address) {
    unsigned int value = 0;
    const MDIO_Read_Param param{session.identityWord(), {1, &address}};
    const u_int sent = readInto(stub, session, param, &value, 1);
    require(sent == 1, "result.data.data_len == 1", kSource);
    return value;
}

void writeOne(Stub<MDIO_Write_Param, MDIO_Result> stub, PhySession& session, unsigned int address,
              unsigned int data) {
    const MDIO_Write_Param param{session.identityWord(), 0, {1, &address}, {1, &data}};
    MDIO_Result result{};
    DO_RPC(stub, param, &result, session, kClient);
}

unsigned int readAtAddressRegister(Stub<MDIO_Read_Param_No_Addr, MDIO_Read_Result_Single> stub,
                                   PhySession& session) {
    MDIO_Read_Result_Single result{};
    DO_RPC(stub, MDIO_Read_Param_No_Addr{session.identityWord()}, &result, session, kClient);
    return result.value;
}

void writeAtAddressRegister(Stub<MDIO_Write_Param_No_Addr, MDIO_Result> stub, PhySession& session,
                            unsigned int data) {
    MDIO_Result result{};
    DO_RPC(stub, MDIO_Write_Param_No_Addr{session.identityWord(), data}, &result, session, kClient);
}

Stub<MDIO_Mixed_Param, MDIO_Read_Result> mixedBlockStub(MDIO_clause clause) {
    switch (clause) {
    case CLAUSE_45:
        return mdio_mixedblock_1;
    case CLAUSE_22:
        return mdio_mixedblock_c22_1;
    case CLAUSE_22_32BIT:
        return mdio_mixedblock_c22_zrext32_1;
    }
    return nullptr;
}

Words mixedBlockOnThisPhy(PhySession& session, Words writeAddresses, Words const& writeData,
                          Words readAddresses, Words const& runs, MDIO_clause clause) {
    toThisPhy(session, writeAddresses);
    toThisPhy(session, readAddresses);
    return RPC::mixedBlockExecute(session, std::move(writeAddresses), writeData, std::move(readAddresses),
                                  runs, clause);
}

} // namespace

unsigned int RPC::read(PhySession& session, unsigned int address) {
    return readOne(mdio_read_1, session, onThisPhy(session, address));
}

unsigned int RPC::read_c22(PhySession& session, unsigned int address) {
    return readOne(mdio_read_c22_1, session, onThisPhy(session, address));
}

unsigned int RPC::read_c22_zrExt32(PhySession& session, unsigned int address) {
    return readOne(mdio_read_c22_zrext32_1, session, address);
}

void RPC::write(PhySession& session, unsigned int address, unsigned int data) {
    writeOne(mdio_write_1, session, onThisPhy(session, address), data);
}

void RPC::write_c22(PhySession& session, unsigned int address, unsigned int data) {
    writeOne(mdio_write_c22_1, session, onThisPhy(session, address), data);
}

void RPC::write_c22_zrExt32(PhySession& session, unsigned int address, unsigned int data) {
    writeOne(mdio_write_c22_zrext32_1, session, address, data);
}

unsigned int RPC::read_preinc_c22_zrExt32(PhySession& session) {
    return readAtAddressRegister(mdio_read_preinc_c22_zrext32_1, session);
}

unsigned int RPC::read_curraddr_c22_zrExt32(PhySession& session) {
    return readAtAddressRegister(mdio_read_curraddr_c22_zrext32_1, session);
}

void RPC::write_preinc_c22_zrExt32(PhySession& session, unsigned int data) {
    writeAtAddressRegister(mdio_write_preinc_c22_zrext32_1, session, data);
}

void RPC::write_curraddr_c22_zrExt32(PhySession& session, unsigned int data) {
    writeAtAddressRegister(mdio_write_curraddr_c22_zrext32_1, session, data);
}

void RPC::flush(PhySession& session) {
    const MDIO_FlushPort_Param param{session.identityWord(), static_cast<u_char>(session.mdio.deviceIndex),
                                     static_cast<u_char>(session.mdio.phyAddress)};
    MDIO_Result result{};
    DO_RPC(mdio_flushport_1, param, &result, session, kClient);
}

void RPC::setSingleWire(PhySession& session, bool on) {
    MDIO_Result result{};
    DO_RPC(mdio_singlewire_1, Simple_Param{on ? 1U : 0U, session.identityWord()}, &result, session, kClient);
}

void RPC::setPreambleCount(PhySession& session, unsigned int count) {
    Simple_Result result{};
    DO_RPC(mdio_setpreamblecount_1, Simple_Param{count, session.identityWord()}, &result, session, kClient);
    require(static_cast<unsigned int>(result.value) == count, "result.value == params.value", kSource);
}

Words RPC::blockRead(PhySession& session, Words addresses) {
    toThisPhy(session, addresses);
    Words readData(addresses.size());
    const MDIO_Read_Param param{session.identityWord(), {wireLength(addresses), addresses.data()}};
    const u_int sent = readInto(mdio_read_1, session, param, readData.data(), readData.size());
    require(sent == readData.size(), "result.data.data_len == readData.size()", kSource);
    return readData;
}

void RPC::blockWrite(PhySession& session, Words addresses, Words const& data) {
    require(addresses.size() == data.size(), "addresses.size() == data.size()", kSource);
    toThisPhy(session, addresses);
    const MDIO_Write_Param param{session.identityWord(),
                                 0,
                                 {wireLength(addresses), addresses.data()},
                                 {wireLength(data), wirePointer(data)}};
    MDIO_Result result{};
    DO_RPC(mdio_write_1, param, &result, session, kClient);
}

Words RPC::mixedBlock(PhySession& session, Words writeAddresses, Words const& writeData, Words readAddresses,
                      Words const& runs) {
    return mixedBlockOnThisPhy(session, std::move(writeAddresses), writeData, std::move(readAddresses), runs,
                               CLAUSE_45);
}

Words RPC::mixedBlock_c22(PhySession& session, Words writeAddresses, Words const& writeData,
                          Words readAddresses, Words const& runs) {
    return mixedBlockOnThisPhy(session, std::move(writeAddresses), writeData, std::move(readAddresses), runs,
                               CLAUSE_22);
}

Words RPC::mixedBlock_c22_32bit(PhySession& session, Words writeAddresses, Words const& writeData,
                                Words readAddresses, Words const& runs) {
    return mixedBlockExecute(session, std::move(writeAddresses), writeData, std::move(readAddresses), runs,
                             CLAUSE_22_32BIT);
}

Words RPC::mixedBlockExecute(PhySession& session, Words writeAddresses, Words const& writeData,
                             Words readAddresses, Words const& runs, MDIO_clause clause) {
    require(writeAddresses.size() == writeData.size(), "writeAddresses.size() == writeData.size()", kSource);
    Words readData(readAddresses.size());
    const auto stub = mixedBlockStub(clause);
    if (stub == nullptr) {
        Diagnostics::error("OV execute invalid MDIO frame format");
        return readData;
    }
    const MDIO_Mixed_Param param{session.identityWord(),
                                 {wireLength(writeAddresses), wirePointer(writeData)},
                                 {wireLength(writeAddresses), writeAddresses.data()},
                                 {wireLength(readAddresses), readAddresses.data()},
                                 {wireLength(runs), wirePointer(runs)}};
    readInto(stub, session, param, readData.data(), readData.size());
    return readData;
}

} // namespace Orvane::MDIO
