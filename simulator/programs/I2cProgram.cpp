// I2C transfers: plain, by register, and in blocks.
#include "simulator/board/Procedure.h"
#include "simulator/programs/Programs.h"

namespace OrvaneSim {
namespace {

constexpr u_int kLongestRegister = 4;

// The bytes of a register number as they go over the bus, low byte first. `length` 0 sends none, so that the
// device goes on where it stands.
Bytes registerBytes(u_int number, u_int length) {
    Bytes bytes;
    for (u_int i = 0; i < length; ++i, number >>= 8)
        bytes.push_back(static_cast<std::uint8_t>(number));
    return bytes;
}

// Writes `bytes` and reads `count` bytes into `answer`; nothing of either kind is left out. Returns the
// status.
int transfer(ProcedureCall& call, u_int bus, u_int address, const Bytes& bytes, std::size_t count,
             Bytes& answer) {
    if (bus >= I2cBuses::kBuses)
        return -ENODEV;
    I2cDevice* device = call.board.i2c.find(bus, address);
    if (!device || (!bytes.empty() && !device->write(bytes)))
        return -EREMOTEIO; // not acknowledged
    const Bytes read = device->read(count);
    answer.insert(answer.end(), read.begin(), read.end());
    return 0;
}

int send(ProcedureCall& call, u_int bus, u_int address, const Bytes& bytes) {
    Bytes nothing;
    return transfer(call, bus, address, bytes, 0, nothing);
}

void write(ProcedureCall& call, const sim_I2C_Write_Param& argument, sim_Simple_Result& result) {
    const Bytes bytes(argument.data.data_val, argument.data.data_val + argument.data.data_len);
    result.error = send(call, argument.bus, argument.address, bytes);
}

void read(ProcedureCall& call, const sim_I2C_Read_Param& argument, sim_I2C_Read_Result& result) {
    Bytes answer;
    result.error =
        transfer(call, argument.bus, argument.address, {argument.command}, argument.length, answer);
    call.fill(result.data.data_len, result.data.data_val, answer);
}

void readRegister(ProcedureCall& call, const sim_I2C_Read_Reg_Param& argument, sim_I2C_Read_Result& result) {
    if (argument.registerLength > kLongestRegister) {
        result.error = -EINVAL;
        return;
    }
    Bytes answer;
    result.error =
        transfer(call, argument.bus, argument.address,
                 registerBytes(argument.registerNumber, argument.registerLength), argument.length, answer);
    call.fill(result.data.data_len, result.data.data_val, answer);
}

// Whether the lists of a block are of one length, its registers of a length that exists and its data (if it
// writes any) of the sum of its lengths.
bool isConsistent(const sim_I2C_Block_Trans_Param& block, const u_int* dataLength) {
    const u_int count = block.buses.buses_len;
    if (block.addresses.addresses_len != count || block.registers.registers_len != count ||
        block.lengths.lengths_len != count || block.registerLengths.registerLengths_len != count)
        return false;
    std::uint64_t total = 0;
    for (u_int i = 0; i < count; ++i) {
        total += block.lengths.lengths_val[i];
        if (block.registerLengths.registerLengths_val[i] > kLongestRegister)
            return false;
    }
    return total <= SIM_LIST_LIMIT && (!dataLength || total == *dataLength);
}

// Carries out each access of a block in order, until one fails. `access(bus, address, register bytes,
// length)` returns a status.
template <class Access>
int forEachAccess(const sim_I2C_Block_Trans_Param& block, Access access) {
    int error = 0;
    for (u_int i = 0; i < block.buses.buses_len && error == 0; ++i)
        error = access(
            block.buses.buses_val[i], block.addresses.addresses_val[i],
            registerBytes(block.registers.registers_val[i], block.registerLengths.registerLengths_val[i]),
            block.lengths.lengths_val[i]);
    return error;
}

void blockRead(ProcedureCall& call, const sim_I2C_Block_Reg_Read_Param& argument,
               sim_I2C_Read_Result& result) {
    if (!isConsistent(argument.trans, nullptr)) {
        result.error = -EINVAL;
        return;
    }
    Bytes answer;
    result.error =
        forEachAccess(argument.trans, [&](u_int bus, u_int address, const Bytes& number, u_int length) {
            return transfer(call, bus, address, number, length, answer);
        });
    call.fill(result.data.data_len, result.data.data_val, answer);
}

// Writes the data of a block; where a bit of `mask` is 0, the register's own bit stays.
int writeMasked(ProcedureCall& call, const sim_I2C_Block_Trans_Param& block, const u_char* data,
                std::uint8_t mask) {
    return forEachAccess(block, [&](u_int bus, u_int address, const Bytes& number, u_int length) {
        Bytes old;
        if (mask != 0xFF) {
            const int error = transfer(call, bus, address, number, length, old);
            if (error != 0)
                return error;
        }
        old.resize(length);
        Bytes bytes = number;
        for (u_int i = 0; i < length; ++i, ++data)
            bytes.push_back(static_cast<std::uint8_t>((old[i] & ~mask) | (*data & mask)));
        return send(call, bus, address, bytes);
    });
}

void blockWrite(ProcedureCall& call, const sim_I2C_Block_Reg_Write_Param& argument,
                sim_Simple_Result& result) {
    const bool consistent = isConsistent(argument.trans, &argument.data.data_len);
    result.error = consistent ? writeMasked(call, argument.trans, argument.data.data_val, 0xFF) : -EINVAL;
}

void blockWriteMask(ProcedureCall& call, const sim_I2C_Block_Mask_Write_Param& argument,
                    sim_Simple_Result& result) {
    const bool consistent = isConsistent(argument.trans, &argument.data.data_len);
    result.error =
        consistent ? writeMasked(call, argument.trans, argument.data.data_val, argument.mask) : -EINVAL;
}

constexpr Procedure kProcedures[] = {
    {SIM_I2C_READ, "i2c_read", handler<read>},
    {SIM_I2C_WRITE, "i2c_write", handler<write>},
    {SIM_I2C_READ_REG, "i2c_read_reg", handler<readRegister>},
    {SIM_I2C_BLOCK_WRITE_REGISTER, "i2c_block_write_register", handler<blockWrite>},
    {SIM_I2C_BLOCK_READ_REGISTER, "i2c_block_read_register", handler<blockRead>},
    {SIM_I2C_BLOCK_WRITE_MASK, "i2c_block_write_mask", handler<blockWriteMask>},
};

} // namespace

const Program kI2cProgram{"i2c", SIM_I2C, SIM_I2C_VERSION, kProcedures};

} // namespace OrvaneSim
