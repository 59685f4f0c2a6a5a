// The three forms of rows.
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

using Columns = std::vector<Column>;

std::vector<std::size_t> widthsOf(const Columns& columns, const Rows& rows) {
    std::vector<std::size_t> widths;
    widths.reserve(columns.size());
    for (const Column& column : columns)
        widths.push_back(column.title.size());
    rows([&](const Row& row) {
        for (std::size_t i = 0; i < columns.size(); ++i)
            widths[i] = std::max(widths[i], row[i].text.size());
    });
    return widths;
}

void printText(Stream& stream, const Columns& columns, const Rows& rows) {
    const std::vector<std::size_t> widths = widthsOf(columns, rows);
    const auto line = [&](auto textOf, auto paintedOf) {
        std::string text;
        for (std::size_t i = 0; i < columns.size(); ++i) {
            if (columns[i].title.empty())
                continue;
            const std::string gap(widths[i] - textOf(i).size(), ' ');
            text += text.empty() ? "" : "  ";
            text += columns[i].right ? gap + paintedOf(i) : paintedOf(i) + gap;
        }
        stream.writeAsIs(trimmed(text) + '\n');
        stream.flushWhenFull();
    };
    const auto title = [&](std::size_t i) { return columns[i].title; };
    line(title, [&](std::size_t i) { return stream.painted(Colour::Bold, columns[i].title).text; });
    rows([&](const Row& row) {
        line([&](std::size_t i) { return row[i].text; },
             [&](std::size_t i) { return row[i].painted.text.empty() ? row[i].text : row[i].painted.text; });
    });
}

std::string indented(std::string json) {
    for (std::size_t end = 0; (end = json.find('\n', end)) != std::string::npos; end += 3)
        json.insert(end + 1, "  ");
    return "  " + json;
}

void printJson(Stream& stream, const Columns& columns, const Rows& rows) {
    std::string before = "[\n";
    rows([&](const Row& row) {
        auto object = nlohmann::ordered_json::object();
        for (std::size_t i = 0; i < columns.size(); ++i)
            if (!columns[i].key.empty())
                object[columns[i].key] = row[i].value;
        // Names come from boards: what is not UTF-8 is replaced, not thrown about.
        const std::string json = object.dump(2, ' ', false, nlohmann::ordered_json::error_handler_t::replace);
        stream.writeAsIs(before + visibleJson(indented(json)));
        stream.flushWhenFull();
        before = ",\n";
    });
    stream.writeAsIs(before.front() == '[' ? "[]\n" : "\n]\n");
}

void printCsv(Stream& stream, const Columns& columns, const Rows& rows) {
    const auto line = [&](auto textOf) {
        std::string text;
        for (std::size_t i = 0; i < columns.size(); ++i)
            if (!columns[i].key.empty())
                text += "," + quoted(textOf(i));
        stream.writeAsIs(text.substr(text.empty() ? 0 : 1) + '\n');
        stream.flushWhenFull();
    };
    line([&](std::size_t i) { return columns[i].key; });
    rows([&](const Row& row) { line([&](std::size_t i) { return asText(row[i].text); }); });
}

} // namespace

void printRows(Stream& stream, Format format, const Columns& columns, const Rows& rows) {
    const auto print = format == Format::Json ? printJson : format == Format::Csv ? printCsv : printText;
    print(stream, columns, rows);
}

void Table::print(Stream& stream, Format format) const {
    printRows(stream, format, columns_, [this](const auto& take) {
        for (const Row& row : rows_)
            take(row);
    });
}

} // namespace OrvaneTool
