// The records of the I2C service's calls, filled and read.
#include "ov_sys/Interface/buses/rpc/RPCI2C.h"

#include "ov_sys/Interface/buses/rpc/CallInto.h"
#include "ov_sys/Interface/rpc_protocol/Stubs.h"

#include <numeric>

namespace Orvane::I2C {
namespace {

using Bytes = std::vector<unsigned char>;
using Words = std::vector<unsigned int>;
constexpr BoardConnection::clientId kClient = BoardConnection::I2C;

template <class Param>
Bytes readBytes(clnt_stat (*stub)(Param, I2C_Read_Result*, CLIENT*), PhySession& session, const Param& param,
                unsigned int length) {
    Bytes bytes(length);
    callInto(stub, session, kClient, param, &I2C_Read_Result::data, bytes.data(), bytes.size());
    return bytes;
}

template <class Param>
void send(clnt_stat (*stub)(Param, Simple_Result*, CLIENT*), PhySession& session, const Param& param) {
    Simple_Result result{};
    DO_RPC(stub, param, &result, session, kClient);
}

I2C_Block_Trans_Param transfers(Bytes const& buses, Words const& addresses, Words const& regs,
                                Words const& lengths, Words const& regFormats) {
    return {{wireLength(buses), wirePointer(buses)},
            {wireLength(addresses), wirePointer(addresses)},
            {wireLength(regs), wirePointer(regs)},
            {wireLength(lengths), wirePointer(lengths)},
            {wireLength(regFormats), wirePointer(regFormats)}};
}

} // namespace

void RPC::write(PhySession& session, unsigned char bus, unsigned int address, Bytes& data) {
    const I2C_Write_Param param{session.identityWord(), bus, address, {wireLength(data), wirePointer(data)}};
    send(i2c_write_1, session, param);
}

Bytes RPC::read(PhySession& session, unsigned char bus, unsigned int address, unsigned char command,
                unsigned int length) {
    const I2C_Read_Param param{session.identityWord(), bus, address, command, static_cast<u_char>(length)};
    return readBytes(i2c_read_1, session, param, length);
}

Bytes RPC::readReg(PhySession& session, unsigned char bus, unsigned int address, unsigned int reg,
                   unsigned char regFormat, unsigned int length) {
    const I2C_Read_Reg_Param param{session.identityWord(),     bus, address, reg, regFormat,
                                   static_cast<u_char>(length)};
    return readBytes(i2c_read_reg_1, session, param, length);
}

void RPC::blockWriteRegister(PhySession& session, Bytes const& buses, Words const& addresses,
                             Words const& regs, Bytes& data, Words const& lengths, Words const& regFormats) {
    const I2C_Block_Reg_Write_Param param{session.identityWord(),
                                          transfers(buses, addresses, regs, lengths, regFormats),
                                          {wireLength(data), wirePointer(data)}};
    send(i2c_block_write_register_1, session, param);
}

void RPC::blockWriteMask(PhySession& session, Bytes const& buses, Words const& addresses, Words const& regs,
                         Bytes& data, Words const& lengths, Words const& regFormats, unsigned char mask) {
    const I2C_Block_Mask_Write_Param param{session.identityWord(),
                                           transfers(buses, addresses, regs, lengths, regFormats),
                                           {wireLength(data), wirePointer(data)},
                                           mask};
    send(i2c_block_write_mask_1, session, param);
}

Bytes RPC::blockReadRegister(PhySession& session, Bytes const& buses, Words const& addresses,
                             Words const& regs, Words const& lengths, Words const& regFormats) {
    const I2C_Block_Reg_Read_Param param{session.identityWord(),
                                         transfers(buses, addresses, regs, lengths, regFormats)};
    return readBytes(i2c_block_read_register_1, session, param,
                     std::accumulate(lengths.begin(), lengths.end(), 0U));
}

} // namespace Orvane::I2C
