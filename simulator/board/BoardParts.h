// Everything of a board that its programs work on.
#pragma once

#include "simulator/board/CallCounters.h"
#include "simulator/board/FaultQueue.h"
#include "simulator/board/PortMap.h"
#include "simulator/board/RequestLog.h"
#include "simulator/board/Sessions.h"
#include "simulator/engine/ShellRunner.h"
#include "simulator/models/AnalogueInputs.h"
#include "simulator/models/CommandTable.h"
#include "simulator/models/GpioBank.h"
#include "simulator/models/I2cBuses.h"
#include "simulator/models/JtagChain.h"
#include "simulator/models/MdioInterrupts.h"
#include "simulator/models/MdioPorts.h"
#include "simulator/models/ThermalPlant.h"

#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <string>

namespace OrvaneSim {

// One board's state without its sockets. Belongs to the loop's thread, but for the request log.
struct BoardParts {
    BoardParts(const std::string& serial, const std::string& nameLine, std::uint64_t seed);
    BoardParts(const BoardParts&) = delete;
    BoardParts& operator=(const BoardParts&) = delete;

    // With the interrupts that they asked for.
    void forgetSessions();

    Sessions sessions;
    PortMap ports;
    FaultQueue faults;
    RequestLog requests;
    CallCounters counters;
    // Told of every request after its fault was decided, before it is executed.
    std::list<std::function<void(const Request&)>> observers; // one may add another
    MdioPorts mdio;
    MdioInterrupts interrupts;
    GpioBank gpio;
    JtagChain jtag;
    AnalogueInputs adc;
    ThermalPlant thermal;
    I2cBuses i2c; // its sensors feel channel 0 of the thermal plant
    CommandTable commands;
    std::unique_ptr<ShellRunner> shell; // only where a real shell is allowed
};

} // namespace OrvaneSim
