// Tables of register accesses with what each one makes of the board, the log and its result.
#pragma once

#include "tests/support/capi/FlatInterface.h"

#include <string>
#include <vector>

namespace OrvaneTest {

// The word at 1000, and the one at 1004, of every PHY that the tables name.
constexpr unsigned kWord = 0xA1B2C3D4;
constexpr unsigned kNextWord = 0x0FF5E704;

constexpr unsigned long long kAllOnes = 0xFFFFFFFFFFFFFFFF;

enum Transport { OverMdio, Nowhere };

struct Access {
    std::string name;
    unsigned long long (*access)();
    std::vector<std::string> frames;
    unsigned long long result;
    std::string log;
    std::string failedLog;          // when the adapter is not open
    Transport transport = OverMdio; // 64-bit registers need no adapter
};

class WidthAccess : public FlatInterface, public testing::WithParamInterface<Access> {
protected:
    WidthAccess() {
        for (const Frame& phy : {kOnExplicit, kOnDefault, kOnCarried}) {
            board.setRegister(OrvaneSim::Space::Ext32, phy.adapter, phy.phy, 0x1000, kWord);
            board.setRegister(OrvaneSim::Space::Ext32, phy.adapter, phy.phy, 0x1004, kNextWord);
        }
    }
};

} // namespace OrvaneTest
