// Parsing and writing of register addresses and ranges.
#include "tools/orvane/board/RegisterAddress.h"

#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/output/Errors.h"

#include <array>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

struct SpaceFacts {
    Space space;
    const char* name;
    std::uint32_t lastAddress;
    std::uint32_t largestValue;
    int addressDigits;
    int valueDigits;
};

constexpr std::array<SpaceFacts, 3> kSpaces{{
    {Space::C45, "c45", 0xFFFF, 0xFFFF, 4, 4},
    {Space::C22, "c22", 31, 0xFFFF, 2, 4},
    {Space::Ext32, "ext32", 0xFFFFFFFF, 0xFFFFFFFF, 8, 8},
}};
constexpr std::uint64_t kLastMmd = 31;
constexpr std::uint64_t kMostRegisters = 1U << 20U;

const SpaceFacts& factsOf(Space space) {
    return kSpaces[static_cast<std::size_t>(space)];
}

Register parseRegister(std::string_view text, Space space) {
    Register parsed{space, 0, 0};
    if (const std::size_t sign = text.find('@'); sign != std::string_view::npos) {
        parsed.page = numberAs<std::int64_t>(text.substr(sign + 1), 0xFFFFFFFF, "the page");
        text = text.substr(0, sign);
    }
    std::string_view rest = text;
    if (space == Space::C45) {
        const std::size_t dot = text.find('.');
        if (dot == std::string_view::npos)
            throw UsageError(
                fmt::format("'{}' is not an address: it is MMD.REGISTER, such as 1.0x0002", text));
        parsed.mmd = numberAs<unsigned>(text.substr(0, dot), kLastMmd, "the MMD");
        rest = text.substr(dot + 1);
    }
    parsed.address = numberAs<std::uint32_t>(rest, factsOf(space).lastAddress, "the register");
    return parsed;
}

std::vector<Register> expanded(Register first, std::uint64_t count, std::uint32_t step,
                               std::string_view text) {
    const std::uint64_t last = first.address + (count - 1) * step;
    if (last > factsOf(first.space).lastAddress)
        throw UsageError(fmt::format("'{}' reaches beyond the last register", text));
    std::vector<Register> list;
    list.reserve(count);
    for (; list.size() < count; first.address += step)
        list.push_back(first);
    return list;
}

std::uint64_t countUpTo(const Register& first, std::string_view lastText, std::uint32_t step,
                        std::string_view text) {
    const bool withMmd = lastText.find('.') != std::string_view::npos;
    const Register last = withMmd
                              ? parseRegister(lastText, first.space)
                              : Register{first.space, first.mmd,
                                         numberAs<std::uint32_t>(lastText, factsOf(first.space).lastAddress,
                                                                 "the last register")};
    if (last.mmd != first.mmd || last.address < first.address)
        throw UsageError(fmt::format("'{}' ends before it begins", text));
    return (std::uint64_t{last.address} - first.address) / step + 1;
}

} // namespace

std::string Register::text() const {
    const int digits = factsOf(space).addressDigits;
    const std::string on = page >= 0 ? fmt::format("@{}", page) : "";
    return space == Space::C45 ? fmt::format("{}.0x{:0{}X}{}", mmd, address, digits, on)
                               : fmt::format("0x{:0{}X}{}", address, digits, on);
}

int valueDigits(Space space) {
    return factsOf(space).valueDigits;
}

std::uint32_t largestValue(Space space) {
    return factsOf(space).largestValue;
}

const char* nameOf(Space space) {
    return factsOf(space).name;
}

Space spaceNamed(std::string_view name) {
    for (const SpaceFacts& facts : kSpaces)
        if (facts.name == name)
            return facts.space;
    throw UsageError(fmt::format("there is no register space '{}'", name));
}

std::vector<Register> parseRegisters(std::string_view text, Space space, std::uint32_t step) {
    const std::size_t sign = text.find_first_of("+-");
    const Register first = parseRegister(text.substr(0, sign), space);
    if (sign == std::string_view::npos)
        return {first};
    const std::string_view rest = text.substr(sign + 1);
    const std::uint64_t count =
        text[sign] == '+' ? number(rest, kMostRegisters, "the count") : countUpTo(first, rest, step, text);
    if (count == 0 || count > kMostRegisters)
        throw UsageError(fmt::format("'{}' names no register, or more than {}", text, kMostRegisters));
    return expanded(first, count, step, text);
}

std::vector<Register> parseRegisters(const std::vector<std::string>& texts, Space space, std::uint32_t step) {
    std::vector<Register> all;
    for (const std::string& text : texts) {
        const std::vector<Register> some = parseRegisters(text, space, step);
        all.insert(all.end(), some.begin(), some.end());
    }
    return all;
}

} // namespace OrvaneTool
