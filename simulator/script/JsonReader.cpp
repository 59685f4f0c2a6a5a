// Types, limits and places of JSON members.
#include "simulator/script/JsonReader.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <fstream>
#include <iterator>

namespace OrvaneSim {
namespace {

std::string shown(const Json& value) {
    return value.dump(-1, ' ', false, Json::error_handler_t::replace);
}

std::string plainReal(double number) {
    std::string text = std::to_string(number);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.')
        text.pop_back();
    return text;
}

// The line and column, both from 1, of the byte number `byte` (from 1).
std::string placeOf(const std::string& text, std::size_t byte) {
    const std::size_t before = std::min(byte == 0 ? 0 : byte - 1, text.size());
    const auto end = text.begin() + static_cast<std::ptrdiff_t>(before);
    const auto line = 1 + std::count(text.begin(), end, '\n');
    const std::size_t lineStart = before == 0 ? std::string::npos : text.rfind('\n', before - 1);
    const std::size_t column = lineStart == std::string::npos ? before + 1 : before - lineStart;
    return "line " + std::to_string(line) + ", column " + std::to_string(column) + ": ";
}

// What the parser says beyond the place, which it counts in its own way.
std::string problemOf(const std::string& message) {
    const std::size_t column = message.find(", column ");
    const std::size_t begin = column == std::string::npos ? std::string::npos : message.find(": ", column);
    return begin == std::string::npos ? message : message.substr(begin + 2);
}

constexpr int kDeepest = 64;

// Builds the value, and refuses a name that an object has twice and lists in lists without end: what walks
// the value takes some of the stack for each level.
class Strictness {
public:
    bool operator()(int depth, Json::parse_event_t event, const Json& value) {
        if (depth >= kDeepest &&
            (event == Json::parse_event_t::object_start || event == Json::parse_event_t::array_start))
            throw ScriptError("nested deeper than " + std::to_string(kDeepest) + " levels");
        if (event == Json::parse_event_t::object_start)
            names_.emplace_back();
        else if (event == Json::parse_event_t::object_end)
            names_.pop_back();
        else if (event == Json::parse_event_t::key && !names_.back().insert(value.get<std::string>()).second)
            throw ScriptError("an object has two members " + shown(value));
        return true;
    }

private:
    std::vector<std::set<std::string>> names_;
};

bool parseWhole(const std::string& text, std::int64_t& number) {
    const bool negative = !text.empty() && text[0] == '-';
    std::string digits = text.substr(negative ? 1 : 0);
    const bool hexadecimal = digits.rfind("0x", 0) == 0 || digits.rfind("0X", 0) == 0;
    if (hexadecimal)
        digits.erase(0, 2);
    std::int64_t value = 0;
    const char* end = digits.data() + digits.size();
    const auto outcome = std::from_chars(digits.data(), end, value, hexadecimal ? 16 : 10);
    number = negative ? -value : value;
    return !digits.empty() && digits[0] != '-' && outcome.ec == std::errc() && outcome.ptr == end;
}

} // namespace

Json parseJson(const std::string& text) {
    try {
        return Json::parse(text, Strictness());
    } catch (const Json::parse_error& problem) {
        throw ScriptError(placeOf(text, problem.byte) + problemOf(problem.what()));
    }
}

Json readJsonFile(const std::string& file) {
    std::ifstream stream(file);
    if (!stream)
        throw ScriptError(file, "cannot be read");
    try {
        return parseJson({std::istreambuf_iterator<char>(stream), {}});
    } catch (const ScriptError& problem) {
        throw ScriptError(file, problem.what());
    }
}

std::string elementPath(const std::string& list, std::size_t index) {
    return list + "[" + std::to_string(index) + "]";
}

std::int64_t wholeNumber(const Json& value, const std::string& path, std::int64_t lowest,
                         std::int64_t highest) {
    std::int64_t number = 0;
    if (value.is_string()) {
        if (!parseWhole(value.get<std::string>(), number))
            throw ScriptError(path, shown(value) + " is no whole number");
    } else if (!value.is_number_integer()) {
        throw ScriptError(path, shown(value) + " is no whole number");
    } else if (value.is_number_unsigned() && value.get<std::uint64_t>() > INT64_MAX) {
        number = INT64_MAX;
    } else {
        number = value.get<std::int64_t>();
    }
    if (number < lowest || number > highest)
        throw ScriptError(path, shown(value) + " is not between " + std::to_string(lowest) + " and " +
                                    std::to_string(highest));
    return number;
}

ObjectReader::ObjectReader(const Json& object, std::string path) : object_(object), path_(std::move(path)) {
    if (!object.is_object())
        throw ScriptError(path_, shown(object) + " is no object");
}

std::string ObjectReader::at(const std::string& member) const {
    return path_.empty() ? member : path_ + "." + member;
}

const Json* ObjectReader::find(const std::string& member) {
    known_.insert(member);
    const auto found = object_.find(member);
    return found == object_.end() ? nullptr : &*found;
}

const Json& ObjectReader::need(const std::string& member) {
    const Json* value = find(member);
    if (!value)
        throw ScriptError(path_, "\"" + member + "\" is missing");
    return *value;
}

std::string ObjectReader::text(const std::string& member, const std::string& fallback) {
    const Json* value = find(member);
    if (!value)
        return fallback;
    if (!value->is_string())
        throw ScriptError(at(member), shown(*value) + " is no text");
    return value->get<std::string>();
}

bool ObjectReader::flag(const std::string& member, bool fallback) {
    const Json* value = find(member);
    if (!value)
        return fallback;
    if (*value == "true" || *value == "false")
        return *value == "true";
    if (!value->is_boolean())
        throw ScriptError(at(member), shown(*value) + " is neither true nor false");
    return value->get<bool>();
}

std::int64_t ObjectReader::number(const std::string& member, std::int64_t fallback, std::int64_t lowest,
                                  std::int64_t highest) {
    const Json* value = find(member);
    return value ? wholeNumber(*value, at(member), lowest, highest) : fallback;
}

double ObjectReader::real(const std::string& member, double fallback, double lowest, double highest) {
    const Json* value = find(member);
    if (!value)
        return fallback;
    double number = NAN;
    if (value->is_number())
        number = value->get<double>();
    if (value->is_string()) {
        const std::string text = value->get<std::string>();
        const char* end = text.data() + text.size();
        if (const auto outcome = std::from_chars(text.data(), end, number);
            outcome.ec != std::errc() || outcome.ptr != end)
            number = NAN;
    }
    if (std::isnan(number))
        throw ScriptError(at(member), shown(*value) + " is no number");
    if (number < lowest || number > highest)
        throw ScriptError(at(member), shown(*value) + " is not between " + plainReal(lowest) + " and " +
                                          plainReal(highest));
    return number;
}

std::vector<const Json*> ObjectReader::list(const std::string& member) {
    std::vector<const Json*> elements;
    const Json* value = find(member);
    if (!value)
        return elements;
    if (!value->is_array())
        throw ScriptError(at(member), shown(*value) + " is no list");
    for (const Json& element : *value)
        elements.push_back(&element);
    return elements;
}

std::vector<std::string> ObjectReader::texts(const std::string& member) {
    std::vector<std::string> texts;
    for (const Json* element : list(member)) {
        if (!element->is_string())
            throw ScriptError(elementPath(at(member), texts.size()), shown(*element) + " is no text");
        texts.push_back(element->get<std::string>());
    }
    return texts;
}

void ObjectReader::finish() const {
    for (const auto& member : object_.items()) {
        if (known_.count(member.key()) != 0)
            continue;
        std::string names;
        for (const std::string& name : known_)
            names += (names.empty() ? "" : ", ") + name;
        throw ScriptError(at(member.key()), "there is no such member; there are " + names);
    }
}

} // namespace OrvaneSim
