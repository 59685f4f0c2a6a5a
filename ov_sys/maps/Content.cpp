// The two indexes: by name, and by address.
#include "ov_sys/maps/Content.h"

namespace Orvane {

namespace {

std::uint64_t hashOfAddress(const MapAddress& address) {
    const std::uint64_t place = std::uint64_t{static_cast<std::uint8_t>(address.space)} << 8U | address.mmd;
    return Maps::hashOf(address.number ^ place << 32U ^ static_cast<std::uint64_t>(address.page + 1) << 42U);
}

} // namespace

const MapRegister* MapContent::find(std::string_view wanted) const noexcept {
    const std::uint32_t found = byName.find(wanted);
    return found == Maps::Index::kNone ? nullptr : &registers[found];
}

const MapRegister* MapContent::find(const MapAddress& address) const noexcept {
    const std::uint32_t found = byAddress.find(
        hashOfAddress(address), [&](std::uint32_t i) { return registers[i].address() == address; });
    return found == Maps::Index::kNone ? nullptr : &registers[found];
}

MapReference MapContent::resolve(std::string_view wanted) const noexcept {
    if (const MapRegister* const whole = find(wanted))
        return {whole, nullptr};
    const std::size_t dot = wanted.rfind('.');
    const MapRegister* const reg = find(wanted.substr(0, dot)); // none, too, where there is no dot
    const MapField* const field = reg == nullptr ? nullptr : reg->field(wanted.substr(dot + 1));
    return field == nullptr ? MapReference{} : MapReference{reg, field};
}

const MapRegister* MapContent::indexAddress(std::uint32_t number) {
    const MapAddress& wanted = registers[number].address();
    const std::uint32_t known = byAddress.add(
        hashOfAddress(wanted), number, [&](std::uint32_t i) { return registers[i].address() == wanted; });
    return known == Maps::Index::kNone ? nullptr : &registers[known];
}

} // namespace Orvane
