// The I2C transfers of an access, in the two protocols.
#include "ov_sys/Interface/devices/SmbusAccess.h"

#include "ov_sys/Interface/buses/I2C.h"

#include <vector>

namespace Orvane {
namespace {

using Bytes = std::vector<unsigned char>;

// Byte `index` of a word, 0 being the least significant.
unsigned long byteOf(unsigned long word, unsigned index) {
    return word >> (8U * index) & 0xFFU;
}

unsigned long mmdOf(unsigned long address) {
    return address >> 16U & 0x1FU;
}

unsigned int littleEndian(Bytes const& bytes) {
    unsigned int value = 0;
    for (std::size_t i = bytes.size(); i-- > 0;)
        value = value << 8U | bytes[i];
    return value;
}

unsigned int bytesReversed(unsigned long word) {
    return static_cast<unsigned int>(byteOf(word, 0) << 24U | byteOf(word, 1) << 16U | byteOf(word, 2) << 8U |
                                     byteOf(word, 3));
}

} // namespace

void SmbusAccess::send(std::initializer_list<unsigned long> frame) const {
    Bytes bytes;
    for (const unsigned long byte : frame)
        bytes.push_back(static_cast<unsigned char>(byte));
    i2c.write(session_, bus_, device_, bytes);
}

unsigned int SmbusAccess::readWord(unsigned int command) const {
    return littleEndian(i2c.read(session_, bus_, device_, static_cast<unsigned char>(command), 2));
}

void SmbusAccess::selectRegister16(unsigned long address) const {
    send({mmdOf(address), byteOf(address, 0), byteOf(address, 1)});
}

unsigned int SmbusAccess::read16(unsigned long address) const {
    constexpr unsigned int kRead = 0x40;
    selectRegister16(address);
    return readWord(static_cast<unsigned int>(mmdOf(address)) | kRead);
}

void SmbusAccess::write16(unsigned long address, unsigned int data) const {
    constexpr unsigned int kWrite = 0x20;
    selectRegister16(address);
    send({mmdOf(address) | kWrite, byteOf(data, 0), byteOf(data, 1)});
}

void SmbusAccess::selectRegister32Paged(unsigned long address) const {
    constexpr unsigned long kAddressLow = 0x80;
    constexpr unsigned long kAddressHigh = 0x81;
    send({kAddressHigh, byteOf(address, 2), byteOf(address, 3)});
    send({kAddressLow, byteOf(address, 0), byteOf(address, 1)});
}

unsigned int SmbusAccess::read32(unsigned long address, KelSmbProto protocol) const {
    constexpr unsigned int kDataLow = 0xC0;
    constexpr unsigned int kDataHigh = 0xC1;
    constexpr unsigned char kRegisterBytes = 4;
    switch (protocol) {
    case Paged16: {
        selectRegister32Paged(address);
        const unsigned int low = readWord(kDataLow);
        return low | readWord(kDataHigh) << 16U;
    }
    case Direct32:
        return littleEndian(
            i2c.readReg(session_, bus_, device_, bytesReversed(address), kRegisterBytes, kRegisterBytes));
    }
    return 0;
}

void SmbusAccess::write32(unsigned long address, unsigned int data, KelSmbProto protocol) const {
    constexpr unsigned long kDataLow = 0xA0;
    constexpr unsigned long kDataHigh = 0xA1;
    switch (protocol) {
    case Paged16:
        selectRegister32Paged(address);
        send({kDataHigh, byteOf(data, 2), byteOf(data, 3)});
        send({kDataLow, byteOf(data, 0), byteOf(data, 1)});
        break;
    case Direct32:
        send({byteOf(address, 3), byteOf(address, 2), byteOf(address, 1), byteOf(address, 0), byteOf(data, 0),
              byteOf(data, 1), byteOf(data, 2), byteOf(data, 3)});
        break;
    }
}

} // namespace Orvane
