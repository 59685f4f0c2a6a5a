// The I2C transfers of an access, in the two protocols.
#include "ov_sys/rack/access/SmbusAccess.h"

#include "ov_sys/Interface/rpc_protocol/DecodeGuard.h"

#include <utility>

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

template <class Calling>
std::unique_ptr<Call> addressed(std::unique_ptr<Calling> call, Session& session) {
    call->session = &session;
    call->argument.byte1 = static_cast<u_char>(session.port - kFirstSmbusPort);
    call->argument.word1 = session.phy;
    return call;
}

// Writes bytes that it keeps.
class BytesWrite : public TypedCall<I2C_Write_Param, Simple_Result> {
public:
    explicit BytesWrite(std::vector<u_char> bytes) noexcept
        : TypedCall(Program::I2c, number(I2CProcedure::Write), Effect::Alone), bytes_(std::move(bytes)) {
        argument.data = {static_cast<u_int>(bytes_.size()), bytes_.data()};
    }

private:
    std::vector<u_char> bytes_;
};

} // namespace

SmbusTransfers::SmbusTransfers(const Target& target, const RegisterAddress& address)
    : session_(target.session) {
    if (address.space == RegisterAddress::Space::Clause45) {
        select(address);
        read(address.mmd | 0x40U, 0);
    } else if (target.smbus == SmbusProtocol::Direct32) {
        auto call = std::make_unique<BytesCall<I2C_Read_Reg_Param>>(I2CProcedure::ReadRegister, bytes_.data(),
                                                                    bytes_.size());
        call->argument.word2 = __builtin_bswap32(address.number);
        call->argument.byte2 = 4;
        call->argument.byte3 = static_cast<u_char>(bytes_.size());
        calls_.push_back(addressed(std::move(call), session_));
    } else {
        selectPage(address.number);
        read(0xC0, 0);
        read(0xC1, 2);
    }
}

SmbusTransfers::SmbusTransfers(const Target& target, const RegisterAddress& address, std::uint32_t value)
    : session_(target.session) {
    const std::uint32_t to = address.number;
    if (address.space == RegisterAddress::Space::Clause45) {
        select(address);
        write({static_cast<u_char>(address.mmd | 0x20U), byteOf(value, 0), byteOf(value, 1)});
    } else if (target.smbus == SmbusProtocol::Direct32) {
        write({byteOf(to, 3), byteOf(to, 2), byteOf(to, 1), byteOf(to, 0), byteOf(value, 0), byteOf(value, 1),
               byteOf(value, 2), byteOf(value, 3)});
    } else {
        selectPage(to);
        write({0xA1, byteOf(value, 2), byteOf(value, 3)});
        write({0xA0, byteOf(value, 0), byteOf(value, 1)});
    }
}

void SmbusTransfers::write(std::vector<u_char> bytes) {
    calls_.push_back(addressed(std::make_unique<BytesWrite>(std::move(bytes)), session_));
}

void SmbusTransfers::read(std::uint32_t command, std::size_t place) {
    auto call = std::make_unique<BytesCall<I2C_Read_Param>>(I2CProcedure::Read, bytes_.data() + place, 2);
    call->argument.byte2 = static_cast<u_char>(command);
    call->argument.byte3 = 2;
    calls_.push_back(addressed(std::move(call), session_));
}

void SmbusTransfers::select(const RegisterAddress& address) {
    write({static_cast<u_char>(address.mmd), byteOf(address.number, 0), byteOf(address.number, 1)});
}

void SmbusTransfers::selectPage(std::uint32_t address) {
    write({0x81, byteOf(address, 2), byteOf(address, 3)});
    write({0x80, byteOf(address, 0), byteOf(address, 1)});
}

std::uint32_t SmbusTransfers::value() const noexcept {
    std::uint32_t word = 0;
    for (std::size_t i = bytes_.size(); i-- > 0;)
        word = word << 8U | bytes_[i];
    return word;
}

Trouble run(const Target& target, SmbusTransfers& transfers, Limits& limits) {
    if (const Trouble busy = takeTurn(target.link, limits))
        return busy;
    const TurnGuard turn(target.link.turn);
    while (Call* const call = transfers.next())
        if (const Trouble trouble = drive(target.link, *call, limits))
            return trouble;
    return {};
}

} // namespace Orvane::RackAccess
