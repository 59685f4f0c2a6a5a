// Lines that fit a terminal.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace OrvaneTool {

// The words of a text in lines of at most `width` characters; a longer word has a line of its own. Lines
// behind the first begin with `indent` blanks. `ending` stands at the end of every line but the last.
std::string wrapped(std::string_view text, std::size_t width, std::size_t indent,
                    std::string_view ending = "");

// Columns of the terminal at a descriptor; 80 where there is none.
unsigned terminalWidth(int descriptor);

} // namespace OrvaneTool
