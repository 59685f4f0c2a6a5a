// The words of a list, checked while they are made.
#include "ov_sys/rack/access/ListRead.h"

#include "ov_sys/rack/link/MdioCalls.h"

namespace Orvane::RackAccess {

using namespace RackLink;

namespace {

// `addressAt` gives the address of each place.
template <class AddressAt>
std::optional<Trouble> readAll(const Target& target, std::size_t count, const AddressAt& addressAt,
                               std::vector<std::uint32_t>& values, Limits& limits) {
    if (target.overSmbus() || count == 0 || count > kLongestBlock || target.link.log().on())
        return std::nullopt;
    std::vector<u_int> words(count);
    const u_int phy = addressWord(target.session, {0, 0});
    bool usual = true;
    for (std::size_t i = 0; i < count; ++i) {
        const RegisterAddress address = addressAt(i);
        usual &= address.space == RegisterAddress::Space::Clause45 && address.valid();
        words[i] = phy | address.word();
    }
    if (!usual)
        return std::nullopt;
    values.resize(count);
    const Effect effect = limits.within.repeat.reads == 0 ? Effect::Alone : Effect::Reads;
    ReadCall call(Programs::MDIOProcedure::Read, effect, target.session, values.data(), count);
    call.argument.addresses = {static_cast<u_int>(count), words.data()};
    return drive(target.link, call, limits);
}

} // namespace

std::optional<Trouble> readList(const Target& target, const std::vector<RegisterAddress>& addresses,
                                std::vector<std::uint32_t>& values, Limits& limits) {
    return readAll(
        target, addresses.size(), [&addresses](std::size_t i) { return addresses[i]; }, values, limits);
}

std::optional<Trouble> readList(const Target& target, const RegisterAddress& first, std::size_t count,
                                std::vector<std::uint32_t>& values, Limits& limits) {
    return readAll(
        target, count, [&first](std::size_t i) { return first + static_cast<std::uint32_t>(i); }, values,
        limits);
}

} // namespace Orvane::RackAccess
