// What each operation of a service asks the board, and how often, and after what.
#include "ov_sys/rack/core/ServiceCall.h"

#include "ov_sys/rack/Flight.h"
#include "tests/support/rack/RackOnBoard.h"

namespace OrvaneTest {
namespace {

using namespace Orvane;
using RackLink::Effect;

// An operation as its board hears it. `arguments`: without the session word.
struct Operation {
    const char* name;
    std::function<void(const Phy&, const Within&)> run;
    const char* program;
    const char* procedure;
    Effect effect;
    const char* arguments;
};

// By its name.
std::ostream& operator<<(std::ostream& out, const Operation& one) {
    return out << one.name;
}

class ServiceOperation : public testing::TestWithParam<Operation>, protected RackOnBoard {
protected:
    const Operation& operation = GetParam();

    ServiceOperation() {
        phy.thermal().connect();
        phy.adc().initialize();
        phy.mdio().requestInterrupt(0, 3, 0, 0);
        phy.read({1, 0}); // the time that an answer takes is known
        board.forgetRequests();
    }

    // Requests for the operation are left without answer, or without their connection.
    void lose(int count) {
        const bool overTcp =
            std::string(operation.program) == "setup" || std::string(operation.program) == "adc";
        inject(overTcp ? Fault::Kind::CloseConnection : Fault::Kind::LoseRequest, operation.program,
               operation.procedure, count);
    }
    void sendsOnceWith(Repeat repeat) {
        lose(-1);
        const Failure failure = failureOf([&] { operation.run(phy, within(150ms).repeating(repeat)); });
        EXPECT_EQ(failure.kind(), FailureKind::TimedOut);
        EXPECT_EQ(failure.attempts(), 1U);
        board.clearFaults();
    }
    void sendsAgainWith(Repeat repeat) {
        lose(1);
        board.forgetRequests();
        operation.run(phy, Within{}.repeating(repeat));
        EXPECT_EQ(count(operation.procedure), 2U);
        board.clearFaults();
    }
};

TEST_P(ServiceOperation, AsksForItsProcedureWithItsArguments) {
    operation.run(phy, {});
    ASSERT_GE(count(operation.procedure), 1U);
    auto arguments = argumentsOf(board.requestsOf(operation.procedure).at(0));
    if (arguments.is_object())
        arguments.erase("handle");
    EXPECT_EQ(arguments.dump(), operation.arguments);
}

TEST_P(ServiceOperation, IsSentAgainAsOftenAsItsKindMay) {
    if (operation.effect == Effect::Reads)
        sendsAgainWith({1, 0});
    else
        sendsOnceWith({1, 0});
    if (operation.effect == Effect::Writes)
        sendsAgainWith({0, 1});
    else
        sendsOnceWith({0, 1});
}

TEST_P(ServiceOperation, ThatChangesTheBoardWaitsForTheReadsBeforeIt) {
    Flight flight;
    inject(Fault::Kind::LoseRequest, "mdio", "mdio_read");
    flight.read(phy, {1, 0});
    flight.step();
    operation.run(phy, {});
    std::size_t reads = 0;
    for (const std::string& procedure : procedures()) {
        if (procedure == operation.procedure && operation.effect != Effect::Reads) {
            EXPECT_EQ(reads, 2U);
        }
        reads += procedure == "mdio_read" ? 1U : 0U;
    }
    flight.wait();
}

const Operation kOperations[] = {
    {"I2cWrite",
     [](const Phy& phy, const Within& within) {
         phy.i2c().write(2, 0x50, {0x40, 1}, within);
     },
     "i2c", "i2c_write", Effect::Alone, R"({"bus":2,"address":80,"data":[64,1]})"},
    {"I2cRead", [](const Phy& phy, const Within& within) { phy.i2c().read(2, 0x50, 0x40, 255, within); },
     "i2c", "i2c_read", Effect::Alone, R"({"bus":2,"address":80,"command":64,"length":255})"},
    {"I2cReadRegister",
     [](const Phy& phy, const Within& within) { phy.i2c().readRegister(2, 0x50, 0x41, 1, 255, within); },
     "i2c", "i2c_read_reg", Effect::Alone,
     R"({"bus":2,"address":80,"registerNumber":65,"registerLength":1,"length":255})"},
    {"I2cReadBlock",
     [](const Phy& phy, const Within& within) {
         phy.i2c().readBlock({{0, 0x50, 0x20, 1, 2}, {1, 0x50, 0x30, 1, 3}}, within);
     },
     "i2c", "i2c_block_read_register", Effect::Alone,
     R"({"trans":{"buses":[0,1],"addresses":[80,80],"registers":[32,48],"lengths":[2,3],)"
     R"("registerLengths":[1,1]}})"},
    {"I2cWriteBlock",
     [](const Phy& phy, const Within& within) {
         phy.i2c().writeBlock({{0, 0x50, 0x20, 1, 0, {1, 2}}, {1, 0x50, 0x30, 1, 0, {3}}}, within);
     },
     "i2c", "i2c_block_write_register", Effect::Alone,
     R"({"trans":{"buses":[0,1],"addresses":[80,80],"registers":[32,48],"lengths":[2,1],)"
     R"("registerLengths":[1,1]},"data":[1,2,3]})"},
    {"I2cWriteBlockMasked",
     [](const Phy& phy, const Within& within) {
         phy.i2c().writeBlockMasked({{0, 0x50, 0x20, 1, 0, {1, 2}}}, 0xF0, within);
     },
     "i2c", "i2c_block_write_mask", Effect::Alone,
     R"({"trans":{"buses":[0],"addresses":[80],"registers":[32],"lengths":[2],"registerLengths":[1]},)"
     R"("data":[1,2],"mask":240})"},
    {"GpioRead",
     [](const Phy& phy, const Within& within) {
         phy.gpio().read({1, 2}, within);
     },
     "gpio", "gpio_read", Effect::Reads, R"({"indexes":[1,2]})"},
    {"GpioWrite",
     [](const Phy& phy, const Within& within) {
         phy.gpio().write({1, 2}, {0, 1}, within);
     },
     "gpio", "gpio_write", Effect::Writes, R"({"indexes":[1,2],"states":[0,1]})"},
    {"GpioEnableOutput",
     [](const Phy& phy, const Within& within) {
         phy.gpio().enableOutput({1, 2}, {0, 1}, within);
     },
     "gpio", "gpio_enableoutput", Effect::Writes, R"({"indexes":[1,2],"states":[0,1]})"},
    {"GpioOutputEnables",
     [](const Phy& phy, const Within& within) {
         phy.gpio().outputEnables({1, 2}, within);
     },
     "gpio", "gpio_readoutputenable", Effect::Reads, R"({"indexes":[1,2]})"},
    {"GpioSetDefault", [](const Phy& phy, const Within& within) { phy.gpio().setDefault({1}, within); },
     "gpio", "gpio_setdefault", Effect::Writes, R"({"indexes":[1]})"},
    {"GpioReset", [](const Phy& phy, const Within& within) { phy.gpio().reset(within); }, "gpio",
     "gpio_reset", Effect::Writes, R"({"value":0})"},
    {"GpioBitBang", [](const Phy& phy, const Within& within) { phy.gpio().bitBang({1}, {0}, {1}, within); },
     "gpio", "gpio_bitbang", Effect::Alone, R"({"indexes":[1],"states":[0],"modes":[1]})"},
    {"JtagMaxBytes", [](const Phy& phy, const Within& within) { phy.jtag().maxBytes(within); }, "jtag",
     "jtag_maxbytes", Effect::Reads, R"({"value":0})"},
    {"JtagShift",
     [](const Phy& phy, const Within& within) {
         phy.jtag().shift({"01", "110", "1"}, within);
     },
     "jtag", "jtag_shiftmulti", Effect::Alone,
     R"({"data":[{"text":"01","length":2}],"tms":[{"text":"110","length":3}],)"
     R"("tmsAfter":[{"text":"1","length":1}]})"},
    {"AdcInitialize", [](const Phy& phy, const Within& within) { phy.adc().initialize(within); }, "adc",
     "adc_initialize", Effect::Alone, R"({"value":0})"},
    {"AdcStart", [](const Phy& phy, const Within& within) { phy.adc().start(within); }, "adc", "adc_start",
     Effect::Alone, R"({"value":0})"},
    {"AdcStop", [](const Phy& phy, const Within& within) { phy.adc().stop(within); }, "adc", "adc_stop",
     Effect::Alone, R"({"value":0})"},
    {"AdcSetChannelMask", [](const Phy& phy, const Within& within) { phy.adc().setChannelMask(3, within); },
     "adc", "adc_setchannelmask", Effect::Alone, R"({"mask":3})"},
    {"AdcSetDumpFile", [](const Phy& phy, const Within& within) { phy.adc().setDumpFile("file", within); },
     "adc", "adc_setdumpfile", Effect::Alone, R"({"name":"file"})"},
    {"AdcSetEventName", [](const Phy& phy, const Within& within) { phy.adc().setEventName("event", within); },
     "adc", "adc_seteventname", Effect::Alone, R"({"name":"event"})"},
    {"AdcData", [](const Phy& phy, const Within& within) { phy.adc().data(6, within); }, "adc", "adc_getdata",
     Effect::Alone, R"({"count":6})"},
    {"AdcMaxAdc", [](const Phy& phy, const Within& within) { phy.adc().maxAdc(within); }, "adc", "adc_maxadc",
     Effect::Alone, R"({"value":0})"},
    {"AdcEvents", [](const Phy& phy, const Within& within) { phy.adc().events(within); }, "adc",
     "adc_getevents", Effect::Alone, R"({"value":0})"},
    {"ThermalConnect", [](const Phy& phy, const Within& within) { phy.thermal().connect(within); }, "thermal",
     "thrm_connect", Effect::Writes, R"({"value":0})"},
    {"ThermalDisconnect", [](const Phy& phy, const Within& within) { phy.thermal().disconnect(within); },
     "thermal", "thrm_disconnect", Effect::Writes, R"({"value":0})"},
    {"ThermalState", [](const Phy& phy, const Within& within) { phy.thermal().state(within); }, "thermal",
     "thrm_getstate", Effect::Reads, R"({"value":0})"},
    {"ThermalTemperature", [](const Phy& phy, const Within& within) { phy.thermal().temperature(1, within); },
     "thermal", "thrm_gettemperature", Effect::Reads, R"({"channel":1})"},
    {"ThermalSettledTemperature",
     [](const Phy& phy, const Within& within) { phy.thermal().settledTemperature(1, within); }, "thermal",
     "thrm_getsettledtemperature", Effect::Reads, R"({"channel":1})"},
    {"ThermalSetTemperature",
     [](const Phy& phy, const Within& within) { phy.thermal().setTemperature(1, 25.5F, 1, within); },
     "thermal", "thrm_settemperature", Effect::Writes,
     R"({"temperature":25.5,"startControl":1,"channel":1})"},
    {"ThermalSetDefaultTemperature",
     [](const Phy& phy, const Within& within) { phy.thermal().setDefaultTemperature(1, 25.5F, 1, within); },
     "thermal", "thrm_setdefaulttemperature", Effect::Writes,
     R"({"temperature":25.5,"startControl":1,"channel":1})"},
    {"ThermalStartControl",
     [](const Phy& phy, const Within& within) { phy.thermal().startControl(1, within); }, "thermal",
     "thrm_startcontrol", Effect::Writes, R"({"channel":1})"},
    {"ThermalStopControl", [](const Phy& phy, const Within& within) { phy.thermal().stopControl(within); },
     "thermal", "thrm_stopcontrol", Effect::Writes, R"({"value":0})"},
    {"ShellPing", [](const Phy& phy, const Within& within) { phy.shell().ping(within); }, "setup", "ping",
     Effect::Reads, R"({"value":123})"},
    {"ShellPingSession", [](const Phy& phy, const Within& within) { phy.shell().pingSession(within); },
     "setup", "pingclient", Effect::Reads, R"({})"},
    {"ShellPingKeepAlive", [](const Phy& phy, const Within& within) { phy.shell().pingKeepAlive(within); },
     "keepAlive", "pingkeepalive", Effect::Reads, R"({})"},
    {"ShellErrorRecord", [](const Phy& phy, const Within& within) { phy.shell().errorRecord(-5, within); },
     "setup", "get_error_msg", Effect::Reads, R"({"value":4294967291})"},
    {"MdioFlush", [](const Phy& phy, const Within& within) { phy.mdio().flush(within); }, "mdio",
     "mdio_flushport", Effect::Writes, R"({"deviceIndex":1,"phyAddress":3})"},
    {"MdioSetSingleWire",
     [](const Phy& phy, const Within& within) { phy.mdio().setSingleWire(true, within); }, "mdio",
     "mdio_singlewire", Effect::Writes, R"({"value":1})"},
    {"MdioSetPreambleCount",
     [](const Phy& phy, const Within& within) { phy.mdio().setPreambleCount(17, within); }, "mdio",
     "mdio_setpreamblecount", Effect::Writes, R"({"value":17})"},
    {"MdioReadNext", [](const Phy& phy, const Within& within) { phy.mdio().readNext(within); }, "mdio",
     "mdio_read_preinc_c22_zrext32", Effect::Alone, R"({})"},
    {"MdioWriteNext", [](const Phy& phy, const Within& within) { phy.mdio().writeNext(7, within); }, "mdio",
     "mdio_write_preinc_c22_zrext32", Effect::Alone, R"({"value":7})"},
    {"MdioReadCurrent", [](const Phy& phy, const Within& within) { phy.mdio().readCurrent(within); }, "mdio",
     "mdio_read_curraddr_c22_zrext32", Effect::Reads, R"({})"},
    {"MdioWriteCurrent", [](const Phy& phy, const Within& within) { phy.mdio().writeCurrent(7, within); },
     "mdio", "mdio_write_curraddr_c22_zrext32", Effect::Writes, R"({"value":7})"},
    {"MdioRequestInterrupt",
     [](const Phy& phy, const Within& within) { phy.mdio().requestInterrupt(1, 2, 3, 4, within); }, "mdio",
     "mdio_interruptrequest", Effect::Writes, R"({"byte1":1,"byte2":2,"int1":3,"int2":4})"},
    {"MdioWaitForInterrupt",
     [](const Phy& phy, const Within& within) { phy.mdio().waitForInterrupt(5, within); }, "mdio",
     "mdio_interruptwait", Effect::Alone, R"({"value":5})"},
    {"MdioInterruptProcessed",
     [](const Phy& phy, const Within& within) { phy.mdio().interruptProcessed(6, within); }, "mdio",
     "mdio_interruptprocessed", Effect::Writes, R"({"word1":6})"},
    {"MdioReleaseInterrupt",
     [](const Phy& phy, const Within& within) { phy.mdio().releaseInterrupt(7, within); }, "mdio",
     "mdio_interrutprelease", Effect::Writes, R"({"value":7})"},
};

INSTANTIATE_TEST_SUITE_P(Each, ServiceOperation, testing::ValuesIn(kOperations),
                         [](const auto& one) { return std::string(one.param.name); });

} // namespace
} // namespace OrvaneTest
