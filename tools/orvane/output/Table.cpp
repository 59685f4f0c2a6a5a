#include "tools/orvane/output/Table.h"

#include <algorithm>
#include <string_view>

namespace OrvaneTool {
namespace {

std::string quoted(const std::string& text) {
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

std::string trimmed(const std::string& line) {
    return line.substr(0, line.find_last_not_of(' ') + 1);
}

} // namespace

void Table::print(Stream& stream, Format format) const {
    if (format == Format::Json)
        printJson(stream);
    else if (format == Format::Csv)
        printCsv(stream);
    else
        printText(stream);
}

void Table::printText(Stream& stream) const {
    std::vector<std::size_t> widths;
    for (std::size_t i = 0; i < columns_.size(); ++i) {
        std::size_t widest = columns_[i].title.size();
        for (const auto& row : rows_)
            widest = std::max(widest, row[i].text.size());
        widths.push_back(widest);
    }
    const auto line = [&](auto textOf, auto paintedOf) {
        std::string text;
        for (std::size_t i = 0; i < columns_.size(); ++i) {
            if (columns_[i].title.empty())
                continue;
            const std::string gap(widths[i] - textOf(i).size(), ' ');
            text += text.empty() ? "" : "  ";
            text += columns_[i].right ? gap + paintedOf(i) : paintedOf(i) + gap;
        }
        stream.writeAsIs(trimmed(text) + '\n');
    };
    const auto title = [&](std::size_t i) { return columns_[i].title; };
    line(title, [&](std::size_t i) { return stream.painted(Colour::Bold, columns_[i].title).text; });
    for (const auto& row : rows_)
        line([&](std::size_t i) { return row[i].text; },
             [&](std::size_t i) { return row[i].painted.text.empty() ? row[i].text : row[i].painted.text; });
}

void Table::printJson(Stream& stream) const {
    auto array = nlohmann::ordered_json::array();
    for (const auto& row : rows_) {
        auto object = nlohmann::ordered_json::object();
        for (std::size_t i = 0; i < columns_.size(); ++i)
            if (!columns_[i].key.empty())
                object[columns_[i].key] = row[i].value;
        array.push_back(object);
    }
    // Names come from boards: what is not UTF-8 is replaced, not thrown about.
    stream.writeAsIs(
        visibleJson(array.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace)) + '\n');
}

void Table::printCsv(Stream& stream) const {
    const auto line = [&](auto textOf) {
        std::string text;
        for (std::size_t i = 0; i < columns_.size(); ++i)
            if (!columns_[i].key.empty())
                text += "," + quoted(textOf(i));
        stream.writeAsIs(text.substr(text.empty() ? 0 : 1) + '\n');
    };
    line([&](std::size_t i) { return columns_[i].key; });
    for (const auto& row : rows_)
        line([&](std::size_t i) { return asText(row[i].text); });
}

} // namespace OrvaneTool
