// The one way in which the library tells its diagnostic lines.
#pragma once

#include "ov_sys/Interface/foundation/DiagnosticsSink.h"

#include <charconv>
#include <initializer_list>
#include <string>
#include <string_view>
#include <type_traits>

namespace Orvane::Diagnostics {

// A number that a line shows in upper-case hexadecimal digits.
struct Hex {
    unsigned value;
};

// One piece of a line: text as it is, or the digits of a number, whatever the application's locale. Not to
// outlive what it is made from.
class Piece {
public:
    // NOLINTBEGIN(google-explicit-constructor): the parts of a line are what they are
    Piece(const char* text) : text_(text) {}
    Piece(const std::string& text) : text_(text) {}
    Piece(Hex number) : text_(digits_, hexadecimal(number.value)) {}
    template <class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
    Piece(Integer number) : text_(digits_, lengthOf(std::to_chars(digits_, digits_ + kMostDigits, number))) {}
    // NOLINTEND(google-explicit-constructor)
    Piece(char) = delete;
    Piece(bool) = delete;
    Piece(const Piece&) = delete;
    Piece& operator=(const Piece&) = delete;

    std::string_view text() const { return text_; }

private:
    static constexpr std::size_t kMostDigits = 20;

    std::size_t lengthOf(std::to_chars_result end) const {
        return static_cast<std::size_t>(end.ptr - digits_);
    }
    std::size_t hexadecimal(unsigned number);

    char digits_[kMostDigits]; // of a number
    std::string_view text_;
};

// Joins the pieces to one line, with a line end behind, and hands it to the sink; without one it goes to the
// level's stream in a single write, so that lines of several threads never mix, and is flushed. Never throws:
// when there is no memory for the line, its pieces go to the stream one by one. Any thread.
void report(Level level, std::initializer_list<Piece> pieces) noexcept;

template <class... Parts>
void error(const Parts&... parts) noexcept {
    report(Level::Error, {parts...});
}

template <class... Parts>
void warning(const Parts&... parts) noexcept {
    report(Level::Warning, {parts...});
}

// Information, on the standard output stream.
template <class... Parts>
void output(const Parts&... parts) noexcept {
    report(Level::Information, {parts...});
}

// While it lives, the calling thread's lines are about the board of that name; the innermost one counts. The
// name is to outlive it.
class BoardScope {
public:
    explicit BoardScope(const std::string& board) noexcept;
    ~BoardScope();
    BoardScope(const BoardScope&) = delete;
    BoardScope& operator=(const BoardScope&) = delete;

private:
    const char* outer_;
};

} // namespace Orvane::Diagnostics
