// Reading of lists and ranges of devices and PHYs.
#include "tools/orvane/board/DeviceNames.h"

#include "tools/orvane/board/Numbers.h"
#include "tools/orvane/output/Errors.h"

#include <algorithm>
#include <cctype>
#include <cerrno>
#include <fmt/format.h>
#include <fnmatch.h>
#include <fstream>

namespace OrvaneTool {
namespace {

constexpr unsigned kLastPort = 19;
constexpr unsigned kLastPhy = 127;
constexpr std::uint64_t kMostInRange = 65536;

[[noreturn]] void refuse(const std::string& name) {
    throw UsageError(fmt::format(
        "'{}' is no device name: it is BOARD:PORT, such as OV0001:0 ('orvane list' shows them)", name));
}

std::string upperCase(std::string text) {
    std::transform(text.begin(), text.end(), text.begin(),
                   [](unsigned char each) { return static_cast<char>(std::toupper(each)); });
    return text;
}

bool isDigit(char each) {
    return each >= '0' && each <= '9';
}

bool isNumber(const std::string& text) {
    return !text.empty() && text.size() < 10 && std::all_of(text.begin(), text.end(), isDigit);
}

std::vector<std::string> splitAt(const std::string& text, char separator) {
    std::vector<std::string> parts(1);
    for (const char each : text)
        if (each == separator)
            parts.emplace_back();
        else
            parts.back() += each;
    return parts;
}

// A text and the number that it ends with.
struct Numbered {
    std::string text;
    std::string digits;
};

Numbered numbered(const std::string& name) {
    const auto end = std::find_if_not(name.rbegin(), name.rend(), isDigit).base();
    return {{name.begin(), end}, {end, name.end()}};
}

// The boards of "OV0001-OV0020"; a name with a dash in it is a name.
std::vector<std::string> boardsOf(const std::string& text) {
    for (std::size_t dash = text.find('-'); dash != std::string::npos; dash = text.find('-', dash + 1)) {
        const Numbered first = numbered(text.substr(0, dash));
        const Numbered last = numbered(text.substr(dash + 1));
        if (first.text != last.text || !isNumber(first.digits) || first.digits.size() != last.digits.size())
            continue;
        const std::uint64_t begin = std::stoull(first.digits);
        const std::uint64_t end = std::stoull(last.digits);
        if (end < begin || end - begin >= kMostInRange)
            throw UsageError(fmt::format("'{}' ends before it begins, or names too many boards", text));
        std::vector<std::string> boards;
        for (std::uint64_t each = begin; each <= end; ++each)
            boards.push_back(fmt::format("{}{:0{}}", first.text, each, first.digits.size()));
        return boards;
    }
    return {text};
}

void addNames(const std::string& name, std::vector<std::string>& names) {
    const std::size_t colon = name.rfind(':');
    if (colon == std::string::npos || colon == 0)
        refuse(name);
    if (isPattern(name))
        return names.push_back(upperCase(name));
    const std::string ports = name.substr(colon + 1);
    const std::size_t dash = ports.find('-');
    const std::string first = ports.substr(0, dash);
    const std::string last = dash == std::string::npos ? first : ports.substr(dash + 1);
    if (!isNumber(first) || !isNumber(last))
        refuse(name);
    const auto begin = numberAs<unsigned>(first, kLastPort, "the port");
    const auto end = numberAs<unsigned>(last, kLastPort, "the port");
    if (end < begin)
        throw UsageError(fmt::format("'{}' ends before it begins", name));
    for (const std::string& board : boardsOf(upperCase(name.substr(0, colon))))
        for (unsigned port = begin; port <= end; ++port)
            names.push_back(fmt::format("{}:{}", board, port));
}

void addFile(const std::string& path, std::vector<std::string>& names) {
    std::ifstream file(path);
    if (!file)
        throw Failure(fmt::format("{}: cannot read: {}", path, errorText(errno)));
    std::string word;
    while (file >> word)
        if (word.front() == '#')
            std::getline(file, word);
        else
            for (const std::string& each : splitAt(word, ','))
                addNames(each, names);
}

} // namespace

std::vector<std::string> deviceNames(const std::string& argument, const Aliases& aliases) {
    std::vector<std::string> names;
    for (const std::string& each : splitAt(argument, ','))
        if (const auto alias = aliases.find(each); alias != aliases.end())
            for (const std::string& meant : deviceNames(alias->second))
                names.push_back(meant);
        else if (!each.empty() && each.front() == '@')
            addFile(each.substr(1), names);
        else
            addNames(each, names);
    if (names.empty())
        throw UsageError(fmt::format("'{}' names no device", argument));
    return names;
}

bool isPattern(const std::string& name) {
    return name.find_first_of("*?[") != std::string::npos;
}

bool matches(const std::string& name, const std::string& pattern) {
    return ::fnmatch(pattern.c_str(), name.c_str(), 0) == 0;
}

std::vector<unsigned> phyNumbers(const std::string& argument) {
    std::vector<unsigned> numbers;
    for (const std::string& each : splitAt(argument, ',')) {
        const std::size_t dash = each.find('-');
        const auto first = numberAs<unsigned>(each.substr(0, dash), kLastPhy, "the PHY");
        const unsigned last = dash == std::string::npos
                                  ? first
                                  : numberAs<unsigned>(each.substr(dash + 1), kLastPhy, "the PHY");
        if (last < first)
            throw UsageError(fmt::format("'{}' ends before it begins", each));
        for (unsigned number = first; number <= last; ++number)
            if (std::find(numbers.begin(), numbers.end(), number) == numbers.end())
                numbers.push_back(number);
    }
    return numbers;
}

DeviceName takenApart(const std::string& name) {
    const std::size_t colon = name.rfind(':');
    return {name.substr(0, colon), numberAs<unsigned>(name.substr(colon + 1), kLastPort, "the port")};
}

} // namespace OrvaneTool
