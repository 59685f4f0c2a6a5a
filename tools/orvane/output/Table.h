// Rows of results as aligned columns, JSON or CSV.
#pragma once

#include "tools/orvane/output/Console.h"

#include <nlohmann/json.hpp>
#include <string>
#include <vector>

namespace OrvaneTool {

enum class Format { Text, Json, Csv };

// One result: as text, made visible, and as what it is in JSON (the text, when nothing else is given).
struct Cell {
    // NOLINTBEGIN(google-explicit-constructor): rows are written as lists of texts and cells
    Cell(const std::string& shown) : text(visible(shown)), value(shown) {}
    Cell(const char* shown) : Cell(std::string(shown)) {}
    // NOLINTEND(google-explicit-constructor)
    Cell(const std::string& shown, nlohmann::ordered_json meant, Painted inColour = {})
        : text(visible(shown)), value(std::move(meant)), painted(std::move(inColour)) {}

    std::string text;
    nlohmann::ordered_json value;
    Painted painted; // the text with escape sequences, where it is not to be plain
};

struct Column {
    std::string key;   // in JSON and CSV; empty: not there
    std::string title; // over the text; empty: not there
    bool right = false;
};

// Rows have a cell for each column.
class Table {
public:
    explicit Table(std::vector<Column> columns) : columns_(std::move(columns)) {}

    void add(std::vector<Cell> row) { rows_.push_back(std::move(row)); }
    std::size_t size() const { return rows_.size(); }

    // Text columns are two blanks apart, under their titles in bold; JSON is one array of objects; CSV begins
    // with the keys, and text that a spreadsheet would take for a formula has an apostrophe before it.
    void print(Stream& stream, Format format) const;

private:
    void printText(Stream& stream) const;
    void printJson(Stream& stream) const;
    void printCsv(Stream& stream) const;

    std::vector<Column> columns_;
    std::vector<std::vector<Cell>> rows_;
};

} // namespace OrvaneTool
