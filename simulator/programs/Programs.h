// The programs that every board serves, each a table in the file of its name.
#pragma once

#include "simulator/board/Program.h"

namespace OrvaneSim {

extern const Program kPortMapperProgram;
extern const Program kSetupProgram;
extern const Program kI2cProgram;
extern const Program kMdioProgram;
extern const Program kJtagProgram;
extern const Program kGpioProgram;
extern const Program kKeepAliveProgram;
extern const Program kAdcProgram;
extern const Program kThermalProgram;

// All of them, where they are served.
const BoardPrograms& boardPrograms();

} // namespace OrvaneSim
