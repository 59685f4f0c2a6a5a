// Register accesses that the PHY's firmware makes, asked for through its mailbox in MMD 30.
#include "ov_sys/Interface/foundation/Diagnostics.h"

#include <orvane/orvane.h>

namespace {

namespace Diagnostics = Orvane::Diagnostics;

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

struct Mailbox {
    unsigned adapter;
    unsigned phy;

    void write(unsigned reg, unsigned value) const { HW_Write(adapter, phy, kMmd, reg, value); }
    unsigned read(unsigned reg) const { return HW_Read(adapter, phy, kMmd, reg); }

    unsigned waitForStatus() const {
        constexpr int kMostFurtherReads = 5000;
        unsigned status = read(kStatus);
        int furtherReads = 0;
        while (status == kBusy && furtherReads < kMostFurtherReads) {
            status = read(kStatus);
            ++furtherReads;
        }
        if (furtherReads == kMostFurtherReads)
            Diagnostics::warning("Warning: PIF Mailbox commandStatus polling limit exceeded, retrying.");
        return status;
    }

    // Starts the command and waits for its end. There is one attempt only, whatever the texts say.
    void run(unsigned command, unsigned mmd) const {
        write(kCommand, (mmd & 0xFFU) | command);
        const unsigned status = waitForStatus();
        if (status == kDone)
            return;
        if (status == kError)
            Diagnostics::warning("Warning: PIF Mailbox reported an error, retrying.");
        Diagnostics::error("Error: PIF Mailbox retry limit exceeded, so giving up.");
    }
};

} // namespace

extern "C" {

void writeRegisterViaPifMailbox(unsigned int adapter, unsigned int phy, unsigned int mmd,
                                unsigned int address, unsigned int value) {
    const Mailbox mailbox{adapter, phy};
    mailbox.write(kStatus, kBusy);
    mailbox.write(kAddress, address);
    mailbox.write(kData, value);
    mailbox.run(kWriteCommand, mmd);
}

unsigned int readRegisterViaPifMailbox(unsigned int adapter, unsigned int phy, unsigned int mmd,
                                       unsigned int address) {
    const Mailbox mailbox{adapter, phy};
    mailbox.write(kStatus, kBusy);
    mailbox.write(kAddress, address);
    mailbox.run(kReadCommand, mmd);
    return mailbox.read(kData);
}
}
