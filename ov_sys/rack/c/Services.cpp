// I2C, GPIO and JTAG, for C.
#include "ov_sys/rack/c/ServiceCalls.h"

#include <cstring>

using namespace Orvane;
using namespace Orvane::RackC;

namespace Orvane::RackC {

// A read has room in `bytes`, a write takes what stands there.
std::vector<I2cBus::Transfer> made(const std::pair<const orvane_i2c_transfer*, std::size_t>& transfers) {
    const auto& [first, count] = transfers;
    need({first});
    std::vector<I2cBus::Transfer> list;
    for (std::size_t i = 0; i < count; ++i) {
        const orvane_i2c_transfer& one = first[i];
        list.push_back(
            {one.bus, one.device, one.reg, one.format, one.length, made(List{one.bytes, one.length})});
    }
    return list;
}

} // namespace Orvane::RackC

namespace {

using Transfers = std::pair<const orvane_i2c_transfer*, std::size_t>;

std::vector<JtagChain::Shift> shiftsOf(const orvane_jtag_shift_entry* shifts, std::size_t count) {
    need({shifts});
    std::vector<JtagChain::Shift> list;
    for (std::size_t i = 0; i < count; ++i) {
        need({shifts[i].data, shifts[i].tms, shifts[i].last_tms, shifts[i].result});
        list.push_back({shifts[i].data, shifts[i].tms, shifts[i].last_tms});
    }
    return list;
}

} // namespace

extern "C" {

const char* orvane_bytes_data(const orvane_bytes* bytes) {
    return bytes == nullptr ? "" : bytes->bytes.c_str();
}

size_t orvane_bytes_size(const orvane_bytes* bytes) {
    return bytes == nullptr ? 0 : bytes->bytes.size();
}

void orvane_bytes_free(orvane_bytes* bytes) {
    delete bytes;
}

// ---- I2C ----

int orvane_i2c_write(orvane_phy* phy, uint8_t bus, uint32_t device, const uint8_t* bytes, size_t count,
                     const orvane_limits* limits, orvane_failure* failure) {
    return call({phy, limits, failure, kOnce}, &Phy::i2c, &I2cBus::write, bus, device, List{bytes, count});
}

int orvane_i2c_read(orvane_phy* phy, uint8_t bus, uint32_t device, uint8_t command, uint32_t length,
                    const orvane_limits* limits, uint8_t* bytes, orvane_failure* failure) {
    return callInto(bytes, {phy, limits, failure, kOnce}, &Phy::i2c, &I2cBus::read, bus, device, command,
                    length);
}

int orvane_i2c_read_register(orvane_phy* phy, uint8_t bus, uint32_t device, uint32_t reg, uint8_t format,
                             uint32_t length, const orvane_limits* limits, uint8_t* bytes,
                             orvane_failure* failure) {
    return callInto(bytes, {phy, limits, failure, kOnce}, &Phy::i2c, &I2cBus::readRegister, bus, device, reg,
                    format, length);
}

int orvane_i2c_read_block(orvane_phy* phy, const orvane_i2c_transfer* transfers, size_t count,
                          const orvane_limits* limits, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy});
        const auto list = made(Transfers{transfers, count});
        const auto read = phy->phy.i2c().readBlock(list, withinOf(limits, kOnce));
        auto next = read.begin();
        for (size_t i = 0; i < count; next += transfers[i++].length)
            std::copy_n(next, transfers[i].length, transfers[i].bytes);
    });
}

int orvane_i2c_write_block(orvane_phy* phy, const orvane_i2c_transfer* transfers, size_t count,
                           const orvane_limits* limits, orvane_failure* failure) {
    return call({phy, limits, failure, kOnce}, &Phy::i2c, &I2cBus::writeBlock, Transfers{transfers, count});
}

int orvane_i2c_write_block_masked(orvane_phy* phy, const orvane_i2c_transfer* transfers, size_t count,
                                  uint8_t mask, const orvane_limits* limits, orvane_failure* failure) {
    return call({phy, limits, failure, kOnce}, &Phy::i2c, &I2cBus::writeBlockMasked,
                Transfers{transfers, count}, mask);
}

// ---- GPIO ----

int orvane_gpio_read(orvane_phy* phy, const uint8_t* lines, size_t count, const orvane_limits* limits,
                     uint8_t* states, orvane_failure* failure) {
    return callInto(states, {phy, limits, failure, kRepeated}, &Phy::gpio, &GpioLines::read,
                    List{lines, count});
}

int orvane_gpio_write(orvane_phy* phy, const uint8_t* lines, const uint8_t* states, size_t count,
                      const orvane_limits* limits, orvane_failure* failure) {
    return call({phy, limits, failure, kRepeated}, &Phy::gpio, &GpioLines::write, List{lines, count},
                List{states, count});
}

int orvane_gpio_enable_output(orvane_phy* phy, const uint8_t* lines, const uint8_t* enables, size_t count,
                              const orvane_limits* limits, orvane_failure* failure) {
    return call({phy, limits, failure, kRepeated}, &Phy::gpio, &GpioLines::enableOutput, List{lines, count},
                List{enables, count});
}

int orvane_gpio_output_enables(orvane_phy* phy, const uint8_t* lines, size_t count,
                               const orvane_limits* limits, uint8_t* enables, orvane_failure* failure) {
    return callInto(enables, {phy, limits, failure, kRepeated}, &Phy::gpio, &GpioLines::outputEnables,
                    List{lines, count});
}

int orvane_gpio_set_default(orvane_phy* phy, const uint8_t* lines, size_t count, const orvane_limits* limits,
                            orvane_failure* failure) {
    return call({phy, limits, failure, kRepeated}, &Phy::gpio, &GpioLines::setDefault, List{lines, count});
}

int orvane_gpio_reset(orvane_phy* phy, const orvane_limits* limits, orvane_failure* failure) {
    return call({phy, limits, failure, kRepeated}, &Phy::gpio, &GpioLines::reset);
}

int orvane_gpio_bit_bang(orvane_phy* phy, const uint8_t* first, const uint8_t* second, const uint8_t* third,
                         size_t count, const orvane_limits* limits, uint8_t* states,
                         orvane_failure* failure) {
    return callInto(states, {phy, limits, failure, kOnce}, &Phy::gpio, &GpioLines::bitBang,
                    List{first, count}, List{second, count}, List{third, count});
}

// ---- JTAG ----

int orvane_jtag_max_bytes(orvane_phy* phy, const orvane_limits* limits, unsigned* bytes,
                          orvane_failure* failure) {
    return callInto(bytes, {phy, limits, failure, kRepeated}, &Phy::jtag, &JtagChain::maxBytes);
}

int orvane_jtag_shift(orvane_phy* phy, const orvane_jtag_shift_entry* shifts, size_t count,
                      const orvane_limits* limits, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy});
        const auto results = phy->phy.jtag().shift(shiftsOf(shifts, count), withinOf(limits, kOnce));
        for (size_t i = 0; i < count; ++i)
            std::memcpy(shifts[i].result, results[i].c_str(), results[i].size() + 1); // as long as `tms`
    });
}

} // extern "C"
