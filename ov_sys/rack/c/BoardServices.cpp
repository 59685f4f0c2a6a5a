// ADC, thermal control, remote commands and the MDIO bus, for C.
#include "ov_sys/rack/c/ServiceCalls.h"

#include <chrono>
#include <cstdio>
#include <map>
#include <memory>
#include <string>

using namespace Orvane;
using namespace Orvane::RackC;

extern "C" {

// ---- ADC ----

int orvane_adc_initialize(orvane_phy* phy, const orvane_limits* limits, orvane_failure* failure) {
    return call({phy, limits, failure, kOnce}, &Phy::adc, &AdcCapture::initialize);
}

int orvane_adc_start(orvane_phy* phy, const orvane_limits* limits, orvane_failure* failure) {
    return call({phy, limits, failure, kOnce}, &Phy::adc, &AdcCapture::start);
}

int orvane_adc_stop(orvane_phy* phy, const orvane_limits* limits, orvane_failure* failure) {
    return call({phy, limits, failure, kOnce}, &Phy::adc, &AdcCapture::stop);
}

int orvane_adc_set_channel_mask(orvane_phy* phy, uint32_t mask, const orvane_limits* limits,
                                orvane_failure* failure) {
    return call({phy, limits, failure, kOnce}, &Phy::adc, &AdcCapture::setChannelMask, mask);
}

int orvane_adc_set_dump_file(orvane_phy* phy, const char* name, const orvane_limits* limits,
                             orvane_failure* failure) {
    return call({phy, limits, failure, kOnce}, &Phy::adc, &AdcCapture::setDumpFile, Text{name});
}

int orvane_adc_set_event_name(orvane_phy* phy, const char* name, const orvane_limits* limits,
                              orvane_failure* failure) {
    return call({phy, limits, failure, kOnce}, &Phy::adc, &AdcCapture::setEventName, Text{name});
}

int orvane_adc_data(orvane_phy* phy, uint32_t count, const orvane_limits* limits, orvane_bytes** bytes,
                    orvane_failure* failure) {
    return callInto(bytes, {phy, limits, failure, kOnce}, &Phy::adc, &AdcCapture::data, count);
}

int orvane_adc_max_adc(orvane_phy* phy, const orvane_limits* limits, orvane_bytes** bytes,
                       orvane_failure* failure) {
    return callInto(bytes, {phy, limits, failure, kOnce}, &Phy::adc, &AdcCapture::maxAdc);
}

int orvane_adc_events(orvane_phy* phy, const orvane_limits* limits, orvane_bytes** bytes,
                      orvane_failure* failure) {
    return callInto(bytes, {phy, limits, failure, kOnce}, &Phy::adc, &AdcCapture::events);
}

// ---- Thermal control ----

int orvane_thermal_connect(orvane_phy* phy, const orvane_limits* limits, orvane_failure* failure) {
    return call({phy, limits, failure, kRepeated}, &Phy::thermal, &ThermalControl::connect);
}

int orvane_thermal_disconnect(orvane_phy* phy, const orvane_limits* limits, orvane_failure* failure) {
    return call({phy, limits, failure, kRepeated}, &Phy::thermal, &ThermalControl::disconnect);
}

int orvane_thermal_state(orvane_phy* phy, const orvane_limits* limits, int* state, orvane_failure* failure) {
    return callInto(state, {phy, limits, failure, kRepeated}, &Phy::thermal, &ThermalControl::state);
}

int orvane_thermal_temperature(orvane_phy* phy, unsigned channel, const orvane_limits* limits, float* celsius,
                               orvane_failure* failure) {
    return callInto(celsius, {phy, limits, failure, kRepeated}, &Phy::thermal, &ThermalControl::temperature,
                    channel);
}

int orvane_thermal_settled_temperature(orvane_phy* phy, unsigned channel, const orvane_limits* limits,
                                       float* celsius, orvane_failure* failure) {
    return callInto(celsius, {phy, limits, failure, kRepeated}, &Phy::thermal,
                    &ThermalControl::settledTemperature, channel);
}

int orvane_thermal_set_temperature(orvane_phy* phy, unsigned channel, float celsius, uint8_t flag,
                                   const orvane_limits* limits, orvane_failure* failure) {
    return call({phy, limits, failure, kRepeated}, &Phy::thermal, &ThermalControl::setTemperature, channel,
                celsius, flag);
}

int orvane_thermal_set_default_temperature(orvane_phy* phy, unsigned channel, float celsius, uint8_t flag,
                                           const orvane_limits* limits, orvane_failure* failure) {
    return call({phy, limits, failure, kRepeated}, &Phy::thermal, &ThermalControl::setDefaultTemperature,
                channel, celsius, flag);
}

int orvane_thermal_start_control(orvane_phy* phy, unsigned channel, const orvane_limits* limits,
                                 orvane_failure* failure) {
    return call({phy, limits, failure, kRepeated}, &Phy::thermal, &ThermalControl::startControl, channel);
}

int orvane_thermal_stop_control(orvane_phy* phy, const orvane_limits* limits, orvane_failure* failure) {
    return call({phy, limits, failure, kRepeated}, &Phy::thermal, &ThermalControl::stopControl);
}

// ---- The board itself ----

int orvane_shell_run(orvane_phy* phy, const char* command, unsigned seconds,
                     orvane_cancellation* cancellation, int* status, orvane_bytes** output,
                     orvane_bytes** errors, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, command});
        auto written = std::make_unique<orvane_bytes>(); // before the command, which is run but once
        auto complaints = std::make_unique<orvane_bytes>();
        BoardShell::Outcome outcome =
            phy->phy.shell().run(command, std::chrono::seconds(seconds),
                                 cancellation != nullptr ? &cancellation->cancellation : nullptr);
        written->bytes = std::move(outcome.output);
        complaints->bytes = std::move(outcome.errors);
        if (status != nullptr)
            *status = outcome.status;
        if (output != nullptr)
            *output = written.release();
        if (errors != nullptr)
            *errors = complaints.release();
    });
}

