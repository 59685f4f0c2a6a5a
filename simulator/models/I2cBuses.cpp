// Population of the I2C buses.
#include "simulator/models/I2cBuses.h"

#include "simulator/models/SmbusPhy.h"
#include "simulator/models/TemperatureSensor.h"

#include <stdexcept>

namespace OrvaneSim {
namespace {

constexpr std::uint32_t kLastPhy = 0x1F;
constexpr std::uint32_t kSensor = 0x48;
constexpr std::uint32_t kEeprom = 0x50;

} // namespace

std::unique_ptr<I2cDevice> I2cBuses::make(unsigned bus, std::uint32_t address) const {
    if (bus >= kBuses)
        return nullptr;
    if (address <= kLastPhy)
        return std::make_unique<SmbusPhy>(registers_, PhyAddress{bus, address});
    if (address == kSensor)
        return std::make_unique<TemperatureSensor>(celsius_);
    if (address == kEeprom)
        return std::make_unique<Eeprom>(serial_);
    return nullptr;
}

I2cDevice* I2cBuses::find(unsigned bus, std::uint32_t address) {
    const std::uint64_t key = (std::uint64_t{bus} << 32) | address;
    const auto found = devices_.find(key);
    if (found != devices_.end())
        return found->second.get();
    auto made = make(bus, address);
    if (!made)
        return nullptr;
    return devices_.emplace(key, std::move(made)).first->second.get();
}

Eeprom& I2cBuses::eeprom(unsigned bus) {
    auto* device = dynamic_cast<Eeprom*>(find(bus, kEeprom));
    if (!device)
        throw std::out_of_range("the board has no I2C bus " + std::to_string(bus));
    return *device;
}

} // namespace OrvaneSim
