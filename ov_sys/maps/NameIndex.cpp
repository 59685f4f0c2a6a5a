// Elements of an array share one entry of the index, when their numbers are regular.
#include "ov_sys/maps/NameIndex.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <functional>
#include <iterator>

namespace Orvane::Maps {
namespace {

constexpr std::size_t kMostLetters = 128; // of a name
constexpr std::size_t kMostIndices = 12;
constexpr std::size_t kMostDigits = 6; // of an index
constexpr std::uint32_t kNoFamily = 0xFFFFFFFF;

std::uint64_t hashOfName(std::string_view name) noexcept {
    return std::hash<std::string_view>()(name);
}

bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

} // namespace

// A name taken apart: its letters without the indices, and these.
struct NameIndex::Parts {
    std::array<char, kMostLetters> letters;
    std::size_t length = 0;
    std::array<std::uint32_t, kMostIndices> indices;
    std::size_t count = 0;

    // Whether it has indices, written as the map writes them.
    bool take(std::string_view whole) noexcept {
        if (whole.size() > kMostLetters)
            return false;
        for (std::size_t at = 0; at < whole.size();) {
            const char letter = letters[length++] = whole[at++];
            if (letter == '[' && !takeIndex(whole, at))
                return false;
        }
        return count > 0;
    }
    std::string_view form() const noexcept { return {letters.data(), length}; }

private:
    bool takeIndex(std::string_view whole, std::size_t& at) noexcept {
        const std::size_t begin = at;
        std::uint32_t index = 0;
        for (; at < whole.size() && isDigit(whole[at]); ++at)
            index = index * 10 + static_cast<std::uint32_t>(whole[at] - '0');
        const std::size_t digits = at - begin;
        if (digits == 0 || digits > kMostDigits || (digits > 1 && whole[begin] == '0') ||
            count == kMostIndices)
            return false;
        indices[count++] = index;
        return true;
    }
};

void NameIndex::keep(std::string_view text, std::uint32_t number) {
    const std::size_t at = bytes_.size();
    const std::array<std::uint32_t, 2> head{number, static_cast<std::uint32_t>(text.size())};
    bytes_.resize(at + sizeof head + text.size());
    std::memcpy(&bytes_[at], head.data(), sizeof head);
    std::memcpy(&bytes_[at] + sizeof head, text.data(), text.size());
    ++entries_;
}

NameIndex::Entry NameIndex::entry(std::uint32_t at) const noexcept {
    std::array<std::uint32_t, 2> head;
    std::memcpy(head.data(), &bytes_[at], sizeof head);
    return {head[0], {&bytes_[at] + sizeof head, head[1]}};
}

std::uint32_t NameIndex::lookUp(const Index& index, std::string_view text) const noexcept {
    const std::uint32_t at =
        index.find(hashOfName(text), [&](std::uint32_t one) { return entry(one).text == text; });
    return at == Index::kNone ? kNone : entry(at).number;
}

bool NameIndex::enter(Index& index, std::string_view text, std::uint32_t number) {
    const auto at = static_cast<std::uint32_t>(bytes_.size());
    if (index.add(hashOfName(text), at, [&](std::uint32_t one) { return entry(one).text == text; }) != kNone)
        return false;
    keep(text, number);
    return true;
}

std::uint32_t NameIndex::numberIn(const Family& family, const Parts& parts) const noexcept {
    std::uint32_t number = family.first;
    for (std::size_t i = 0; i < parts.count; ++i) {
        const Dimension& dimension = dimensions_[family.dimension + i];
        if (parts.indices[i] >= dimension.count)
            return kNone;
        number += parts.indices[i] * dimension.stride;
    }
    return number;
}

bool NameIndex::isRegular(const Family& family) const noexcept {
    std::uint64_t elements = 1;
    for (std::uint32_t i = 0; i < family.dimensions && elements <= family.members; ++i)
        elements *= dimensions_[family.dimension + i].count;
    return elements == family.members;
}

// Finds families, and the family of each register; arrays are laid out with the last index running fastest.
std::vector<std::uint32_t> NameIndex::group(const std::vector<MapRegister>& registers) {
    std::vector<std::uint32_t> family(registers.size(), kNoFamily);
    byForm_.reserve(registers.size());
    for (std::uint32_t i = 0; i < registers.size(); ++i) {
        Parts parts;
        if (!parts.take(registers[i].name()))
            continue;
        family[i] = lookUp(byForm_, parts.form());
        if (family[i] == kNone) {
            family[i] = static_cast<std::uint32_t>(families_.size());
            families_.push_back({i, 0, static_cast<std::uint32_t>(dimensions_.size()),
                                 static_cast<std::uint32_t>(parts.count)});
            dimensions_.resize(dimensions_.size() + parts.count);
            enter(byForm_, parts.form(), family[i]);
        }
        Family& own = families_[family[i]];
        ++own.members;
        for (std::size_t at = 0; at < parts.count; ++at) {
            Dimension& dimension = dimensions_[own.dimension + at];
            if (parts.indices[at] == 1 && dimension.count == 1)
                dimension.stride = i - own.first; // the indices before it are 0 as yet, those behind it again
            dimension.count = std::max(dimension.count, parts.indices[at] + 1);
        }
    }
    return family;
}

std::vector<std::uint32_t> NameIndex::fill(const std::vector<MapRegister>& registers) {
    const std::vector<std::uint32_t> family = group(registers);
    std::vector<bool> regular(families_.size());
    for (std::size_t i = 0; i < families_.size(); ++i)
        regular[i] = isRegular(families_[i]);
    for (std::uint32_t i = 0; i < family.size(); ++i)
        if (Parts parts; parts.take(registers[i].name()) && numberIn(families_[family[i]], parts) != i)
            regular[family[i]] = false;
    std::vector<std::uint32_t> twice;
    const auto isAlone = [&](std::uint32_t i) { return family[i] == kNoFamily || !regular[family[i]]; };
    std::vector<std::uint32_t> alone;
    for (std::uint32_t i = 0; i < registers.size(); ++i)
        if (isAlone(i))
            alone.push_back(i);
    byName_.reserve(alone.size());
    std::copy_if(alone.begin(), alone.end(), std::back_inserter(twice),
                 [&](std::uint32_t i) { return !enter(byName_, registers[i].name(), i); });
    for (std::size_t i = 0; i < families_.size(); ++i)
        if (!regular[i])
            families_[i].members = 0;
    return twice;
}

std::uint32_t NameIndex::find(std::string_view name) const noexcept {
    if (Parts parts; !families_.empty() && parts.take(name))
        if (const std::uint32_t family = lookUp(byForm_, parts.form());
            family != kNone && families_[family].members > 0)
            return numberIn(families_[family], parts);
    return lookUp(byName_, name);
}

} // namespace Orvane::Maps
