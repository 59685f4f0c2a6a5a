// The data that the library exports, as this copy of the library sees them.
#pragma once

#include "ov_sys/Interface/devices/HWInterface.h"

#include <cstdio>

namespace Orvane {

// An executable that is linked with the library may have these data in its own memory, which all copies of
// the library in the process would then find under their names. They belong to the first copy; any other (one
// that a plug-in brings along) uses those of its own.
struct Globals {
    HWInterface* interface;
    unsigned (*delegationStatus)[5];
    unsigned* clause22Enable;
    unsigned* defaultPhyId;
    std::FILE** log;
    int* loggingToFile;
};

extern Globals globals; // constant from the loading on

// What the flat functions work on.
inline HWInterface& theInterface() {
    return *globals.interface;
}

} // namespace Orvane
