// Prints tables, lines and broken invariants.
#include "tests/faults/scenarios/Report.h"

#include <algorithm>
#include <iomanip>

namespace OrvaneFaults {
namespace {

std::FILE* figuresStream = stdout;

} // namespace

void figuresTo(std::FILE* file) {
    figuresStream = file;
}

void say(const std::string& line) {
    std::fputs((line + "\n").c_str(), figuresStream);
    std::fflush(figuresStream);
}

Table::Table(std::string title, std::vector<std::string> columns)
    : title_(std::move(title)), rows_{std::move(columns)} {}

std::string Table::text() const {
    std::ostringstream out;
    std::vector<std::size_t> widths(rows_.front().size());
    for (const auto& row : rows_)
        for (std::size_t i = 0; i < row.size(); ++i)
            widths[i] = std::max(widths[i], row[i].size());
    out << "### " << title_ << "\n\n";
    for (std::size_t number = 0; number < rows_.size(); ++number) {
        for (std::size_t i = 0; i < widths.size(); ++i)
            out << "| " << std::left << std::setw(static_cast<int>(widths[i])) << rows_[number][i] << ' ';
        out << "|\n";
        if (number > 0)
            continue;
        for (const std::size_t width : widths)
            out << '|' << std::string(width + 2, '-');
        out << "|\n";
    }
    return out.str();
}

void Report::show(const Table& table) {
    const std::lock_guard<std::mutex> lock(mutex_);
    say(table.text());
}

void Report::broken(const std::string& text) {
    const std::lock_guard<std::mutex> lock(mutex_);
    constexpr std::size_t kShown = 50; // of what goes wrong a thousand times the first will do
    if (++broken_ <= kShown)
        say("BROKEN: " + text);
}

std::size_t Report::brokenInvariants() const {
    const std::lock_guard<std::mutex> lock(mutex_);
    return broken_;
}

std::string seconds(double milliseconds) {
    std::ostringstream out;
    out << std::fixed << std::setprecision(3) << milliseconds / 1000;
    return out.str();
}

std::string percent(double share) {
    std::ostringstream out;
    out << share * 100 << " %";
    return out.str();
}

} // namespace OrvaneFaults
