// The board's services at work on its devices.
#include "ov_sys/rack/Services.h"

#include "tests/support/rack/RackOnBoard.h"

#include <functional>
#include <gmock/gmock.h>

namespace OrvaneTest {
namespace {

using namespace Orvane;
using testing::ElementsAre;
using testing::FloatNear;
using Bytes = std::vector<std::uint8_t>;
using OrvaneSim::Waveform;

class RackServices : public testing::Test, protected RackOnBoard {
protected:
    static constexpr unsigned kEeprom = 0x50;
};

TEST_F(RackServices, I2cReadsWhatItWrote) {
    const I2cBus i2c = phy.i2c();
    i2c.write(2, kEeprom, {0x40, 'O', 'r', 'v'});
    EXPECT_THAT(i2c.read(2, kEeprom, 0x40, 4), ElementsAre('O', 'r', 'v', 0xFF));
    EXPECT_THAT(i2c.readRegister(2, kEeprom, 0x41, 1, 2), ElementsAre('r', 'v'));
}

TEST_F(RackServices, I2cBlocksReachSeveralBuses) {
    const I2cBus i2c = phy.i2c();
    i2c.writeBlock({{0, kEeprom, 0x20, 1, 0, {1, 2}}, {1, kEeprom, 0x30, 1, 0, {3, 4, 5}}});
    EXPECT_THAT(i2c.readBlock({{0, kEeprom, 0x20, 1, 2}, {1, kEeprom, 0x30, 1, 3}}),
                ElementsAre(1, 2, 3, 4, 5));
    i2c.writeBlockMasked({{0, kEeprom, 0x20, 1, 0, {0xFF}}}, 0x0F);
    EXPECT_THAT(i2c.read(0, kEeprom, 0x20, 1), ElementsAre(0x0F));
}

TEST_F(RackServices, I2cFailureNamesTheBoardsCode) {
    EXPECT_EQ(failureOf([&] { phy.i2c().read(0, 0x51, 0, 1); }).codeName(), "EREMOTEIO");
    EXPECT_EQ(failureOf([&] { phy.i2c().read(0, kEeprom, 0, 256); }).kind(), FailureKind::InvalidArgument);
}

TEST_F(RackServices, I2cReachesTheLastBusAndTheLastDevice) {
    const I2cBus i2c = phy.i2c();
    EXPECT_EQ(failureOf([&] { i2c.read(9, 127, 0, 1); }).kind(), FailureKind::BoardError); // nobody there
    EXPECT_EQ(failureOf([&] { i2c.readRegister(9, 127, 0, 4, 1); }).kind(), FailureKind::BoardError);
    EXPECT_EQ(count("i2c_read"), 1U);
    EXPECT_EQ(count("i2c_read_reg"), 1U);
}

TEST_F(RackServices, I2cReadsFromOneByteTo255) {
    const I2cBus i2c = phy.i2c();
    EXPECT_EQ(i2c.read(0, kEeprom, 0, 1).size(), 1U);
    EXPECT_EQ(i2c.read(0, kEeprom, 0, 255).size(), 255U);
    EXPECT_EQ(i2c.readRegister(0, kEeprom, 0, 1, 1).size(), 1U);
    EXPECT_EQ(i2c.readRegister(0, kEeprom, 0, 1, 255).size(), 255U);
    for (const std::uint32_t length : {0U, 256U}) {
        EXPECT_EQ(failureOf([&] { i2c.read(0, kEeprom, 0, length); }).advice(),
                  "A read is of 1 to 255 bytes.");
        EXPECT_EQ(failureOf([&] { i2c.readRegister(0, kEeprom, 0, 1, length); }).advice(),
                  "A read is of 1 to 255 bytes.");
    }
}

TEST_F(RackServices, WhatFitsIntoNoRequestIsRefusedAtOnceAndUnsent) {
    phy.adc().initialize();
    board.forgetRequests();
    const auto begun = std::chrono::steady_clock::now();
    const std::function<void()> calls[] = {
        [&] { phy.i2c().write(0, kEeprom, Bytes(70000)); },
        [&] { phy.adc().setDumpFile(std::string(2U << 20U, 'x')); },
    };
    for (const auto& call : calls)
        EXPECT_EQ(failureOf(call).kind(), FailureKind::InvalidArgument);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 2s);
    EXPECT_EQ(procedures(), std::vector<std::string>{});
    phy.adc().stop(); // over the same connection
    EXPECT_EQ(count("adc_stop"), 1U);
}

TEST_F(RackServices, TransferWithoutAnswerIsNotRepeated) {
    phy.open();
    inject(Fault::Kind::LoseReply, "i2c", "i2c_write");
    const I2cBus i2c = phy.i2c();
    EXPECT_EQ(failureOf([&] {
                  i2c.write(0, kEeprom, {1, 2}, within(400ms).once());
              }).kind(),
              FailureKind::TimedOut);
    EXPECT_EQ(count("i2c_write"), 1U);
}

TEST_F(RackServices, GpioShowsTheOutputAtTheInput) {
    board.wireGpio(1, 2);
    const GpioLines gpio = phy.gpio();
    gpio.enableOutput({1}, {1});
    gpio.write({1}, {1});
    EXPECT_THAT(gpio.read({1, 2}), ElementsAre(1, 1));
    EXPECT_THAT(gpio.outputEnables({1, 2}), ElementsAre(1, 0));
    EXPECT_THAT(gpio.bitBang({1, 2}, {0, 0}, {0, 1}), ElementsAre(0, 0));
    gpio.setDefault({1});
    gpio.reset();
    EXPECT_THAT(gpio.outputEnables({1}), ElementsAre(0));
}

TEST_F(RackServices, GpioListsOfDifferentLengthsAreRefusedUnsent) {
    EXPECT_EQ(failureOf([&] { phy.gpio().write({1, 2}, {1}); }).kind(), FailureKind::InvalidArgument);
    EXPECT_EQ(failureOf([&] { phy.gpio().bitBang({1}, {1}, {}); }).kind(), FailureKind::InvalidArgument);
    EXPECT_EQ(procedures(), std::vector<std::string>{});
}

TEST_F(RackServices, ShortAnswersAreFailures) {
    phy.open();
    inject(Fault::Kind::ReplyCount, "gpio", "gpio_read", 1, 1);
    inject(Fault::Kind::ReplyCount, "i2c", "i2c_read", 1, 3);
    inject(Fault::Kind::ReplyCount, "jtag", "jtag_shiftmulti", 1, 0);
    EXPECT_EQ(failureOf([&] { phy.gpio().read({1, 2}); }).attempts(), 1U);
    EXPECT_EQ(failureOf([&] { phy.i2c().read(0, kEeprom, 0, 2); }).kind(), FailureKind::BadReply);
    EXPECT_EQ(failureOf([&] { phy.jtag().shift({"", "11", ""}); }).kind(), FailureKind::BadReply);
}

TEST_F(RackServices, JtagShiftsSeveralTimesInOneCall) {
    const JtagChain jtag = phy.jtag();
    const std::string bypass(13, '1'); // instruction registers of 5 and 8 bits
    EXPECT_THAT(jtag.shift({{"", "1111101100", ""},
                            {bypass, "0000000000001", "10100"},
                            {"", "", ""},
                            {"10110000", "00000001", "10"}}),
                ElementsAre("1111111111", "1000010000000", "", "00101100"));
    EXPECT_EQ(jtag.shift({"", "1111101100", ""}), "1111111111");
    EXPECT_GT(jtag.maxBytes(), 0U);
}

TEST_F(RackServices, AdcShowsTheWaveformOverTcp) {
    board.setWaveform(0, {Waveform::Shape::Sine, 128, 300, 4});
    const AdcCapture adc = phy.adc();
    adc.initialize();
    adc.setDumpFile("capture.bin");
    adc.setChannelMask(1);
    adc.start();
    EXPECT_THAT(adc.data(6), ElementsAre(128, 255, 128, 0, 128, 255));
    EXPECT_THAT(adc.maxAdc(), ElementsAre(255));
    adc.setEventName("overload");
    const Bytes events = adc.events();
    EXPECT_THAT(std::string(events.begin(), events.end()), testing::EndsWith(" overload\n"));
    adc.stop();
    EXPECT_EQ(adc.data(6), Bytes());
    EXPECT_EQ(board.adcDumpFile(), "capture.bin");
    EXPECT_EQ(board.requestsOf("adc_start").at(0).transport, "tcp");
}

TEST_F(RackServices, ThermalUnitSettlesAtItsSetPoint) {
    const ThermalControl thermal = phy.thermal();
    thermal.connect();
    thermal.setTemperature(0, 85, 1);
    EXPECT_EQ(thermal.temperature(0), 40.0F);
    EXPECT_THAT(thermal.settledTemperature(0), FloatNear(85, 0.1F));
    EXPECT_EQ(thermal.state(), 3);
    thermal.setDefaultTemperature(0, -20);
    thermal.stopControl();
    thermal.startControl(0);
    EXPECT_THAT(thermal.settledTemperature(0), FloatNear(-20, 0.1F));
    thermal.disconnect();
    EXPECT_EQ(failureOf([&] { thermal.temperature(0); }).kind(), FailureKind::BoardError);
}

TEST_F(RackServices, ShellReturnsStatusAndBothOutputs) {
    board.setCommand("uname", {3, "Linux\n", "oops", 0});
    const BoardShell::Outcome outcome = phy.shell().run("uname", 10s);
    EXPECT_EQ(outcome.status, 3);
    EXPECT_EQ(outcome.output, "Linux\n");
    EXPECT_EQ(outcome.errors, "oops");
    EXPECT_GE(phy.shell().ping().count(), 0);
}

TEST_F(RackServices, CommandGoesWithItsLimitAndItsEnd) {
    phy.shell().run("hostname", 1s);
    const auto arguments = argumentsOf(board.requestsOf("execute_command").at(0));
    EXPECT_EQ(arguments["command"].get<std::string>(), std::string("hostname\0", 9));
    EXPECT_EQ(arguments["seconds"], 1);
}

TEST_F(RackServices, CommandMayTakeAllItsTime) {
    phy.open();
    inject(Fault::Kind::DelayReply, "setup", "execute_command", 1, 1200);
    EXPECT_EQ(phy.shell().run("hostname", 5s).output, "board7\n");
    EXPECT_EQ(count("execute_command"), 1U);
}

TEST_F(RackServices, CancelledCommandReturnsAtOnce) {
    inject(Fault::Kind::DelayReply, "setup", "execute_command", 1, 60000);
    Cancellation cancellation;
    board.onRequest([&](const Request& request) {
        if (request.procedure == "execute_command")
            cancellation.cancel();
    });
    const auto begun = std::chrono::steady_clock::now();
    EXPECT_EQ(failureOf([&] { phy.shell().run("hostname", 20s, &cancellation); }).kind(),
              FailureKind::Cancelled);
    EXPECT_LT(std::chrono::steady_clock::now() - begun, 10s);
    board.onRequest([](const Request&) {});
}

TEST_F(RackServices, CaptureMayTakeAllItsTime) {
    phy.open();
    inject(Fault::Kind::DelayReply, "adc", "adc_start", 1, 1200);
    phy.adc().start(within(5s));
    EXPECT_EQ(count("adc_start"), 1U);
}

TEST_F(RackServices, PingsAreCountedApartFromOtherCalls) {
    phy.open();
    const auto handle = [&](const char* procedure) {
        return argumentsOf(board.requestsOf(procedure).at(0))["handle"].get<unsigned>();
    };
    phy.read({1, 0});
    const unsigned before = handle("mdio_read");
    board.forgetRequests();
    phy.shell().pingKeepAlive();
    phy.read({1, 0});
    EXPECT_EQ(handle("mdio_read"), before + (1U << 8U));
    EXPECT_EQ(handle("pingkeepalive"),
              (1U << 8U) | (before & 0xFFU)); // the second, after that of the opening
}

TEST_F(RackServices, ServiceThatTheBoardDoesNotRunIsLeftOut) {
    phy.open();
    inject(Fault::Kind::OverrideWord, "portmap", "", 1, 0);
    inject(Fault::Kind::OverrideWord, "portmap", "", 1, 1);
    const auto services = phy.shell().services();
    EXPECT_EQ(services.size(), 7U);
    EXPECT_EQ(services.count("setup"), 0U);
    EXPECT_EQ(services.at("i2c"), 1U);
}

TEST_F(RackServices, MdioBusMovesTheAddressOfTheExtension) {
    const MdioBus mdio = phy.mdio();
    board.setRegister(Space::Ext32, 1, 3, 0x104, 0x44);
    phy.write(ext32(0x100), 1);
    EXPECT_EQ(mdio.readNext(), 0x44U);
    mdio.writeCurrent(0x45);
    EXPECT_EQ(mdio.readCurrent(), 0x45U);
    mdio.writeNext(0x46);
    EXPECT_EQ(board.registerValue(Space::Ext32, 1, 3, 0x108), 0x46U);
}

TEST_F(RackServices, MdioBusSwitchesAreSent) {
    const MdioBus mdio = phy.mdio();
    mdio.flush();
    mdio.setSingleWire(true);
    mdio.setPreambleCount(17);
    EXPECT_EQ(argumentsOf(board.requestsOf("mdio_flushport").at(0)).back(), 3);
    EXPECT_EQ(argumentsOf(board.requestsOf("mdio_singlewire").at(0))["value"], 1);
    EXPECT_EQ(argumentsOf(board.requestsOf("mdio_setpreamblecount").at(0))["value"], 17);
    inject(Fault::Kind::OverrideWord, "mdio", "mdio_setpreamblecount", 1, 16);
    EXPECT_EQ(failureOf([&] { mdio.setPreambleCount(17); }).kind(), FailureKind::BadReply);
}

TEST_F(RackServices, InterruptsReachTheBoard) {
    const MdioBus mdio = phy.mdio();
    EXPECT_EQ(mdio.requestInterrupt(1, 2, 3, 4), 0);
    EXPECT_EQ(mdio.waitForInterrupt(5), 0);
    EXPECT_EQ(mdio.interruptProcessed(6), 0);
    EXPECT_EQ(mdio.releaseInterrupt(7), 0);
    EXPECT_EQ(procedures(),
              (std::vector<std::string>{"open_connection", "mdio_interruptrequest", "mdio_interruptwait",
                                        "mdio_interruptprocessed", "mdio_interrutprelease"}));
}

TEST_F(RackServices, InterruptOfThePhyEndsTheWait) {
    const MdioBus mdio = phy.mdio();
    mdio.requestInterrupt(0, 3, 0, 0);
    board.raiseInterrupt(0, 3);
    EXPECT_EQ(mdio.waitForInterrupt(2000), 1);
}

TEST_F(RackServices, PingsReachTheirService) {
    phy.shell().ping();
    phy.shell().pingSession();
    phy.shell().pingKeepAlive();
    EXPECT_EQ(count("ping"), 1U);
    EXPECT_EQ(board.requestsOf("pingclient").at(0).transport, "tcp");
    EXPECT_EQ(board.requestsOf("pingkeepalive").at(0).transport, "udp");
}

TEST_F(RackServices, ErrorRecordIsWhatTheBoardHasForACode) {
    EXPECT_EQ(phy.shell().errorRecord(-5).kind, 0U);
    Fault record{"setup", "get_error_msg", Fault::Kind::ReplyBody};
    record.bytes = std::string("\0\0\0\0\0\0\0\x7\xFF\xFF\xFF\xFE", 12);
    board.inject(record);
    const BoardShell::ErrorRecord said = phy.shell().errorRecord(-5);
    EXPECT_EQ(said.kind, 7U);
    EXPECT_EQ(said.detail, -2);
    EXPECT_EQ(argumentsOf(board.requestsOf("get_error_msg").back()).front().get<std::int64_t>(), 0xFFFFFFFB);
}

TEST_F(RackServices, BoardSaysWhereItsServicesAre) {
    const auto services = phy.shell().services();
    EXPECT_EQ(services.size(), 8U);
    EXPECT_NE(services.at("mdio"), 0U);
    EXPECT_EQ(services.count("portmap"), 0U);
    EXPECT_EQ(phy.shell().address(), board.address());
}

TEST_F(RackServices, ArgumentsThatNoBoardTakesAreRefusedBeforeAnythingIsSent) {
    const Phy smbus = rack.open("BOARD7:10").phy(3);
    const std::vector<std::function<void()>> bad{
        [&] { phy.i2c().write(10, kEeprom, {1}); },
        [&] { phy.i2c().read(0, 128, 0, 1); },
        [&] { phy.i2c().readRegister(0, kEeprom, 0, 5, 1); },
        [&] {
            phy.i2c().readBlock({{10, kEeprom, 0, 1, 1}});
        },
        [&] {
            phy.i2c().writeBlock({{0, 200, 0, 1, 0, {1}}});
        },
        [&] {
            phy.gpio().write({1, 2}, {1});
        },
        [&] {
            phy.jtag().shift({"01x", "000", "000"});
        },
        [&] {
            phy.jtag().shift({"x01", "000", "000"});
        },
        [&] { smbus.mdio().flush(); },
        [&] { smbus.mdio().setSingleWire(true); },
        [&] { smbus.mdio().readNext(); },
        [&] { smbus.mdio().requestInterrupt(0, 0, 0, 0); },
    };
    for (const auto& call : bad)
        EXPECT_EQ(failureOf(call).kind(), FailureKind::InvalidArgument);
    EXPECT_TRUE(board.requests().empty());
}

} // namespace
} // namespace OrvaneTest
