// orvane i2c: devices on a board's I2C buses.
#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/cli/Service.h"
#include "tools/orvane/verbs/Verbs.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

using Bytes = std::vector<unsigned char>;
using Orvane::I2cBus;
constexpr std::uint64_t kLongest = 255; // of a transfer's length, one byte goes over the wire

struct Place {
    unsigned char bus;
    unsigned address;
};

Place placeOf(const ServiceCall& call) {
    return {numberAs<unsigned char>(call.word(0), 255, "the bus"),
            numberAs<unsigned>(call.word(1), 0x3FF, "the address")};
}

unsigned countAt(const ServiceCall& call, std::size_t place) {
    return numberAs<unsigned>(call.word(place, "1"), kLongest, "the count");
}

unsigned registerAt(const ServiceCall& call, std::size_t place) {
    return numberAs<unsigned>(call.word(place), 0xFFFFFFFF, "the register");
}

Bytes bytesFrom(const ServiceCall& call, std::size_t place) {
    const auto first = call.words().begin() + static_cast<std::ptrdiff_t>(place);
    return numbersAs<unsigned char>({first, call.words().end()}, 255, "the byte");
}

// A record for each byte of a device; they are counted by the member `counter`.
void putBytes(ServiceCall& call, const Place& at, const char* counter, unsigned first, const Bytes& bytes) {
    for (std::size_t i = 0; i < bytes.size(); ++i)
        call.put(call.record("byte")
                     .put("bus", at.bus)
                     .put("target", at.address)
                     .put(counter, first + i)
                     .put("value", bytes[i]));
}

void printBytes(ServiceCall& call, const Bytes& bytes) {
    if (call.isText())
        call.out().print("{}\n", bytesText(bytes));
}

void read(ServiceCall& call) {
    const Place at = placeOf(call);
    const auto command = numberAs<unsigned char>(call.word(2), 255, "the command");
    const unsigned count = countAt(call, 3);
    const Bytes bytes =
        call.attempt([&] { return call.phy().i2c().read(at.bus, at.address, command, count, call.once()); });
    putBytes(call, at, "place", 0, bytes);
    printBytes(call, bytes);
}

void get(ServiceCall& call) {
    const Place at = placeOf(call);
    const unsigned reg = registerAt(call, 2);
    const unsigned count = countAt(call, 3);
    const auto width = numberAs<unsigned char>(call.word(4, "1"), 4, "the number of register bytes");
    const Bytes bytes = call.attempt(
        [&] { return call.phy().i2c().readRegister(at.bus, at.address, reg, width, count, call.once()); });
    putBytes(call, at, "register", reg, bytes);
    printBytes(call, bytes);
}

void write(ServiceCall& call) {
    const Place at = placeOf(call);
    Bytes bytes = bytesFrom(call, 2);
    call.attempt([&] { call.phy().i2c().write(at.bus, at.address, bytes, call.once()); });
}

// Bytes for a register whose number is one byte.
I2cBus::Transfer transferOf(const Place& at, unsigned reg, const Bytes& bytes) {
    return {at.bus, at.address, reg, 1, static_cast<std::uint32_t>(bytes.size()), bytes};
}

void set(ServiceCall& call) {
    const Place at = placeOf(call);
    const unsigned reg = registerAt(call, 2);
    Bytes bytes = bytesFrom(call, 3);
    call.attempt([&] { call.phy().i2c().writeBlock({transferOf(at, reg, bytes)}, call.once()); });
}

void mask(ServiceCall& call) {
    const Place at = placeOf(call);
    const unsigned reg = registerAt(call, 2);
    const auto bits = numberAs<unsigned char>(call.word(3), 255, "the mask");
    Bytes bytes = bytesFrom(call, 4);
    call.attempt([&] { call.phy().i2c().writeBlockMasked({transferOf(at, reg, bytes)}, bits, call.once()); });
}

// BUS:ADDRESS:REGISTER:COUNT
std::array<std::string, 4> partsOf(const std::string& word) {
    std::array<std::string, 4> parts;
    std::size_t begin = 0;
    for (std::size_t i = 0; i < parts.size(); ++i) {
        const std::size_t colon = word.find(':', begin);
        if ((colon == std::string::npos) != (i + 1 == parts.size()))
            throw UsageError(fmt::format("'{}' is not BUS:ADDRESS:REGISTER:COUNT", word));
        parts[i] = word.substr(begin, colon - begin);
        begin = colon + 1;
    }
    return parts;
}

