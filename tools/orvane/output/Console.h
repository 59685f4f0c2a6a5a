// Where a command writes: its two streams, whether they are terminals, and colours.
#pragma once

#include "tools/orvane/output/VisibleText.h"

#include <fmt/format.h>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>

namespace OrvaneTool {

enum class Colour { None, Red, Green, Yellow, Blue, Dim, Bold };

// Text with escape sequences of our own in it, the rest of it visible().
struct Painted {
    std::string text;
};

// One of the two output streams. Text is kept until flush(), which the destructor does not do. All of it is
// made visible on its way, for much of it comes from boards and files; what may hold escape sequences says so
// by its type or by writeAsIs(). One thread at a time.
class Stream {
    template <class Argument>
    static decltype(auto) shown(const Argument& argument) {
        if constexpr (std::is_same_v<Argument, Painted>)
            return (argument.text);
        else if constexpr (std::is_convertible_v<const Argument&, std::string_view>)
            return visible(argument);
        else {
            static_assert(std::is_arithmetic_v<Argument> && !std::is_same_v<Argument, char>,
                          "what else is printed cannot be seen to be visible");
            return (argument);
        }
    }

public:
    // The descriptor stays the caller's.
    explicit Stream(int descriptor);

    bool isTerminal() const { return terminal_; }
    bool hasColour() const { return colour_; }
    // Columns and lines of the terminal; 80 and 24 where there is none.
    unsigned width() const;
    unsigned height() const;

    // Whole lines.
    void write(std::string_view text) { buffer_ += visibleLines(text); }
    // Text of our own, or that was made visible.
    void writeAsIs(std::string_view text) { buffer_ += text; }
    // What a board's own program printed: visible on a terminal, to a file or a pipe byte for byte.
    void relay(std::string_view text) { terminal_ ? write(text) : writeAsIs(text); }
    // Numbers, text of one line, and what is painted, in a format of our own.
    template <class... Arguments>
    void print(fmt::format_string<decltype(shown(std::declval<const Arguments&>()))...> format,
               const Arguments&... arguments) {
        buffer_ += fmt::format(format, shown(arguments)...);
    }
    // Blocks until everything is written. Throws OutputClosed when nobody reads, Failure on any other error;
    // what was not written is dropped then.
    void flush();
    // Throws OutputClosed when nobody reads what is written to a pipe or terminal any more.
    void requireReader() const;
    // Flushes, once there is as much as is worth a system call: for output of any length.
    void flushWhenFull();
    // The same for what may get lost: nothing is thrown.
    void flushIfPossible() noexcept;

    // The text in a colour, on a terminal that wants colours (NO_COLOR unset or empty, TERM not "dumb").
    Painted painted(Colour colour, std::string_view text) const;

private:
    int descriptor_;
    bool terminal_;
    bool colour_;
    std::string buffer_;
};

struct Console {
    Stream out;
    Stream err;
};

} // namespace OrvaneTool
