// Each operation of a service as one call with its record.
#include "ov_sys/rack/Services.h"

#include "ov_sys/rack/core/ServiceCall.h"

#include <utility>

namespace Orvane {

using RackCore::listOf;
using RackCore::LogEntry;
using RackCore::OpenSession;
using RackCore::pointAt;
using RackCore::require;
using RackCore::requireCount;
using RackCore::runSimple;
using RackCore::ServiceCall;
using RackLink::Effect;
using RackLink::Program;

#define ORVANE_HANDLE(Service)                                                                               \
    Service::Service(std::shared_ptr<OpenSession> session) noexcept : session_(std::move(session)) {}
ORVANE_HANDLE(I2cBus)
ORVANE_HANDLE(GpioLines)
ORVANE_HANDLE(JtagChain)
ORVANE_HANDLE(AdcCapture)
ORVANE_HANDLE(ThermalControl)
ORVANE_HANDLE(BoardShell)
ORVANE_HANDLE(MdioBus)
#undef ORVANE_HANDLE

namespace {

using Bytes = std::vector<std::uint8_t>;

// ---- GPIO ----

using GpioProcedure = Programs::GPIOProcedure;

Bytes readLines(LogEntry entry, GpioProcedure procedure, const Bytes& lines, const char* operation,
                const Within& within) {
    entry.arguments.add("lines", lines);
    ServiceCall<GPIO_Indexes_Param, GPIO_Read_Result> call(entry, Program::Gpio, procedure, Effect::Reads);
    pointAt(call.argument.indexes, lines);
    call.run(operation, within);
    requireCount(call.result.states.states_len, lines.size(), entry.session(), operation);
    return entry.done("states", listOf<std::uint8_t>(call.result.states));
}

void writeLines(LogEntry entry, GpioProcedure procedure, const Bytes& lines, const Bytes& states,
                const char* operation, const Within& within) {
    require(lines.size() == states.size(), entry.session(), operation, "Give as many states as lines.");
    entry.arguments.add("lines", lines).add("states", states);
    ServiceCall<GPIO_States_Param, Simple_Result> call(entry, Program::Gpio, procedure, Effect::Writes);
    pointAt(call.argument.indexes, lines);
    pointAt(call.argument.states, states);
    call.run(operation, within);
    entry.done();
}

} // namespace

GpioLines::Bytes GpioLines::read(const Bytes& lines, const Within& within) const {
    return readLines({*session_, "gpio.read"}, GpioProcedure::Read, lines, "GPIO read", within);
}

void GpioLines::write(const Bytes& lines, const Bytes& states, const Within& within) const {
    writeLines({*session_, "gpio.write"}, GpioProcedure::Write, lines, states, "GPIO write", within);
}

void GpioLines::enableOutput(const Bytes& lines, const Bytes& enables, const Within& within) const {
    writeLines({*session_, "gpio.enableOutput"}, GpioProcedure::EnableOutput, lines, enables, "GPIO enable",
               within);
}

GpioLines::Bytes GpioLines::outputEnables(const Bytes& lines, const Within& within) const {
    return readLines({*session_, "gpio.outputEnables"}, GpioProcedure::ReadOutputEnable, lines,
                     "GPIO enables", within);
}

void GpioLines::setDefault(const Bytes& lines, const Within& within) const {
    LogEntry entry(*session_, "gpio.setDefault");
    entry.arguments.add("lines", lines);
    ServiceCall<GPIO_Indexes_Param, Simple_Result> call(entry, Program::Gpio, GpioProcedure::SetDefault,
                                                        Effect::Writes);
    pointAt(call.argument.indexes, lines);
    call.run("GPIO default", within);
    entry.done();
}

void GpioLines::reset(const Within& within) const {
    LogEntry entry(*session_, "gpio.reset");
    runSimple<Simple_Result>(entry, Program::Gpio, GpioProcedure::Reset, Effect::Writes, 0, "GPIO reset",
                             within);
    entry.done();
}

GpioLines::Bytes GpioLines::bitBang(const Bytes& first, const Bytes& second, const Bytes& third,
                                    const Within& within) const {
    require(first.size() == second.size() && first.size() == third.size(), *session_, "GPIO bit-bang",
            "The three lists are of one length.");
    LogEntry entry(*session_, "gpio.bitBang");
    entry.arguments.add("first", first).add("second", second).add("third", third);
    ServiceCall<GPIO_BitBang_Param, GPIO_Read_Result> call(entry, Program::Gpio, GpioProcedure::BitBang,
                                                           Effect::Alone);
    pointAt(call.argument.bytes1, first);
    pointAt(call.argument.bytes2, second);
    pointAt(call.argument.bytes3, third);
    call.run("GPIO bit-bang", within);
    requireCount(call.result.states.states_len, first.size(), *session_, "GPIO bit-bang");
    return entry.done("states", listOf<std::uint8_t>(call.result.states));
}

// ---- I2C ----

namespace {

using I2cProcedure = Programs::I2CProcedure;

// Throws for a device that no board can have.
void requireDevice(const OpenSession& session, const char* operation, std::uint32_t bus, std::uint32_t device,
                   std::uint32_t format = 0) {
    require(bus <= 9, session, operation, "I2C buses are 0 to 9.");
    require(device <= 127, session, operation, "I2C devices are 0 to 127.");
    require(format <= 4, session, operation, "A register number has 0 to 4 bytes.");
}

// The lists of a block, as the wire has them: one for each member of a transfer.
struct Lists {
    std::vector<u_char> buses;
    std::vector<u_int> devices, registers, lengths, formats;
    std::vector<u_char> data;

