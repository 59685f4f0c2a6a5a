// Register addresses as they are written and shown.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <tuple>
#include <vector>

namespace OrvaneTool {

// The register spaces of a PHY.
enum class Space {
    C45,  // an MMD (0 to 31) and a 16-bit register, 16 bits wide
    C22,  // registers 0 to 31, 16 bits wide
    Ext32 // the 32-bit extension: 32-bit addresses, 32 bits wide
};

struct Register {
    Space space = Space::C45;
    unsigned mmd = 0; // of Clause 45
    std::uint32_t address = 0;
    std::int64_t page = -1; // what a select register holds while it is reached; -1: reached on any page

    std::string text() const; // 1.0x0002, 0x02 or 0x80004000; a page follows as @3
    friend bool operator==(const Register& left, const Register& right) {
        return left.space == right.space && left.mmd == right.mmd && left.address == right.address &&
               left.page == right.page;
    }
    friend bool operator<(const Register& left, const Register& right) {
        return std::tie(left.mmd, left.page, left.address) < std::tie(right.mmd, right.page, right.address);
    }
};

// A write when it has a value, else a read.
struct Access {
    Register reg;
    std::optional<std::uint32_t> written;
};

// Hexadecimal digits of a value in that space, and the largest one.
int valueDigits(Space space);
std::uint32_t largestValue(Space space);

// "c45", "c22" or "ext32", and back; the latter throws UsageError.
const char* nameOf(Space space);
Space spaceNamed(std::string_view name);

// The registers of one argument: ADDRESS, ADDRESS+COUNT or FIRST-LAST, where an address is MMD.REGISTER in
// Clause 45 and a number elsewhere, decimal or 0x, and @PAGE may follow. `step` is the distance between two
// neighbours. Throws UsageError.
std::vector<Register> parseRegisters(std::string_view text, Space space, std::uint32_t step = 1);

// The registers of several arguments, in order.
std::vector<Register> parseRegisters(const std::vector<std::string>& texts, Space space,
                                     std::uint32_t step = 1);

} // namespace OrvaneTool
