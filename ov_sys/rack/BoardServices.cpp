// JTAG, ADC, thermal control and the MDIO bus.
#include "ov_sys/rack/core/ServiceCall.h"
#include "ov_sys/rack/Services.h"

#include <algorithm>
#include <utility>

namespace Orvane {

using RackCore::listOf;
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
    return static_cast<unsigned>(runSimple<Simple_Result>(*session_, Program::Jtag,
                                                          Programs::JTAGProcedure::MaxBytes, Effect::Reads, 0,
                                                          "JTAG maximum", within)
                                     .value);
}

std::string JtagChain::shift(const Shift& one, const Within& within) const {
    return shift(std::vector<Shift>{one}, within).front();
}

std::vector<std::string> JtagChain::shift(const std::vector<Shift>& shifts, const Within& within) const {
    for (const Shift& one : shifts)
        require(isBits(one.data) && isBits(one.tms) && isBits(one.lastTms), *session_, "JTAG shift",
                "Shifts are texts of 0 and 1.");
    const std::vector<StringArrayEntry> data = entriesOf(shifts, &Shift::data);
    const std::vector<StringArrayEntry> tms = entriesOf(shifts, &Shift::tms);
    const std::vector<StringArrayEntry> last = entriesOf(shifts, &Shift::lastTms);
    ServiceCall<JTAG_ShiftMulti_Param, JTAG_ShiftMulti_Result> call(
        *session_, Program::Jtag, Programs::JTAGProcedure::ShiftMulti, Effect::Alone);
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
    return results;
}

// ---- ADC ----

namespace {

using AdcProcedure = Programs::ADCProcedure;

// A call whose argument is a name beside the session word.
template <class Param>
void sendName(OpenSession& session, AdcProcedure procedure, const std::string& name, const char* operation,
              const Within& within) {
    ServiceCall<Param, ADC_Result> call(session, Program::Adc, procedure, Effect::Alone);
    pointAt(call.argument.name, name);
    call.run(operation, within);
}

template <class Result>
AdcCapture::Bytes bytesOf(OpenSession& session, AdcProcedure procedure, const char* operation,
                          const Within& within) {
    ServiceCall<Simple_Param, Result> call(session, Program::Adc, procedure, Effect::Alone);
    call.run(operation, within);
    return listOf<std::uint8_t>(call.result.data);
}

} // namespace

void AdcCapture::initialize(const Within& within) const {
    runSimple<ADC_Result>(*session_, Program::Adc, AdcProcedure::Initialize, Effect::Alone, 0,
                          "ADC initialize", within);
}

void AdcCapture::start(const Within& within) const {
    runSimple<ADC_Result>(*session_, Program::Adc, AdcProcedure::Start, Effect::Alone, 0, "ADC start",
                          within);
}

void AdcCapture::stop(const Within& within) const {
    runSimple<ADC_Result>(*session_, Program::Adc, AdcProcedure::Stop, Effect::Alone, 0, "ADC stop", within);
}

void AdcCapture::setChannelMask(std::uint32_t mask, const Within& within) const {
    ServiceCall<ADC_ChannelMask, ADC_Result> call(*session_, Program::Adc, AdcProcedure::SetChannelMask,
                                                  Effect::Alone);
    call.argument.mask = mask;
    call.run("ADC channels", within);
}

void AdcCapture::setDumpFile(const std::string& name, const Within& within) const {
    sendName<ADC_Dump>(*session_, AdcProcedure::SetDumpFile, name, "ADC dump file", within);
}

void AdcCapture::setEventName(const std::string& name, const Within& within) const {
    sendName<ADC_Event>(*session_, AdcProcedure::SetEventName, name, "ADC event name", within);
}

AdcCapture::Bytes AdcCapture::data(std::uint32_t count, const Within& within) const {
    ServiceCall<ADC_Data_Get_Param, ADC_Data> call(*session_, Program::Adc, AdcProcedure::GetData,
                                                   Effect::Alone);
    call.argument.count = count;
    call.run("ADC data", within);
    if (call.result.data.data_len > count)
        requireCount(call.result.data.data_len, count, *session_, "ADC data");
    return listOf<std::uint8_t>(call.result.data);
}

