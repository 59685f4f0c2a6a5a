// What a misspelt word may have meant.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace OrvaneTool {

// The word that is nearest to `text`, at most two letters away that were added, left out, replaced or
// swapped, and fewer than `text` has; the first of equals. Empty when there is none.
std::string nearest(std::string_view text, const std::vector<std::string>& words);

} // namespace OrvaneTool
