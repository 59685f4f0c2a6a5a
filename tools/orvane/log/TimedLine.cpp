// Columns, fields and escapes of lines with times.
#include "tools/orvane/log/TimedLine.h"

#include "tools/orvane/output/Errors.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <fmt/format.h>

namespace OrvaneTool {
namespace {

constexpr std::size_t kColumns = 11;
constexpr std::size_t kBeforeTime = 6; // columns
constexpr std::size_t kLongest = 160;  // bytes of those
constexpr std::string_view kTimeForm = "0000-00-00T00:00:00.000000Z,";

bool isTime(std::string_view text) {
    return text.size() >= kTimeForm.size() &&
           std::equal(kTimeForm.begin(), kTimeForm.end(), text.begin(), [](char form, char found) {
               return form == '0' ? found >= '0' && found <= '9' : form == found;
           });
}

int digitOf(char letter) {
    if (letter >= '0' && letter <= '9')
        return letter - '0';
    if (letter >= 'A' && letter <= 'F')
        return letter - 'A' + 10;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

// The byte that two hexadecimal digits are; -1 when they are none.
int byteOf(std::string_view text) {
    const int high = text.size() < 2 ? -1 : digitOf(text[0]);
    const int low = text.size() < 2 ? -1 : digitOf(text[1]);
    return high < 0 || low < 0 ? -1 : high * 16 + low;
}

[[noreturn]] void refuse(std::string_view name, std::string_view text) {
    throw Failure(text.empty() ? fmt::format("the log does not say '{}'", name)
                               : fmt::format("the log says {}={}", name, text));
}

} // namespace

std::optional<std::size_t> timedLineAt(std::string_view text) {
    std::size_t place = 0;
    for (std::size_t column = 0; column < kBeforeTime; ++column) {
        place = text.substr(0, kLongest).find_first_of(",\n", place);
        if (place == std::string_view::npos || text[place] != ',')
            return std::nullopt;
        ++place;
    }
    if (!isTime(text.substr(place)))
        return std::nullopt;
    return std::min(text.find('\n', place), text.size());
}

std::optional<TimedLine> timedLine(std::string_view line) {
    std::array<std::string_view, kColumns> columns;
    for (std::size_t i = 0; i < kColumns; ++i) {
        const std::size_t end = line.find(',');
        const bool last = i + 1 == kColumns;
        if ((end == std::string_view::npos) != last)
            return std::nullopt;
        columns[i] = line.substr(0, end);
        line.remove_prefix(last ? line.size() : end + 1);
    }
    const auto& [adapter, phy, op, mmd, address, value, time, port, outcome, arguments, result] = columns;
    return TimedLine{adapter, phy, op, mmd, address, value, time, port, outcome, arguments, result};
}

std::string unescaped(std::string_view text) {
    std::string result;
    while (!text.empty()) {
        const int byte = text.substr(0, 2) == "\\x" ? byteOf(text.substr(2)) : -1;
        result += byte < 0 ? text.front() : static_cast<char>(byte);
        text.remove_prefix(byte < 0 ? 1 : 4);
    }
    return result;
}

LogFields::LogFields(std::string_view text) {
    while (!text.empty()) {
        const std::string_view field = text.substr(0, text.find(';'));
        text.remove_prefix(std::min(field.size() + 1, text.size()));
        const std::size_t sign = std::min(field.find('='), field.size());
        fields_.emplace_back(field.substr(0, sign), field.substr(std::min(sign + 1, field.size())));
    }
}

std::vector<LogFields> LogFields::runs(std::string_view name) const {
    std::vector<LogFields> found;
    for (const auto& field : fields_) {
        if (field.first == name || found.empty())
            found.emplace_back();
        found.back().fields_.push_back(field);
    }
    return found;
}

std::string LogFields::text(std::string_view name) const {
    const auto found =
        std::find_if(fields_.begin(), fields_.end(), [&](const auto& field) { return field.first == name; });
    return found == fields_.end() ? "" : found->second;
}

std::uint32_t LogFields::number(std::string_view name) const {
    const std::string value = text(name);
    const bool hexadecimal = value.compare(0, 2, "0x") == 0;
    std::uint32_t number = 0;
    const char* const end = value.data() + value.size();
    const auto [stop, problem] =
        std::from_chars(value.data() + (hexadecimal ? 2 : 0), end, number, hexadecimal ? 16 : 10);
    if (value.empty() || problem != std::errc() || stop != end)
        refuse(name, value);
    return number;
}

double LogFields::fraction(std::string_view name) const {
    const std::string value = text(name);
    double number = 0;
    const char* const end = value.data() + value.size();
    const auto [stop, problem] = std::from_chars(value.data(), end, number);
    if (value.empty() || problem != std::errc() || stop != end)
        refuse(name, value);
    return number;
}

std::vector<std::uint8_t> LogFields::bytes(std::string_view name) const {
    const std::string value = text(name);
    std::vector<std::uint8_t> bytes;
    for (std::string_view rest = value; !rest.empty(); rest.remove_prefix(2)) {
        const int byte = byteOf(rest);
        if (byte < 0)
            refuse(name, value);
        bytes.push_back(static_cast<std::uint8_t>(byte));
    }
    return bytes;
}

} // namespace OrvaneTool
