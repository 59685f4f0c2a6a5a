// The bus services at work on a board's devices.
#include "ov_sys/Interface/buses/ADC.h"
#include "ov_sys/Interface/buses/GPIO.h"
#include "ov_sys/Interface/buses/I2C.h"
#include "ov_sys/Interface/buses/JTAG.h"
#include "ov_sys/Interface/buses/KeepAlive.h"
#include "ov_sys/Interface/buses/Setup.h"
#include "ov_sys/Interface/buses/Thermal.h"
#include "ov_sys/Interface/foundation/Exceptions.h"
#include "tests/support/ServiceOperations.h"
#include "tests/support/SessionOnBoard.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>
#include <thread>

namespace OrvaneTest {
namespace {

using Orvane::i2c;
using Orvane::Exceptions::Standard;
using OrvaneSim::Waveform;
using testing::Each;
using testing::ElementsAre;
using testing::FloatNear;

class EepromOnBus : public testing::Test, protected SessionOnBoard {
protected:
    EepromOnBus() : SessionOnBoard(simpleMode(), "01A2") {}

    static constexpr unsigned kEeprom = 0x50;
};

TEST_F(EepromOnBus, BeginsWithTheBoardsSerialNumber) {
    EXPECT_THAT(i2c.readReg(&session, 0, kEeprom, 0, 1, 5), ElementsAre('0', '1', 'A', '2', 0xFF));
}

TEST_F(EepromOnBus, ReturnsWhatWasWrittenToIt) {
    Bytes page{0x40, 'O', 'r', 'v', 'a', 'n', 'e'};
    i2c.write(&session, 2, kEeprom, page);
    EXPECT_THAT(i2c.read(&session, 2, kEeprom, 0x40, 7), ElementsAre('O', 'r', 'v', 'a', 'n', 'e', 0xFF));
}

TEST_F(EepromOnBus, IsAnotherOneOnAnotherBus) {
    Bytes page{0x40, 1};
    i2c.write(&session, 2, kEeprom, page);
    EXPECT_THAT(i2c.read(&session, 3, kEeprom, 0x40, 1), ElementsAre(0xFF));
}

TEST_F(EepromOnBus, ReturnsInABlockWhatABlockWrote) {
    const Bytes buses{0, 1};
    const Words addresses{kEeprom, kEeprom};
    const Words registers{0x20, 0x30};
    const Words lengths{2, 3};
    const Words formats{1, 1};
    Bytes data{1, 2, 3, 4, 5};
    i2c.blockWriteRegister(&session, buses, addresses, registers, data, lengths, formats);
    EXPECT_EQ(i2c.blockReadRegister(&session, buses, addresses, registers, lengths, formats), data);
}

TEST_F(EepromOnBus, KeepsTheBitsOutsideTheMaskOfABlock) {
    board.setEeprom(0, {0xAB, 0xCD});
    Bytes data{0x12, 0x34};
    i2c.blockWriteMask(&session, {0}, {kEeprom}, {0}, data, {2}, {1}, 0x0F);
    EXPECT_THAT(i2c.read(&session, 0, kEeprom, 0, 2), ElementsAre(0xA2, 0xC4));
}

TEST_F(EepromOnBus, AtAnAddressWithoutDeviceIsRefused) {
    EXPECT_THROW(i2c.read(&session, 0, 0x51, 0, 1), Standard);
}

class ThermalUnit : public testing::Test, protected SessionOnBoard {
protected:
    ThermalUnit() { thermal.connect(&session); }
    Orvane::Thermal::Thermal thermal;
};

TEST_F(ThermalUnit, ApproachesItsSetPointUntilItHasSettled) {
    thermal.setTemperature(&session, 0, 85, 1);
    EXPECT_EQ(thermal.getTemperature(&session, 0), 40.0F);
    EXPECT_EQ(thermal.getTemperature(&session, 0), 51.25F);
    EXPECT_EQ(thermal.getState(&session), 2);
    EXPECT_THAT(thermal.getSettledTemperature(&session, 0), FloatNear(85, 0.1F));
    EXPECT_EQ(thermal.getState(&session), 3);
}

TEST_F(ThermalUnit, ReturnsToItsDefaultWhenControlIsStartedAgain) {
    thermal.setDefaultTemperature(&session, 1, -20, 0);
    thermal.setTemperature(&session, 1, 60, 1);
    thermal.getSettledTemperature(&session, 1);
    thermal.stopControl(&session);
    thermal.startControl(&session, 1);
    EXPECT_THAT(thermal.getSettledTemperature(&session, 1), FloatNear(-20, 0.1F));
}

TEST_F(ThermalUnit, IsIdleBeforeAndDisconnectedAfter) {
    EXPECT_EQ(thermal.getState(&session), 1);
    thermal.disconnect(&session);
    EXPECT_EQ(thermal.getState(&session), 0);
    EXPECT_THROW(thermal.getTemperature(&session, 0), Standard);
}

TEST_F(ThermalUnit, WarmsTheTemperatureSensorOfABus) {
    thermal.setTemperature(&session, 0, 25.5F, 1);
    thermal.getSettledTemperature(&session, 0);
    EXPECT_THAT(i2c.read(&session, 0, 0x48, 0, 2), ElementsAre(25, 0x80)); // half degrees, left-aligned
}

class GpioLoop : public testing::Test, protected SessionOnBoard {
protected:
    GpioLoop() { board.wireGpio(1, 2); }
    Orvane::GPIO::GPIO gpio;
};

TEST_F(GpioLoop, ShowsTheOutputAtTheInput) {
    gpio.enableOutput(&session, {1}, {1});
    gpio.set(&session, {1}, {1});
    EXPECT_THAT(gpio.read(&session, {1, 2}), ElementsAre(1, 1));
    gpio.set(&session, {1}, {0});
    EXPECT_THAT(gpio.read(&session, {1, 2}), ElementsAre(0, 0));
}

TEST_F(GpioLoop, IsBangedBitByBit) {
    gpio.enableOutput(&session, {1}, {1});
    EXPECT_THAT(gpio.bitBang(&session, {1, 2, 1, 2}, {1, 0, 0, 0}, {0, 1, 0, 1}), ElementsAre(1, 1, 0, 0));
}

TEST_F(GpioLoop, IsOpenAfterTheDefaultAndAfterAReset) {
    gpio.set(&session, {1, 3}, {1, 1});
    gpio.enableOutput(&session, {1, 3}, {1, 1});
    gpio.setDefault(&session, {1});
    EXPECT_THAT(gpio.readOutputEnable(&session, {1, 3}), ElementsAre(0, 1));
    EXPECT_THAT(gpio.read(&session, {1, 2, 3}), ElementsAre(0, 0, 1));
    gpio.reset(&session);
    EXPECT_THAT(gpio.readOutputEnable(&session, {1, 3}), ElementsAre(0, 0));
}

// The bits of a word as they leave a shift register.
std::string bits(std::uint32_t word) {
    std::string text;
    for (int i = 0; i < 32; ++i, word >>= 1)
        text += (word & 1U) != 0 ? '1' : '0';
    return text;
}

class JtagChain : public testing::Test, protected SessionOnBoard {
protected:
    // TMS from anywhere to the shifting of data, and of instructions.
    static constexpr const char* kToShiftDr = "111110100";
    static constexpr const char* kToShiftIr = "1111101100";

