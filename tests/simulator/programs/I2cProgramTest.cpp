// I2C transfers of a simulated board and the devices on its buses.
#include "tests/support/simulator/Client.h"

#include <cerrno>

namespace OrvaneSim {
namespace {

using Numbers = std::vector<unsigned>;

class I2cProgram : public BoardWithClient {
protected:
    static constexpr u_int kPhy = 5;
    static constexpr u_int kSensor = 0x48;
    static constexpr u_int kEeprom = 0x50;
    Client i2c{board, SIM_I2C, "udp"};
    Decoded<sim_I2C_Read_Result> answer{xdr_sim_I2C_Read_Result};

    int write(u_int address, std::vector<u_char> bytes, u_char bus = 0) {
        sim_I2C_Write_Param argument{
            identity, bus, address, {static_cast<u_int>(bytes.size()), bytes.data()}};
        sim_Simple_Result result{};
        EXPECT_EQ(sim_i2c_write_1(&argument, &result, i2c.handle()), RPC_SUCCESS);
        return result.error;
    }
    Numbers read(u_int address, u_char command, u_char length, u_char bus = 0) {
        sim_I2C_Read_Param argument{identity, bus, address, command, length};
        EXPECT_EQ(sim_i2c_read_1(&argument, &answer.fresh(), i2c.handle()), RPC_SUCCESS);
        return numbers(answer->data.data_val, answer->data.data_len);
    }
    Numbers readRegister(u_int address, u_int number, u_char format, u_char length) {
        sim_I2C_Read_Reg_Param argument{identity, 0, address, number, format, length};
        EXPECT_EQ(sim_i2c_read_reg_1(&argument, &answer.fresh(), i2c.handle()), RPC_SUCCESS);
        return numbers(answer->data.data_val, answer->data.data_len);
    }
};

TEST_F(I2cProgram, Clause45FramesReachTheRegistersOfTheMdioSide) {
    board.setRegister(Space::C45, 0, kPhy, 0x10002, 0x1234);
    ASSERT_EQ(write(kPhy, {0x01, 0x02, 0x00}), 0);
    EXPECT_EQ(read(kPhy, 0x41, 2), (Numbers{0x34, 0x12}));
    ASSERT_EQ(write(kPhy, {0x21, 0xCD, 0xAB}), 0);
    EXPECT_EQ(board.registerValue(Space::C45, 0, kPhy, 0x10002), 0xABCDU);
}

TEST_F(I2cProgram, BusNIsMdioPortN) {
    board.setRegister(Space::C45, 3, kPhy, 0x10004, 0x55);
    ASSERT_EQ(write(kPhy, {0x01, 0x04, 0x00}, 3), 0);
    EXPECT_EQ(read(kPhy, 0x41, 2, 3), (Numbers{0x55, 0}));
}

TEST_F(I2cProgram, PagedFramesReachTheExtension) {
    ASSERT_EQ(write(kPhy, {0x81, 0x34, 0x12}), 0);
    ASSERT_EQ(write(kPhy, {0x80, 0x78, 0x56}), 0);
    ASSERT_EQ(write(kPhy, {0xA1, 0xFE, 0xCA}), 0);
    EXPECT_EQ(board.registerValue(Space::Ext32, 0, kPhy, 0x12345678), 0U) << "the lower half does the write";
    ASSERT_EQ(write(kPhy, {0xA0, 0x0D, 0xF0}), 0);
    EXPECT_EQ(board.registerValue(Space::Ext32, 0, kPhy, 0x12345678), 0xCAFEF00DU);
    EXPECT_EQ(read(kPhy, 0xC0, 2), (Numbers{0x0D, 0xF0}));
    EXPECT_EQ(read(kPhy, 0xC1, 2), (Numbers{0xFE, 0xCA}));
}

TEST_F(I2cProgram, DirectFramesReachTheExtension) {
    ASSERT_EQ(write(kPhy, {0x12, 0x34, 0x56, 0x78, 0x0D, 0xF0, 0xFE, 0xCA}), 0);
    EXPECT_EQ(board.registerValue(Space::Ext32, 0, kPhy, 0x12345678), 0xCAFEF00DU);
    EXPECT_EQ(readRegister(kPhy, 0x78563412, 4, 4), (Numbers{0x0D, 0xF0, 0xFE, 0xCA}));
}

TEST_F(I2cProgram, DoesNotAcknowledgeWhatIsNotThere) {
    EXPECT_EQ(write(0x33, {0}), -EREMOTEIO);
    EXPECT_EQ(write(kPhy, {1, 2}), -EREMOTEIO) << "no frame of a PHY has two bytes";
    EXPECT_EQ(write(kPhy, {0x01, 0, 0}, 10), -ENODEV);
    readRegister(kEeprom, 0, 5, 1);
    EXPECT_EQ(answer->error, -EINVAL);
}

TEST_F(I2cProgram, EepromBeginsWithTheSerialNumberAndKeepsWhatIsWritten) {
    EXPECT_EQ(readRegister(kEeprom, 0, 1, 5), (Numbers{'0', '1', 'A', '2', 0xFF}));
    ASSERT_EQ(write(kEeprom, {0x10, 7, 8}), 0);
    EXPECT_EQ(read(kEeprom, 0x10, 3), (Numbers{7, 8, 0xFF}));
    EXPECT_EQ(board.eeprom(0).at(0x11), 8);
    board.setEeprom(0, {9});
    EXPECT_EQ(readRegister(kEeprom, 0, 1, 1), Numbers{9});
}

TEST_F(I2cProgram, EepromWrapsItsWritesWithinAPageAndItsReadsAtTheEnd) {
    ASSERT_EQ(write(kEeprom, {0x07, 1, 2}), 0);
    EXPECT_EQ(board.eeprom(0).at(0x07), 1);
    EXPECT_EQ(board.eeprom(0).at(0x00), 2);
    EXPECT_EQ(read(kEeprom, 0xFF, 2), (Numbers{0xFF, 2}));
}

TEST_F(I2cProgram, SensorShowsTheTemperatureOfTheThermalPlant) {
    EXPECT_EQ(read(kSensor, 0, 2), (Numbers{25, 0}));
    ASSERT_EQ(write(kSensor, {3, 85, 0x80}), 0);
    EXPECT_EQ(read(kSensor, 3, 2), (Numbers{85, 0x80}));
    EXPECT_EQ(write(kSensor, {9}), -EREMOTEIO);
}

class I2cBlocks : public I2cProgram {
protected:
    std::vector<u_char> buses{0, 0};
    std::vector<u_int> addresses{kEeprom, kEeprom};
    std::vector<u_int> registers{0x20, 0x30};
    std::vector<u_int> lengths{2, 1};
    std::vector<u_int> formats{1, 1};
    std::vector<u_char> data{0xA1, 0xA2, 0xB1};

