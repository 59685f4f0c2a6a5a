// The PHY firmware's mailbox in MMD 30, which reads and writes the registers of any MMD.
#pragma once

#include "simulator/models/PhyRegisters.h"
#include "simulator/models/PolledCommands.h"

namespace OrvaneSim {

// Register numbers in hexadecimal: C47C address, C47D data, C47E command (100 read, 200 write, with the MMD
// in the low byte), C47F status (0 busy, 1 done, 2 error). A command sets the status when it is done.
class FirmwareMailbox {
public:
    void beforeRead(const PhyRegisters& phy, std::uint32_t reg, const PathTroubles& troubles);
    void afterWrite(const PhyRegisters& phy, std::uint32_t reg, const PathTroubles& troubles);

private:
    PolledCommands commands_;
};

} // namespace OrvaneSim
