// Columns that line up, and rows that fit the terminal.
#include "tools/orvane/output/Table.h"

#include "tools/commandline/Wrap.h"

#include <algorithm>
#include <sstream>
#include <string_view>

namespace OrvaneTool {
namespace {

constexpr std::size_t kGap = 2;     // blanks between columns
constexpr std::size_t kFurther = 4; // blanks before what goes on below

std::size_t longestWord(std::string_view text) {
    std::size_t longest = 0;
    while (!text.empty()) {
        const std::size_t end = std::min(text.find(' '), text.size());
        longest = std::max(longest, end);
        text.remove_prefix(std::min(end + 1, text.size()));
    }
    return longest;
}

// How a column is laid out.
struct Place {
    std::size_t width = 0;   // of its widest cell
    std::size_t word = 0;    // its longest word
    std::size_t start = 0;   // first character on its line
    std::size_t room = 0;    // characters that it has there
    bool beginsLine = false; // below the columns before it
};

// Prints the rows of one table.
class Layout {
public:
    Layout(Stream& stream, const std::vector<Column>& columns) : stream_(stream), columns_(columns) {
        for (std::size_t i = 0; i < columns.size(); ++i)
            if (!columns[i].title.empty())
                shown_.push_back(i);
        places_.resize(columns.size());
        for (const std::size_t i : shown_)
            measure(i, columns[i].title);
    }

    void measure(const Row& row) {
        for (const std::size_t i : shown_)
            measure(i, row[i].text);
    }

    // Gives each column its place, once all rows are measured.
    void settle() {
        const std::size_t all = stream_.isTerminal() ? std::max<std::size_t>(stream_.width(), 1) : SIZE_MAX;
        std::size_t next = 0;
        for (const std::size_t i : shown_) {
            Place& place = places_[i];
            const bool last = i == shown_.back();
            const std::size_t least = last ? place.word : place.width; // the last one may break between words
            place.beginsLine = next > 0 && next + least > all;
            place.start = place.beginsLine ? kFurther : next;
            place.room = std::max(std::min(place.width, all - std::min(all, place.start)), place.word);
            next = place.start + place.room + kGap;
        }
    }

    void printTitles() {
        Row titles;
        for (const Column& column : columns_)
            titles.emplace_back(column.title, nullptr, stream_.painted(Colour::Bold, column.title));
        print(titles);
    }

    void print(const Row& row) {
        std::string line;
        std::size_t end = 0; // characters of the line that are seen
        for (const std::size_t i : shown_) {
            const Place& place = places_[i];
            if (place.beginsLine) {
                write(line);
                line.clear();
                end = 0;
            }
            line.append(place.start - end, ' ');
            add(line, row[i], place, columns_[i].right);
            end = place.start + place.room;
        }
        write(line);
    }

    std::size_t lines() const { return lines_; }

private:
    void measure(std::size_t column, const std::string& text) {
        places_[column].width = std::max(places_[column].width, text.size());
        if (stream_.isTerminal()) // elsewhere no line is too long
            places_[column].word = std::max(places_[column].word, longestWord(text));
    }

    // The cell, to the end of its room, or of its last line where it has several.
    void add(std::string& line, const Cell& cell, const Place& place, bool right) {
        const std::string& seen = cell.painted.text.empty() ? cell.text : cell.painted.text;
        if (cell.text.size() <= place.room) {
            const std::string gap(place.room - cell.text.size(), ' ');
            line += right ? gap + seen : seen + gap;
            return;
        }
        std::istringstream parts(wrapped(cell.text, place.room, 0));
        std::string part;
        std::getline(parts, part);
        line += part;
        std::size_t length = part.size();
        while (std::getline(parts, part)) {
            write(line);
            line = std::string(place.start, ' ') + part;
            length = part.size();
        }
        line.append(place.room - std::min(place.room, length), ' ');
    }

    void write(const std::string& line) {
        stream_.writeAsIs(line.substr(0, line.find_last_not_of(' ') + 1) + '\n');
        stream_.flushWhenFull();
        ++lines_;
    }

    Stream& stream_;
    const std::vector<Column>& columns_;
    std::vector<std::size_t> shown_; // columns with a title
    std::vector<Place> places_;      // of each column
    std::size_t lines_ = 0;
};

} // namespace

std::size_t printRows(Stream& stream, const std::vector<Column>& columns, const Rows& rows) {
    Layout layout(stream, columns);
    rows([&](const Row& row) { layout.measure(row); });
    layout.settle();
    rows([&](const Row& row) {
        if (layout.lines() == 0)
            layout.printTitles();
        layout.print(row);
    });
    return layout.lines();
}

std::size_t Table::printPart(Stream& stream, std::size_t first, std::size_t count) const {
    bool measured = false; // the first time all rows are looked at
    return printRows(stream, columns_, [&](const auto& take) {
        for (std::size_t i = 0; i < rows_.size(); ++i)
            if (!measured || (i >= first && i - first < count))
                take(rows_[i]);
        measured = true;
    });
}

} // namespace OrvaneTool
