// What a transaction log says of each register.
#pragma once

#include "tools/orvane/log/LogFile.h"

#include <cstdint>
#include <map>
#include <string>
#include <tuple>

namespace OrvaneTool {

// A register of a PHY on a port, or on an adapter in a log that does not name ports.
struct PhyRegister {
    std::string device;
    unsigned adapter = 0; // 0 of a port that is named: logs of several programs count them anew
    unsigned phy = 0;
    Register reg;

    friend bool operator<(const PhyRegister& left, const PhyRegister& right) {
        const auto key = [](const PhyRegister& each) {
            return std::tie(each.device, each.adapter, each.phy, each.reg.space, each.reg.mmd,
                            each.reg.address);
        };
        return key(left) < key(right);
    }
};

inline PhyRegister registerOf(const LoggedAccess& access) {
    return {access.device, access.device.empty() ? access.adapter : 0, access.phy, access.reg};
}

struct RegisterHistory {
    // A value that was read.
    struct Value {
        std::uint64_t bits = 0;
        int digits = 0; // 0: there is none
        std::string text() const;
    };
    std::size_t reads = 0;
    std::size_t writes = 0;
    std::size_t changes = 0; // reads whose value was not that of the read before
    Value first;
    Value last;

    std::size_t accesses() const { return reads + writes; }
};

struct LogSummary {
    std::map<PhyRegister, RegisterHistory> registers; // by adapter, PHY, space and address
    std::size_t reads = 0;
    std::size_t writes = 0;
    std::size_t queued = 0;

    std::size_t accesses() const { return reads + writes; }
};

// Reads the log. Throws Failure.
LogSummary summaryOf(const LogFile& log, const Selection& selection);

} // namespace OrvaneTool
