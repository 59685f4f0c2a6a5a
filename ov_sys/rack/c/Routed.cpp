// Registers behind others, for C.
#include "ov_sys/rack/c/Failures.h"
#include "ov_sys/rack/c/Handles.h"
#include "ov_sys/rack/c/Values.h"

using namespace Orvane::RackC;

extern "C" {

orvane_paths orvane_default_paths(void) {
    const Orvane::RegisterPaths usual;
    return {usual.byFirmware.readClasses, usual.byFirmware.writePaged, usual.byFirmware.readPaged,
            usual.byFirmware.tge,         usual.byFirmware.serdes,     usual.overClause22};
}

int orvane_routed_read(orvane_phy* phy, const orvane_paths* paths, orvane_register address,
                       const orvane_limits* limits, uint32_t* value, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, value});
        *value = phy->phy.routed(pathsOf(paths)).read(addressOf(address), withinOf(limits));
    });
}

int orvane_routed_write(orvane_phy* phy, const orvane_paths* paths, orvane_register address, uint32_t value,
                        const orvane_limits* limits, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy});
        phy->phy.routed(pathsOf(paths)).write(addressOf(address), value, withinOf(limits));
    });
}

int orvane_routed_modify(orvane_phy* phy, const orvane_paths* paths, orvane_register address, uint32_t mask,
                         uint32_t value, const orvane_limits* limits, uint32_t* written,
                         orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy});
        const std::uint32_t whole =
            phy->phy.routed(pathsOf(paths)).modify(addressOf(address), mask, value, withinOf(limits));
        if (written != nullptr)
            *written = whole;
    });
}

} // extern "C"
