// Where a command writes: its two streams, whether they are terminals, and colours.
#pragma once

#include <fmt/format.h>
#include <string>
#include <string_view>
#include <utility>

namespace OrvaneTool {

enum class Colour { None, Red, Green, Yellow, Blue, Dim, Bold };

// One of the two output streams. Text is kept until flush(), which the destructor does not do. One thread at
// a time.
class Stream {
public:
    // The descriptor stays the caller's.
    explicit Stream(int descriptor);

    bool isTerminal() const { return terminal_; }
    bool hasColour() const { return colour_; }
    // Columns and lines of the terminal; 80 and 24 where there is none.
    unsigned width() const;
    unsigned height() const;

    void write(std::string_view text) { buffer_ += text; }
    template <class... Arguments>
    void print(fmt::format_string<Arguments...> format, Arguments&&... arguments) {
        buffer_ += fmt::format(format, std::forward<Arguments>(arguments)...);
    }
    // Blocks until everything is written. Throws OutputClosed when nobody reads, Failure on any other error;
    // what was not written is dropped then.
    void flush();
    // The same for what may get lost: nothing is thrown.
    void flushIfPossible() noexcept;

    // The text in a colour, on a terminal that wants colours (NO_COLOR unset or empty, TERM not "dumb").
    std::string painted(Colour colour, std::string_view text) const;

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
