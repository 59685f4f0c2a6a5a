#include "ov_sys/Interface/foundation/HWIHelper.h"

#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Exceptions.h"

#include <algorithm>
#include <cctype>
#include <climits>
#include <cstddef>
#include <stdexcept>
#include <unistd.h>

namespace Orvane::HWIHelper {

namespace {

void convert(std::string& text, int (*convertByte)(int)) {
    for (char& byte : text)
        byte = static_cast<char>(convertByte(static_cast<unsigned char>(byte)));
}

} // namespace

void str_to_upper(std::string& text) {
    convert(text, std::toupper);
}

void str_to_lower(std::string& text) {
    convert(text, std::tolower);
}

bool start_with(std::string text, std::string prefix) {
    return text.compare(0, prefix.size(), prefix) == 0;
}

void splitBoardSNPort(std::string name, std::string& board, int& port) {
    str_to_upper(name);
    const std::size_t colon = name.find(':');
    if (colon == std::string::npos || name.find(':', colon + 1) != std::string::npos)
        throw Exceptions::InvalidName(name);
    board = name.substr(0, colon);

    // The length counts from the beginning of the name, so the text usually runs on past the white space; the
    // conversion ends at the first non-digit anyway, and "B: 5" is port 5.
    const std::string portText = name.substr(colon + 1, name.find_first_of(" \n\r\t", colon + 1));
    if (portText.empty())
        throw Exceptions::InvalidName(name);
    try {
        port = std::stoi(portText);
    } catch (const std::logic_error&) {
        Diagnostics::error("Invalid port");
        throw Exceptions::InvalidName(name);
    }
}

void mSleep(int ms) {
    usleep(static_cast<useconds_t>(ms) * 1000U);
}

std::vector<std::string> split(std::string text, std::string delimiter) {
    std::vector<std::string> pieces;
    const std::size_t length = std::min<std::size_t>(text.size(), INT_MAX);
    std::size_t start = 0;
    while (start < length) {
        const std::size_t end = std::min(text.find(delimiter, start), length);
        if (end > start)
            pieces.push_back(text.substr(start, end - start));
        start = end + 1;
    }
    return pieces;
}

} // namespace Orvane::HWIHelper
