// Frames of the two SMBus protocols.
#include "simulator/models/SmbusPhy.h"

namespace OrvaneSim {
namespace {

enum Command : std::uint8_t {
    SelectRegister = 0x00,
    WriteRegister = 0x20,
    ReadRegister = 0x40,
    LowerAddress = 0x80,
    UpperAddress = 0x81,
    LowerData = 0xA0,
    UpperData = 0xA1,
    ReadLower = 0xC0,
    ReadUpper = 0xC1,
};
constexpr std::uint8_t kMmdBits = 0x1F;

Bytes lowByteFirst(std::uint32_t value, std::size_t count) {
    Bytes bytes;
    for (std::size_t i = 0; i < count; ++i, value >>= 8)
        bytes.push_back(static_cast<std::uint8_t>(value));
    return bytes;
}

std::uint32_t fromLowByte(const Bytes& bytes, std::size_t first, std::size_t count) {
    std::uint32_t value = 0;
    for (std::size_t i = count; i > 0; --i)
        value = (value << 8) | bytes[first + i - 1];
    return value;
}

std::uint32_t fromHighByte(const Bytes& bytes) {
    return (std::uint32_t{bytes[0]} << 24) | (std::uint32_t{bytes[1]} << 16) |
           (std::uint32_t{bytes[2]} << 8) | bytes[3];
}

} // namespace

bool SmbusPhy::write(const Bytes& bytes) {
    switch (bytes.size()) {
    case 1:
        return selectReading(bytes[0]);
    case 3:
        return writeCommand(bytes[0], fromLowByte(bytes, 1, 2));
    case 4:
        answer_ = lowByteFirst(registers_.read(where_, Space::Ext32, fromHighByte(bytes)), 4);
        return true;
    case 8:
        registers_.write(where_, Space::Ext32, fromHighByte(bytes), fromLowByte(bytes, 4, 4));
        return true;
    default:
        return false;
    }
}

bool SmbusPhy::writeCommand(std::uint8_t command, std::uint32_t half) {
    const std::uint32_t mmd = command & kMmdBits;
    switch (command) {
    case LowerAddress:
        pageAddress_ = (pageAddress_ & 0xFFFF0000) | half;
        return true;
    case UpperAddress:
        pageAddress_ = (pageAddress_ & 0xFFFF) | (half << 16);
        return true;
    case UpperData:
        upperData_ = half;
        return true;
    case LowerData:
        registers_.write(where_, Space::Ext32, pageAddress_, (upperData_ << 16) | half);
        return true;
    default:
        break;
    }
    switch (command & ~kMmdBits) {
    case SelectRegister:
        selected_[mmd] = half;
        return true;
    case WriteRegister:
        registers_.write(where_, Space::C45, (mmd << 16) | selected_[mmd], half);
        return true;
    default:
        return false;
    }
}

bool SmbusPhy::selectReading(std::uint8_t command) {
    const std::uint32_t mmd = command & kMmdBits;
    if (command == ReadLower || command == ReadUpper) {
        const std::uint32_t word = registers_.read(where_, Space::Ext32, pageAddress_);
        answer_ = lowByteFirst(command == ReadLower ? word : word >> 16, 2);
        return true;
    }
    if ((command & ~kMmdBits) != ReadRegister)
        return false;
    answer_ = lowByteFirst(registers_.read(where_, Space::C45, (mmd << 16) | selected_[mmd]), 2);
    return true;
}

Bytes SmbusPhy::read(std::size_t count) {
    Bytes bytes = answer_;
    bytes.resize(count, 0xFF); // nobody drives the bus beyond the answer
    return bytes;
}

} // namespace OrvaneSim