    template <class Element>
    static u_int count(const std::vector<Element>& list) {
        return static_cast<u_int>(list.size());
    }
    sim_I2C_Block_Trans_Param block() {
        return {{count(buses), buses.data()},
                {count(addresses), addresses.data()},
                {count(registers), registers.data()},
                {count(lengths), lengths.data()},
                {count(formats), formats.data()}};
    }
    int writeBlock() {
        sim_I2C_Block_Reg_Write_Param argument{identity, block(), {count(data), data.data()}};
        sim_Simple_Result result{};
        EXPECT_EQ(sim_i2c_block_write_register_1(&argument, &result, i2c.handle()), RPC_SUCCESS);
        return result.error;
    }
};

TEST_F(I2cBlocks, ReadBackAsTheyWereWritten) {
    ASSERT_EQ(writeBlock(), 0);
    sim_I2C_Block_Reg_Read_Param argument{identity, block()};
    ASSERT_EQ(sim_i2c_block_read_register_1(&argument, &answer.fresh(), i2c.handle()), RPC_SUCCESS);
    EXPECT_EQ(numbers(answer->data.data_val, answer->data.data_len), (Numbers{0xA1, 0xA2, 0xB1}));
}

TEST_F(I2cBlocks, WithAMaskChangeOnlyItsBits) {
    ASSERT_EQ(writeBlock(), 0);
    std::vector<u_char> ones{0x0F, 0x0F, 0x0F};
    sim_I2C_Block_Mask_Write_Param argument{identity, block(), {count(ones), ones.data()}, 0x0F};
    sim_Simple_Result result{};
    ASSERT_EQ(sim_i2c_block_write_mask_1(&argument, &result, i2c.handle()), RPC_SUCCESS);
    EXPECT_EQ(board.eeprom(0).at(0x20), 0xAF);
    EXPECT_EQ(board.eeprom(0).at(0x30), 0xBF);
}

TEST_F(I2cBlocks, WhoseListsDoNotFitAreRefused) {
    data.pop_back();
    EXPECT_EQ(writeBlock(), -EINVAL);
    data.push_back(0);
    lengths = {0xFFFFFFFF, 4};
    EXPECT_EQ(writeBlock(), -EINVAL);
    lengths = {3};
    EXPECT_EQ(writeBlock(), -EINVAL);
}

} // namespace
} // namespace OrvaneSim
