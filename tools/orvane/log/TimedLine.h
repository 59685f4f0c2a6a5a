// Lines of a log that has times: eleven columns, whatever kind of access they are of.
#pragma once

#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace OrvaneTool {

// The columns of a line, as they stand there; they live as long as the text.
struct TimedLine {
    std::string_view adapter;
    std::string_view phy;
    std::string_view op; // MR, MW, 2R, 2W, "i2c.read" and the like, "event.opened", "note"
    std::string_view mmd;
    std::string_view address;
    std::string_view value;
    std::string_view time;
    std::string_view port;
    std::string_view outcome;
    std::string_view arguments;
    std::string_view result;
};

// The bytes of the line at the beginning of a text, its end not among them; none when it is no such line.
// Looks no further than it must to see that.
std::optional<std::size_t> timedLineAt(std::string_view text);
// The columns of such a line; none when there are not eleven.
std::optional<TimedLine> timedLine(std::string_view line);

// A text that was written with \x2C for what must not stand in a line.
std::string unescaped(std::string_view text);

// What stands in the columns of arguments and results: NAME=VALUE, several of one name for a list.
class LogFields {
public:
    LogFields() = default;
    explicit LogFields(std::string_view text);

    // The first of that name; empty: there is none.
    std::string text(std::string_view name) const;
    // Its number, decimal or with 0x, or its bytes. Throw Failure for a field that is missing or no such.
    std::uint32_t number(std::string_view name) const;
    double fraction(std::string_view name) const;
    std::vector<std::uint8_t> bytes(std::string_view name) const;

    // The fields in runs, each of which begins with a field of that name.
    std::vector<LogFields> runs(std::string_view name) const;

private:
    std::vector<std::pair<std::string, std::string>> fields_;
};

} // namespace OrvaneTool
