// Names and bits that two share, and choices that cannot be.
#include "ov_sys/maps/Checks.h"

#include "ov_sys/maps/Numbers.h"

#include <map>
#include <set>

namespace Orvane::Maps {

namespace {

// A member of the register's source, or the nearest that is there.
const JsonValue& placeOf(const JsonValue& source, std::string_view member, std::string_view inner = {}) {
    const JsonValue* const found = source.member(member);
    const JsonValue* const deeper = found == nullptr || inner.empty() ? found : found->member(inner);
    return deeper != nullptr ? *deeper : found != nullptr ? *found : source;
}

void checkChoices(const MapField& field, const JsonValue& place, Problems& problems) {
    std::set<std::string_view> names;
    for (const MapChoice& choice : field.choices) {
        if (choice.value > lowBits(field.width))
            problems.add(place, "names the value " + std::to_string(choice.value) +
                                    ", which needs more than " + std::to_string(field.width) +
                                    (field.width == 1 ? " bit" : " bits"));
        if (!names.insert(choice.name).second)
            problems.add(place, "has the name '" + choice.name + "' twice");
    }
}

// Which field of those before `field` has one of its bits.
const MapField* sharer(const std::vector<MapField>& fields, const MapField& field) {
    for (const MapField& other : fields) {
        if (&other == &field)
            break;
        if ((other.mask & field.mask) != 0)
            return &other;
    }
    return nullptr;
}

struct Elements {
    std::set<std::uint64_t> indices;
    const JsonValue* source = nullptr;
};

// Sorts the names of a block's content: plain ones, and elements of arrays by their array.
class Siblings {
public:
    explicit Siblings(Problems& problems) : problems_(problems) {}

    void add(const std::string& name, const JsonValue* source) {
        const std::size_t open = name.find('[');
        if (open == std::string::npos) {
            if (!plain_.insert(name).second)
                problems_.add(*source, "is the name of a register and of a block");
            return;
        }
        Elements& elements = arrays_[name.substr(0, open)];
        elements.source = source;
        if (!elements.indices
                 .insert(*numberIn(std::string_view(name).substr(open + 1, name.size() - open - 2)))
                 .second)
            problems_.add(*source, "is the name of a register and of a block");
    }
    void findGaps() {
        for (const auto& [name, elements] : arrays_) {
            if (plain_.count(name) > 0)
                problems_.add(*elements.source, "'" + name + "' is there without an index, too");
            std::uint64_t expected = 0;
            for (const std::uint64_t index : elements.indices)
                if (index != expected++) {
                    problems_.add(*elements.source, "the array has a gap: '" + name + "[" +
                                                        std::to_string(expected - 1) + "]' is missing");
                    break;
                }
        }
    }

private:
    Problems& problems_;
    std::set<std::string> plain_;
    std::map<std::string, Elements> arrays_;
};

} // namespace

void checkDefinition(const MapDefinition& definition, const JsonValue& source, Problems& problems) {
    const std::uint64_t all = lowBits(definition.width);
    if (definition.reset && *definition.reset > all)
        problems.add(placeOf(source, "reset"), hexadecimal(*definition.reset) +
                                                   " is wider than the register's " +
                                                   std::to_string(definition.width) + " bits");
    for (const MapField& field : definition.fields) {
        const JsonValue& place = placeOf(source, "fields", field.name);
        if ((field.mask & ~all) != 0)
            problems.add(place, "'" + field.name + "' has bits beyond the register's " +
                                    std::to_string(definition.width));
        if (const MapField* const other = sharer(definition.fields, field))
            problems.add(place, "'" + field.name + "' has a bit of '" + other->name + "'");
        if (!field.bits.empty())
            checkChoices(field, place, problems);
    }
}

void checkNames(const BlockDeclaration& block, Problems& problems) {
    Siblings siblings(problems);
    for (const RegisterDeclaration& reg : block.registers)
        siblings.add(reg.name, reg.source);
    for (const auto& inner : block.blocks) {
        siblings.add(inner->name, inner->source);
        checkNames(*inner, problems);
    }
    siblings.findGaps();
}

} // namespace Orvane::Maps
