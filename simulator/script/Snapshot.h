// All register values of boards, kept in a file.
#pragma once

#include "simulator/lab/Lab.h"
#include "simulator/script/JsonReader.h"

#include <string>
#include <vector>

namespace OrvaneSim {

// The registers ever written on these boards.
Json snapshotOf(const std::vector<Board*>& boards);

// Gives the boards that the snapshot names the registers that it holds, and no others. Nothing is changed
// when it throws ScriptError: for members that are wrong or a board that is not among `boards`.
void restoreSnapshot(const std::vector<Board*>& boards, const Json& snapshot);

// Writes a snapshot, one register on each line. Throws ScriptError when the file cannot be written.
void writeSnapshot(const std::string& file, const Json& snapshot);

} // namespace OrvaneSim
