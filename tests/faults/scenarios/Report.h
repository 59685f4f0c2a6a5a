// What a fault run says: tables of figures, and every invariant that did not hold.
#pragma once

#include <cstdio>
#include <mutex>
#include <sstream>
#include <string>
#include <utility>
#include <vector>

namespace OrvaneFaults {

// A table in Markdown, its columns as wide as their widest cell. One thread.
class Table {
public:
    Table(std::string title, std::vector<std::string> columns);

    // Adds a row; each cell is shown as operator<< shows it.
    template <class... Cells>
    void row(const Cells&... cells) {
        rows_.push_back({shown(cells)...});
    }
    std::string text() const;

private:
    template <class Cell>
    static std::string shown(const Cell& cell) {
        std::ostringstream out;
        out << cell;
        return out.str();
    }

    std::string title_;
    std::vector<std::vector<std::string>> rows_; // the first is the heading
};

// Collects broken invariants. Any thread.
class Report {
public:
    // Remembers, and shows at once, that something which must hold does not.
    template <class... Parts>
    void expect(bool holds, const Parts&... parts) {
        if (holds)
            return;
        std::ostringstream text;
        (text << ... << parts);
        broken(text.str());
    }
    // Shows a table.
    void show(const Table& table);
    std::size_t brokenInvariants() const;

private:
    void broken(const std::string& text);

    mutable std::mutex mutex_;
    std::size_t broken_ = 0;
};

// Where figures go from now on; the library itself writes to both standard streams.
void figuresTo(std::FILE* file);
// Writes a line of the run's own.
void say(const std::string& line);

// Milliseconds as seconds with three digits.
std::string seconds(double milliseconds);
// A share of 1 in per cent.
std::string percent(double share);

} // namespace OrvaneFaults
