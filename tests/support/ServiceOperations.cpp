// The table of the operations, and the records that they send.
#include "tests/support/ServiceOperations.h"

#include "ov_sys/Interface/buses/ADC.h"
#include "ov_sys/Interface/buses/GPIO.h"
#include "ov_sys/Interface/buses/I2C.h"
#include "ov_sys/Interface/buses/JTAG.h"
#include "ov_sys/Interface/buses/KeepAlive.h"
#include "ov_sys/Interface/buses/Setup.h"
#include "ov_sys/Interface/buses/Thermal.h"
#include "tests/support/SessionOnBoard.h"

namespace OrvaneTest {
namespace {

using Orvane::i2c;
using Orvane::SessionWrapper;
using Operations = std::vector<ServiceOperation>;

constexpr unsigned kHandle = identity();
constexpr unsigned kPingHandle = 1; // ping sequence 0, session 1
constexpr unsigned char kBus = 3;
constexpr unsigned kEeprom = 0x50;

// For an operation that returns nothing.
template <class Work>
Json nothing(Work work) {
    work();
    return nullptr;
}

// The argument of an operation that takes none.
Json plainParam() {
    return {{"value", 0}, {"handle", kHandle}};
}

Operations i2cOperations() {
    const auto call = [](unsigned procedure, Json arguments) {
        return WireCall{kI2cProgram, procedure, std::move(arguments)};
    };
    return {
        {"I2cWrite",
         [](SessionWrapper s) {
             Bytes data{0x10, 0xA1, 0xA2};
             return nothing([&] { i2c.write(s, kBus, kEeprom, data); });
         },
         "i2c",
         call(2,
              {{"handle", kHandle}, {"bus", kBus}, {"address", kEeprom}, {"data", Bytes{0x10, 0xA1, 0xA2}}}),
         nullptr},
        {"I2cRead", [](SessionWrapper s) { return Json(i2c.read(s, kBus, kEeprom, 0x20, 3)); }, "i2c",
         call(1,
              {{"handle", kHandle}, {"bus", kBus}, {"address", kEeprom}, {"command", 0x20}, {"length", 3}}),
         Bytes{0x20, 0x21, 0x22}},
        {"I2cReadReg", [](SessionWrapper s) { return Json(i2c.readReg(s, kBus, kEeprom, 0x21, 1, 2)); },
         "i2c",
         call(3, {{"handle", kHandle},
                  {"bus", kBus},
                  {"address", kEeprom},
                  {"registerNumber", 0x21},
                  {"registerLength", 1},
                  {"length", 2}}),
         Bytes{0x21, 0x22}},
    };
}

// The lists of a block of two accesses, as they travel.
Json blockLists() {
    return {{"buses", Bytes{kBus, kBus + 1}},
            {"addresses", Words{kEeprom, kEeprom}},
            {"registers", Words{0x30, 0x38}},
            {"lengths", Words{2, 3}},
            {"registerLengths", Words{1, 1}}};
}

Operations i2cBlockOperations() {
    return {
        {"I2cBlockWriteRegister",
         [](SessionWrapper s) {
             Bytes data{1, 2, 3, 4, 5};
             return nothing([&] {
                 i2c.blockWriteRegister(s, {kBus, kBus + 1}, {kEeprom, kEeprom}, {0x30, 0x38}, data, {2, 3},
                                        {1, 1});
             });
         },
         "i2c",
         {kI2cProgram, 4, {{"handle", kHandle}, {"trans", blockLists()}, {"data", Bytes{1, 2, 3, 4, 5}}}},
         nullptr},
        {"I2cBlockWriteMask",
         [](SessionWrapper s) {
             Bytes data{1, 2, 3, 4, 5};
             return nothing([&] {
                 i2c.blockWriteMask(s, {kBus, kBus + 1}, {kEeprom, kEeprom}, {0x30, 0x38}, data, {2, 3},
                                    {1, 1}, 0xF0);
             });
         },
         "i2c",
         {kI2cProgram,
          6,
          {{"handle", kHandle}, {"trans", blockLists()}, {"data", Bytes{1, 2, 3, 4, 5}}, {"mask", 0xF0}}},
         nullptr},
        {"I2cBlockReadRegister",
         [](SessionWrapper s) {
             return Json(i2c.blockReadRegister(s, {kBus, kBus, kBus}, {kEeprom, kEeprom, kEeprom},
                                               {0x20, 0x30, 0x40}, {2, 1, 4}, {1, 1, 1}));
         },
         "i2c",
         {kI2cProgram,
          5,
          {{"handle", kHandle},
           {"trans",
            {{"buses", Bytes{kBus, kBus, kBus}},
             {"addresses", Words{kEeprom, kEeprom, kEeprom}},
             {"registers", Words{0x20, 0x30, 0x40}},
             {"lengths", Words{2, 1, 4}},
             {"registerLengths", Words{1, 1, 1}}}}}},
         Bytes{0x20, 0x21, 0x30, 0x40, 0x41, 0x42, 0x43}},
    };
}

Operations gpioOperations() {
    using Gpio = Orvane::GPIO::GPIO;
    const auto call = [](unsigned procedure, Json arguments) {
        return WireCall{kGpioProgram, procedure, std::move(arguments)};
    };
    const auto states = [](const Bytes& indexes, const Bytes& levels) {
        return Json{{"handle", kHandle}, {"indexes", indexes}, {"states", levels}};
    };
    const auto lines = [](const Bytes& indexes) { return Json{{"handle", kHandle}, {"indexes", indexes}}; };
    return {
        {"GpioSet", [](SessionWrapper s) { return nothing([&] {
                                               Gpio().set(s, {1, 2}, {1, 0});
                                           }); }, "gpio",
         call(2, states({1, 2}, {1, 0})), nullptr},
        {"GpioEnableOutput",
         [](SessionWrapper s) { return nothing([&] {
                                    Gpio().enableOutput(s, {1, 2}, {0, 1});
                                }); }, "gpio",
         call(5, states({1, 2}, {0, 1})), nullptr},
        {"GpioRead",
         [](SessionWrapper s) {
             return Json(Gpio().read(s, {4, 5, 4}));
         },
         "gpio", call(1, lines({4, 5, 4})), Bytes{1, 0, 1}},
        {"GpioReadOutputEnable",
         [](SessionWrapper s) {
             return Json(Gpio().readOutputEnable(s, {5, 6}));
         },
         "gpio", call(7, lines({5, 6})), Bytes{0, 1}},
        {"GpioSetDefault", [](SessionWrapper s) { return nothing([&] {
                                                      Gpio().setDefault(s, {6, 7});
                                                  }); },
         "gpio", call(3, lines({6, 7})), nullptr},
        {"GpioReset", [](SessionWrapper s) { return nothing([&] { Gpio().reset(s); }); }, "gpio",
         call(4, plainParam()), nullptr},
        {"GpioBitBang",
         [](SessionWrapper s) {
             return Json(Gpio().bitBang(s, {4, 5}, {0, 1}, {1, 2}));
         },
         "gpio",
         call(6, {{"handle", kHandle},
                  {"indexes", Bytes{4, 5}},
                  {"states", Bytes{0, 1}},
                  {"modes", Bytes{1, 2}}}),
         Bytes{1, 0}},
    };
}

Json entry(const std::string& text) {
    return {{"text", text}, {"length", text.size()}};
}

Operations jtagOperations() {
    using Jtag = Orvane::JTAG::JTAG;
    const auto lists = [](Json first, Json second, Json third) {
        return Json{{"handle", kHandle},
                    {"data", std::move(first)},
                    {"tms", std::move(second)},
                    {"tmsAfter", std::move(third)}};
    };
    return {
        {"JtagMaxBytes",
         [](SessionWrapper s) { return Json(Jtag().maxBytes(s)); },
         "jtag",
         {kJtagProgram, 1, plainParam()},
         1024},
        {"JtagShiftMulti",
         [](SessionWrapper s) {
             return Json(Jtag().shiftMulti(s, {"0", "11"}, {"1111", "01"}, {"0", ""}));
         },
         "jtag",
         {kJtagProgram, 3,
          lists({entry("0"), entry("11")}, {entry("1111"), entry("01")}, {entry("0"), entry("")})},
         std::vector<std::string>{"1111", "11"}},
        {"JtagShift",
         [](SessionWrapper s) { return Json(Jtag().shift(s, "101", "11111", "0")); },
         "jtag",
         {kJtagProgram, 3,
          lists(Json::array({entry("101")}), Json::array({entry("11111")}), Json::array({entry("0")}))},
         "11111"},
    };
}

Operations adcOperations() {
    using Adc = Orvane::ADC::ADC;
    const auto call = [](unsigned procedure, Json arguments) {
        return WireCall{kAdcProgram, procedure, std::move(arguments)};
    };
    return {
        {"AdcInitialize", [](SessionWrapper s) { return nothing([&] { Adc().initialize(s); }); }, "adc",
         call(3, plainParam()), nullptr},
        {"AdcStart", [](SessionWrapper s) { return nothing([&] { Adc().start(s); }); }, "adc",
         call(1, plainParam()), nullptr},
        {"AdcStop", [](SessionWrapper s) { return nothing([&] { Adc().stop(s); }); }, "adc",
         call(2, plainParam()), nullptr},
        {"AdcSetChannelMask",
         [](SessionWrapper s) { return nothing([&] { Adc().setChannelMask(s, 0x80000005); }); }, "adc",
         call(6, {{"handle", kHandle}, {"mask", 0x80000005U}}), nullptr},
        {"AdcSetDumpFile", [](SessionWrapper s) { return nothing([&] { Adc().setDumpFile(s, "a.bin"); }); },
         "adc", call(5, {{"handle", kHandle}, {"name", "a.bin"}}), nullptr},
        {"AdcSetEventName",
         [](SessionWrapper s) { return nothing([&] { Adc().setEventName(s, std::string("up\0x", 4)); }); },
         "adc", call(8, {{"handle", kHandle}, {"name", std::string("up\0x", 4)}}), nullptr},
        {"AdcGetData", [](SessionWrapper s) { return Json(Adc().getData(s, 3)); }, "adc",
         call(4, {{"handle", kHandle}, {"count", 3}}), Bytes{10, 11, 12}},
        {"AdcGetDataOfNothing", [](SessionWrapper s) { return Json(Adc().getData(s, 0)); }, "adc",
         call(4, {{"handle", kHandle}, {"count", 0}}), Bytes{}},
        {"AdcMaxADC", [](SessionWrapper s) { return Json(Adc().maxADC(s)); }, "adc", call(7, plainParam()),
         Bytes{0}},
        {"AdcGetEvents", [](SessionWrapper s) { return Json(Adc().getEvents(s)); }, "adc",
         call(9, plainParam()), Bytes{'0', ' ', 'g', 'o', '\n'}},
    };
}

Operations thermalOperations() {
    using Thermal = Orvane::Thermal::Thermal;
    const auto call = [](unsigned procedure, Json arguments) {
        return WireCall{kThermalProgram, procedure, std::move(arguments)};
    };
    const auto channel = [](unsigned number) { return Json{{"handle", kHandle}, {"channel", number}}; };
    const auto target = [](double celsius, unsigned flag, unsigned number) {
        return Json{
            {"handle", kHandle}, {"temperature", celsius}, {"startControl", flag}, {"channel", number}};
    };
    return {
        {"ThermalConnect", [](SessionWrapper s) { return nothing([&] { Thermal().connect(s); }); }, "thermal",
         call(1, plainParam()), nullptr},
        {"ThermalDisconnect", [](SessionWrapper s) { return nothing([&] { Thermal().disconnect(s); }); },
         "thermal", call(2, plainParam()), nullptr},
        {"ThermalStopControl", [](SessionWrapper s) { return nothing([&] { Thermal().stopControl(s); }); },
         "thermal", call(7, plainParam()), nullptr},
        {"ThermalGetState", [](SessionWrapper s) { return Json(Thermal().getState(s)); }, "thermal",
         call(3, plainParam()), 1},
        {"ThermalGetTemperature", [](SessionWrapper s) { return Json(Thermal().getTemperature(s, 1)); },
         "thermal", call(4, channel(1)), 25.0},
        {"ThermalGetSettledTemperature",
         [](SessionWrapper s) { return Json(Thermal().getSettledTemperature(s, 2)); }, "thermal",
         call(8, channel(2)), 25.0},
        {"ThermalSetTemperature",
         [](SessionWrapper s) { return nothing([&] { Thermal().setTemperature(s, 2, 85.5F, 1); }); },
         "thermal", call(5, target(85.5, 1, 2)), nullptr},
        {"ThermalSetDefaultTemperature",
         [](SessionWrapper s) { return nothing([&] { Thermal().setDefaultTemperature(s, 3, -40.25F, 0); }); },
         "thermal", call(9, target(-40.25, 0, 3)), nullptr},
        {"ThermalStartControl",
         [](SessionWrapper s) { return nothing([&] { Thermal().startControl(s, 3); }); }, "thermal",
         call(6, channel(3)), nullptr},
    };
}

Operations setupOperations() {
    using Setup = Orvane::Setup::Setup;
    return {
        {"SetupPing",
         [](SessionWrapper s) { return Json(Setup().ping(s) >= 0); },
         "setup",
         {kSetupProgram, 5, {{"handle", kPingHandle}}},
         true},
        {"SetupRunCommand",
         [](SessionWrapper s) {
             Orvane::CommandResult result{};
             const int status = Setup().runCommand(s, "hostname -x", 9, result);
             return Json{status, result.exitCode, result.output, result.errorOutput};
         },
         "setup",
         {kSetupProgram,
          6,
          {{"handle", kHandle}, {"command", std::string("hostname -x\0", 12)}, {"seconds", 9}}},
         {0, 3, "out\n", "err\n"}},
        {"KeepAlivePing",
         [](SessionWrapper s) { return Json(Orvane::KeepAlive::KeepAlive().ping(s) >= 0); },
         "keepAlive",
         {kKeepAliveProgram, 1, {{"handle", kPingHandle}}},
         true},
    };
}

} // namespace

const std::vector<ServiceOperation>& serviceOperations() {
    static const Operations operations = [] {
        Operations all;
        for (const auto& part : {i2cOperations(), i2cBlockOperations(), gpioOperations(), jtagOperations(),
                                 adcOperations(), thermalOperations(), setupOperations()})
            all.insert(all.end(), part.begin(), part.end());
        return all;
    }();
    return operations;
}

void prepareDevices(OrvaneSim::Board& board) {
    Bytes counted(256);
    for (std::size_t i = 0; i < counted.size(); ++i)
        counted[i] = static_cast<unsigned char>(i);
    board.setEeprom(kBus, counted);
    board.driveGpio(4, true);
    board.setWaveform(0, {OrvaneSim::Waveform::Shape::Ramp, 10, 4, 4});
    board.setCommand("hostname -x", {3, "out\n", "err\n", 0});
    {
        const auto session = openSession(board);
        Orvane::GPIO::GPIO().enableOutput(session.get(), {6}, {1});
        Orvane::ADC::ADC().start(session.get());
        Orvane::ADC::ADC().setEventName(session.get(), "go");
        Orvane::Thermal::Thermal().connect(session.get());
    }
    board.forgetRequests();
}

} // namespace OrvaneTest
