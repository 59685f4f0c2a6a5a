// The accesses that an indirect path is made of, within the limits of one call.
#pragma once

#include "ov_sys/rack/access/RegisterAccess.h"
#include "ov_sys/rack/link/Limits.h"
#include "ov_sys/routing/Access.h"

#include <string>

namespace Orvane::RackAccess {

// One PHY, for the holder of its board's turn. The path ends with the first access that fails, the first
// trouble and the end of the limits; what it ended with is told afterwards.
class PathAccess final : public Routing::Access {
public:
    PathAccess(const Target& target, RackLink::Limits& limits) noexcept : target_(target), limits_(limits) {}

    Routing::Value read(unsigned mmd, unsigned reg) override;
    bool write(unsigned mmd, unsigned reg, unsigned value) override;
    Routing::Value readClause22(unsigned reg) override;
    bool writeClause22(unsigned reg, unsigned value) override;
    bool keepsWaiting() override;
    bool goesOnAfter(const Routing::Trouble& trouble) override;

    // Whether the session was opened again between two accesses: what was written before may be lost.
    bool torn() const noexcept { return torn_; }
    // Of a path that gave nothing.
    RackLink::Trouble trouble() const noexcept { return trouble_; }
    // The same as a sentence; empty when the kind says all.
    const std::string& remark() const noexcept { return remark_; }

private:
    Routing::Value readAt(const RegisterAddress& address);
    bool writeAt(const RegisterAddress& address, std::uint32_t value);
    void made() noexcept;
    bool end(RackLink::Trouble trouble, std::string remark);

    const Target target_;
    RackLink::Limits& limits_;
    RackLink::Trouble trouble_;
    std::string remark_;
    unsigned looks_ = 0;    // at a status that was busy
    unsigned openings_ = 0; // of the session, after the first access
    bool torn_ = false;
};

} // namespace Orvane::RackAccess
