// What every device on an I2C bus can do.
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

namespace OrvaneSim {

using Bytes = std::vector<std::uint8_t>;

// A device at one address of a bus. Belongs to the loop's thread.
class I2cDevice {
public:
    virtual ~I2cDevice() = default;

    // Takes the bytes of one write; false when the device does not acknowledge them.
    virtual bool write(const Bytes& bytes) = 0;

    // Gives `count` bytes, following on the last write.
    virtual Bytes read(std::size_t count) = 0;
};

} // namespace OrvaneSim
