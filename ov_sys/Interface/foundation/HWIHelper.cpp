// Byte-wise text helpers and the parsing of device names.
#include "ov_sys/Interface/foundation/HWIHelper.h"

#include "ov_sys/Interface/foundation/Diagnostics.h"
#include "ov_sys/Interface/foundation/Exceptions.h"

#include <algorithm>
#include <cctype>
#include <chrono>
#include <climits>
#include <cstddef>
#include <optional>
#include <stdexcept>
#include <thread>

namespace Orvane::HWIHelper {

namespace {

void convert(std::string& text, int (*convertByte)(int)) {
    for (char& byte : text)
        byte = static_cast<char>(convertByte(static_cast<unsigned char>(byte)));
}

// The text in which a device name's port number is looked for; none when the name has not one ":" or nothing
// behind it. `board` is set as soon as the ":" is accepted.
std::optional<std::string> portTextOf(const std::string& name, std::string& board) {
    const std::size_t colon = name.find(':');
    if (colon == std::string::npos || name.find(':', colon + 1) != std::string::npos)
        return std::nullopt;
    board = name.substr(0, colon);
    // The length counts from the beginning of the name, so the text usually runs on past the white space; the
    // conversion ends at the first non-digit anyway, and "B: 5" is port 5.
    std::string text = name.substr(colon + 1, name.find_first_of(" \n\r\t", colon + 1));
    if (text.empty())
        return std::nullopt;
    return text;
}

std::optional<int> portOf(const std::string& text) {
    try {
        return std::stoi(text);
    } catch (const std::logic_error&) {
        return std::nullopt;
    }
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
    const std::optional<std::string> text = portTextOf(name, board);
    if (!text)
        throw Exceptions::InvalidName(name);
    const std::optional<int> number = portOf(*text);
    if (!number) {
        Diagnostics::error("Invalid port");
        throw Exceptions::InvalidName(name);
    }
    port = *number;
}

bool isDeviceName(std::string name) {
    std::string board;
    const std::optional<std::string> text = portTextOf(name, board);
    return text && portOf(*text);
}

void mSleep(int ms) {
    std::this_thread::sleep_for(std::chrono::microseconds(static_cast<unsigned>(ms) * 1000U));
}

std::vector<std::string> split(std::string text, std::string delimiter) {
    std::vector<std::string> pieces;
    const std::size_t length = std::min<std::size_t>(text.size(), INT_MAX);
    std::size_t start = 0;
    while (start < length) {
        const std::size_t end = std::min(text.find(delimiter, start), length);
        if (end > start)
            pieces.push_back(text.substr(start, end - start));
        start = end + 1; // docs/limits.md, "Odd on purpose"
    }
    return pieces;
}

} // namespace Orvane::HWIHelper
