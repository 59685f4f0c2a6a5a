// What can be done to a board while it serves.
#pragma once

#include "simulator/board/Fault.h"
#include "simulator/board/StrayDatagrams.h"
#include "simulator/models/MappedRegisters.h"
#include "simulator/models/MdioPorts.h"

#include <cstdint>
#include <string>
#include <variant>
#include <vector>

namespace OrvaneSim {

struct ClearFaults {};
// Goes on serving nothing: sockets stay open, no request is heard, discovery neither.
struct Hang {};
// Closes every socket.
struct Kill {};
// Serves again after `Hang` or `Kill`.
struct Start {};
// Closes every socket and serves again at other ports.
struct Restart {
    bool forgetSessions = false;
};
// Goes on at another address, with other ports.
struct MoveTo {
    std::string address;
};
struct ForgetSessions {};
// Closes the port mapper's sockets, so that it refuses, or opens them.
struct SwitchPortMapper {
    bool open = true;
};
// Sets a register without any effect of a bus access.
using SetRegister = RegisterValue;
// Makes the registers of a PHY behave as a map says.
struct UseMap {
    unsigned device = 0;
    unsigned phy = 0;
    std::uint32_t identifier = MdioPorts::kIdentifier; // of the PHY, in its registers 2 and 3
    std::vector<MappedRegister> registers;
};
// Has a PHY raise an MDIO interrupt.
struct RaiseInterrupt {
    unsigned device = 0;
    unsigned phy = 0;
};
// Temperature around the board, in degrees Celsius.
struct SetAmbientTemperature {
    double celsius = 25;
};

// One thing to do; a fault is injected, a stream of stray datagrams begun.
using Action =
    std::variant<Fault, StrayDatagrams, ClearFaults, Hang, Kill, Start, Restart, MoveTo, ForgetSessions,
                 SwitchPortMapper, SetRegister, UseMap, RaiseInterrupt, SetAmbientTemperature>;

} // namespace OrvaneSim