AdcCapture::Bytes AdcCapture::maxAdc(const Within& within) const {
    return bytesOf<ADC_Max_Result>(*session_, AdcProcedure::MaxADC, "ADC maximum", within);
}

AdcCapture::Bytes AdcCapture::events(const Within& within) const {
    return bytesOf<ADC_EventData>(*session_, AdcProcedure::GetEvents, "ADC events", within);
}

// ---- Thermal control ----

namespace {

using ThermalProcedure = Programs::ThermalProcedure;

void simple(OpenSession& session, ThermalProcedure procedure, const char* operation, const Within& within) {
    runSimple<THRM_Result>(session, Program::Thermal, procedure, Effect::Writes, 0, operation, within);
}

float readTemperature(OpenSession& session, ThermalProcedure procedure, unsigned channel,
                      const Within& within) {
    ServiceCall<THRM_Get_Temp_Arg, THRM_Get_Temp> call(session, Program::Thermal, procedure, Effect::Reads);
    call.argument.channel = channel;
    call.run("temperature", within, "channel " + std::to_string(channel));
    return call.result.temperature;
}

void sendTemperature(OpenSession& session, ThermalProcedure procedure, unsigned channel, float celsius,
                     std::uint8_t flag, const Within& within) {
    ServiceCall<THRM_Set_Temp_Arg, THRM_Result> call(session, Program::Thermal, procedure, Effect::Writes);
    call.argument.temperature = celsius;
    call.argument.byte1 = flag;
    call.argument.channel = channel;
    call.run("set temperature", within, "channel " + std::to_string(channel));
}

} // namespace

void ThermalControl::connect(const Within& within) const {
    simple(*session_, ThermalProcedure::Connect, "thermal connect", within);
}

void ThermalControl::disconnect(const Within& within) const {
    simple(*session_, ThermalProcedure::Disconnect, "thermal disconnect", within);
}

int ThermalControl::state(const Within& within) const {
    return runSimple<THRM_State>(*session_, Program::Thermal, ThermalProcedure::GetState, Effect::Reads, 0,
                                 "thermal state", within)
        .state;
}

float ThermalControl::temperature(unsigned channel, const Within& within) const {
    return readTemperature(*session_, ThermalProcedure::GetTemperature, channel, within);
}

float ThermalControl::settledTemperature(unsigned channel, const Within& within) const {
    return readTemperature(*session_, ThermalProcedure::GetSettledTemperature, channel, within);
}

void ThermalControl::setTemperature(unsigned channel, float celsius, std::uint8_t flag,
                                    const Within& within) const {
    sendTemperature(*session_, ThermalProcedure::SetTemperature, channel, celsius, flag, within);
}

void ThermalControl::setDefaultTemperature(unsigned channel, float celsius, std::uint8_t flag,
                                           const Within& within) const {
    sendTemperature(*session_, ThermalProcedure::SetDefaultTemperature, channel, celsius, flag, within);
}

void ThermalControl::startControl(unsigned channel, const Within& within) const {
    ServiceCall<THRM_Control_Arg, THRM_Result> call(*session_, Program::Thermal,
                                                    ThermalProcedure::StartControl, Effect::Writes);
    call.argument.channel = channel;
    call.run("thermal start", within, "channel " + std::to_string(channel));
}

void ThermalControl::stopControl(const Within& within) const {
    simple(*session_, ThermalProcedure::StopControl, "thermal stop", within);
}

// ---- The MDIO bus ----

namespace {

using MdioProcedure = Programs::MDIOProcedure;

// SMBus ports have no MDIO bus.
void requireMdio(OpenSession& session, const char* operation) {
    require(!session.target().overSmbus(), session, operation, "An SMBus port has no MDIO bus.");
}

std::uint32_t readWord(OpenSession& session, MdioProcedure procedure, Effect effect, const Within& within) {
    requireMdio(session, "read");
    ServiceCall<MDIO_Read_Param_No_Addr, MDIO_Read_Result_Single> call(session, Program::Mdio, procedure,
                                                                       effect);
    call.run("read", within, "ext32 at its address");
    return call.result.value;
}

void writeWord(OpenSession& session, MdioProcedure procedure, Effect effect, std::uint32_t value,
               const Within& within) {
    requireMdio(session, "write");
    ServiceCall<MDIO_Write_Param_No_Addr, MDIO_Result> call(session, Program::Mdio, procedure, effect);
    call.argument.value = value;
    call.run("write", within, "ext32 at its address");
}

} // namespace