void gather(ServiceCall& call) {
    std::vector<I2cBus::Transfer> transfers;
    for (const std::string& word : call.words()) {
        const auto parts = partsOf(word);
        transfers.push_back({numberAs<unsigned char>(parts[0], 255, "the bus"),
                             numberAs<unsigned>(parts[1], 0x3FF, "the address"),
                             numberAs<unsigned>(parts[2], 0xFFFFFFFF, "the register"), 1,
                             numberAs<unsigned>(parts[3], kLongest, "the count")});
    }
    const Bytes bytes = call.attempt([&] { return call.phy().i2c().readBlock(transfers, call.once()); });
    auto next = bytes.begin();
    for (std::size_t i = 0; i < transfers.size(); ++i) {
        const auto end = next + static_cast<std::ptrdiff_t>(transfers[i].length);
        if (call.isText())
            call.out().print("{} {}\n", call.words()[i], bytesText({next, end}));
        putBytes(call, {transfers[i].bus, transfers[i].device}, "register", transfers[i].reg, {next, end});
        next = end;
    }
}

void printDumped(ServiceCall& call, unsigned reg, const Bytes& bytes) {
    std::string characters;
    call.out().print("{:02x}:", reg);
    for (const unsigned char byte : bytes) {
        call.out().print(" {:02x}", byte);
        characters += byte < 0x80 && std::isprint(byte) != 0 ? static_cast<char>(byte) : '.';
    }
    call.out().print("    {}\n", characters);
}

// 256 bytes, sixteen in a line, with their characters.
void dump(ServiceCall& call) {
    constexpr unsigned kInLine = 16;
    const Place at = placeOf(call);
    if (call.isText())
        call.out().write("     0  1  2  3  4  5  6  7  8  9  a  b  c  d  e  f    0123456789abcdef\n");
    for (unsigned reg = 0; reg < 256; reg += kInLine) {
        const Bytes bytes = call.attempt(
            [&] { return call.phy().i2c().readRegister(at.bus, at.address, reg, 1, kInLine, call.once()); });
        putBytes(call, at, "register", reg, bytes);
        if (call.isText())
            printDumped(call, reg, bytes);
    }
}

constexpr std::array<Operation, 7> kOperations{{
    {"get", "BUS ADDRESS REGISTER [COUNT] [REGISTER-BYTES]", 3, 5, "Read a device's registers", get,
     "bus target register value"},
    {"set", "BUS ADDRESS REGISTER BYTE", 4, kAnyNumber, "Write a device's registers", set},
    {"mask", "BUS ADDRESS REGISTER MASK BYTE", 5, kAnyNumber, "Write the masked bits of a device's registers",
     mask},
    {"read", "BUS ADDRESS COMMAND [COUNT]", 3, 4, "Send a command byte and read", read,
     "bus target place value"},
    {"write", "BUS ADDRESS BYTE", 3, kAnyNumber, "Send bytes", write},
    {"gather", "BUS:ADDRESS:REGISTER:COUNT", 1, kAnyNumber,
     "Read registers of several devices in one round trip", gather, "bus target register value"},
    {"dump", "BUS ADDRESS", 2, 2, "Show the 256 registers of a device", dump, "bus target register value"},
}};

} // namespace

void addI2c(CLI::App& app, Context& context) {
    CLI::App& service =
        addService(app, {"i2c", "Use the devices on a board's I2C buses",
                         "  orvane i2c get OV0001:0 0 0x50 0 6        six bytes of the EEPROM\n"
                         "  orvane i2c set OV0001:0 0 0x50 0x40 0xC0 0xFF\n"
                         "  orvane i2c mask OV0001:0 0 0x50 0x40 0x0F 0x05\n"
                         "  orvane i2c dump OV0001:0 0 0x50\n"
                         "  orvane i2c gather OV0001:0 0:0x50:0:6 0:0x48:0:2\n"});
    for (const Operation& operation : kOperations)
        addOperation(service, context, operation);
}

} // namespace OrvaneTool
