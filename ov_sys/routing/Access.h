// What the indirect paths reach a PHY through.
#pragma once

#include <optional>

namespace Orvane::Routing {

// A register's value; none when the access ended the path that wanted it.
using Value = std::optional<unsigned>;

// Something on a path that is not as it should be.
struct Trouble {
    enum Kind {
        FirmwareBusy,    // the mailbox's last status when it had been read to the limit is `code`, 0 for busy
        FirmwareError,   // the firmware reports an error
        FirmwareGivenUp, // the command did not end well; follows each of the two above
        BridgeReadError, // the SerDes bridge failed with `code` at `address`
        BridgeWriteError,   // the same
        UnknownTgeBlock,    // `code` is the block of `address`
        WindowBusy,         // the window never showed `address`
        UnknownPagedAddress // no page has `address`
    };
    Kind kind;
    unsigned code;
    unsigned address;
};

// One PHY, for one path at a time. An access fails in one of two ways, whichever its owner likes: it throws,
// and the exception passes through the path; or it gives nothing (false, no value), and the path ends there
// and gives nothing as well. Paths make their accesses one after the other and hold nothing in between.
class Access {
public:
    virtual ~Access() = default;

    // Clause 45: MMD and register, 16 bits of value.
    virtual Value read(unsigned mmd, unsigned reg) = 0;
    virtual bool write(unsigned mmd, unsigned reg, unsigned value) = 0;

    // Clause 22, which Clause 45 can be carried over.
    virtual Value readClause22(unsigned reg) = 0;
    virtual bool writeClause22(unsigned reg, unsigned value) = 0;

    // Asked before a busy status of firmware or window is read again: false ends the wait, which then counts
    // as one at its limit (5001 reads of the firmware's status, 41 of the window's). May sleep.
    virtual bool keepsWaiting() { return true; }

    // Whether the path goes on in spite of the trouble: it then gives what the register at its end holds, or
    // 0 where it never got there. Otherwise it gives nothing.
    virtual bool goesOnAfter(const Trouble& trouble) = 0;

protected:
    Access() = default;
    Access(const Access&) = default;
    Access& operator=(const Access&) = default;
};

// What a path gives that has met trouble before it had a value.
inline Value zeroAfter(Access& phy, const Trouble& trouble) {
    return phy.goesOnAfter(trouble) ? Value(0U) : std::nullopt;
}

} // namespace Orvane::Routing
