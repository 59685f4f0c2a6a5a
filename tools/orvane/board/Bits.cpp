// Digits of register values, each painted by the bits behind it.
#include "tools/orvane/board/Bits.h"

#include <fmt/format.h>

namespace OrvaneTool {
namespace {

// Colours those characters of a text of digits, each of `bitsEach` bits, that have changed bits.
Painted painted(const Stream& stream, const std::string& text, unsigned bitsEach, std::uint32_t changed) {
    if (!stream.hasColour() || changed == 0)
        return {};
    std::string result;
    unsigned position = 0; // of the digit's lowest bit, from the right
    for (std::size_t i = text.size(); i-- > 0;) {
        const bool digit = text[i] != ' ' && text[i] != 'x';
        const std::uint32_t mask = (1U << bitsEach) - 1;
        const bool differs = digit && position < 32 && ((changed >> position) & mask) != 0;
        const std::string character = text.substr(i, 1);
        result.insert(0, differs ? stream.painted(Colour::Red, character).text : character);
        position += digit ? bitsEach : 0;
    }
    return {result};
}

} // namespace

std::string hexText(std::uint32_t value, Space space) {
    return fmt::format("0x{:0{}X}", value, valueDigits(space));
}

Cell hexCell(const Stream& stream, std::uint32_t value, Space space, std::uint32_t changed) {
    const std::string text = hexText(value, space);
    return {text, value, painted(stream, text, 4, changed)};
}

Cell bitsCell(const Stream& stream, std::uint32_t value, Space space, std::uint32_t changed) {
    std::string text = fmt::format("{:0{}b}", value, valueDigits(space) * 4);
    for (std::size_t i = text.size(); i > 4;)
        text.insert(i -= 4, " ");
    return {text, nullptr, painted(stream, text, 1, changed)};
}

} // namespace OrvaneTool
