// Which map a PHY has, as lab files, scripts and control requests say it.
#pragma once

#include "simulator/board/Action.h"
#include "simulator/script/JsonReader.h"

namespace OrvaneSim {

// The members `device` (0) and `phy` (0). Throws ScriptError.
PhyAddress readPhy(ObjectReader& object);

// The members `file`, `identifier` and those of readPhy(); reads and checks the map. A relative name of a
// file begins at the working folder. Throws ScriptError, with everything that is wrong with the map.
UseMap readMap(ObjectReader& object);

} // namespace OrvaneSim
