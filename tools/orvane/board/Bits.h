// Register values as text, with the bits that changed marked.
#pragma once

#include "tools/orvane/board/RegisterAddress.h"
#include "tools/orvane/output/Console.h"
#include "tools/orvane/output/Table.h"

#include <cstdint>
#include <string>

namespace OrvaneTool {

// 0x0A5C; a value wider than its space is shown in full.
std::string hexText(std::uint32_t value, Space space);

// The same for a cell; the digits with bits of `changed` are coloured where the stream has colours.
Cell hexCell(const Stream& stream, std::uint32_t value, Space space, std::uint32_t changed = 0);

// 0000 1010 0101 1100, likewise; for people alone.
Cell bitsCell(const Stream& stream, std::uint32_t value, Space space, std::uint32_t changed = 0);

} // namespace OrvaneTool
