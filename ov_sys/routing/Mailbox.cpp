// The steps of a mailbox command, and the bounds of its waits.
#include "ov_sys/routing/Mailbox.h"

namespace Orvane::Routing {
namespace {

constexpr unsigned kMmd = 30;
constexpr unsigned kAddress = 0xC47C;
constexpr unsigned kData = 0xC47D;
constexpr unsigned kCommand = 0xC47E;
constexpr unsigned kStatus = 0xC47F;

constexpr unsigned kReadCommand = 0x100;
constexpr unsigned kWriteCommand = 0x200;
constexpr unsigned kBusy = 0;
constexpr unsigned kDone = 1;
constexpr unsigned kError = 2;

bool begin(Access& phy, unsigned address) {
    return phy.write(kMmd, kStatus, kBusy) && phy.write(kMmd, kAddress, address);
}

// The last status that was read. Trouble is told at the limit even when the last read found an end.
Value waitForStatus(Access& phy) {
    constexpr int kMostFurtherReads = 5000;
    Value status = phy.read(kMmd, kStatus);
    int furtherReads = 0;
    while (status == kBusy && furtherReads < kMostFurtherReads && phy.keepsWaiting()) {
        status = phy.read(kMmd, kStatus);
        ++furtherReads;
    }
    const bool atLimit = status && (*status == kBusy || furtherReads == kMostFurtherReads);
    if (atLimit && !phy.goesOnAfter({Trouble::FirmwareBusy, *status, kStatus}))
        return std::nullopt;
    return status;
}

// Starts the command and waits for its end. There is one attempt only: docs/limits.md, "Odd on purpose".
bool run(Access& phy, unsigned command, unsigned mmd, unsigned address) {
    if (!phy.write(kMmd, kCommand, (mmd & 0xFFU) | command))
        return false;
    const Value status = waitForStatus(phy);
    if (!status || *status == kDone)
        return status.has_value();
    if (*status == kError && !phy.goesOnAfter({Trouble::FirmwareError, *status, address}))
        return false;
    return phy.goesOnAfter({Trouble::FirmwareGivenUp, *status, address});
}

} // namespace

bool writeByMailbox(Access& phy, unsigned mmd, unsigned address, unsigned value) {
    return begin(phy, address) && phy.write(kMmd, kData, value) && run(phy, kWriteCommand, mmd, address);
}

Value readByMailbox(Access& phy, unsigned mmd, unsigned address) {
    if (!begin(phy, address) || !run(phy, kReadCommand, mmd, address))
        return std::nullopt;
    return phy.read(kMmd, kData);
}

} // namespace Orvane::Routing