void MdioBus::flush(const Within& within) const {
    requireMdio(*session_, "flush");
    ServiceCall<MDIO_FlushPort_Param, MDIO_Result> call(*session_, Program::Mdio, MdioProcedure::FlushPort,
                                                        Effect::Writes);
    call.argument.byte1 = static_cast<u_char>(session_->state().port);
    call.argument.byte2 = static_cast<u_char>(session_->state().phy);
    call.run("flush", within);
}

void MdioBus::setSingleWire(bool on, const Within& within) const {
    requireMdio(*session_, "single wire");
    runSimple<MDIO_Result>(*session_, Program::Mdio, MdioProcedure::SingleWire, Effect::Writes, on ? 1 : 0,
                           "single wire", within);
}

void MdioBus::setPreambleCount(std::uint32_t count, const Within& within) const {
    requireMdio(*session_, "preamble count");
    const auto echo = runSimple<Simple_Result>(*session_, Program::Mdio, MdioProcedure::SetPreambleCount,
                                               Effect::Writes, count, "preamble count", within);
    requireCount(static_cast<std::uint32_t>(echo.value), count, *session_, "preamble count");
}

std::uint32_t MdioBus::readNext(const Within& within) const {
    return readWord(*session_, MdioProcedure::ReadPreincrementC22ZrExt32, Effect::Alone, within);
}

void MdioBus::writeNext(std::uint32_t value, const Within& within) const {
    writeWord(*session_, MdioProcedure::WritePreincrementC22ZrExt32, Effect::Alone, value, within);
}

std::uint32_t MdioBus::readCurrent(const Within& within) const {
    return readWord(*session_, MdioProcedure::ReadCurrentAddressC22ZrExt32, Effect::Reads, within);
}

void MdioBus::writeCurrent(std::uint32_t value, const Within& within) const {
    writeWord(*session_, MdioProcedure::WriteCurrentAddressC22ZrExt32, Effect::Writes, value, within);
}

int MdioBus::requestInterrupt(std::uint8_t first, std::uint8_t second, int third, int fourth,
                              const Within& within) const {
    requireMdio(*session_, "interrupt request");
    ServiceCall<MDIO_InterruptRequest_Param, MDIO_Result> call(
        *session_, Program::Mdio, MdioProcedure::InterruptRequest, Effect::Writes);
    call.argument.byte1 = first;
    call.argument.byte2 = second;
    call.argument.int1 = third;
    call.argument.int2 = fourth;
    call.run("interrupt request", within);
    return call.result.value;
}

int MdioBus::waitForInterrupt(std::uint32_t value, const Within& within) const {
    requireMdio(*session_, "interrupt wait");
    return runSimple<MDIO_Result>(*session_, Program::Mdio, MdioProcedure::InterruptWait, Effect::Alone,
                                  value, "interrupt wait", within)
        .value;
}

int MdioBus::interruptProcessed(std::uint32_t value, const Within& within) const {
    requireMdio(*session_, "interrupt processed");
    ServiceCall<MDIO_InterruptProcessed_Param, MDIO_Result> call(
        *session_, Program::Mdio, MdioProcedure::InterruptProcessed, Effect::Writes);
    call.argument.word1 = value;
    call.run("interrupt processed", within);
    return call.result.value;
}

int MdioBus::releaseInterrupt(std::uint32_t value, const Within& within) const {
    requireMdio(*session_, "interrupt release");
    return runSimple<MDIO_Result>(*session_, Program::Mdio, MdioProcedure::InterruptRelease, Effect::Writes,
                                  value, "interrupt release", within)
        .value;
}

} // namespace Orvane
