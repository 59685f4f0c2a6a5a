// Addresses, read piece by piece and written again.
#include "ov_sys/maps/PlaceForm.h"

#include "ov_sys/maps/Numbers.h"
#include "ov_sys/maps/Problems.h"

#include <tuple>

namespace Orvane::Maps {

namespace {

constexpr MapSpace kNamedSpaces[] = {MapSpace::c22, MapSpace::ext32, MapSpace::smbus};

// Of "c45" in front of MMD.NUMBER, or a named space in front of a number.
bool takeSpace(std::string_view& text, MapAddress& address) {
    if (const std::size_t dot = text.find('.'); dot != std::string_view::npos) {
        const auto mmd = numberIn(text.substr(0, dot));
        text.remove_prefix(dot + 1);
        address.mmd = static_cast<std::uint8_t>(mmd.value_or(0) & 0x1FU);
        return mmd && *mmd < 32;
    }
    const std::size_t colon = text.find(':');
    for (const MapSpace space : kNamedSpaces)
        if (text.substr(0, colon) == nameOf(space)) {
            text.remove_prefix(colon + 1);
            address.space = space;
            return true;
        }
    return false;
}

} // namespace

std::uint32_t lastNumber(MapSpace space) {
    switch (space) {
    case MapSpace::c45:
        return 0xFFFF;
    case MapSpace::c22:
        return 31;
    default:
        return 0xFFFFFFFF;
    }
}

std::uint32_t extentOf(MapSpace space, unsigned width) {
    return space == MapSpace::ext32 ? width / 8 : 1;
}

std::optional<Place> placeIn(std::string_view text) {
    Place place;
    place.isRelative = text.find_first_of(".:") == std::string_view::npos;
    if (!place.isRelative && !takeSpace(text, place.address))
        return std::nullopt;
    const auto number = numberIn(text);
    if (!number || *number > (place.isRelative ? 0xFFFFFFFF : lastNumber(place.address.space)))
        return std::nullopt;
    place.address.number = static_cast<std::uint32_t>(*number);
    return place;
}

std::optional<Place> readPlace(const JsonValue& value, Problems& problems) {
    // A JSON number with a fraction is no address: 7.1 could be meant as 7.10.
    const bool isText = value.kind == JsonValue::Kind::string;
    const bool isWhole =
        value.kind == JsonValue::Kind::number && value.text.find('.') == std::string_view::npos;
    const auto place = isText || isWhole ? placeIn(value.text) : std::nullopt;
    if (!place)
        problems.add(value, "'" + printable(value.text) +
                                "' is no address: \"7.0x0001\" (MMD 0 to 31), \"c22:1\" (0 to 31), "
                                "\"ext32:0x80004000\", \"smbus:0x10\" and, in a block, its distance are");
    return place;
}

} // namespace Orvane::Maps

namespace Orvane {

const char* nameOf(MapSpace space) noexcept {
    constexpr const char* kNames[] = {"c45", "c22", "ext32", "smbus"};
    return kNames[static_cast<unsigned>(space) & 3U];
}

std::string MapAddress::text() const {
    std::string shown = space == MapSpace::c45 ? std::to_string(mmd) + '.' : std::string(nameOf(space)) + ':';
    shown += Maps::hexadecimal(number, space == MapSpace::ext32 ? 8 : space == MapSpace::c22 ? 2 : 4);
    return page < 0 ? shown : shown + '@' + std::to_string(page);
}

MapAddress MapAddress::parse(std::string_view text) {
    const std::size_t at = text.find('@');
    const auto place = Maps::placeIn(text.substr(0, at));
    const auto page =
        at == std::string_view::npos ? std::optional<std::uint64_t>(0) : Maps::numberIn(text.substr(at + 1));
    if (!place || place->isRelative || !page || *page > 0xFFFFFFFF)
        throw MapError("'" + Maps::printable(text) + "' is no address of a register");
    MapAddress address = place->address;
    if (at != std::string_view::npos)
        address.page = static_cast<std::int64_t>(*page);
    return address;
}

bool operator<(const MapAddress& a, const MapAddress& b) noexcept {
    return std::tie(a.space, a.mmd, a.page, a.number) < std::tie(b.space, b.mmd, b.page, b.number);
}

} // namespace Orvane
