// Fields within a register's value.
#include "ov_sys/maps/Numbers.h"

#include <algorithm>
#include <cmath>
#include <orvane/maps.hpp>

namespace Orvane {

namespace {

unsigned widthOf(const MapBits& piece) {
    return piece.high - piece.low + 1U;
}

std::string wideBits(unsigned count) {
    return std::to_string(count) + (count == 1 ? " bit" : " bits");
}

} // namespace

std::uint64_t MapField::extract(std::uint64_t registerValue) const noexcept {
    std::uint64_t raw = 0;
    for (const MapBits& piece : bits) {
        const unsigned pieceWidth = widthOf(piece);
        raw = (pieceWidth >= 64 ? 0 : raw << pieceWidth) |
              (registerValue >> piece.low & Maps::lowBits(pieceWidth));
    }
    return raw;
}

std::uint64_t MapField::insert(std::uint64_t registerValue, std::uint64_t raw) const {
    if (raw > Maps::lowBits(width))
        throw MapError(name + ": " + Maps::hexadecimal(raw) + " does not fit into " + wideBits(width));
    registerValue &= ~mask;
    for (auto piece = bits.rbegin(); piece != bits.rend(); ++piece) {
        const unsigned pieceWidth = widthOf(*piece);
        registerValue |= (raw & Maps::lowBits(pieceWidth)) << piece->low;
        raw = pieceWidth >= 64 ? 0 : raw >> pieceWidth;
    }
    return registerValue;
}

std::int64_t MapField::number(std::uint64_t raw) const noexcept {
    const bool isNegative = isSigned && width > 0 && (raw >> (width - 1) & 1U) != 0;
    return static_cast<std::int64_t>(isNegative ? raw | ~Maps::lowBits(width) : raw);
}

double MapField::scaled(std::uint64_t raw) const noexcept {
    const double value = isSigned ? static_cast<double>(number(raw)) : static_cast<double>(raw);
    return value * scale + offset;
}

std::uint64_t MapField::rawOf(double scaledValue) const {
    const double value = std::nearbyint((scaledValue - offset) / scale);
    const double span = std::ldexp(1.0, static_cast<int>(width)); // the number of values
    const double least = isSigned ? -span / 2 : 0;
    if (!(value >= least && value < least + span))
        throw MapError(name + ": " + Maps::decimal(scaledValue) + (unit.empty() ? "" : " " + unit) +
                       " does not fit into " + wideBits(width));
    return (value < 0 ? static_cast<std::uint64_t>(static_cast<std::int64_t>(value))
                      : static_cast<std::uint64_t>(value)) &
           Maps::lowBits(width);
}

const MapChoice* MapField::choice(std::uint64_t raw) const noexcept {
    const auto found =
        std::lower_bound(choices.begin(), choices.end(), raw,
                         [](const MapChoice& each, std::uint64_t value) { return each.value < value; });
    return found != choices.end() && found->value == raw ? &*found : nullptr;
}

const MapChoice* MapField::choice(std::string_view choiceName) const noexcept {
    const auto found = std::find_if(choices.begin(), choices.end(),
                                    [&](const MapChoice& each) { return each.name == choiceName; });
    return found == choices.end() ? nullptr : &*found;
}

std::string MapField::bitsText() const {
    std::string shown;
    for (const MapBits& piece : bits) {
        shown += (shown.empty() ? "" : ",") + std::to_string(piece.high);
        if (piece.low != piece.high)
            shown += ':' + std::to_string(piece.low);
    }
    return shown;
}

std::string DecodedField::valueText() const {
    if (choice != nullptr)
        return choice->name;
    if (field->isScaled)
        return Maps::decimal(scaled) + (field->unit.empty() ? "" : " " + field->unit);
    if (field->isSigned)
        return std::to_string(number);
    return field->width <= 3 ? std::to_string(raw) : Maps::hexadecimal(raw);
}

std::string DecodedField::note() const {
    if (field->access == MapAccess::latchingLow && raw == 0)
        return "was low since the last read";
    if (field->access == MapAccess::latchingHigh && raw != 0)
        return "was high since the last read";
    return {};
}

} // namespace Orvane
