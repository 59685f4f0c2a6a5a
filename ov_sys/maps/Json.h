// JSON texts as trees that know where each value stands in its file.
#pragma once

#include "ov_sys/maps/Problems.h"

#include <cstdint>
#include <deque>
#include <memory>
#include <string>
#include <string_view>

namespace Orvane::Maps {

// What one load may use, however many files it reads: a hostile file runs out of it before it costs anybody
// anything.
struct JsonBudget {
    std::size_t bytes = std::size_t{8} << 20U;
    std::size_t values = 400'000;
};

class JsonDocument;

// A value; lives as long as its document.
struct JsonValue {
    enum class Kind : std::uint8_t { null, boolean, number, string, array, object };

    // Iterates over the elements of an array or the members of an object.
    class Iterator {
    public:
        explicit Iterator(const JsonValue* at) : at_(at) {}
        const JsonValue& operator*() const { return *at_; }
        Iterator& operator++() {
            at_ = at_->next;
            return *this;
        }
        bool operator!=(const Iterator& other) const { return at_ != other.at_; }

    private:
        const JsonValue* at_;
    };

    Iterator begin() const { return Iterator(first); }
    static Iterator end() { return Iterator(nullptr); }
    // The member of this name; null: none, or no object.
    const JsonValue* member(std::string_view name) const;
    // File, line and path.
    Position position() const;

    std::string_view key;  // of a member
    std::string_view text; // of a string without escapes, of a number as it stands, "true", "false" or "null"
    const JsonDocument* document = nullptr;
    const JsonValue* parent = nullptr;
    const JsonValue* first = nullptr;
    JsonValue* next = nullptr;
    unsigned line = 0;
    unsigned index = 0; // among its parent's
    Kind kind = Kind::null;
};

// A text and its values. Not to be moved: values point into it.
class JsonDocument {
public:
    // Reads a text; `budget` shrinks by what it takes. A text that is not JSON, and two members of one name,
    // go to `problems`, and root() is null then.
    JsonDocument(std::string file, std::string text, JsonBudget& budget, Problems& problems);
    JsonDocument(const JsonDocument&) = delete;
    JsonDocument& operator=(const JsonDocument&) = delete;

    const JsonValue* root() const { return root_; }
    const std::string& file() const { return file_; }

private:
    std::string file_;
    std::string text_; // strings lose their escapes in place
    std::deque<JsonValue> values_;
    const JsonValue* root_ = nullptr;
};

} // namespace Orvane::Maps
