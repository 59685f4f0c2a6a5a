// Names a register of a PHY in one of its three spaces.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <cstdint>
#include <string>

namespace Orvane {

// {mmd, register} is a Clause 45 register; see clause22() and ext32() for the others. A plain value. Nothing
// is checked before an access.
struct RegisterAddress {
    enum class Space : std::uint8_t { Clause45, Clause22, Ext32 };

    Space space;
    std::uint32_t mmd;    // 0 to 31, Clause 45 only
    std::uint32_t number; // 0 to 65535, Clause 22: 0 to 31, Ext32: any word

    // A Clause 45 register, and one of any space.
    constexpr RegisterAddress(std::uint32_t device, std::uint32_t reg) noexcept
        : RegisterAddress(Space::Clause45, device, reg) {}
    constexpr RegisterAddress(Space where, std::uint32_t device, std::uint32_t reg) noexcept
        : space(where), mmd(device), number(reg) {}

    // As a board takes it, without the PHY's address.
    constexpr std::uint32_t word() const noexcept { return mmd << 16U | number; }
    // Whether it exists in its space.
    constexpr bool valid() const noexcept {
        return space == Space::Ext32 || (number <= (space == Space::Clause22 ? 31U : 65535U) && mmd <= 31);
    }
    // The largest value that it can hold.
    constexpr std::uint32_t limit() const noexcept {
        return space == Space::Ext32 ? ~std::uint32_t{0} : 0xFFFFU;
    }
    // The same register, `count` further on.
    constexpr RegisterAddress operator+(std::uint32_t count) const noexcept {
        return {space, mmd, number + count};
    }

    // Whether they name the same register.
    friend constexpr bool operator==(const RegisterAddress& left, const RegisterAddress& right) noexcept {
        return left.space == right.space && left.word() == right.word();
    }
    // Whether they do not.
    friend constexpr bool operator!=(const RegisterAddress& left, const RegisterAddress& right) noexcept {
        return !(left == right);
    }
};

// A register of Clause 22, 0 to 31.
constexpr RegisterAddress clause22(std::uint32_t number) noexcept {
    return {RegisterAddress::Space::Clause22, 0, number};
}

// A word of the 32-bit extension.
constexpr RegisterAddress ext32(std::uint32_t address) noexcept {
    return {RegisterAddress::Space::Ext32, 0, address};
}

// "30.0xC010", "c22.2", "ext32.0x80004000".
ORVANE_API std::string toText(const RegisterAddress& address);

} // namespace Orvane
