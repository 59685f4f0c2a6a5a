// Each step of a path as one access, until the first that fails.
#include "ov_sys/rack/access/PathAccess.h"

#include <cstdio>
#include <utility>

namespace Orvane::RackAccess {

using namespace RackLink;

namespace {

std::string hex(unsigned number) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%X", number);
    return text;
}

} // namespace

// False, so that whoever ends a path can return it. What ended it first is what is told.
bool PathAccess::end(Trouble trouble, std::string remark) {
    if (!trouble_) {
        trouble_ = trouble;
        remark_ = std::move(remark);
    }
    return false;
}

void PathAccess::made() noexcept {
    const unsigned openings = target_.session.openings;
    torn_ = torn_ || (openings_ != 0 && openings_ != openings);
    openings_ = openings;
}

Routing::Value PathAccess::readAt(const RegisterAddress& address) {
    std::uint32_t value = 0;
    if (const Trouble trouble = RackAccess::read(target_, address, value, limits_)) {
        end(trouble, {});
        return std::nullopt;
    }
    made();
    return value;
}

bool PathAccess::writeAt(const RegisterAddress& address, std::uint32_t value) {
    if (const Trouble trouble = RackAccess::write(target_, address, value, limits_))
        return end(trouble, {});
    made();
    return true;
}

Routing::Value PathAccess::read(unsigned mmd, unsigned reg) {
    return readAt({mmd, reg});
}

bool PathAccess::write(unsigned mmd, unsigned reg, unsigned value) {
    return writeAt({mmd, reg}, value);
}

Routing::Value PathAccess::readClause22(unsigned reg) {
    return readAt(clause22(reg));
}

bool PathAccess::writeClause22(unsigned reg, unsigned value) {
    return writeAt(clause22(reg), value);
}

// What is busy is usually done at once, and is looked at less often when it is not.
bool PathAccess::keepsWaiting() {
    constexpr unsigned kAtOnce = 8;
    constexpr std::chrono::milliseconds kPause{1};
    limits_.now = Clock::now();
    if (++looks_ > kAtOnce && limits_.now < limits_.end)
        pause(limits_, kPause);
    return limits_.now < limits_.end;
}

bool PathAccess::goesOnAfter(const Routing::Trouble& trouble) {
    using Kind = Routing::Trouble;
    switch (trouble.kind) {
    case Kind::FirmwareBusy:
        // The last look may have found an end.
        return trouble.code != 0 || end(FailureKind::Busy, "The PHY's firmware stayed busy.");
    case Kind::FirmwareError:
        return end(FailureKind::BoardError, "The PHY's firmware reports an error.");
    case Kind::FirmwareGivenUp:
        return end(FailureKind::BoardError,
                   "The PHY's firmware ended with the unknown status " + hex(trouble.code) + ".");
    case Kind::BridgeReadError:
    case Kind::BridgeWriteError:
        return end(FailureKind::BoardError, "The SerDes bridge reports code " + hex(trouble.code) + ".");
    case Kind::UnknownTgeBlock:
        return end(FailureKind::InvalidArgument, "TGE registers are in blocks 0 to 3, the upper digit.");
    case Kind::WindowBusy:
        return end(FailureKind::Busy, "The window stayed busy.");
    case Kind::UnknownPagedAddress:
        return end(FailureKind::InvalidArgument,
                   "Pages have registers up to 0x05FF; reads also lanes 0 to 4, index 0 to 25, from 0x8000.");
    }
    return false;
}

} // namespace Orvane::RackAccess
