// Quoting, and what keeps text from being calculated.
#include "tools/orvane/output/Csv.h"

#include <string_view>

namespace OrvaneTool {
namespace {

std::string inQuotes(const std::string& text) {
    if (text.find_first_of(",\"\r\n") == std::string::npos)
        return text;
    std::string result = "\"";
    for (const char each : text)
        result += each == '"' ? std::string("\"\"") : std::string(1, each);
    return result + '"';
}

// Whether it reads as a negative number, such as -40 or -0.5.
bool isNegativeNumber(std::string_view text) {
    const bool digitsOnly = text.find_first_not_of("0123456789.", 1) == std::string_view::npos;
    return text.size() > 1 && text.front() == '-' && digitsOnly;
}

// A spreadsheet calculates what begins with these. Numbers stay numbers, and a single dash no value.
std::string asText(const std::string& text) {
    const bool formula =
        !text.empty() && std::string_view("=+-@").find(text.front()) != std::string_view::npos;
    return formula && text != "-" && !isNegativeNumber(text) ? "'" + text : text;
}

} // namespace

std::string csvField(const Cell& cell) {
    if (cell.value.is_number() || cell.value.is_boolean())
        return cell.value.dump();
    if (!cell.value.is_array() || (!cell.value.empty() && cell.value.front().is_object()))
        return csvTextField(cell.text);
    std::string items;
    for (const auto& item : cell.value)
        items += (items.empty() ? "" : " ") + item.dump();
    return inQuotes(items);
}

std::string csvTextField(const std::string& text) {
    return inQuotes(asText(text));
}

std::string csvLine(const std::vector<std::string>& fields) {
    std::string line;
    for (const std::string& field : fields)
        line.append(field).append(",");
    line.back() = '\n';
    return line;
}

} // namespace OrvaneTool
