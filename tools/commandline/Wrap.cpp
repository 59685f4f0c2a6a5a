// Breaking of lines between words.
#include "tools/commandline/Wrap.h"

#include <algorithm>
#include <sys/ioctl.h>

namespace OrvaneTool {

std::string wrapped(std::string_view text, std::size_t width, std::size_t indent, std::string_view ending) {
    std::string result;
    std::size_t column = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        const std::string_view word = text.substr(0, end);
        text.remove_prefix(std::min(text.find_first_not_of(' ', end), text.size()));
        const bool first = column == 0;
        if (!first && column + 1 + word.size() + (text.empty() ? 0 : ending.size()) > width) {
            result.append(ending).append("\n").append(indent, ' ');
            column = indent;
        } else if (!first) {
            result += ' ';
            ++column;
        }
        result += word;
        column += word.size();
    }
    return result;
}

unsigned terminalWidth(int descriptor) {
    winsize size{};
    return ::ioctl(descriptor, TIOCGWINSZ, &size) == 0 && size.ws_col > 0 ? size.ws_col : 80U;
}

} // namespace OrvaneTool
