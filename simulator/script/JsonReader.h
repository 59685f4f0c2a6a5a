// Reads JSON that people write: every refusal names the member, or the line and column.
#pragma once

#include <cstdint>
#include <nlohmann/json.hpp>
#include <set>
#include <stdexcept>
#include <string>
#include <vector>

namespace OrvaneSim {

using Json = nlohmann::ordered_json;

// What is wrong with a text; begins with the member's path, such as "boards[2].address: ".
class ScriptError : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
    ScriptError(const std::string& path, const std::string& problem)
        : std::runtime_error(path.empty() ? problem : path + ": " + problem) {}
};

// Parses a whole text. Throws ScriptError beginning with "line N, column M: ", and one without a place for a
// member that an object has twice and for more than 64 levels of lists and objects.
Json parseJson(const std::string& text);

// The content of a file, parsed. Throws ScriptError beginning with the file's name.
Json readJsonFile(const std::string& file);

// A whole number of JSON, or a text that is one: decimal, or hexadecimal behind 0x. Throws ScriptError when
// it is none or not between the limits.
std::int64_t wholeNumber(const Json& value, const std::string& path, std::int64_t lowest,
                         std::int64_t highest);

// One object being read: gives its members by name and, at the end, refuses those that nobody asked for.
class ObjectReader {
public:
    // `object` must outlive the reader. Throws ScriptError when it is no object.
    ObjectReader(const Json& object, std::string path);

    // Path of a member.
    std::string at(const std::string& member) const;
    // A member, null when it is not there.
    const Json* find(const std::string& member);
    // A member that must be there.
    const Json& need(const std::string& member);

    // A member of some type; `fallback` when it is not there. They throw ScriptError for another type, and
    // for numbers outside the limits.
    std::string text(const std::string& member, const std::string& fallback);
    bool flag(const std::string& member, bool fallback);
    std::int64_t number(const std::string& member, std::int64_t fallback, std::int64_t lowest,
                        std::int64_t highest);
    double real(const std::string& member, double fallback, double lowest, double highest);
    // The elements of an array; none when it is not there.
    std::vector<const Json*> list(const std::string& member);
    std::vector<std::string> texts(const std::string& member);

    // Throws ScriptError when the object has a member that was not asked for.
    void finish() const;

    const std::string& path() const { return path_; }

private:
    const Json& object_;
    std::string path_;
    std::set<std::string> known_;
};

// Path of an element of a list.
std::string elementPath(const std::string& list, std::size_t index);

} // namespace OrvaneSim
