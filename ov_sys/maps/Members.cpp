// How a member is found, read as what it has to be, and refused.
#include "ov_sys/maps/Members.h"

#include "ov_sys/maps/Numbers.h"

#include <algorithm>
#include <cctype>

namespace Orvane::Maps {

namespace {

bool isLetter(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_';
}

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

} // namespace

bool isIdentifier(std::string_view text, bool withIndex) {
    constexpr std::size_t kLongest = 64;
    if (withIndex && !text.empty() && text.back() == ']') {
        const std::size_t open = text.find('[');
        // Without '[' all but the end, which then is no part of an identifier.
        const std::string_view digits = text.substr(open + 1, text.size() - open - 2);
        if (!numberIn(digits) || (digits.front() == '0' && digits.size() > 1))
            return false;
        text = text.substr(0, open);
    }
    return !text.empty() && text.size() <= kLongest && isLetter(text.front()) &&
           std::all_of(text.begin(), text.end(), [](char c) { return isLetter(c) || isDigit(c); });
}

Members::Members(const JsonValue& value, std::initializer_list<std::string_view> known, Problems& problems)
    : value_(value), problems_(problems) {
    if (value.kind != JsonValue::Kind::object)
        problems.add(value, "has to be an object");
    else
        for (const JsonValue& each : value)
            if (std::find(known.begin(), known.end(), each.key) == known.end())
                problems.add(each, "is not known here");
}

const JsonValue* Members::need(std::string_view name) const {
    const JsonValue* const found = find(name);
    if (found == nullptr && value_.kind == JsonValue::Kind::object)
        problems_.add(value_, "'" + std::string(name) + "' is missing");
    return found;
}

void Members::refuse(std::string_view name, std::string why) const {
    const JsonValue* const found = find(name);
    problems_.add(found == nullptr ? value_ : *found, std::move(why));
}

std::optional<std::string> Members::string(std::string_view name, std::size_t longest) const {
    const JsonValue* const found = find(name);
    if (found == nullptr)
        return std::nullopt;
    if (found->kind != JsonValue::Kind::string || found->text.size() > longest)
        problems_.add(*found, found->kind != JsonValue::Kind::string
                                  ? "has to be a string"
                                  : "is longer than " + std::to_string(longest) + " bytes");
    else
        return std::string(found->text);
    return std::nullopt;
}

std::optional<std::uint64_t> Members::number(std::string_view name, std::uint64_t most,
                                             std::uint64_t least) const {
    const JsonValue* const found = find(name);
    if (found == nullptr)
        return std::nullopt;
    const bool fits = found->kind == JsonValue::Kind::number || found->kind == JsonValue::Kind::string;
    const auto number = fits ? numberIn(found->text) : std::nullopt;
    if (number && *number >= least && *number <= most)
        return number;
    problems_.add(*found, !number
                              ? "has to be a whole number, as 10, \"0x1F\" or \"0b101\""
                              : "has to be from " + std::to_string(least) + " to " + std::to_string(most));
    return std::nullopt;
}

std::optional<double> Members::decimal(std::string_view name) const {
    const JsonValue* const found = find(name);
    if (found == nullptr)
        return std::nullopt;
    const auto number = found->kind == JsonValue::Kind::number ? decimalIn(found->text) : std::nullopt;
    if (!number)
        problems_.add(*found, "has to be a number");
    return number;
}

std::optional<bool> Members::flag(std::string_view name) const {
    const JsonValue* const found = find(name);
    if (found == nullptr)
        return std::nullopt;
    if (found->kind != JsonValue::Kind::boolean) {
        problems_.add(*found, "has to be true or false");
        return std::nullopt;
    }
    return found->text == "true";
}

void Members::each(std::string_view name, JsonValue::Kind kind,
                   const std::function<void(const JsonValue&)>& take) const {
    const JsonValue* const found = find(name);
    if (found == nullptr)
        return;
    if (found->kind != kind) {
        problems_.add(*found, kind == JsonValue::Kind::object ? "has to be an object" : "has to be an array");
        return;
    }
    for (const JsonValue& element : *found)
        take(element);
}

} // namespace Orvane::Maps
