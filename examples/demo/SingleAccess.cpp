// One register at a time, one round trip each: Clause 45, Clause 22 and the 32-bit extension.
#include "examples/demo/Sections.h"

#include <orvane/orvane.h>
#include <orvane/orvane.hpp>

namespace Demo {

namespace {

// Writes `value`, reads it back and prints both rows.
template <class Write, class Read>
void writeAndReadBack(Report& report, const std::string& place, std::uint32_t value, int digits, Write write,
                      Read read) {
    const Stopwatch writing;
    write(value);
    report.row({"write", place, hex(value, digits), "", duration(writing.elapsed())});

    const Stopwatch reading;
    const std::uint32_t actual = read();
    report.readback(place, actual, value, digits, duration(reading.elapsed()));
}

} // namespace

void clause45(Report& report, const Port& port) {
    report.section("Clause 45", "a device (MMD) and a 16-bit register");
    for (const unsigned mmd : {1U, 30U}) {
        constexpr unsigned kRegister = 0xC010;
        writeAndReadBack(
            report, "MMD " + std::to_string(mmd) + " register " + hex(kRegister, 4), 0xCA00 + mmd, 4,
            [&](unsigned value) { HW_Write_Abstracted(port.adapter, kPhy, mmd, kRegister, value); },
            [&] { return HW_Read_Abstracted(port.adapter, kPhy, mmd, kRegister); });
    }
}

void clause22(Report& report, const Port& port) {
    report.section("Clause 22", "one of 32 registers of 16 bits");
    for (const unsigned reg : {16U, 17U})
        writeAndReadBack(
            report, "register " + std::to_string(reg), 0x2200 + reg, 4,
            [&](unsigned value) { HW_Write_C22_Abstracted(port.adapter, kPhy, reg, value); },
            [&] { return HW_Read_C22_Abstracted(port.adapter, kPhy, reg); });
}

void extension32(Report& report, const Port& port) {
    report.section("32-bit extension", "32-bit addresses and data, carried over Clause 22");
    for (const unsigned address : {0x001E0100U, 0x80004000U})
        writeAndReadBack(
            report, "address " + hex(address, 8), address ^ 0x5A5A5A5AU, 8,
            [&](unsigned value) { HW_Interface_Object.write32Adapter(port.adapter, kPhy, address, value); },
            [&] { return HW_Interface_Object.read32Adapter(port.adapter, kPhy, address); });

    // The PHY remembers the address of the last access; these name none.
    const auto readHere = [&] { return HW_Interface_Object.read32AdapterCurrentAddress(port.adapter, kPhy); };
    writeAndReadBack(
        report, "the address it is at", 0x0DDBA11, 8,
        [&](unsigned value) { HW_Interface_Object.write32AdapterCurrentAddress(port.adapter, kPhy, value); },
        readHere);
    writeAndReadBack(
        report, "the next address", 0x0C0FFEE, 8,
        [&](unsigned value) {
            HW_Interface_Object.write32AdapterPreincrementAddress(port.adapter, kPhy, value);
        },
        readHere);
}

} // namespace Demo
