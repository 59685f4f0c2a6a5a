// Registers of a PHY that are reached by way of others.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/rack/values/RegisterAddress.h"
#include "ov_sys/rack/values/Within.h"
#include "ov_sys/routing/Delegations.h"

#include <cstdint>
#include <memory>

namespace Orvane {

namespace RackCore {
class OpenSession;
}

// How the registers of a PHY are reached that are not plain. A plain value; the usual ways as it stands.
struct RegisterPaths {
    Routing::Delegations byFirmware{};
    bool overClause22 = false; // all of Clause 45 by Clause 22 registers 13 and 14, and no other path
};

// A Phy whose Clause 45 registers are reached by the path that MMD and register ask for: the firmware's
// mailbox, the SerDes bridge (MMD 27), the window (MMD 10), pages (MMD 28), TGE registers (MMD 11), or none.
// These are the paths of the flat interface, odd ones included: a write to MMD 28 by pages writes the page
// number, a read gives that number's low byte with its nibbles exchanged.
//
// A handle like the Phy that gave it out: it shares the session, any thread may use it, calls block up to
// their limits and throw Failure, whose operation() names the path ("read by firmware"). An access keeps the
// board to itself from its first step to its last, and waits for firmware and window no longer than its
// limits say; firmware or window that stays busy is FailureKind::Busy, an error that either reports
// BoardError without a code().
class ORVANE_API RoutedPhy {
public:
    // For Phy, which gives them out.
    RoutedPhy(std::shared_ptr<RackCore::OpenSession> session, const RegisterPaths& paths) noexcept;

    // The ways that it takes.
    const RegisterPaths& paths() const noexcept { return paths_; }

    // Registers of 16 bits. `address` is one of Clause 45.
    std::uint32_t read(RegisterAddress address, const Within& within = {}) const;
    void write(RegisterAddress address, std::uint32_t value, const Within& within = {}) const;
    // Replaces the bits of `mask` by those of `value` and returns what was written.
    std::uint32_t modify(RegisterAddress address, std::uint32_t mask, std::uint32_t value,
                         const Within& within = {}) const;

private:
    std::shared_ptr<RackCore::OpenSession> session_;
    RegisterPaths paths_;
};

} // namespace Orvane
