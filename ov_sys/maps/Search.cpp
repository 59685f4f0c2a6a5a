// Names by pattern, by word, by beginning, and by likeness.
#include "ov_sys/maps/Content.h"
#include "ov_sys/maps/Problems.h"

#include <algorithm>
#include <set>

namespace Orvane {

namespace {

char lower(char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

std::string lower(std::string_view text) {
    std::string lowered(text);
    for (char& each : lowered)
        each = lower(each);
    return lowered;
}

// Calls for each register and each field of it, in file order.
template <class Take>
void forEachName(const RegisterMap& map, Take take) {
    std::string name;
    for (const MapRegister& reg : map.registers()) {
        take(MapReference{&reg, nullptr}, reg.name());
        for (const MapField& field : reg.fields()) {
            name.assign(reg.name()).append(1, '.').append(field.name);
            take(MapReference{&reg, &field}, name);
        }
    }
}

// A pattern, matched in the time of its length times the name's, whatever stars it has: one row of what is
// reached so far.
class Pattern {
public:
    explicit Pattern(std::string_view text) {
        for (std::size_t i = 0; i < text.size(); ++i) {
            const bool isStar = text[i] == '*';
            const bool isDouble = isStar && i + 1 < text.size() && text[i + 1] == '*';
            steps_.push_back({text[i], isStar, isDouble});
        }
    }

    bool matches(std::string_view name) {
        reached_.assign(steps_.size() + 1, false);
        reached_[0] = true;
        passStars();
        for (const char c : name) {
            // From the back, so that each place is still that of the character before.
            for (std::size_t i = steps_.size(); i > 0; --i)
                reached_[i] =
                    (reached_[i - 1] && takes(steps_[i - 1], c)) || (reached_[i] && stays(steps_[i - 1], c));
            reached_[0] = false;
            passStars();
        }
        return reached_[steps_.size()];
    }

private:
    struct Step {
        char letter;
        bool isStar;
        bool isDouble;
    };
    static bool stays(const Step& step, char c) { return step.isStar && (step.isDouble || c != '.'); }
    static bool takes(const Step& step, char c) {
        return step.isStar ? stays(step, c) : step.letter == '?' ? c != '.' : step.letter == c;
    }
    // A star is also no text.
    void passStars() {
        for (std::size_t i = 0; i < steps_.size(); ++i)
            if (reached_[i] && steps_[i].isStar)
                reached_[i + 1] = true;
    }

    std::vector<Step> steps_;
    std::vector<bool> reached_; // the first steps so far can stand for the name so far
};

// Letters to change, add or take away between two texts; `limit` or more when there are as many.
std::size_t distance(std::string_view a, std::string_view b, std::size_t limit) {
    if (a.size() >= b.size() + limit || b.size() >= a.size() + limit)
        return limit;
    std::vector<std::size_t> row(b.size() + 1);
    for (std::size_t j = 0; j <= b.size(); ++j)
        row[j] = j;
    for (std::size_t i = 1; i <= a.size(); ++i) {
        std::size_t diagonal = row[0];
        row[0] = i;
        std::size_t least = row[0];
        for (std::size_t j = 1; j <= b.size(); ++j) {
            const std::size_t above = row[j];
            row[j] = std::min({above + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
            diagonal = above;
            least = std::min(least, row[j]);
        }
        if (least >= limit)
            return limit;
    }
    return row[b.size()];
}

std::vector<std::string> wordsOf(std::string_view text) {
    std::vector<std::string> words(1);
    for (const char c : text)
        if (c != ' ')
            words.back() += lower(c);
        else if (!words.back().empty())
            words.emplace_back();
    if (words.back().empty())
        words.pop_back();
    return words;
}

} // namespace

std::vector<MapReference> RegisterMap::match(std::string_view pattern) const {
    std::vector<MapReference> found;
    Pattern wanted(pattern);
    forEachName(*this, [&](const MapReference& reference, const std::string& fullName) {
        if (wanted.matches(fullName))
            found.push_back(reference);
    });
    return found;
}

std::vector<MapReference> RegisterMap::search(std::string_view words) const {
    std::vector<MapReference> found;
    const std::vector<std::string> wanted = wordsOf(words);
    if (wanted.empty())
        return found;
    forEachName(*this, [&](const MapReference& reference, const std::string& fullName) {
        const std::string& about = reference.field == nullptr ? reference.reg->text() : reference.field->text;
        const std::string all = lower(fullName) + '\n' + lower(about);
        if (std::all_of(wanted.begin(), wanted.end(),
                        [&](const std::string& word) { return all.find(word) != std::string::npos; }))
            found.push_back(reference);
    });
    return found;
}

std::vector<std::string> RegisterMap::complete(std::string_view beginning) const {
    std::vector<std::string> ordered;
    std::set<std::string, std::less<>> known;
    forEachName(*this, [&](const MapReference& reference, const std::string& fullName) {
        if (fullName.compare(0, beginning.size(), beginning) != 0)
            return;
        const std::size_t dot = fullName.find('.', beginning.size());
        // A register's own name ends where its fields' go on with a dot: it is offered as itself.
        const bool isFieldOfOffered = reference.field != nullptr && dot == reference.reg->name().size();
        std::string next = dot == std::string::npos ? fullName : fullName.substr(0, dot + 1);
        if (!isFieldOfOffered && known.insert(next).second)
            ordered.push_back(std::move(next));
    });
    return ordered;
}

std::string RegisterMap::suggestion(std::string_view name) const {
    constexpr std::size_t kLongest = 128; // longer than any name
    if (name.size() > 2 * kLongest)
        return {};
    const std::string wanted = lower(name);
    std::size_t least = 1 + std::min<std::size_t>(3, name.size() / 3);
    std::string nearest;
    forEachName(*this, [&](const MapReference&, const std::string& fullName) {
        if (const std::size_t far = distance(wanted, lower(fullName), least); far < least) {
            least = far;
            nearest = fullName;
        }
    });
    return nearest;
}

MapReference RegisterMap::at(std::string_view name) const {
    if (const MapReference found = resolve(name))
        return found;
    const std::string meant = suggestion(name);
    throw MapError("there is no '" + Maps::printable(name) + "' in the map " + this->name() +
                   (meant.empty() ? "" : "; did you mean '" + meant + "'?"));
}

} // namespace Orvane
