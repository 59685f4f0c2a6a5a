// orvane thermal: a board's temperature forcing unit.
#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/cli/Service.h"
#include "tools/orvane/output/Units.h"
#include "tools/orvane/verbs/ThermalWatch.h"
#include "tools/orvane/verbs/Verbs.h"

#include <array>
#include <chrono>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

using Orvane::ThermalControl;
using Orvane::Within;

constexpr int kControlOff = 1;                // a state of the unit
constexpr std::chrono::minutes kSettling{10}; // the longest that a channel is waited for

unsigned channelOf(const ServiceCall& call) {
    return numberAs<unsigned>(call.word(0), 0xFFFFFFFF, "the channel");
}

template <void (ThermalControl::*Method)(const Within&) const>
void plain(ServiceCall& call) {
    call.attempt([&] { (call.phy().thermal().*Method)(call.within()); });
}

void putTemperature(ServiceCall& call, unsigned channel, float celsius) {
    call.put(call.record("temperature").put("channel", channel).put("celsius", celsiusCell(celsius)));
    if (call.isText())
        call.out().print("{:.2f}\n", celsius);
}

bool controlIsOff(ServiceCall& call) {
    return call.attempt([&] { return call.phy().thermal().state(call.within()); }) == kControlOff;
}

void get(ServiceCall& call) {
    const unsigned channel = channelOf(call);
    putTemperature(call, channel,
                   call.attempt([&] { return call.phy().thermal().temperature(channel, call.within()); }));
}

void startControl(ServiceCall& call) {
    const unsigned channel = channelOf(call);
    call.attempt([&] { call.phy().thermal().startControl(channel, call.within()); });
}

// Without control a temperature goes nowhere, and has settled as it is.
void settle(ServiceCall& call) {
    const unsigned channel = channelOf(call);
    if (call.flag())
        startControl(call);
    else if (controlIsOff(call))
        throw Failure(fmt::format("{}: thermal settle {}: control is off, so that nothing settles; --start "
                                  "starts it",
                                  call.device(), channel));
    putTemperature(call, channel, call.attempt([&] {
        return call.phy().thermal().settledTemperature(channel, call.within(kSettling));
    }));
}

template <void (ThermalControl::*Method)(unsigned, float, std::uint8_t, const Within&) const>
void setPoint(ServiceCall& call) {
    const unsigned channel = channelOf(call);
    const auto celsius = static_cast<float>(fraction(call.word(1), "the temperature"));
    const auto given = numberAs<unsigned char>(call.word(2, "0"), 255, "the flag");
    const unsigned char flag = call.flag() ? 1 : given;
    call.attempt([&] { (call.phy().thermal().*Method)(channel, celsius, flag, call.within()); });
}

void set(ServiceCall& call) {
    setPoint<&ThermalControl::setTemperature>(call);
    if (!controlIsOff(call))
        return;
    Stream& err = call.context().console.err;
    err.print(
        "orvane: {}: control is off: channel {} keeps the set point for when it is started, by --start or "
        "'orvane thermal start {} {}'\n",
        call.device(), call.word(0), call.device(), call.word(0));
    err.flushIfPossible();
}

void state(ServiceCall& call) {
    const int number = call.attempt([&] { return call.phy().thermal().state(call.within()); });
    call.put(call.record("state").put("state", number));
    if (call.isText())
        call.out().print("{}\n", number);
}

constexpr const char* kStart = "--start,Start the channel's control";

constexpr std::array<Operation, 9> kOperations{{
    {"connect", "", 0, 0, "Connect the unit", plain<&ThermalControl::connect>},
    {"disconnect", "", 0, 0, "Disconnect the unit, which ends control", plain<&ThermalControl::disconnect>},
    {"state", "", 0, 0, "Print the unit's state: 0 not connected, 1 control off, 2 settling, 3 settled",
     state, "state"},
    {"get", "CHANNEL", 1, 1, "Print a temperature in degrees Celsius", get, "channel celsius"},
    {"settle", "CHANNEL", 1, 1, "Print a temperature once it has settled, within ten minutes", settle,
     "channel celsius", kStart},
    {"set", "CHANNEL CELSIUS [FLAG]", 2, 3,
     "Set a channel's set point; FLAG 1 starts its control at once, 0 (unless told) does not", set, "",
     kStart},
    {"default", "CHANNEL CELSIUS [FLAG]", 2, 3,
     "Set the set point that a channel returns to when its control ends; FLAG goes to the unit",
     setPoint<&ThermalControl::setDefaultTemperature>},
    {"start", "CHANNEL", 1, 1, "Start a channel's control", startControl},
    {"stop", "", 0, 0, "Stop control on every channel", plain<&ThermalControl::stopControl>},
}};

} // namespace

void addThermal(CLI::App& app, Context& context) {
    CLI::App& service =
        addService(app, {"thermal", "Control a board's temperature forcing unit",
                         "  orvane thermal connect OV0001:0\n"
                         "  orvane thermal set OV0001:0 0 85 --start  channel 0 to 85 degrees Celsius, now\n"
                         "  orvane thermal watch OV0001:0 0 85        and see it get there\n"
                         "  orvane thermal settle OV0001:0 0          wait until it is there\n"
                         "  orvane thermal stop OV0001:0\n"
                         " Temperatures are in degrees Celsius.\n"});
    addThermalWatch(service, context);
    for (const Operation& operation : kOperations)
        addOperation(service, context, operation);
}

} // namespace OrvaneTool