int orvane_shell_ping_session(orvane_phy* phy, const orvane_limits* limits, double* seconds,
                              orvane_failure* failure) {
    return callInto(seconds, {phy, limits, failure, kRepeated}, &Phy::shell, &BoardShell::pingSession);
}

int orvane_shell_ping_keep_alive(orvane_phy* phy, const orvane_limits* limits, double* seconds,
                                 orvane_failure* failure) {
    return callInto(seconds, {phy, limits, failure, kRepeated}, &Phy::shell, &BoardShell::pingKeepAlive);
}

int orvane_shell_error_record(orvane_phy* phy, int code, const orvane_limits* limits, unsigned* kind,
                              int* detail, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, kind, detail});
        const BoardShell::ErrorRecord record = phy->phy.shell().errorRecord(code, withinOf(limits));
        *kind = record.kind;
        *detail = record.detail;
    });
}

int orvane_shell_services(orvane_phy* phy, const orvane_limits* limits, orvane_service* services, size_t room,
                          size_t* count, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, count});
        const std::map<std::string, std::uint16_t> ports = phy->phy.shell().services(withinOf(limits));
        size_t at = 0;
        for (const auto& [name, port] : ports) {
            if (services != nullptr && at < room) {
                std::snprintf(services[at].name, sizeof services[at].name, "%s", name.c_str());
                services[at].port = port;
            }
            ++at;
        }
        *count = ports.size();
    });
}

int orvane_shell_address(orvane_phy* phy, char address[16], orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, address});
        std::snprintf(address, 16, "%s", phy->phy.shell().address().c_str());
    });
}

int orvane_shell_ping(orvane_phy* phy, const orvane_limits* limits, double* seconds,
                      orvane_failure* failure) {
    return callInto(seconds, {phy, limits, failure, kRepeated}, &Phy::shell, &BoardShell::ping);
}

// ---- The MDIO bus ----

int orvane_mdio_flush(orvane_phy* phy, const orvane_limits* limits, orvane_failure* failure) {
    return call({phy, limits, failure, kRepeated}, &Phy::mdio, &MdioBus::flush);
}

int orvane_mdio_set_single_wire(orvane_phy* phy, int on, const orvane_limits* limits,
                                orvane_failure* failure) {
    return call({phy, limits, failure, kRepeated}, &Phy::mdio, &MdioBus::setSingleWire, on != 0);
}

int orvane_mdio_set_preamble_count(orvane_phy* phy, uint32_t count, const orvane_limits* limits,
                                   orvane_failure* failure) {
    return call({phy, limits, failure, kRepeated}, &Phy::mdio, &MdioBus::setPreambleCount, count);
}

int orvane_mdio_read_next(orvane_phy* phy, const orvane_limits* limits, uint32_t* value,
                          orvane_failure* failure) {
    return callInto(value, {phy, limits, failure, kOnce}, &Phy::mdio, &MdioBus::readNext);
}

int orvane_mdio_write_next(orvane_phy* phy, uint32_t value, const orvane_limits* limits,
                           orvane_failure* failure) {
    return call({phy, limits, failure, kOnce}, &Phy::mdio, &MdioBus::writeNext, value);
}

int orvane_mdio_read_current(orvane_phy* phy, const orvane_limits* limits, uint32_t* value,
                             orvane_failure* failure) {
    return callInto(value, {phy, limits, failure, kRepeated}, &Phy::mdio, &MdioBus::readCurrent);
}

int orvane_mdio_write_current(orvane_phy* phy, uint32_t value, const orvane_limits* limits,
                              orvane_failure* failure) {
    return call({phy, limits, failure, kRepeated}, &Phy::mdio, &MdioBus::writeCurrent, value);
}

int orvane_mdio_request_interrupt(orvane_phy* phy, uint8_t first, uint8_t second, int third, int fourth,
                                  const orvane_limits* limits, int* result, orvane_failure* failure) {
    return callInto(result, {phy, limits, failure, kRepeated}, &Phy::mdio, &MdioBus::requestInterrupt, first,
                    second, third, fourth);
}

int orvane_mdio_wait_for_interrupt(orvane_phy* phy, uint32_t value, const orvane_limits* limits, int* result,
                                   orvane_failure* failure) {
    return callInto(result, {phy, limits, failure, kOnce}, &Phy::mdio, &MdioBus::waitForInterrupt, value);
}

int orvane_mdio_interrupt_processed(orvane_phy* phy, uint32_t value, const orvane_limits* limits, int* result,
                                    orvane_failure* failure) {
    return callInto(result, {phy, limits, failure, kRepeated}, &Phy::mdio, &MdioBus::interruptProcessed,
                    value);
}

int orvane_mdio_release_interrupt(orvane_phy* phy, uint32_t value, const orvane_limits* limits, int* result,
                                  orvane_failure* failure) {
    return callInto(result, {phy, limits, failure, kRepeated}, &Phy::mdio, &MdioBus::releaseInterrupt, value);
}

} // extern "C"
