// A serial EEPROM of 256 bytes.
#pragma once

#include "simulator/models/I2cDevice.h"

#include <string>

namespace OrvaneSim {

// One address byte, then data; reads go on from the address and wrap at the end, writes wrap within their
// page of 8 bytes, as such memories do.
class Eeprom : public I2cDevice {
public:
    static constexpr std::size_t kSize = 256;

    // Holds `text` from address 0 on, erased (FF) behind it.
    explicit Eeprom(const std::string& text);

    bool write(const Bytes& bytes) override;
    Bytes read(std::size_t count) override;

    Bytes& content() { return content_; }

private:
    Bytes content_;
    std::size_t address_ = 0;
};

} // namespace OrvaneSim
