// Registers of many places as records.
#pragma once

#include "tools/orvane/names/KnownMaps.h"
#include "tools/orvane/output/Record.h"
#include "tools/orvane/output/RecordSink.h"

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

namespace OrvaneTool {

// A record of a register: where it is, and its name in a map.
Record registerRecord(const std::string& device, unsigned phy, const Asked& asked);
Record registerRecord(const Asked& asked); // of no board

// Its fields by what it holds: a list for programs, in a line for people. Of a register that was asked for by
// one of its fields that one; nothing where no map has it. With what it held before, those that differ say
// what they were; `onlyChanged` leaves out the others.
void putFields(Record& record, const Asked& asked, std::uint64_t value,
               std::optional<std::uint64_t> before = std::nullopt, bool onlyChanged = false);

// The members of a form, with that of putFields() where fields are shown.
std::vector<std::string> withFields(std::vector<std::string> members, bool fields);

// The form of such records: their address, and behind it in CSV these members, in text these columns, with
// device and PHY before them for many places.
RecordForm registerForm(bool manyPlaces, const std::vector<std::string>& members,
                        const std::vector<Column>& columns);

} // namespace OrvaneTool
