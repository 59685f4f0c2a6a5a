// One port of a board, with the access that was asked for.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"
#include "ov_sys/rack/Phy.h"
#include "ov_sys/rack/values/Access.h"

#include <memory>
#include <string>

namespace Orvane {

namespace RackCore {
struct PortState;
}

// A handle; copies share their sessions. Any thread.
class ORVANE_API Port {
public:
    // For Rack, which gives them out.
    explicit Port(std::shared_ptr<RackCore::PortState> state) noexcept;

    // The board's serial number, upper case.
    const std::string& board() const noexcept;
    // 0 to 9: MDIO. From 10 on: SMBus, of I2C bus number() - 10.
    unsigned number() const noexcept;
    Access access() const noexcept;

    // The PHY at an address of the port: 0 to 31, on an SMBus port 0 to 127. Throws Failure
    // (InvalidArgument). Does not block; the session is opened by its first use or by Phy::open(), and closed
    // when this port and every Phy of it have ended.
    Phy phy(unsigned id) const;

private:
    std::shared_ptr<RackCore::PortState> state_;
};

} // namespace Orvane
