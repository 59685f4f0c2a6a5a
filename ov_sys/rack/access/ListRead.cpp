// The words of a list, checked while they are made.
#include "ov_sys/rack/access/ListRead.h"

namespace Orvane::RackAccess {

using namespace RackLink;

// `addressAt` gives the address of each place.
template <class AddressAt>
bool ListRead::takeAll(const Target& target, const Repeat& repeat, std::size_t count,
                       const AddressAt& addressAt) {
    if (target.overSmbus() || count == 0 || count > kLongestBlock || target.link.log().on())
        return false;
    words_.resize(count);
    const u_int phy = addressWord(target.session, {0, 0});
    bool usual = true;
    for (std::size_t i = 0; i < count; ++i) {
        const RegisterAddress address = addressAt(i);
        usual &= address.space == RegisterAddress::Space::Clause45 && address.valid();
        words_[i] = phy | address.word();
    }
    if (!usual)
        return false;
    values.resize(count);
    const Effect effect = repeat.reads == 0 ? Effect::Alone : Effect::Reads;
    call_.emplace(Programs::MDIOProcedure::Read, effect, target.session, values.data(), count);
    call_->argument.addresses = {static_cast<u_int>(count), words_.data()};
    return true;
}

bool ListRead::take(const Target& target, const Repeat& repeat,
                    const std::vector<RegisterAddress>& addresses) {
    return takeAll(target, repeat, addresses.size(), [&addresses](std::size_t i) { return addresses[i]; });
}

bool ListRead::take(const Target& target, const Repeat& repeat, const RegisterAddress& first,
                    std::size_t count) {
    return takeAll(target, repeat, count,
                   [&first](std::size_t i) { return first + static_cast<std::uint32_t>(i); });
}

} // namespace Orvane::RackAccess
