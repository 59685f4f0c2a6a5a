// JTAG, ADC and thermal control.
#include "ov_sys/rack/core/ServiceCall.h"
#include "ov_sys/rack/Services.h"

#include <algorithm>
#include <utility>

namespace Orvane {

using RackCore::listOf;
using RackCore::LogEntry;
using RackCore::OpenSession;
using RackCore::pointAt;
using RackCore::require;
using RackCore::requireCount;
using RackCore::runSimple;
using RackCore::ServiceCall;
using RackLink::Effect;
using RackLink::Program;

// ---- JTAG ----

namespace {

bool isBits(const std::string& text) {
    return text.find_first_not_of("01") == std::string::npos;
}

std::vector<StringArrayEntry> entriesOf(const std::vector<JtagChain::Shift>& shifts,
                                        std::string JtagChain::Shift::*text) {
    std::vector<StringArrayEntry> entries;
    for (const JtagChain::Shift& one : shifts)
        entries.push_back({const_cast<char*>((one.*text).c_str()), // NOLINT(*-const-cast): only read
                           static_cast<u_int>((one.*text).size())});
    return entries;
}

} // namespace

unsigned JtagChain::maxBytes(const Within& within) const {
    LogEntry entry(*session_, "jtag.maxBytes");
    const auto most = runSimple<Simple_Result>(entry, Program::Jtag, Programs::JTAGProcedure::MaxBytes,
                                               Effect::Reads, 0, "JTAG maximum", within);
    return entry.done("bytes", static_cast<unsigned>(most.value));
}

std::string JtagChain::shift(const Shift& one, const Within& within) const {
    return shift(std::vector<Shift>{one}, within).front();
}

std::vector<std::string> JtagChain::shift(const std::vector<Shift>& shifts, const Within& within) const {
    for (const Shift& one : shifts)
        require(isBits(one.data) && isBits(one.tms) && isBits(one.lastTms), *session_, "JTAG shift",
                "Shifts are texts of 0 and 1.");
    LogEntry entry(*session_, "jtag.shift");
    for (const Shift& one : shifts)
        entry.arguments.add("data", one.data).add("tms", one.tms).add("lastTms", one.lastTms);
    const std::vector<StringArrayEntry> data = entriesOf(shifts, &Shift::data);
    const std::vector<StringArrayEntry> tms = entriesOf(shifts, &Shift::tms);
    const std::vector<StringArrayEntry> last = entriesOf(shifts, &Shift::lastTms);
    ServiceCall<JTAG_ShiftMulti_Param, JTAG_ShiftMulti_Result> call(
        entry, Program::Jtag, Programs::JTAGProcedure::ShiftMulti, Effect::Alone);
    pointAt(call.argument.list1, data);
    pointAt(call.argument.list2, tms);
    pointAt(call.argument.list3, last);
    call.run("JTAG shift", within);
    requireCount(call.result.entries.entries_len, shifts.size(), *session_, "JTAG shift");
    std::vector<std::string> results;
    for (std::size_t i = 0; i < shifts.size(); ++i) {
        std::string text = call.result.entries.entries_val[i].text;
        text.resize(std::min(text.size(), shifts[i].tms.size())); // boards may answer more
        requireCount(text.size(), shifts[i].tms.size(), *session_, "JTAG shift");
        results.push_back(std::move(text));
    }
    return entry.done("bits", std::move(results));
}

// ---- ADC ----

namespace {

using AdcProcedure = Programs::ADCProcedure;

// What is captured changes with each.
template <class Param, class Result>
struct AdcCall : ServiceCall<Param, Result> {
    AdcCall(LogEntry& entry, AdcProcedure which)
        : ServiceCall<Param, Result>(entry, Program::Adc, which, Effect::Alone) {}
};

// A call whose argument is a name beside the session word.
template <class Param>
void sendName(LogEntry entry, AdcProcedure procedure, const std::string& name, const char* operation,
              const Within& within) {
    entry.arguments.add("name", name);
    AdcCall<Param, ADC_Result> call(entry, procedure);
    pointAt(call.argument.name, name);
    call.run(operation, within);
    entry.done();
}

template <class Result>
AdcCapture::Bytes bytesOf(LogEntry entry, AdcProcedure procedure, const char* operation,
                          const Within& within) {
    AdcCall<Simple_Param, Result> call(entry, procedure);
    call.run(operation, within);
    return entry.done("bytes", listOf<std::uint8_t>(call.result.data));
}

void simple(LogEntry entry, AdcProcedure procedure, const char* operation, const Within& within) {
    AdcCall<Simple_Param, ADC_Result>(entry, procedure).run(operation, within);
    entry.done();
}

} // namespace

void AdcCapture::initialize(const Within& within) const {
    simple({*session_, "adc.initialize"}, AdcProcedure::Initialize, "ADC initialize", within);
}

void AdcCapture::start(const Within& within) const {
    simple({*session_, "adc.start"}, AdcProcedure::Start, "ADC start", within);
}

void AdcCapture::stop(const Within& within) const {
    simple({*session_, "adc.stop"}, AdcProcedure::Stop, "ADC stop", within);
}

void AdcCapture::setChannelMask(std::uint32_t mask, const Within& within) const {
    LogEntry entry(*session_, "adc.setChannelMask");
    entry.arguments.addHex("mask", mask);
    AdcCall<ADC_ChannelMask, ADC_Result> call(entry, AdcProcedure::SetChannelMask);
    call.argument.mask = mask;
    call.run("ADC channels", within);
    entry.done();
}

void AdcCapture::setDumpFile(const std::string& name, const Within& within) const {
    sendName<ADC_Dump>({*session_, "adc.setDumpFile"}, AdcProcedure::SetDumpFile, name, "ADC dump file",
                       within);
}

void AdcCapture::setEventName(const std::string& name, const Within& within) const {
    sendName<ADC_Event>({*session_, "adc.setEventName"}, AdcProcedure::SetEventName, name, "ADC event name",
                        within);
}

AdcCapture::Bytes AdcCapture::data(std::uint32_t count, const Within& within) const {
    LogEntry entry(*session_, "adc.data");
    entry.arguments.add("count", count);
    AdcCall<ADC_Data_Get_Param, ADC_Data> call(entry, AdcProcedure::GetData);
    call.argument.count = count;
    call.run("ADC data", within);
    requireCount(std::max<std::uint32_t>(call.result.data.data_len, count), count, *session_, "ADC data");
    return entry.done("bytes", listOf<std::uint8_t>(call.result.data));
}

AdcCapture::Bytes AdcCapture::maxAdc(const Within& within) const {
    return bytesOf<ADC_Max_Result>({*session_, "adc.maxAdc"}, AdcProcedure::MaxADC, "ADC maximum", within);
}

AdcCapture::Bytes AdcCapture::events(const Within& within) const {
    return bytesOf<ADC_EventData>({*session_, "adc.events"}, AdcProcedure::GetEvents, "ADC events", within);
}

// ---- Thermal control ----

namespace {

using ThermalProcedure = Programs::ThermalProcedure;

void simple(LogEntry entry, ThermalProcedure procedure, const char* operation, const Within& within) {
    runSimple<THRM_Result>(entry, Program::Thermal, procedure, Effect::Writes, 0, operation, within);
    entry.done();
}

float readTemperature(LogEntry entry, ThermalProcedure procedure, unsigned channel, const Within& within) {
    entry.arguments.add("channel", channel);
    ServiceCall<THRM_Get_Temp_Arg, THRM_Get_Temp> call(entry, Program::Thermal, procedure, Effect::Reads);
    call.argument.channel = channel;
    call.run("temperature", within, "channel " + std::to_string(channel));
    return entry.done("celsius", call.result.temperature);
}

void sendTemperature(LogEntry entry, ThermalProcedure procedure, unsigned channel, float celsius,
                     std::uint8_t flag, const Within& within) {
    entry.arguments.add("channel", channel).add("celsius", celsius).add("flag", flag);
    ServiceCall<THRM_Set_Temp_Arg, THRM_Result> call(entry, Program::Thermal, procedure, Effect::Writes);
    call.argument.temperature = celsius;
    call.argument.byte1 = flag;
    call.argument.channel = channel;
    call.run("set temperature", within, "channel " + std::to_string(channel));
    entry.done();
}

} // namespace

void ThermalControl::connect(const Within& within) const {
    simple({*session_, "thermal.connect"}, ThermalProcedure::Connect, "thermal connect", within);
}

void ThermalControl::disconnect(const Within& within) const {
    simple({*session_, "thermal.disconnect"}, ThermalProcedure::Disconnect, "thermal disconnect", within);
}

int ThermalControl::state(const Within& within) const {
    LogEntry entry(*session_, "thermal.state");
    const auto got = runSimple<THRM_State>(entry, Program::Thermal, ThermalProcedure::GetState, Effect::Reads,
                                           0, "thermal state", within);
    return entry.done("state", static_cast<int>(got.state));
}

float ThermalControl::temperature(unsigned channel, const Within& within) const {
    return readTemperature({*session_, "thermal.temperature"}, ThermalProcedure::GetTemperature, channel,
                           within);
}

float ThermalControl::settledTemperature(unsigned channel, const Within& within) const {
    return readTemperature({*session_, "thermal.settledTemperature"}, ThermalProcedure::GetSettledTemperature,
                           channel, within);
}

void ThermalControl::setTemperature(unsigned channel, float celsius, std::uint8_t flag,
                                    const Within& within) const {
    sendTemperature({*session_, "thermal.setTemperature"}, ThermalProcedure::SetTemperature, channel, celsius,
                    flag, within);
}

void ThermalControl::setDefaultTemperature(unsigned channel, float celsius, std::uint8_t flag,
                                           const Within& within) const {
    sendTemperature({*session_, "thermal.setDefaultTemperature"}, ThermalProcedure::SetDefaultTemperature,
                    channel, celsius, flag, within);
}

void ThermalControl::startControl(unsigned channel, const Within& within) const {
    LogEntry entry(*session_, "thermal.startControl");
    entry.arguments.add("channel", channel);
    ServiceCall<THRM_Control_Arg, THRM_Result> call(entry, Program::Thermal, ThermalProcedure::StartControl,
                                                    Effect::Writes);
    call.argument.channel = channel;
    call.run("thermal start", within, "channel " + std::to_string(channel));
    entry.done();
}

void ThermalControl::stopControl(const Within& within) const {
    simple({*session_, "thermal.stopControl"}, ThermalProcedure::StopControl, "thermal stop", within);
}

} // namespace Orvane
