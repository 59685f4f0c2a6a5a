// The calls, by the names that logs have for them.
#include "tools/orvane/log/ServiceSteps.h"

#include "tools/orvane/log/TimedLine.h"

#include <chrono>
#include <fmt/format.h>
#include <map>

namespace OrvaneTool {
namespace {

using Orvane::I2cBus;
using Orvane::Phy;
using Orvane::Within;
using Bytes = std::vector<std::uint8_t>;
using Call = std::string (*)(const Phy& phy, const LogFields& said, const Within& within);

constexpr std::chrono::minutes kSettling{10};

std::string resultText(const char* name, const Bytes& bytes) {
    std::string text = fmt::format("{}=", name);
    for (const std::uint8_t byte : bytes)
        text += fmt::format("{:02X}", byte);
    return text;
}

std::uint8_t byteIn(const LogFields& said, const char* name) {
    return static_cast<std::uint8_t>(said.number(name));
}

float celsiusIn(const LogFields& said) {
    return static_cast<float>(said.fraction("celsius"));
}

std::vector<I2cBus::Transfer> transfersOf(const LogFields& said, bool writes) {
    std::vector<I2cBus::Transfer> list;
    for (const LogFields& one : said.runs("bus"))
        if (!one.text("bus").empty()) // what stands before the first
            list.push_back({byteIn(one, "bus"), one.number("device"), one.number("reg"), one.number("format"),
                            writes ? 0 : one.number("length"), writes ? one.bytes("bytes") : Bytes{}});
    for (I2cBus::Transfer& one : list)
        one.length = writes ? static_cast<std::uint32_t>(one.bytes.size()) : one.length;
    return list;
}

template <void (Orvane::ThermalControl::*Method)(const Within&) const>
std::string thermal(const Phy& phy, const LogFields&, const Within& within) {
    (phy.thermal().*Method)(within);
    return {};
}

template <void (Orvane::ThermalControl::*Method)(unsigned, float, std::uint8_t, const Within&) const>
std::string setPoint(const Phy& phy, const LogFields& said, const Within& within) {
    (phy.thermal().*Method)(said.number("channel"), celsiusIn(said), byteIn(said, "flag"), within);
    return {};
}

const std::map<std::string, Call> kCalls{
    {"i2c.write",
     [](const Phy& phy, const LogFields& said, const Within& within) {
         phy.i2c().write(byteIn(said, "bus"), said.number("device"), said.bytes("bytes"), within.once());
         return std::string();
     }},
    {"i2c.read",
     [](const Phy& phy, const LogFields& said, const Within& within) {
         return resultText("bytes",
                           phy.i2c().read(byteIn(said, "bus"), said.number("device"), byteIn(said, "command"),
                                          said.number("length"), within.once()));
     }},
    {"i2c.readRegister",
     [](const Phy& phy, const LogFields& said, const Within& within) {
         return resultText("bytes", phy.i2c().readRegister(byteIn(said, "bus"), said.number("device"),
                                                           said.number("reg"), byteIn(said, "format"),
                                                           said.number("length"), within.once()));
     }},
    {"i2c.readBlock",
     [](const Phy& phy, const LogFields& said, const Within& within) {
         return resultText("bytes", phy.i2c().readBlock(transfersOf(said, false), within.once()));
     }},
    {"i2c.writeBlock",
     [](const Phy& phy, const LogFields& said, const Within& within) {
         phy.i2c().writeBlock(transfersOf(said, true), within.once());
         return std::string();
     }},
    {"i2c.writeBlockMasked",
     [](const Phy& phy, const LogFields& said, const Within& within) {
         phy.i2c().writeBlockMasked(transfersOf(said, true), byteIn(said, "mask"), within.once());
         return std::string();
     }},
    {"gpio.read",
     [](const Phy& phy, const LogFields& said, const Within& within) {
         return resultText("states", phy.gpio().read(said.bytes("lines"), within));
     }},
    {"gpio.outputEnables",
     [](const Phy& phy, const LogFields& said, const Within& within) {
         return resultText("states", phy.gpio().outputEnables(said.bytes("lines"), within));
     }},
    {"gpio.write",
     [](const Phy& phy, const LogFields& said, const Within& within) {
         phy.gpio().write(said.bytes("lines"), said.bytes("states"), within);
         return std::string();
     }},
    {"gpio.enableOutput",
     [](const Phy& phy, const LogFields& said, const Within& within) {
         phy.gpio().enableOutput(said.bytes("lines"), said.bytes("states"), within);
         return std::string();
     }},
    {"gpio.setDefault",
     [](const Phy& phy, const LogFields& said, const Within& within) {
         phy.gpio().setDefault(said.bytes("lines"), within);
         return std::string();
     }},
    {"gpio.reset",
     [](const Phy& phy, const LogFields&, const Within& within) {
         phy.gpio().reset(within);
         return std::string();
     }},
    {"gpio.bitBang",
     [](const Phy& phy, const LogFields& said, const Within& within) {
         return resultText("states", phy.gpio().bitBang(said.bytes("first"), said.bytes("second"),
                                                        said.bytes("third"), within.once()));
     }},
    {"thermal.connect", thermal<&Orvane::ThermalControl::connect>},
    {"thermal.disconnect", thermal<&Orvane::ThermalControl::disconnect>},
    {"thermal.stopControl", thermal<&Orvane::ThermalControl::stopControl>},
    {"thermal.setTemperature", setPoint<&Orvane::ThermalControl::setTemperature>},
    {"thermal.setDefaultTemperature", setPoint<&Orvane::ThermalControl::setDefaultTemperature>},
    {"thermal.startControl",
     [](const Phy& phy, const LogFields& said, const Within& within) {
         phy.thermal().startControl(said.number("channel"), within);
         return std::string();
     }},
    {"thermal.temperature",
     [](const Phy& phy, const LogFields& said, const Within& within) {
         phy.thermal().temperature(said.number("channel"), within);
         return std::string();
     }},
    {"thermal.settledTemperature",
     [](const Phy& phy, const LogFields& said, const Within& limits) {
         Within within = limits;
         within.time = kSettling;
         phy.thermal().settledTemperature(said.number("channel"), within);
         return std::string();
     }},
};

} // namespace

bool canBeRepeated(const LogRecord& call) {
    return call.kind == LogRecord::Kind::Service && kCalls.count(call.operation) > 0 &&
           call.access.outcome == "done" && call.arguments.find(".length=") == std::string::npos;
}

std::string repeated(const Phy& phy, const LogRecord& call, const Within& within) {
    return kCalls.at(call.operation)(phy, LogFields(call.arguments), within);
}

} // namespace OrvaneTool
