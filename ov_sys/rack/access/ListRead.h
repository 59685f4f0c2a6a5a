// Lists of registers that one call reads, without the detour of a batch.
#pragma once

#include "ov_sys/rack/access/RegisterAccess.h"
#include "ov_sys/rack/link/MdioCalls.h"

#include <cstddef>
#include <cstdint>
#include <optional>
#include <vector>

namespace Orvane::RackAccess {

// The call of a usual list, and what it reads: existing registers of Clause 45 on an MDIO port, no more than
// one call takes, and nobody keeps a log of them. Other lists are for batches.
class ListRead {
public:
    ListRead() = default;
    ListRead(const ListRead&) = delete;
    ListRead& operator=(const ListRead&) = delete;

    // Makes the call, once; false, and no call, when the list is another one.
    bool take(const Target& target, const Repeat& repeat, const std::vector<RegisterAddress>& addresses);
    // The same for `count` registers from `first` on.
    bool take(const Target& target, const Repeat& repeat, const RegisterAddress& first, std::size_t count);

    RackLink::Call& call() noexcept { return *call_; }

    // In the order of the addresses, when the call has ended well.
    std::vector<std::uint32_t> values;

private:
    template <class AddressAt>
    bool takeAll(const Target& target, const Repeat& repeat, std::size_t count, const AddressAt& addressAt);

    std::vector<u_int> words_;
    std::optional<RackLink::ReadCall> call_;
};

} // namespace Orvane::RackAccess
