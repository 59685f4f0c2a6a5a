// Reads a text in place, to a bounded depth, and tells the line of what it refuses.
#include "ov_sys/maps/Json.h"

#include "ov_sys/Interface/foundation/Utf8.h"
#include "ov_sys/maps/Problems.h"

#include <algorithm>
#include <cstring>
#include <unordered_set>
#include <vector>

namespace Orvane::Maps {

namespace {

constexpr unsigned kDeepest = 32; // values within values

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

// Reads one text, in place. Any failure is told once and ends the reading.
class Reader {
public:
    Reader(std::string& text, std::deque<JsonValue>& values, const JsonDocument& document, JsonBudget& budget)
        : next_(text.data()),
          end_(text.data() + text.size()),
          values_(values),
          document_(document),
          budget_(budget) {}

    const JsonValue* read() {
        const JsonValue* root = value(nullptr, {}, 0, 0);
        if (root == nullptr)
            return root;
        skipBlank();
        if (next_ == end_)
            return root;
        fail("something follows the value");
        return nullptr;
    }

    const std::string& failure() const { return failure_; }
    unsigned line() const { return line_; }
    const JsonValue* place() const { return place_; }

private:
    bool fail(const char* why) {
        if (failure_.empty())
            failure_ = why;
        return false;
    }

    void skipBlank() {
        for (; next_ != end_; ++next_)
            if (*next_ == '\n')
                ++line_;
            else if (*next_ != ' ' && *next_ != '\t' && *next_ != '\r')
                return;
    }
    // Takes the next character that is not blank, if it is this one.
    bool take(char wanted) {
        skipBlank();
        if (next_ == end_ || *next_ != wanted)
            return false;
        ++next_;
        return true;
    }

    JsonValue* value(const JsonValue* parent, std::string_view key, unsigned index, unsigned depth) {
        skipBlank();
        if (depth > kDeepest || budget_.values == 0) {
            fail(budget_.values == 0 ? "there are more values than the 400000 of a map"
                                     : "values lie deeper within each other than 32");
            return nullptr;
        }
        --budget_.values;
        JsonValue& made = values_.emplace_back();
        made.key = key;
        made.document = &document_;
        made.parent = parent;
        made.line = line_;
        made.index = index;
        place_ = &made;
        return fill(made, depth) ? &made : nullptr;
    }

    bool fill(JsonValue& made, unsigned depth) {
        switch (next_ == end_ ? '\0' : *next_) {
        case '{':
            made.kind = JsonValue::Kind::object;
            return members(made, depth);
        case '[':
            made.kind = JsonValue::Kind::array;
            return elements(made, depth);
        case '"':
            made.kind = JsonValue::Kind::string;
            return string(made.text);
        case 't':
            made.kind = JsonValue::Kind::boolean;
            return word(made, "true");
        case 'f':
            made.kind = JsonValue::Kind::boolean;
            return word(made, "false");
        case 'n':
            return word(made, "null");
        default:
            made.kind = JsonValue::Kind::number;
            return number(made);
        }
    }

    bool word(JsonValue& made, std::string_view wanted) {
        const std::string_view rest(next_, static_cast<std::size_t>(end_ - next_));
        if (rest.substr(0, wanted.size()) != wanted)
            return fail("neither a value nor true, false or null");
        made.text = rest.substr(0, wanted.size());
        next_ += wanted.size();
        return true;
    }

    bool digits() {
        const char* const begin = next_;
        while (next_ != end_ && isDigit(*next_))
            ++next_;
        return next_ != begin;
    }
    bool fractionAndExponent() {
        if (next_ != end_ && *next_ == '.') {
            ++next_;
            if (!digits())
                return false;
        }
        if (next_ == end_ || (*next_ != 'e' && *next_ != 'E'))
            return true;
        ++next_;
        if (next_ != end_ && (*next_ == '+' || *next_ == '-'))
            ++next_;
        return digits();
    }
    bool number(JsonValue& made) {
        const char* const begin = next_;
        if (next_ != end_ && *next_ == '-')
            ++next_;
        const char* const whole = next_;
        if (!digits() || (*whole == '0' && next_ - whole > 1) || !fractionAndExponent())
            return fail(begin == next_ ? "a value is missing" : "not a number");
        made.text = {begin, static_cast<std::size_t>(next_ - begin)};
        return true;
    }

    // The text between quotes, without its escapes.
    bool string(std::string_view& text) {
        char* const begin = ++next_;
        while (next_ != end_ && *next_ != '"' && *next_ != '\\' && static_cast<unsigned char>(*next_) >= 0x20)
            ++next_;
        char* written = next_;
        while (next_ != end_ && *next_ != '"') {
            if (static_cast<unsigned char>(*next_) < 0x20)
                return fail("a line or a control character within a string");
            if (*next_ != '\\')
                *written++ = *next_++;
            else if (!escape(written))
                return fail("an escape that JSON does not have");
        }
        if (next_ == end_)
            return fail("a string does not end");
        ++next_;
        text = {begin, static_cast<std::size_t>(written - begin)};
        return isUtf8(text) || fail("not UTF-8");
    }

