// Takes the paths of indirect registers with nobody at their end.
#include "ov_sys/names/Plan.h"
#include "ov_sys/routing/Route.h"

#include <map>
#include <utility>

namespace Orvane {
namespace {

// Records what a path asks for, and answers as registers would that keep what is written to them.
class RecordedAccess final : public Routing::Access {
public:
    Routing::Value read(unsigned mmd, unsigned reg) override { return readAt({mmd, reg}); }
    bool write(unsigned mmd, unsigned reg, unsigned value) override { return writeAt({mmd, reg}, value); }
    Routing::Value readClause22(unsigned reg) override { return readAt(clause22(reg)); }
    bool writeClause22(unsigned reg, unsigned value) override { return writeAt(clause22(reg), value); }
    bool keepsWaiting() override { return false; }
    bool goesOnAfter(const Routing::Trouble& /*trouble*/) override { return true; }

    const Batch& steps() const noexcept { return steps_; }

private:
    Routing::Value readAt(const RegisterAddress& address) {
        steps_.read(address);
        return held_[{address.space, address.word()}];
    }
    bool writeAt(const RegisterAddress& address, unsigned value) {
        steps_.write(address, value);
        held_[{address.space, address.word()}] = value;
        return true;
    }

    Batch steps_;
    std::map<std::pair<RegisterAddress::Space, std::uint32_t>, unsigned> held_;
};

} // namespace

Batch routedSteps(RegisterAddress address, std::optional<std::uint32_t> value, const RegisterPaths& paths) {
    if (!address.valid() || address.space != RegisterAddress::Space::Clause45 || value.value_or(0) > 0xFFFF)
        return {};
    RecordedAccess recorded;
    const Routing::Route route = paths.overClause22 ? Routing::Route::OverClause22
                                 : value
                                     ? Routing::routeOfWrite(paths.byFirmware, address.mmd)
                                     : Routing::routeOfRead(paths.byFirmware, address.mmd, address.number);
    if (value)
        Routing::write(recorded, route, address.mmd, address.number, *value);
    else
        Routing::read(recorded, route, address.mmd, address.number);
    return recorded.steps();
}

} // namespace Orvane