    Lists(const OpenSession& session, const char* operation, const std::vector<I2cBus::Transfer>& transfers,
          bool writes) {
        for (const I2cBus::Transfer& one : transfers) {
            requireDevice(session, operation, one.bus, one.device, one.format);
            buses.push_back(one.bus);
            devices.push_back(one.device);
            registers.push_back(one.reg);
            lengths.push_back(writes ? static_cast<u_int>(one.bytes.size()) : one.length);
            formats.push_back(one.format);
            data.insert(data.end(), one.bytes.begin(), one.bytes.end());
        }
    }

    // A log's arguments begin anew with each bus.
    static void tell(RackLog::Fields& to, const std::vector<I2cBus::Transfer>& transfers, bool writes) {
        for (const I2cBus::Transfer& one : transfers) {
            to.add("bus", one.bus).addHex("device", one.device).addHex("reg", one.reg);
            to.add("format", one.format);
            writes ? to.add("bytes", one.bytes) : to.add("length", one.length);
        }
    }

    void into(I2C_Block_Trans_Param& record) const {
        pointAt(record.bytes, buses);
        pointAt(record.words1, devices);
        pointAt(record.words2, registers);
        pointAt(record.words3, lengths);
        pointAt(record.words4, formats);
    }
};

} // namespace

void I2cBus::write(std::uint8_t bus, std::uint32_t device, const Bytes& bytes, const Within& within) const {
    requireDevice(*session_, "I2C write", bus, device);
    LogEntry entry(*session_, "i2c.write");
    entry.arguments.add("bus", bus).addHex("device", device).add("bytes", bytes);
    ServiceCall<I2C_Write_Param, Simple_Result> call(entry, Program::I2c, I2cProcedure::Write, Effect::Alone);
    call.argument.byte1 = bus;
    call.argument.word1 = device;
    pointAt(call.argument.data, bytes);
    call.run("I2C write", within);
    entry.done();
}

Bytes I2cBus::read(std::uint8_t bus, std::uint32_t device, std::uint8_t command, std::uint32_t length,
                   const Within& within) const {
    requireDevice(*session_, "I2C read", bus, device);
    require(length >= 1 && length <= 255, *session_, "I2C read", "A read is of 1 to 255 bytes.");
    LogEntry entry(*session_, "i2c.read");
    entry.arguments.add("bus", bus).addHex("device", device).addHex("command", command);
    entry.arguments.add("length", length);
    ServiceCall<I2C_Read_Param, I2C_Read_Result> call(entry, Program::I2c, I2cProcedure::Read, Effect::Alone);
    call.argument.byte1 = bus;
    call.argument.word1 = device;
    call.argument.byte2 = command;
    call.argument.byte3 = static_cast<u_char>(length);
    call.run("I2C read", within);
    requireCount(call.result.data.data_len, length, *session_, "I2C read");
    return entry.done("bytes", listOf<std::uint8_t>(call.result.data));
}

Bytes I2cBus::readRegister(std::uint8_t bus, std::uint32_t device, std::uint32_t reg, std::uint8_t format,
                           std::uint32_t length, const Within& within) const {
    require(length >= 1 && length <= 255, *session_, "I2C read", "A read is of 1 to 255 bytes.");
    requireDevice(*session_, "I2C read", bus, device, format);
    LogEntry entry(*session_, "i2c.readRegister");
    entry.arguments.add("bus", bus).addHex("device", device).addHex("reg", reg).add("format", format);
    entry.arguments.add("length", length);
    ServiceCall<I2C_Read_Reg_Param, I2C_Read_Result> call(entry, Program::I2c, I2cProcedure::ReadRegister,
                                                          Effect::Alone);
    call.argument.byte1 = bus;
    call.argument.word1 = device;
    call.argument.word2 = reg;
    call.argument.byte2 = format;
    call.argument.byte3 = static_cast<u_char>(length);
    call.run("I2C read", within);
    requireCount(call.result.data.data_len, length, *session_, "I2C read");
    return entry.done("bytes", listOf<std::uint8_t>(call.result.data));
}

Bytes I2cBus::readBlock(const std::vector<Transfer>& transfers, const Within& within) const {
    const Lists lists(*session_, "I2C block read", transfers, false);
    std::size_t total = 0;
    for (const u_int length : lists.lengths)
        total += length;
    LogEntry entry(*session_, "i2c.readBlock");
    Lists::tell(entry.arguments, transfers, false);
    ServiceCall<I2C_Block_Reg_Read_Param, I2C_Read_Result> call(
        entry, Program::I2c, I2cProcedure::BlockReadRegister, Effect::Alone);
    lists.into(call.argument.trans);
    call.run("I2C block read", within);
    requireCount(call.result.data.data_len, total, *session_, "I2C block read");
    return entry.done("bytes", listOf<std::uint8_t>(call.result.data));
}

void I2cBus::writeBlock(const std::vector<Transfer>& transfers, const Within& within) const {
    const Lists lists(*session_, "I2C block write", transfers, true);
    LogEntry entry(*session_, "i2c.writeBlock");
    Lists::tell(entry.arguments, transfers, true);
    ServiceCall<I2C_Block_Reg_Write_Param, Simple_Result> call(
        entry, Program::I2c, I2cProcedure::BlockWriteRegister, Effect::Alone);
    lists.into(call.argument.trans);
    pointAt(call.argument.data, lists.data);
    call.run("I2C block write", within);
    entry.done();
}

void I2cBus::writeBlockMasked(const std::vector<Transfer>& transfers, std::uint8_t mask,
                              const Within& within) const {
    const Lists lists(*session_, "I2C block write", transfers, true);
    LogEntry entry(*session_, "i2c.writeBlockMasked");
    Lists::tell(entry.arguments, transfers, true);
    entry.arguments.addHex("mask", mask);
    ServiceCall<I2C_Block_Mask_Write_Param, Simple_Result> call(entry, Program::I2c,
                                                                I2cProcedure::BlockWriteMask, Effect::Alone);
    lists.into(call.argument.trans);
    pointAt(call.argument.data, lists.data);
    call.argument.mask = mask;
    call.run("I2C block write", within);
    entry.done();
}

} // namespace Orvane
