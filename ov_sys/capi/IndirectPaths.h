// The plain logged access and the indirect paths that the register routing chooses between.
#pragma once

#include <orvane/orvane.h>

namespace Orvane {

// Clause 45 accesses by PHY argument, each logged with the default adapter and the argument as it is.
struct PlainAccess {
    unsigned adapter; // the default adapter, for the log
    unsigned phy;     // PHY argument; one with bit 31 set names its own adapter

    void write(unsigned mmd, unsigned reg, unsigned value) const;
    unsigned read(unsigned mmd, unsigned reg) const;
};

// MMD 10, through a window of MMD 30. A window that stays busy is given up silently; a read then gives 0.
void windowWrite(const PlainAccess& phy, unsigned address, unsigned value);
unsigned windowRead(const PlainAccess& phy, unsigned address);

// MMD 28, through the page register of MMD 4. A write puts the page value, and no value of the caller's, into
// the register; a read without bit 8000 gives the page value's low byte with its nibbles exchanged.
void pagedWrite(const PlainAccess& phy, unsigned address);
unsigned pagedRead(const PlainAccess& phy, unsigned address);

// MMD 11 and MMD 27: the adapter's flags choose between the mailbox and the indirect path.
void writeTge(unsigned adapter, unsigned phy, unsigned address, unsigned value);
unsigned readTge(unsigned adapter, unsigned phy, unsigned address);
void writeSerdes(unsigned adapter, unsigned phy, unsigned address, unsigned value);
unsigned readSerdes(unsigned adapter, unsigned phy, unsigned address);

} // namespace Orvane
