// The three forms of rows.
#include "tools/orvane/output/Table.h"

#include "tools/orvane/output/Csv.h"

#include <algorithm>

namespace OrvaneTool {
namespace {

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
        std::vector<std::string> fields;
        for (std::size_t i = 0; i < columns.size(); ++i)
            if (!columns[i].key.empty())
                fields.push_back(csvTextField(textOf(i)));
        stream.writeAsIs(csvLine(fields));
        stream.flushWhenFull();
    };
    line([&](std::size_t i) { return columns[i].key; });
    rows([&](const Row& row) { line([&](std::size_t i) { return row[i].text; }); });
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

void Table::printPart(Stream& stream, std::size_t first, std::size_t count) const {
    bool measured = false; // the first time all rows are looked at
    printRows(stream, Format::Text, columns_, [&](const auto& take) {
        for (std::size_t i = 0; i < rows_.size(); ++i)
            if (!measured || (i >= first && i - first < count))
                take(rows_[i]);
        measured = true;
    });
}

} // namespace OrvaneTool
