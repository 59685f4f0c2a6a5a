// One PHY by two ways: over MDIO, and over the I2C bus that its SMBus side is on.
#include "examples/demo/Sections.h"

#include <algorithm>
#include <orvane/orvane.hpp>

namespace Demo {

namespace {

constexpr int kFirstSmbusPort = 10; // it is bus 0

template <class Read>
void readBack(Report& report, const std::string& place, unsigned expected, int digits, Read read) {
    const Stopwatch watch;
    const unsigned value = read();
    report.readback(place, value, expected, digits, duration(watch.elapsed()));
}

} // namespace

std::optional<Port> smbusSideOf(const Port& mdio, const std::vector<Port>& ports) {
    const std::size_t colon = mdio.name.find(':');
    const int bus = std::stoi(mdio.name.substr(colon + 1));
    const std::string name = mdio.name.substr(0, colon + 1) + std::to_string(kFirstSmbusPort + bus);
    const auto found =
        std::find_if(ports.begin(), ports.end(), [&](const Port& port) { return port.name == name; });
    return found == ports.end() ? std::nullopt : std::make_optional(*found);
}

void smbus(Report& report, const Port& mdio, const Port& smbus) {
    constexpr unsigned kMmd = 1;
    constexpr unsigned kRegister = 0xC040;
    constexpr unsigned kAddress = 0x80005000;
    report.section("SMBus", "the PHY of " + mdio.name + " again, by its SMBus side " + smbus.name);

    auto& devices = HW_Interface_Object;
    devices.writeAdapter(mdio.adapter, kPhy, kMmd, kRegister, 0x5EB5);
    devices.write32Adapter(mdio.adapter, kPhy, kAddress, 0xB0A710AD);
    const auto read16 = [](const Port& port) {
        return HW_Interface_Object.readAdapter(port.adapter, kPhy, kMmd, kRegister);
    };
    const auto read32 = [](const Port& port) {
        return HW_Interface_Object.read32Adapter(port.adapter, kPhy, kAddress);
    };

    const std::string reg = ": MMD 1 " + hex(kRegister, 4);
    readBack(report, "MDIO" + reg, 0x5EB5, 4, [&] { return read16(mdio); });
    readBack(report, "SMBus" + reg, 0x5EB5, 4, [&] { return read16(smbus); });

    const std::string address = ": " + hex(kAddress, 8);
    readBack(report, "MDIO" + address, 0xB0A710AD, 8, [&] { return read32(mdio); });
    devices.setDeviceParameters(smbus.adapter, 0, Orvane::Paged16);
    readBack(report, "SMBus, paged" + address, 0xB0A710AD, 8, [&] { return read32(smbus); });
    devices.setDeviceParameters(smbus.adapter, 0, Orvane::Direct32);
    readBack(report, "SMBus, direct" + address, 0xB0A710AD, 8, [&] { return read32(smbus); });
}

} // namespace Demo
