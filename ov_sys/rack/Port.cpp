// What a port knows: its board's state and the access that was asked for.
#include "ov_sys/rack/Port.h"

#include "ov_sys/rack/core/PortState.h"

namespace Orvane {

Port::Port(std::shared_ptr<RackCore::PortState> state) noexcept : state_(std::move(state)) {}

const std::string& Port::board() const noexcept {
    return state_->board->link.board();
}

unsigned Port::number() const noexcept {
    return state_->number;
}

Access Port::access() const noexcept {
    return state_->access;
}

Phy Port::phy(unsigned id) const {
    const bool smbus = state_->number >= RackAccess::kFirstSmbusPort;
    if (id > (smbus ? 127U : 31U)) {
        FailureDetails details;
        details.board = board();
        details.port = static_cast<int>(number());
        details.operation = "phy " + std::to_string(id);
        details.advice = smbus ? "SMBus devices are 0 to 127." : "PHYs of an MDIO port are 0 to 31.";
        throw Failure(std::move(details));
    }
    const std::lock_guard<std::mutex> lock(state_->mutex);
    std::shared_ptr<RackCore::OpenSession>& session = state_->sessions[id];
    if (!session)
        session = state_->board->session(state_->number, id, state_->access);
    return Phy(session);
}

} // namespace Orvane
