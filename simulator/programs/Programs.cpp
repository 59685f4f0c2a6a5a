// What is served where.
#include "simulator/programs/Programs.h"

namespace OrvaneSim {

const BoardPrograms& boardPrograms() {
    static const BoardPrograms programs{{&kPortMapperProgram},
                                        {&kSetupProgram, &kI2cProgram, &kMdioProgram, &kJtagProgram,
                                         &kGpioProgram, &kKeepAliveProgram, &kAdcProgram, &kThermalProgram}};
    return programs;
}

} // namespace OrvaneSim
