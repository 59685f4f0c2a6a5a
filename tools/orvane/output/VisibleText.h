// Text from boards, logs and dumps, made harmless for a terminal and for a table.
#pragma once

#include <string>
#include <string_view>

namespace OrvaneTool {

// The text with each byte written as \x1b that a terminal might take for something else than a character to
// show: control characters (C0, DEL and C1), what turns the direction of writing or ends a line, and bytes
// that are no UTF-8. Everything else stays, backslashes included.
std::string visible(std::string_view text);

// The same for text of several lines: line ends and tabs stay.
std::string visibleLines(std::string_view text);

// JSON that nlohmann's library made, with \u escapes for the control characters that it leaves: DEL and C1.
std::string visibleJson(std::string_view json);

} // namespace OrvaneTool
