// The register accesses of the MDIO program, decoded into the caller's memory.
#pragma once

#include "ov_sys/Interface/rpc_protocol/DecodeGuard.h"
#include "ov_sys/rack/link/MdioBytes.h"
#include "ov_sys/rack/link/Session.h"
#include "ov_sys/rack/link/TypedCall.h"
#include "ov_sys/rack/values/RegisterAddress.h"

#include <cstddef>
#include <optional>
#include <type_traits>

namespace Orvane::RackLink {

// Register accesses in one call at most: the worst mix of reads and writes still fits a datagram.
constexpr std::size_t kLongestBlock = 873;

// Bytes that a request or answer of one access stays below.
constexpr std::uint32_t kRoomOfOne = 128;

// The word that names a register of a session's PHY to its board. The 32-bit extension has no room for the
// PHY.
constexpr std::uint32_t addressWord(const Session& session, const RegisterAddress& address) noexcept {
    if (address.space == RegisterAddress::Space::Ext32)
        return address.number;
    return (((session.port & 7U) << 5U | (session.phy & 31U)) << 24U) | address.word();
}

// Reads as many values as asked for, to `values`; another number is a bad reply. Lists stay the caller's.
template <class Param>
class ReadingCall : public TypedCall<Param, MDIO_Read_Result> {
public:
    ReadingCall(Programs::MDIOProcedure which, Effect does, Session& owner, u_int* values,
                std::size_t count) noexcept
        : TypedCall<Param, MDIO_Read_Result>(Program::Mdio, static_cast<std::uint32_t>(which), does),
          values_(values),
          count_(count) {
        this->session = &owner;
        this->room = static_cast<std::uint32_t>(kRoomOfOne + count * sizeof(u_int));
    }

    std::size_t encode(char* buffer, std::size_t capacity) override {
        if constexpr (std::is_same_v<Param, MDIO_Read_Param>)
            return encodeRead(*this, this->argument.addresses.addresses_val,
                              this->argument.addresses.addresses_len, buffer, capacity);
        else
            return TypedCall<Param, MDIO_Read_Result>::encode(buffer, capacity);
    }

    Trouble decode(char* reply, std::size_t length) override {
        if (const std::optional<Trouble> usual = decodeRead(reply, length, values_, count_))
            return *usual;
        u_int nothing = 0; // a pointer that is not null, so that a list that should be empty is not allocated
        u_int* const place = count_ != 0 ? values_ : &nothing;
        const DecodeGuard guard(place, count_);
        place_ = place;
        const Trouble ended = TypedCall<Param, MDIO_Read_Result>::decode(reply, length);
        this->result.data.data_val = nullptr;
        return ended;
    }

protected:
    void prepare() override { this->result.data.data_val = place_; }
    Trouble check() override {
        return this->result.data.data_len == count_ ? Trouble{} : Trouble{FailureKind::BadReply};
    }

private:
    u_int* values_;
    std::size_t count_;
    u_int* place_ = nullptr;
};

using ReadCall = ReadingCall<MDIO_Read_Param>;
using MixedCall = ReadingCall<MDIO_Mixed_Param>;
using WriteCall = TypedCall<MDIO_Write_Param, MDIO_Result>;

// The procedures of a register space.
struct MdioProcedures {
    Programs::MDIOProcedure read;
    Programs::MDIOProcedure write;
    Programs::MDIOProcedure mixed;
};
constexpr MdioProcedures proceduresOf(RegisterAddress::Space space) noexcept {
    using P = Programs::MDIOProcedure;
    switch (space) {
    case RegisterAddress::Space::Clause22:
        return {P::ReadC22, P::WriteC22, P::MixedBlockC22};
    case RegisterAddress::Space::Ext32:
        return {P::ReadC22ZrExt32, P::WriteC22ZrExt32, P::MixedBlockC22ZrExt32};
    case RegisterAddress::Space::Clause45:
        break;
    }
    return {P::Read, P::Write, P::MixedBlock};
}

} // namespace Orvane::RackLink
