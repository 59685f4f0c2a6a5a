// Registers of many places as records.
#pragma once

#include "tools/orvane/names/KnownMaps.h"
#include "tools/orvane/output/Record.h"
#include "tools/orvane/output/RecordSink.h"

#include <string>
#include <vector>

namespace OrvaneTool {

// A record of a register: where it is, and its name in a map.
Record registerRecord(const std::string& device, unsigned phy, const Asked& asked);

// The form of such records: their address, and behind it in CSV these members, in text these columns, with
// device and PHY before them for many places.
RecordForm registerForm(bool manyPlaces, const std::vector<std::string>& members,
                        const std::vector<Column>& columns);

} // namespace OrvaneTool
