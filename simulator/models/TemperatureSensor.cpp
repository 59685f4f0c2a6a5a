// Registers of the temperature sensor.
#include "simulator/models/TemperatureSensor.h"

#include <cmath>

namespace OrvaneSim {
namespace {

constexpr std::uint8_t kTemperature = 0;
constexpr std::uint8_t kConfiguration = 1;
constexpr std::uint16_t kTemperatureBits = 0xFF80;

} // namespace

std::uint16_t TemperatureSensor::value() const {
    if (pointer_ != kTemperature)
        return registers_[pointer_];
    const auto halfDegrees = static_cast<int>(std::lround(celsius_() * 2));
    return static_cast<std::uint16_t>(static_cast<unsigned>(halfDegrees) << 7) & kTemperatureBits;
}

bool TemperatureSensor::write(const Bytes& bytes) {
    if (bytes.empty())
        return true;
    if (bytes[0] >= registers_.size())
        return false;
    pointer_ = bytes[0];
    if (pointer_ == kConfiguration && bytes.size() >= 2)
        registers_[pointer_] = static_cast<std::uint16_t>(bytes[1] << 8);
    else if (pointer_ > kConfiguration && bytes.size() >= 3)
        registers_[pointer_] = static_cast<std::uint16_t>(bytes[1] << 8 | bytes[2]) & kTemperatureBits;
    return true;
}

Bytes TemperatureSensor::read(std::size_t count) {
    const std::uint16_t word = value();
    const std::size_t width = pointer_ == kConfiguration ? 1 : 2;
    Bytes bytes;
    for (std::size_t i = 0; i < count; ++i) // the sensor repeats its register
        bytes.push_back(static_cast<std::uint8_t>(i % width == 0 ? word >> 8 : word));
    return bytes;
}

} // namespace OrvaneSim
