// orvane thermal: a board's temperature forcing unit.
#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/cli/Service.h"
#include "tools/orvane/output/Units.h"
#include "tools/orvane/verbs/ThermalWatch.h"
#include "tools/orvane/verbs/Verbs.h"

#include <array>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

using Orvane::SessionWrapper;
using Unit = Orvane::Thermal::Thermal;

Unit& thermal() {
    static Unit facade;
    return facade;
}

unsigned channelOf(const ServiceCall& call) {
    return numberAs<unsigned>(call.word(0), 0xFFFFFFFF, "the channel");
}

template <void (Unit::*Method)(SessionWrapper)>
void plain(ServiceCall& call) {
    call.attempt([&] { (thermal().*Method)(call.session()); });
}

template <float (Unit::*Method)(SessionWrapper, unsigned)>
void temperature(ServiceCall& call) {
    const unsigned channel = channelOf(call);
    const float celsius = call.attempt([&] { return (thermal().*Method)(call.session(), channel); });
    call.put(call.record("temperature").put("channel", channel).put("celsius", celsiusCell(celsius)));
    if (call.isText())
        call.out().print("{:.2f}\n", celsius);
}

template <void (Unit::*Method)(SessionWrapper, unsigned, float, unsigned char)>
void setPoint(ServiceCall& call) {
    const unsigned channel = channelOf(call);
    const auto celsius = static_cast<float>(fraction(call.word(1), "the temperature"));
    const auto flag = numberAs<unsigned char>(call.word(2, "0"), 255, "the flag");
    call.attempt([&] { (thermal().*Method)(call.session(), channel, celsius, flag); });
}

void startControl(ServiceCall& call) {
    const unsigned channel = channelOf(call);
    call.attempt([&] { thermal().startControl(call.session(), channel); });
}

void state(ServiceCall& call) {
    const int number = call.attempt([&] { return thermal().getState(call.session()); });
    call.put(call.record("state").put("state", number));
    if (call.isText())
        call.out().print("{}\n", number);
}

constexpr std::array<Operation, 9> kOperations{{
    {"connect", "", 0, 0, "Connect the unit", plain<&Unit::connect>},
    {"disconnect", "", 0, 0, "Disconnect the unit", plain<&Unit::disconnect>},
    {"state", "", 0, 0, "Print the unit's state, a number of its own", state, "state"},
    {"get", "CHANNEL", 1, 1, "Print a temperature", temperature<&Unit::getTemperature>, "channel celsius"},
    {"settle", "CHANNEL", 1, 1, "Print a temperature once it has settled",
     temperature<&Unit::getSettledTemperature>, "channel celsius"},
    {"set", "CHANNEL TEMPERATURE [FLAG]", 2, 3, "Set a channel's set point", setPoint<&Unit::setTemperature>},
    {"default", "CHANNEL TEMPERATURE [FLAG]", 2, 3, "Set the set point that a channel returns to",
     setPoint<&Unit::setDefaultTemperature>},
    {"start", "CHANNEL", 1, 1, "Start a channel's control", startControl},
    {"stop", "", 0, 0, "Stop control", plain<&Unit::stopControl>},
}};

} // namespace

void addThermal(CLI::App& app, Context& context) {
    CLI::App& service =
        addService(app, {"thermal", "Control a board's temperature forcing unit",
                         "  orvane thermal connect OV0001:0\n"
                         "  orvane thermal set OV0001:0 0 85 1        channel 0 to 85 degrees, now\n"
                         "  orvane thermal watch OV0001:0 0 85        and see it get there\n"
                         "  orvane thermal stop OV0001:0\n"});
    addThermalWatch(service, context);
    for (const Operation& operation : kOperations)
        addOperation(service, context, operation);
}

} // namespace OrvaneTool
