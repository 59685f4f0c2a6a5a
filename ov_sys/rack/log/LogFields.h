// What an access was asked and what it gave, as the fields of a log line.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <type_traits>
#include <vector>

namespace Orvane::RackLog {

// Text as it may stand in a line: separators, backslashes, what a terminal obeys and bytes that are no UTF-8
// are written as \x1B.
void appendText(std::string& to, std::string_view text);

// NAME=VALUE, with semicolons between them; a list has several of one name. Made while there is a log only:
// otherwise nothing is done. Throws nothing: without memory the rest is left out. One thread.
class Fields {
public:
    explicit Fields(bool wanted) noexcept : wanted_(wanted) {}

    template <class Integer, std::enable_if_t<std::is_integral_v<Integer>, int> = 0>
    Fields& add(const char* name, Integer value) noexcept {
        return addNumber(name, static_cast<std::int64_t>(value));
    }
    Fields& add(const char* name, float value) noexcept; // as short as it comes back the same
    // Two digits for each byte. Of more than 8192 the first are written, and the number as NAME.length.
    Fields& add(const char* name, const std::vector<std::uint8_t>& bytes) noexcept;
    // Of more than 8192 bytes the first are written, and the number as NAME.length.
    Fields& add(const char* name, std::string_view text) noexcept;
    Fields& add(const char* name, const std::vector<std::string>& texts) noexcept;
    // "0x50", in whole bytes.
    Fields& addHex(const char* name, std::uint32_t value) noexcept;

    const std::string& text() const noexcept { return text_; }

private:
    Fields& addNumber(const char* name, std::int64_t value) noexcept;
    template <class Write>
    Fields& field(const char* name, std::size_t length, Write write) noexcept;

    bool wanted_;
    std::string text_;
};

} // namespace Orvane::RackLog
