#include "ov_sys/rack/access/SmbusAccess.h"

#include "ov_sys/Interface/rpc_protocol/DecodeGuard.h"

#include <array>

namespace Orvane::RackAccess {
namespace {

using namespace RackLink;
using Programs::I2CProcedure;

constexpr std::uint32_t number(I2CProcedure procedure) noexcept {
    return static_cast<std::uint32_t>(procedure);
}

constexpr u_char byteOf(std::uint32_t word, unsigned index) noexcept {
    return static_cast<u_char>(word >> (8 * index));
}

// Reads exactly as many bytes as there is room for.
template <class Param>
class BytesCall : public TypedCall<Param, I2C_Read_Result> {
public:
    BytesCall(I2CProcedure which, u_char* bytes, std::size_t count) noexcept
        : TypedCall<Param, I2C_Read_Result>(Program::I2c, number(which), Effect::Alone),
          bytes_(bytes),
          count_(count) {}

    Trouble decode(char* reply, std::size_t length) override {
        const DecodeGuard guard(bytes_, count_);
        const Trouble ended = TypedCall<Param, I2C_Read_Result>::decode(reply, length);
        this->result.data.data_val = nullptr;
        return ended;
    }

protected:
    void prepare() override { this->result.data.data_val = bytes_; }
    Trouble check() override {
        return this->result.data.data_len == count_ ? Trouble{} : Trouble{FailureKind::BadReply};
    }

private:
    u_char* bytes_;
    std::size_t count_;
};

// The transfers of one access, until the first that fails. One turn.
class Transfers {
public:
    Transfers(const Target& target, Limits& limits) noexcept : target_(target), limits_(limits) {}

    template <std::size_t size>
    void write(std::array<u_char, size> bytes) {
        if (trouble_)
            return;
        TypedCall<I2C_Write_Param, Simple_Result> call(Program::I2c, number(I2CProcedure::Write),
                                                       Effect::Alone);
        address(call);
        call.argument.data = {size, bytes.data()};
        trouble_ = drive(target_.link, call, limits_);
    }

    // 2 bytes of the answer to a command, the first in bits 0 to 7.
    std::uint32_t read(std::uint32_t command) {
        std::array<u_char, 2> bytes{};
        if (!trouble_) {
            BytesCall<I2C_Read_Param> call(I2CProcedure::Read, bytes.data(), bytes.size());
            address(call);
            call.argument.byte2 = static_cast<u_char>(command);
            call.argument.byte3 = static_cast<u_char>(bytes.size());
            trouble_ = drive(target_.link, call, limits_);
        }
        return bytes[0] | std::uint32_t{bytes[1]} << 8U;
    }

    // A word at a register whose number has 4 bytes.
    std::uint32_t readWord(std::uint32_t reg) {
        std::array<u_char, 4> bytes{};
        if (!trouble_) {
            BytesCall<I2C_Read_Reg_Param> call(I2CProcedure::ReadRegister, bytes.data(), bytes.size());
            address(call);
            call.argument.word2 = __builtin_bswap32(reg);
            call.argument.byte2 = 4;
            call.argument.byte3 = static_cast<u_char>(bytes.size());
            trouble_ = drive(target_.link, call, limits_);
        }
        return bytes[0] | std::uint32_t{bytes[1]} << 8U | std::uint32_t{bytes[2]} << 16U |
               std::uint32_t{bytes[3]} << 24U;
    }

    Trouble trouble() const noexcept { return trouble_; }

private:
    template <class SmbusCall>
    void address(SmbusCall& call) noexcept {
        call.session = &target_.session;
        call.argument.byte1 = static_cast<u_char>(target_.session.port - kFirstSmbusPort);
        call.argument.word1 = target_.session.phy;
    }

    const Target& target_;
    Limits& limits_;
    Trouble trouble_;
};

void select(Transfers& bus, const RegisterAddress& address) {
    bus.write<3>({static_cast<u_char>(address.mmd), byteOf(address.number, 0), byteOf(address.number, 1)});
}

void selectPage(Transfers& bus, std::uint32_t address) {
    bus.write<3>({0x81, byteOf(address, 2), byteOf(address, 3)});
    bus.write<3>({0x80, byteOf(address, 0), byteOf(address, 1)});
}

} // namespace

Trouble readOverSmbus(const Target& target, const RegisterAddress& address, std::uint32_t& value,
                      Limits& limits) {
    if (const Trouble busy = takeTurn(target.link, limits))
        return busy;
    const TurnGuard turn(target.link.turn);
    Transfers bus(target, limits);
    if (address.space == RegisterAddress::Space::Clause45) {
        select(bus, address);
        value = bus.read(address.mmd | 0x40U);
    } else if (target.smbus == SmbusProtocol::Direct32) {
        value = bus.readWord(address.number);
    } else {
        selectPage(bus, address.number);
        value = bus.read(0xC0);
        value |= bus.read(0xC1) << 16U;
    }
    return bus.trouble();
}

Trouble writeOverSmbus(const Target& target, const RegisterAddress& address, std::uint32_t value,
                       Limits& limits) {
    if (const Trouble busy = takeTurn(target.link, limits))
        return busy;
    const TurnGuard turn(target.link.turn);
    Transfers bus(target, limits);
    const std::uint32_t to = address.number;
    if (address.space == RegisterAddress::Space::Clause45) {
        select(bus, address);
        bus.write<3>({static_cast<u_char>(address.mmd | 0x20U), byteOf(value, 0), byteOf(value, 1)});
    } else if (target.smbus == SmbusProtocol::Direct32) {
        bus.write<8>({byteOf(to, 3), byteOf(to, 2), byteOf(to, 1), byteOf(to, 0), byteOf(value, 0),
                      byteOf(value, 1), byteOf(value, 2), byteOf(value, 3)});
    } else {
        selectPage(bus, to);
        bus.write<3>({0xA1, byteOf(value, 2), byteOf(value, 3)});
        bus.write<3>({0xA0, byteOf(value, 0), byteOf(value, 1)});
    }
    return bus.trouble();
}

} // namespace Orvane::RackAccess
