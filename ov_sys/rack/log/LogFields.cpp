// How numbers, bytes and texts are written.
#include "ov_sys/rack/log/LogFields.h"

#include "ov_sys/Interface/foundation/Utf8.h"

#include <algorithm>
#include <charconv>
#include <cstddef>
#include <exception>

namespace Orvane::RackLog {
namespace {

constexpr std::size_t kLongest = 8192; // bytes of one field

void appendByte(std::string& to, unsigned char byte) {
    constexpr const char* kDigits = "0123456789ABCDEF";
    to += kDigits[byte >> 4U];
    to += kDigits[byte & 0xFU];
}

bool isSeparator(char32_t code) noexcept {
    return code == U',' || code == U';' || code == U'"' || code == U'\\';
}

} // namespace

void appendText(std::string& to, std::string_view text) {
    while (!text.empty()) {
        const Utf8Character next = firstCharacter(text);
        const std::string_view bytes = text.substr(0, std::max<std::size_t>(next.bytes, 1));
        if (next.bytes > 0 && isVisible(next.code) && !isSeparator(next.code))
            to += bytes;
        else
            for (const char byte : bytes)
                appendByte(to += "\\x", static_cast<unsigned char>(byte));
        text.remove_prefix(bytes.size());
    }
}

// `length`: of a value of which `write` writes kLongest bytes at most.
template <class Write>
Fields& Fields::field(const char* name, std::size_t length, Write write) noexcept {
    if (!wanted_)
        return *this;
    try {
        if (!text_.empty())
            text_ += ';';
        (text_ += name) += '=';
        write();
        if (length > kLongest)
            ((text_ += ';') += name) += ".length=" + std::to_string(length);
    } catch (const std::exception&) {
        wanted_ = false;
    }
    return *this;
}

Fields& Fields::addNumber(const char* name, std::int64_t value) noexcept {
    return field(name, 0, [&] { text_ += std::to_string(value); });
}

Fields& Fields::addHex(const char* name, std::uint32_t value) noexcept {
    return field(name, 0, [&] {
        text_ += "0x";
        for (unsigned shift = 32; shift > 0;) {
            shift -= 8;
            if (shift == 0 || value >> shift != 0)
                appendByte(text_, static_cast<unsigned char>(value >> shift));
        }
    });
}

Fields& Fields::add(const char* name, float value) noexcept {
    return field(name, 0, [&] {
        char digits[32];
        const auto [end, error] = std::to_chars(digits, digits + sizeof digits, value);
        text_.append(digits, error == std::errc{} ? end : digits);
    });
}

Fields& Fields::add(const char* name, const std::vector<std::uint8_t>& bytes) noexcept {
    return field(name, bytes.size(), [&] {
        const std::size_t count = std::min(bytes.size(), kLongest);
        for (std::size_t i = 0; i < count; ++i)
            appendByte(text_, bytes[i]);
    });
}

Fields& Fields::add(const char* name, std::string_view text) noexcept {
    return field(name, text.size(), [&] { appendText(text_, text.substr(0, kLongest)); });
}

Fields& Fields::add(const char* name, const std::vector<std::string>& texts) noexcept {
    for (const std::string& text : texts)
        add(name, std::string_view(text));
    return *this;
}

} // namespace Orvane::RackLog
