// A digital temperature sensor with a pointer register.
#pragma once

#include "simulator/models/I2cDevice.h"

#include <array>
#include <functional>

namespace OrvaneSim {

// Four registers chosen by the first byte written: 0 temperature (read only), 1 configuration (one byte),
// 2 hysteresis, 3 over-temperature limit. Temperatures are two bytes, high byte first, in half degrees
// Celsius left-aligned.
class TemperatureSensor : public I2cDevice {
public:
    // `celsius` tells the temperature that the sensor feels.
    explicit TemperatureSensor(std::function<double()> celsius) : celsius_(std::move(celsius)) {}

    bool write(const Bytes& bytes) override;
    Bytes read(std::size_t count) override;

private:
    std::uint16_t value() const;

    std::function<double()> celsius_;
    std::uint8_t pointer_ = 0;
    std::array<std::uint16_t, 4> registers_{0, 0, 75 << 8, 80 << 8};
};

} // namespace OrvaneSim
