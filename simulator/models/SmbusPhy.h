// A PHY's SMBus side, over the same registers as its MDIO side.
#pragma once

#include "simulator/models/I2cDevice.h"
#include "simulator/models/MdioPorts.h"

#include <array>

namespace OrvaneSim {

// Understands these writes, numbers in hexadecimal, low byte first unless said otherwise:
//   3 bytes 00-1F, register          selects a register of that MMD
//   3 bytes 20-3F, data              writes the selected register of MMD (byte - 20)
//   1 byte  40-5F                    the next read gives the selected register of MMD (byte - 40)
//   3 bytes 80 / 81, half            lower / upper half of the 32-bit extension's address
//   3 bytes A1, half; A0, half       upper, then lower half of the data; the lower one does the write
//   1 byte  C0 / C1                  the next read gives the lower / upper half at that address
//   8 bytes address, data            writes the 32-bit extension; address high byte first
//   4 bytes address                  the next read gives that word; address high byte first
class SmbusPhy : public I2cDevice {
public:
    // `registers` must outlive the device.
    SmbusPhy(MdioPorts& registers, PhyAddress where) : registers_(registers), where_(where) {}

    bool write(const Bytes& bytes) override;
    Bytes read(std::size_t count) override;

private:
    bool writeCommand(std::uint8_t command, std::uint32_t half);
    bool selectReading(std::uint8_t command);

    MdioPorts& registers_;
    PhyAddress where_;
    std::array<std::uint32_t, 32> selected_{}; // register of each MMD
    std::uint32_t pageAddress_ = 0;
    std::uint32_t upperData_ = 0;
    Bytes answer_; // what the next read gives
};

} // namespace OrvaneSim
