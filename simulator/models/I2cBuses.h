// The I2C buses of a board and what is on them.
#pragma once

#include "simulator/models/Eeprom.h"
#include "simulator/models/I2cDevice.h"
#include "simulator/models/MdioPorts.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <unordered_map>

namespace OrvaneSim {

// Buses 0 to 9. On bus n, addresses 00 to 1F (hexadecimal) are the PHYs of MDIO port n, 48 is a temperature
// sensor, 50 an EEPROM that begins with the board's serial number. Devices are made when first addressed.
// Belongs to the loop's thread.
class I2cBuses {
public:
    static constexpr unsigned kBuses = 10;

    // `registers` and `celsius` must outlive the buses.
    I2cBuses(MdioPorts& registers, std::function<double()> celsius, std::string serial)
        : registers_(registers), celsius_(std::move(celsius)), serial_(std::move(serial)) {}

    // The device at an address; null where nothing acknowledges.
    I2cDevice* find(unsigned bus, std::uint32_t address);

    // The EEPROM of a bus. Throws std::out_of_range for a bus that does not exist.
    Eeprom& eeprom(unsigned bus);

private:
    std::unique_ptr<I2cDevice> make(unsigned bus, std::uint32_t address) const;

    MdioPorts& registers_;
    std::function<double()> celsius_;
    std::string serial_;
    std::unordered_map<std::uint64_t, std::unique_ptr<I2cDevice>> devices_;
};

} // namespace OrvaneSim