    bool escape(char*& written) {
        constexpr std::string_view kShort = "\"\"\\\\//b\bf\fn\nr\rt\t";
        if (++next_ == end_)
            return false;
        const char letter = *next_++;
        if (letter == 'u')
            return codePoint(written);
        for (std::size_t i = 0; i < kShort.size(); i += 2)
            if (kShort[i] == letter) {
                *written++ = kShort[i + 1];
                return true;
            }
        return false;
    }
    bool fourDigits(std::uint32_t& unit) {
        unit = 0;
        for (int i = 0; i < 4; ++i, ++next_) {
            constexpr std::string_view kDigits = "0123456789abcdefABCDEF";
            const std::size_t found = next_ == end_ ? std::string_view::npos : kDigits.find(*next_);
            if (found == std::string_view::npos)
                return false;
            unit = unit << 4U | static_cast<std::uint32_t>(found < 16 ? found : found - 6);
        }
        return true;
    }
    bool codePoint(char*& written) {
        std::uint32_t point = 0;
        if (!fourDigits(point))
            return false;
        if (point >= 0xD800 && point < 0xDC00) {
            std::uint32_t low = 0;
            if (end_ - next_ < 2 || next_[0] != '\\' || next_[1] != 'u')
                return false;
            next_ += 2;
            if (!fourDigits(low) || low < 0xDC00 || low > 0xDFFF)
                return false;
            point = 0x10000 + ((point - 0xD800) << 10U) + (low - 0xDC00);
        } else if (point >= 0xDC00 && point <= 0xDFFF) {
            return false;
        }
        written = writeUtf8(point, written);
        return true;
    }

    void append(JsonValue& parent, JsonValue*& last, JsonValue* made) {
        if (last == nullptr)
            parent.first = made;
        else
            last->next = made;
        last = made;
        place_ = &parent;
    }

    bool elements(JsonValue& made, unsigned depth) {
        ++next_;
        if (take(']'))
            return true;
        for (JsonValue* last = nullptr;;) {
            JsonValue* const element = value(&made, {}, last == nullptr ? 0 : last->index + 1, depth + 1);
            if (element == nullptr)
                return false;
            append(made, last, element);
            if (take(']'))
                return true;
            if (!take(','))
                return fail("an array goes on with ',' or ends with ']'");
        }
    }

    bool members(JsonValue& made, unsigned depth) {
        ++next_;
        if (take('}'))
            return true;
        for (JsonValue* last = nullptr;;) {
            std::string_view key;
            skipBlank();
            if (next_ == end_ || *next_ != '"')
                return fail("a member begins with its name in quotes");
            if (!string(key))
                return false;
            if (!take(':'))
                return fail("':' follows the name of a member");
            JsonValue* const member = value(&made, key, 0, depth + 1);
            if (member == nullptr)
                return false;
            append(made, last, member);
            if (take('}'))
                return true;
            if (!take(','))
                return fail("an object goes on with ',' or ends with '}'");
        }
    }

    char* next_;
    char* end_;
    std::deque<JsonValue>& values_;
    const JsonDocument& document_;
    JsonBudget& budget_;
    unsigned line_ = 1;
    std::string failure_;
    const JsonValue* place_ = nullptr; // what is being read
};

// Two members of one name: JSON readers take the last; here somebody meant something else.
void findTwinsIn(const JsonValue& object, Problems& problems) {
    constexpr unsigned kFew = 8; // which are compared sooner than put into a set
    unsigned count = 0;
    std::unordered_set<std::string_view> seen;
    for (const JsonValue& member : object) {
        bool isTwin = false;
        if (++count <= kFew)
            for (const JsonValue* other = object.first; other != &member; other = other->next)
                isTwin = isTwin || other->key == member.key;
        if (count == kFew)
            for (const JsonValue* other = object.first; other != member.next; other = other->next)
                seen.insert(other->key);
        if (isTwin || (count > kFew && !seen.insert(member.key).second))
            problems.add(member, "is there twice");
    }
}

void findTwins(const std::deque<JsonValue>& values, Problems& problems) {
    for (const JsonValue& each : values)
        if (each.kind == JsonValue::Kind::object)
            findTwinsIn(each, problems);
}

std::string pathOf(const JsonValue& value) {
    std::vector<const JsonValue*> way;
    for (const JsonValue* each = &value; each->parent != nullptr; each = each->parent)
        way.push_back(each);
    std::string path;
    for (auto each = way.rbegin(); each != way.rend(); ++each)
        if ((*each)->parent->kind == JsonValue::Kind::array)
            path += '[' + std::to_string((*each)->index) + ']';
        else
            path += (path.empty() ? "" : ".") + printable((*each)->key);
    return path;
}

} // namespace

const JsonValue* JsonValue::member(std::string_view name) const {
    if (kind == Kind::object)
        for (const JsonValue& each : *this)
            if (each.key == name)
                return &each;
    return nullptr;
}

Position JsonValue::position() const {
    return {document->file(), line, pathOf(*this)};
}

JsonDocument::JsonDocument(std::string file, std::string text, JsonBudget& budget, Problems& problems)
    : file_(std::move(file)), text_(std::move(text)) {
    if (text_.size() > budget.bytes) {
        problems.add(Position{file_, 0, {}}, "is larger than 8 MiB, with what it is included with");
        return;
    }
    budget.bytes -= text_.size();
    Reader reader(text_, values_, *this, budget);
    root_ = reader.read();
    if (!reader.failure().empty())
        problems.add(Position{file_, reader.line(), reader.place() == nullptr ? "" : pathOf(*reader.place())},
                     reader.failure());
    else
        findTwins(values_, problems);
}

} // namespace Orvane::Maps
