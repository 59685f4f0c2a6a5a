// The board's services, through the session of a PHY.
#include "python/module/Bindings.h"

#include <pybind11/stl.h>
#include <string>
#include <tuple>

namespace OrvanePython {
namespace {

using namespace Orvane;

// What Python gives for an argument of a service: for the limits a Limits, else the same.
template <class Argument>
struct Given {
    using Type = const std::decay_t<Argument>&;
};
template <>
struct Given<const Within&> {
    using Type = const Limits&;
};

template <class Value>
const Value& pass(const Value& given, const Within& /*within*/) noexcept {
    return given;
}
inline const Within& pass(const Limits& /*given*/, const Within& within) noexcept {
    return within;
}

// A member function of a service, whose last argument is a Within, as a method of the handle. `service` is
// the function of Phy that gives the service out.
template <class Service, class Value, class... Arguments>
auto method(Service (Phy::*service)() const noexcept, Value (Service::*function)(Arguments...) const) {
    return [service, function](PhyHandle& self, typename Given<Arguments>::Type... given) {
        const Limits& limits = std::get<sizeof...(Arguments) - 1>(std::tie(given...));
        return outside(limits, [&, held = (self.phy().*service)()](const Within& within) {
            return (held.*function)(pass(given, within)...);
        });
    };
}

// ---- I2C ----

using Transfers = std::vector<I2cBus::Transfer>;
// Bus, device, register, bytes of the register number, bytes to read, bytes to write.
using GivenTransfers = std::vector<std::tuple<std::uint8_t, std::uint32_t, std::uint32_t, std::uint32_t,
                                              std::uint32_t, std::vector<std::uint8_t>>>;

Transfers transfersOf(const GivenTransfers& given) {
    Transfers all;
    for (const auto& [bus, device, reg, format, length, bytes] : given)
        all.push_back({bus, device, reg, format, length, bytes});
    return all;
}

void bindI2c(PhyClass& phy) {
    phy.def("i2c_write", method(&Phy::i2c, &I2cBus::write))
        .def("i2c_read", method(&Phy::i2c, &I2cBus::read))
        .def("i2c_read_register", method(&Phy::i2c, &I2cBus::readRegister))
        .def("i2c_read_block",
             [](PhyHandle& self, const GivenTransfers& given, const Limits& limits) {
                 return method(&Phy::i2c, &I2cBus::readBlock)(self, transfersOf(given), limits);
             })
        .def("i2c_write_block",
             [](PhyHandle& self, const GivenTransfers& given, const Limits& limits) {
                 method(&Phy::i2c, &I2cBus::writeBlock)(self, transfersOf(given), limits);
             })
        .def("i2c_write_block_masked",
             [](PhyHandle& self, const GivenTransfers& given, std::uint8_t mask, const Limits& limits) {
                 method(&Phy::i2c, &I2cBus::writeBlockMasked)(self, transfersOf(given), mask, limits);
             });
}

// ---- Lines, JTAG, analogue inputs, temperature ----

void bindGpio(PhyClass& phy) {
    phy.def("gpio_read", method(&Phy::gpio, &GpioLines::read))
        .def("gpio_write", method(&Phy::gpio, &GpioLines::write))
        .def("gpio_enable_output", method(&Phy::gpio, &GpioLines::enableOutput))
        .def("gpio_output_enables", method(&Phy::gpio, &GpioLines::outputEnables))
        .def("gpio_set_default", method(&Phy::gpio, &GpioLines::setDefault))
        .def("gpio_reset", method(&Phy::gpio, &GpioLines::reset))
        .def("gpio_bit_bang", method(&Phy::gpio, &GpioLines::bitBang));
}

using GivenShifts = std::vector<std::tuple<std::string, std::string, std::string>>;

std::vector<std::string> shift(PhyHandle& self, const GivenShifts& given, const Limits& limits) {
    std::vector<JtagChain::Shift> shifts;
    for (const auto& [data, tms, lastTms] : given)
        shifts.push_back({data, tms, lastTms});
    return outside(limits, [chain = self.phy().jtag(), all = std::move(shifts)](const Within& within) {
        return chain.shift(all, within);
    });
}

void bindAdc(PhyClass& phy) {
    phy.def("adc_initialize", method(&Phy::adc, &AdcCapture::initialize))
        .def("adc_start", method(&Phy::adc, &AdcCapture::start))
        .def("adc_stop", method(&Phy::adc, &AdcCapture::stop))
        .def("adc_set_channel_mask", method(&Phy::adc, &AdcCapture::setChannelMask))
        .def("adc_set_dump_file", method(&Phy::adc, &AdcCapture::setDumpFile))
        .def("adc_set_event_name", method(&Phy::adc, &AdcCapture::setEventName))
        .def("adc_data",
             [](PhyHandle& self, std::uint32_t count, const Limits& limits) {
                 return arrayOf<std::uint8_t>(method(&Phy::adc, &AdcCapture::data)(self, count, limits));
             })
        .def("adc_max", method(&Phy::adc, &AdcCapture::maxAdc))
        .def("adc_events", method(&Phy::adc, &AdcCapture::events));
}

void bindThermal(PhyClass& phy) {
    phy.def("thermal_connect", method(&Phy::thermal, &ThermalControl::connect))
        .def("thermal_disconnect", method(&Phy::thermal, &ThermalControl::disconnect))
        .def("thermal_state", method(&Phy::thermal, &ThermalControl::state))
        .def("thermal_temperature", method(&Phy::thermal, &ThermalControl::temperature))
        .def("thermal_settled", method(&Phy::thermal, &ThermalControl::settledTemperature))
        .def("thermal_set", method(&Phy::thermal, &ThermalControl::setTemperature))
        .def("thermal_set_default", method(&Phy::thermal, &ThermalControl::setDefaultTemperature))
        .def("thermal_start", method(&Phy::thermal, &ThermalControl::startControl))
        .def("thermal_stop", method(&Phy::thermal, &ThermalControl::stopControl));
}

// ---- The board itself ----

py::tuple run(PhyHandle& self, const std::string& command, unsigned seconds) {
    const BoardShell::Outcome outcome =
        outside(Limits{}, [&, shell = self.phy().shell()](const Within& within) {
            return shell.run(command, std::chrono::seconds(seconds), within.cancellation);
        });
    return py::make_tuple(outcome.status, py::bytes(outcome.output), py::bytes(outcome.errors));
}

// A ping of the shell as a method that gives seconds.
template <class Ping>
auto secondsOf(Ping ping) {
    return [ping](PhyHandle& self, const Limits& limits) {
        return static_cast<double>(method(&Phy::shell, ping)(self, limits).count()) / 1e6;
    };
}

py::tuple errorRecord(PhyHandle& self, int code, const Limits& limits) {
    const BoardShell::ErrorRecord record = method(&Phy::shell, &BoardShell::errorRecord)(self, code, limits);
    return py::make_tuple(record.kind, record.detail);
}

void bindShell(PhyClass& phy) {
    phy.def("shell_run", run)
        .def("shell_ping", secondsOf(&BoardShell::ping))
        .def("shell_ping_session", secondsOf(&BoardShell::pingSession))
        .def("shell_ping_keep_alive", secondsOf(&BoardShell::pingKeepAlive))
        .def("shell_error_record", errorRecord)
        .def("shell_services", method(&Phy::shell, &BoardShell::services))
        .def("shell_address", [](PhyHandle& self) { return self.phy().shell().address(); });
}

void bindMdio(PhyClass& phy) {
    phy.def("mdio_flush", method(&Phy::mdio, &MdioBus::flush))
        .def("mdio_set_single_wire", method(&Phy::mdio, &MdioBus::setSingleWire))
        .def("mdio_set_preamble_count", method(&Phy::mdio, &MdioBus::setPreambleCount))
        .def("mdio_read_next", method(&Phy::mdio, &MdioBus::readNext))
        .def("mdio_write_next", method(&Phy::mdio, &MdioBus::writeNext))
        .def("mdio_read_current", method(&Phy::mdio, &MdioBus::readCurrent))
        .def("mdio_write_current", method(&Phy::mdio, &MdioBus::writeCurrent))
        .def("mdio_request_interrupt", method(&Phy::mdio, &MdioBus::requestInterrupt))
        .def("mdio_wait_for_interrupt", method(&Phy::mdio, &MdioBus::waitForInterrupt))
        .def("mdio_interrupt_processed", method(&Phy::mdio, &MdioBus::interruptProcessed))
        .def("mdio_release_interrupt", method(&Phy::mdio, &MdioBus::releaseInterrupt));
}

} // namespace

void bindServices(PhyClass& phy) {
    bindI2c(phy);
    bindGpio(phy);
    phy.def("jtag_max_bytes", method(&Phy::jtag, &JtagChain::maxBytes)).def("jtag_shift", shift);
    bindAdc(phy);
    bindThermal(phy);
    bindShell(phy);
    bindMdio(phy);
}

} // namespace OrvanePython
