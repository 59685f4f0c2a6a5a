// The accesses that the flat interface's routed functions are made of.
#pragma once

#include "ov_sys/routing/Access.h"

namespace Orvane {

// One PHY. Each Clause 45 access is logged with the adapter and the PHY as they are given here; Clause 22 is
// not logged. A failure is recorded and reported as every flat function does, and paths go on whatever
// happens: trouble is a diagnostic line at most, and a failed read gives 0.
class LoggedAccess final : public Routing::Access {
public:
    enum class Phy {
        OnAdapter, // the number is that of a PHY on the adapter
        Argument   // it is a PHY argument, and the adapter is for the log only
    };
    LoggedAccess(unsigned adapter, unsigned phy, Phy kind) : adapter_(adapter), phy_(phy), kind_(kind) {}

    Routing::Value read(unsigned mmd, unsigned reg) override;
    bool write(unsigned mmd, unsigned reg, unsigned value) override;
    Routing::Value readClause22(unsigned reg) override;         // by PHY argument
    bool writeClause22(unsigned reg, unsigned value) override;  // by PHY argument
    bool goesOnAfter(const Routing::Trouble& trouble) override; // true

private:
    unsigned adapter_;
    unsigned phy_;
    Phy kind_;
};

} // namespace Orvane
