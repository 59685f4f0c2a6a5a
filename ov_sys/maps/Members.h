// The members of an object of the source form, each read as what it has to be.
#pragma once

#include "ov_sys/maps/Json.h"

#include <functional>
#include <initializer_list>
#include <optional>

namespace Orvane::Maps {

constexpr std::size_t kLongestText = 4096; // bytes of a "text"
constexpr std::size_t kLongestWord = 200;  // bytes of any other string

// Whether a text is an identifier of C and Python, up to 64 characters, where allowed with an index:
// "LANE[2]".
bool isIdentifier(std::string_view text, bool withIndex = false);

// Reads members; whatever is wrong goes to the problems, and reads as absent.
class Members {
public:
    // `value` has to be an object with no other members than the named ones.
    Members(const JsonValue& value, std::initializer_list<std::string_view> known, Problems& problems);

    // `value` may have any others.
    Members(const JsonValue& value, Problems& problems) : value_(value), problems_(problems) {}

    const JsonValue* find(std::string_view name) const { return value_.member(name); }
    // The member, which must be there.
    const JsonValue* need(std::string_view name) const;
    std::optional<std::string> string(std::string_view name, std::size_t longest = kLongestWord) const;
    // A whole number, or a string that holds one.
    std::optional<std::uint64_t> number(std::string_view name, std::uint64_t most,
                                        std::uint64_t least = 0) const;
    std::optional<double> decimal(std::string_view name) const;
    std::optional<bool> flag(std::string_view name) const;
    // Calls for each member of an object or element of an array; a member of another kind is a problem.
    void each(std::string_view name, JsonValue::Kind kind,
              const std::function<void(const JsonValue&)>& take) const;
    void refuse(std::string_view name, std::string why) const;

private:
    const JsonValue& value_;
    Problems& problems_;
};

} // namespace Orvane::Maps
