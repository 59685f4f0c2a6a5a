// Addressing of the EEPROM.
#include "simulator/models/Eeprom.h"

#include <algorithm>

namespace OrvaneSim {
namespace {

constexpr std::size_t kPage = 8;

} // namespace

Eeprom::Eeprom(const std::string& text) : content_(kSize, 0xFF) {
    std::copy_n(text.begin(), std::min(text.size(), kSize), content_.begin());
}

bool Eeprom::write(const Bytes& bytes) {
    if (bytes.empty())
        return true;
    address_ = bytes[0];
    for (std::size_t i = 1; i < bytes.size(); ++i) {
        content_[address_] = bytes[i];
        address_ = address_ / kPage * kPage + (address_ + 1) % kPage;
    }
    return true;
}

Bytes Eeprom::read(std::size_t count) {
    Bytes bytes;
    for (std::size_t i = 0; i < count; ++i) {
        bytes.push_back(content_[address_]);
        address_ = (address_ + 1) % kSize;
    }
    return bytes;
}

} // namespace OrvaneSim
