// What an element has of its own, and what it takes from those it derives from or stands in.
#include "ov_sys/maps/SvdNodes.h"

#include "ov_sys/Interface/foundation/Utf8.h"
#include "ov_sys/maps/BlockForm.h"
#include "ov_sys/maps/Numbers.h"
#include "ov_sys/maps/Problems.h"

#include <algorithm>

namespace Orvane::Maps {

namespace {

constexpr std::size_t kMostDerivations = 8;
constexpr std::uint32_t kMostElements = 1024; // of an array that becomes single registers or blocks

// Whether a list of indices is 0,1,2... or there is none.
bool countsFromZero(const std::string& list) {
    if (list.empty() || list.compare(0, 2, "0-") == 0)
        return true;
    std::uint64_t expected = 0;
    for (std::size_t at = 0; at <= list.size(); ++expected) {
        const std::size_t end = std::min(list.find(',', at), list.size());
        if (numberIn(std::string_view(list).substr(at, end - at)) != expected)
            return false;
        at = end + 1;
    }
    return true;
}

std::vector<std::string> partsOf(const std::string& list) {
    std::vector<std::string> parts;
    for (std::size_t at = 0; at <= list.size() && parts.size() < kMostElements;) {
        const std::size_t end = std::min(list.find(',', at), list.size());
        parts.push_back(list.substr(at, end - at));
        at = end + 1;
    }
    return parts;
}

// Whether a text ends so, after something else.
bool endsWith(std::string_view text, std::string_view end) {
    return text.size() > end.size() && text.substr(text.size() - end.size()) == end;
}

std::optional<MapBits> range(std::optional<std::uint64_t> high, std::optional<std::uint64_t> low) {
    if (!high || !low || *high > 63 || *low > *high)
        return std::nullopt;
    return MapBits{static_cast<std::uint8_t>(*high), static_cast<std::uint8_t>(*low)};
}

} // namespace

pugi::xml_node SvdChain::find(const char* child) const {
    for (const pugi::xml_node each : nodes_)
        if (const pugi::xml_node found = each.child(child))
            return found;
    return {};
}

pugi::xml_node SvdChain::holder() const {
    for (const pugi::xml_node each : nodes_)
        if (each.child("register") || each.child("cluster"))
            return each;
    return front();
}

std::optional<std::uint64_t> SvdChain::number(const char* child) const {
    const pugi::xml_node found = find(child);
    return found ? childNumber(found.parent(), child) : std::nullopt;
}

std::string svdPlainName(std::string name) {
    for (const char* place : {"[%s]", "%s"})
        if (const std::size_t at = name.find(place); at != std::string::npos)
            name.erase(at, std::string_view(place).size());
    return name;
}

pugi::xml_node SvdNodes::sibling(pugi::xml_node node, const std::string& name) {
    auto [known, isNew] = siblings_.try_emplace(node.parent().hash_value());
    if (isNew)
        for (const pugi::xml_node each : node.parent().children(node.name()))
            known->second.emplace(childText(each, "name"), each);
    const auto found = known->second.find(name);
    return found == known->second.end() ? pugi::xml_node() : found->second;
}

SvdChain SvdNodes::chainOf(pugi::xml_node node) {
    SvdChain chain{node};
    pugi::xml_node last = node;
    for (std::size_t i = 0; last.attribute("derivedFrom"); ++i) {
        const std::string name = last.attribute("derivedFrom").value();
        last = i == kMostDerivations ? pugi::xml_node() : sibling(last, name);
        if (!last) {
            draft_.report(lineOf(node), childText(node, "name"),
                          i == kMostDerivations
                              ? "is derived over more than 8 others, or from itself"
                              : "is derived from '" + printable(name) + "', which is not beside it");
            break;
        }
        chain.add(last);
    }
    return chain;
}

MapAccess SvdNodes::accessOf(const SvdChain& chain, MapAccess inherited) {
    const std::string word = chain.text("access");
    if (word.empty() || word == "read-write")
        return word.empty() ? inherited : MapAccess::rw;
    if (word == "read-only")
        return MapAccess::ro;
    if (word != "write-only")
        draft_.ignore("access " + word);
    return word == "write-only" || word == "writeOnce" ? MapAccess::wo : MapAccess::rw;
}

void SvdNodes::readEffects(const SvdChain& chain, MapAccess& access, bool& sideEffects) {
    const std::string read = chain.text("readAction");
    const std::string write = chain.text("modifiedWriteValues");
    if (read == "clear" && access == MapAccess::ro)
        access = MapAccess::clearOnRead;
    else if (!read.empty())
        sideEffects = true;
    if (write == "oneToClear")
        access = MapAccess::w1c;
    else if (!write.empty() && write != "modify") {
        sideEffects = true;
        draft_.ignore("modifiedWriteValues " + write);
    }
}

std::vector<MapBits> SvdNodes::bitsOf(const SvdChain& field) {
    std::optional<MapBits> bits;
    const std::string text = field.text("bitRange");
    if (const std::size_t colon = text.find(':'); colon != std::string::npos && text.size() > 4)
        bits = range(numberIn(text.substr(1, colon - 1)),
                     numberIn(text.substr(colon + 1, text.size() - colon - 2)));
    else if (field.find("lsb"))
        bits = range(field.number("msb"), field.number("lsb"));
    else if (const auto low = field.number("bitOffset"))
        bits = range(*low + std::min<std::uint64_t>(field.number("bitWidth").value_or(1), 64) - 1, low);
    return bits ? std::vector<MapBits>{*bits} : std::vector<MapBits>{};
}

std::vector<MapChoice> SvdNodes::choicesOf(const SvdChain& field, const std::vector<MapBits>& bits) {
    std::vector<MapChoice> choices;
    const pugi::xml_node list = field.find("enumeratedValues");
    if (list.attribute("derivedFrom"))
        draft_.ignore("enumerated values derived from others");
    if (bits.empty())
        return choices;
    const std::uint64_t most = lowBits(bits.front().high - bits.front().low + 1U);
    std::set<std::string> names;
    std::set<std::uint64_t> values;
    for (const pugi::xml_node each : list.children("enumeratedValue")) {
        const auto value = childNumber(each, "value");
        const std::string name = childText(each, "name");
        // A value with an x in it, and the default for all others, are no single value.
        if (!value || *value > most || name.empty() || name.size() > 200 || !isUtf8(name) ||
            values.count(*value) > 0 || !names.insert(name).second)
            draft_.ignore("enumerated values without one value and name of their own");
        else {
            values.insert(*value);
            choices.push_back({*value, name});
        }
    }
    return choices;
}

std::uint32_t SvdNodes::countOf(const SvdChain& chain) {
    const std::uint64_t count = chain.number("dim").value_or(0);
    if (count <= kMostRegisters)
        return static_cast<std::uint32_t>(count);
    draft_.report(lineOf(chain.front()), chain.text("name"), "has more elements than 131072; one is taken");
    return 0;
}

bool SvdNodes::isPlainArray(const SvdChain& chain) {
    const std::string name = chain.text("name");
    return (endsWith(name, "%s") || endsWith(name, "[%s]")) && countsFromZero(chain.text("dimIndex"));
}

std::vector<SvdElement> SvdNodes::elementsOf(const SvdChain& chain) {
    const std::string name = chain.text("name");
    const std::uint32_t count = countOf(chain);
    if (count == 0)
        return {{identifierOf(svdPlainName(name)), 0}};
    if (count > kMostElements)
        draft_.report(lineOf(chain.front()), name, "has more elements than 1024; those are taken");
    std::vector<SvdElement> elements;
    const bool isPlain = isPlainArray(chain);
    const auto parts = partsOf(isPlain ? "" : chain.text("dimIndex"));
    const std::uint64_t step = chain.number("dimIncrement").value_or(0);
    const std::uint32_t taken = std::min(count, kMostElements);
    for (std::uint32_t i = 0; i < taken; ++i) {
        const std::string index = !isPlain && taken == parts.size() ? parts[i] : std::to_string(i);
        std::string one = name;
        if (const std::size_t at = one.find("%s"); at != std::string::npos && !isPlain)
            one.replace(at, 2, index);
        elements.push_back(
            {isPlain ? identifierOf(svdPlainName(name)) + '[' + index + ']' : identifierOf(one), step * i});
    }
    return elements;
}

} // namespace Orvane::Maps
