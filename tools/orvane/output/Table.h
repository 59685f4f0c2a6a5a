// Rows of results as aligned columns of text.
#pragma once

#include "tools/orvane/output/Console.h"

#include <functional>
#include <nlohmann/json.hpp>
#include <string>
#include <type_traits>
#include <vector>

namespace OrvaneTool {

// One result: as text, made visible, and as what it is in JSON (the text, when nothing else is given).
struct Cell {
    // NOLINTBEGIN(google-explicit-constructor): rows are written as lists of texts and cells
    Cell(const std::string& shown) : text(visible(shown)), value(shown) {}
    Cell(const char* shown) : Cell(std::string(shown)) {}
    template <class Number,
              std::enable_if_t<std::is_arithmetic_v<Number> && !std::is_same_v<Number, char>, int> = 0>
    Cell(Number number) : text(fmt::format("{}", number)), value(number) {}
    // NOLINTEND(google-explicit-constructor)
    Cell(const std::string& shown, nlohmann::ordered_json meant, Painted inColour = {})
        : text(visible(shown)), value(std::move(meant)), painted(std::move(inColour)) {}

    std::string text;
    nlohmann::ordered_json value;
    Painted painted; // the text with escape sequences, where it is not to be plain
};

struct Column {
    std::string key;   // the member of a record that is shown; of a table without records empty
    std::string title; // over the text; empty: not there
    bool right = false;
};

using Row = std::vector<Cell>; // a cell for each column

// Prints rows of any number: `rows` gives them one by one to what it is called with, and is called twice,
// once to see how wide they are. Columns are two blanks apart, under their titles in bold. What is wider than
// the terminal goes on in further lines, between columns or, of the last one, between words. Without a row
// there are no titles. Returns the number of lines. Throws what flush() of the stream throws.
using Rows = std::function<void(const std::function<void(const Row&)>&)>;
std::size_t printRows(Stream& stream, const std::vector<Column>& columns, const Rows& rows);

// Rows that are kept until they are printed.
class Table {
public:
    explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

    void add(Row row) { rows_.push_back(std::move(row)); }
    std::size_t size() const { return rows_.size(); }

    // As printRows().
    std::size_t print(Stream& stream) const { return printPart(stream, 0, rows_.size()); }
    // `count` rows from `first` on, in columns as wide as those of all.
    std::size_t printPart(Stream& stream, std::size_t first, std::size_t count) const;

private:
    std::vector<Column> columns_;
    std::vector<Row> rows_;
};

} // namespace OrvaneTool