    Orvane::JTAG::JTAG jtag;
};

TEST_F(JtagChain, ShiftsOutTheIdCodesOfItsDevices) {
    const auto ids = board.jtagIdentifications();
    ASSERT_EQ(ids.size(), 2U);
    jtag.shift(&session, "", kToShiftDr, "");
    EXPECT_EQ(jtag.shift(&session, std::string(64, '0'), std::string(63, '0') + "1", "10"),
              bits(ids[0]) + bits(ids[1]));
}

TEST_F(JtagChain, InBypassDelaysTheDataByOneBitForEachDevice) {
    const std::string bypass(13, '1'); // instruction registers of 5 and 8 bits
    const auto results =
        jtag.shiftMulti(&session, {"", bypass, "", "10110000"}, {kToShiftIr, "0000000000001", "", "00000001"},
                        {"", "10100", "", "10"});
    EXPECT_THAT(results, ElementsAre("1111111111", "1000010000000", "", "00101100"));
}

class AdcCapture : public testing::Test, protected SessionOnBoard {
protected:
    AdcCapture() {
        board.setWaveform(0, {Waveform::Shape::Sine, 128, 300, 4});
        board.setWaveform(2, {Waveform::Shape::Constant, 200, 0, 1});
        adc.initialize(&session);
    }
    Orvane::ADC::ADC adc;
};

TEST_F(AdcCapture, ShowsTheWaveform) {
    adc.start(&session);
    EXPECT_THAT(adc.getData(&session, 6), ElementsAre(128, 255, 128, 0, 128, 255));
}

TEST_F(AdcCapture, ShowsTheChannelsOfTheMaskInTurnAndTheirMaxima) {
    adc.setChannelMask(&session, 0b101);
    adc.start(&session);
    EXPECT_THAT(adc.getData(&session, 4), ElementsAre(128, 200, 255, 200));
    EXPECT_THAT(adc.maxADC(&session), ElementsAre(255, 200));
}

TEST_F(AdcCapture, GivesNothingOnceItIsStopped) {
    adc.start(&session);
    adc.stop(&session);
    EXPECT_EQ(adc.getData(&session, 6), Bytes());
}

TEST_F(AdcCapture, MarksEventsBySampleAndKnowsItsDumpFile) {
    adc.setDumpFile(&session, "capture.bin");
    adc.setChannelMask(&session, 0xFF);
    adc.start(&session);
    adc.getData(&session, 3 * 8);
    adc.setEventName(&session, "overload");
    const Bytes events = adc.getEvents(&session);
    EXPECT_EQ(std::string(events.begin(), events.end()), "3 overload\n");
    EXPECT_EQ(board.adcDumpFile(), "capture.bin");
}

TEST(RemoteShell, RunsACommandThatTheBoardDoesNotKnow) {
    OrvaneSim::Lab lab;
    OrvaneSim::Board& board = lab.add({"", "01A2", {}, "host", 1, true});
    const auto session = openSession(board);
    Orvane::CommandResult result{};
    Orvane::Setup::Setup().runCommand(session.get(), "printf 'a\\0b'; printf c >&2; exit 3", 60, result);
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_EQ(result.output, std::string("a\0b", 3));
    EXPECT_EQ(result.errorOutput, "c");
}

class BoardServices : public testing::Test, protected SessionOnBoard {
protected:
    BoardServices() : SessionOnBoard(simpleMode(), "01A2") {}
};

TEST_F(BoardServices, AnswerSeveralThreadsThroughOneSession) {
    constexpr int kCalls = 20;
    board.driveGpio(4, true);
    std::vector<int> wrong(4);
    const auto repeat = [&](std::size_t thread, auto good) {
        return std::thread([&wrong, thread, good] {
            for (int i = 0; i < kCalls; ++i)
                wrong[thread] += good() ? 0 : 1;
        });
    };
    std::thread threads[] = {
        repeat(0,
               [&] {
                   return i2c.readReg(&session, 0, 0x50, 0, 1, 2) == Bytes{'0', '1'};
               }),
        repeat(1,
               [&] {
                   return Orvane::GPIO::GPIO().read(&session, {4, 5}) == Bytes{1, 0};
               }),
        repeat(2, [&] { return Orvane::JTAG::JTAG().shift(&session, "", "11", "") == "11"; }),
        repeat(3, [&] { return Orvane::Setup::Setup().ping(&session) >= 0; }),
    };
    for (std::thread& thread : threads)
        thread.join();
    EXPECT_THAT(wrong, Each(0));
    EXPECT_EQ(session.identityWord(), identity(3 * kCalls));
}

} // namespace
} // namespace OrvaneTest
