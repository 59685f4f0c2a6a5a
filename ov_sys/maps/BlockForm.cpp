// How blocks, registers and their repetitions are read and changed.
#include "ov_sys/maps/BlockForm.h"

#include "ov_sys/maps/Checks.h"
#include "ov_sys/maps/Members.h"
#include "ov_sys/maps/Numbers.h"
#include "ov_sys/maps/PlaceForm.h"

#include <algorithm>
#include <utility>

namespace Orvane::Maps {

namespace {

constexpr unsigned kDeepestBlock = 8;

std::optional<unsigned> readWidth(const Members& members) {
    const auto width = members.number("width", 64, 8);
    if (width && (*width & (*width - 1)) != 0)
        members.refuse("width", "has to be 8, 16, 32 or 64");
    return width ? std::optional<unsigned>(static_cast<unsigned>(*width)) : std::nullopt;
}

void readAccess(const Members& members, MapAccess& access) {
    const auto word = members.string("access");
    const auto known = word ? accessOf(*word) : std::nullopt;
    if (known)
        access = *known;
    else if (word)
        members.refuse(
            "access",
            "has to be ro, rw, wo, w1c, self-clearing, latching-low, latching-high, clear-on-read or "
            "reserved");
}

void readRepetition(const Members& members, Repetition& repetition) {
    const auto count = members.number("count", kMostRegisters, 1);
    if (count) {
        repetition.isArray = true;
        repetition.count = static_cast<std::uint32_t>(*count);
    }
    const auto stride = members.number("stride", 0xFFFFFFFF);
    if (stride && !repetition.isArray)
        members.refuse("stride", "is for arrays: 'count' is missing");
    repetition.stride = stride ? static_cast<std::uint32_t>(*stride) : repetition.stride;
}

std::optional<PageDeclaration> readPage(const JsonValue& value, Problems& problems) {
    const Members members(value, {"select", "value", "step"}, problems);
    PageDeclaration page;
    members.need("select");
    members.need("value");
    page.select = members.string("select").value_or("");
    page.value = static_cast<std::uint32_t>(members.number("value", 0xFFFFFFFF).value_or(0));
    page.step = static_cast<std::uint32_t>(members.number("step", 0xFFFFFFFF).value_or(0));
    return page;
}

std::shared_ptr<MapDefinition> usualDefinition(const RegisterDeclaration& reg,
                                               const BlockDeclaration& parent) {
    auto definition = std::make_shared<MapDefinition>();
    const MapSpace space = reg.at.isRelative ? parent.space : reg.at.address.space;
    definition->width = parent.width.value_or(space == MapSpace::ext32 ? 32 : 16);
    definition->access = parent.access;
    return definition;
}

template <class Element, class Index>
void reindex(const std::vector<Element>& elements, Index& index) {
    index.clear();
    for (std::size_t i = 0; i < elements.size(); ++i)
        if constexpr (std::is_same_v<Element, RegisterDeclaration>)
            index.emplace(elements[i].name, i);
        else
            index.emplace(elements[i]->name, i);
}

} // namespace

bool BlockForm::isName(const JsonValue& value) {
    if (isIdentifier(value.key, true))
        return true;
    problems_.add(value,
                  "is no name: letters, digits and '_', a letter first, 64 at most, then an index as [0]");
    return false;
}

void BlockForm::readContent(const JsonValue& value, BlockDeclaration& into, unsigned depth) {
    const Members members(value, problems_);
    if (mode_ != Mode::declare)
        members.each("remove", JsonValue::Kind::array,
                     [&](const JsonValue& each) { removeNames(each, into); });
    members.each("registers", JsonValue::Kind::object, [&](const JsonValue& each) {
        if (isName(each))
            readRegister(each, into);
    });
    members.each("blocks", JsonValue::Kind::object, [&](const JsonValue& each) {
        if (isName(each))
            readBlock(each, into, depth + 1);
    });
}

void BlockForm::removeNames(const JsonValue& value, BlockDeclaration& from) {
    const std::string name(value.text);
    const auto block = from.blockIndex.find(name);
    const auto reg = from.registerIndex.find(name);
    if (block == from.blockIndex.end() && reg == from.registerIndex.end()) {
        problems_.add(value, "names no register or block that is here");
    } else if (mode_ == Mode::override && block != from.blockIndex.end()) {
        from.blocks.erase(from.blocks.begin() + static_cast<std::ptrdiff_t>(block->second));
        reindex(from.blocks, from.blockIndex);
    } else if (mode_ == Mode::override) {
        from.registers.erase(from.registers.begin() + static_cast<std::ptrdiff_t>(reg->second));
        reindex(from.registers, from.registerIndex);
    }
}

void BlockForm::readBlockMembers(const JsonValue& value, BlockDeclaration& block) {
    const Members members(
        value, {"registers", "blocks", "remove", "text", "at", "count", "stride", "page", "width", "access"},
        problems_);
    if (mode_ == Mode::declare && members.find("remove") != nullptr)
        members.refuse("remove", "is for overrides");
    block.text = members.string("text", kLongestText).value_or(block.text);
    if (const JsonValue* const at = members.find("at")) {
        block.at = readPlace(*at, problems_);
        if (block.at && !block.at->isRelative)
            block.space = block.at->address.space;
    }
    readRepetition(members, block.repetition);
    if (const JsonValue* const page = members.find("page"))
        block.page = readPage(*page, problems_);
    if (const auto width = readWidth(members))
        block.width = width;
    readAccess(members, block.access);
}

void BlockForm::changeBlock(const JsonValue& value, BlockDeclaration& block, unsigned depth) {
    BlockDeclaration unkept;
    unkept.space = block.space;
    if (mode_ == Mode::declare) {
        for (const JsonValue& each : value)
            if (each.key != "registers" && each.key != "blocks")
                problems_.add(each, "of a block that is there already changes in 'overrides' only");
    } else {
        readBlockMembers(value, mode_ == Mode::override ? block : unkept);
    }
    readContent(value, block, depth);
}

void BlockForm::readBlock(const JsonValue& value, BlockDeclaration& parent, unsigned depth) {
    if (depth > kDeepestBlock) {
        problems_.add(value, "lies deeper within blocks than 8");
        return;
    }
    const auto known = parent.blockIndex.find(std::string(value.key));
    if (known != parent.blockIndex.end()) {
        changeBlock(value, *parent.blocks[known->second], depth);
        return;
    }
    auto made = std::make_unique<BlockDeclaration>();
    made->name = value.key;
    made->space = parent.space;
    made->width = parent.width;
    made->access = parent.access;
    made->source = &value;
    readBlockMembers(value, *made);
    BlockForm(enumerations_, Mode::declare, fieldsLeft_, problems_).readContent(value, *made, depth);
    if (mode_ == Mode::check)
        return;
    parent.blockIndex.emplace(made->name, parent.blocks.size());
    parent.blocks.push_back(std::move(made));
}

void BlockForm::readRegister(const JsonValue& value, BlockDeclaration& parent) {
    const Members members(
        value, {"at", "count", "stride", "width", "reset", "access", "side-effects", "text", "fields"},
        problems_);
    const auto known = parent.registerIndex.find(std::string(value.key));
    const bool isKnown = known != parent.registerIndex.end();
    if (isKnown && mode_ == Mode::declare) {
        problems_.add(value, "is there already; what changes it stands in 'overrides'");
        return;
    }
    RegisterDeclaration made;
    if (isKnown)
        made = parent.registers[known->second];
    made.name = value.key;
    made.source = &value;
    const JsonValue* const at = isKnown ? members.find("at") : members.need("at");
    if (at != nullptr)
        made.at = readPlace(*at, problems_).value_or(made.at);
    readRepetition(members, made.repetition);
    made.definition =
        isKnown ? std::make_shared<MapDefinition>(*made.definition) : usualDefinition(made, parent);
    readDefinition(members, *made.definition);
    checkDefinition(*made.definition, value, problems_);
    if (mode_ == Mode::check)
        return;
    if (isKnown) {
        parent.registers[known->second] = std::move(made);
    } else {
        parent.registerIndex.emplace(made.name, parent.registers.size());
        parent.registers.push_back(std::move(made));
    }
}

void BlockForm::readDefinition(const Members& members, MapDefinition& definition) {
    definition.width = readWidth(members).value_or(definition.width);
    readAccess(members, definition.access);
    definition.sideEffects = members.flag("side-effects").value_or(definition.sideEffects);
    definition.text = members.string("text", kLongestText).value_or(definition.text);
    if (const auto reset = members.number("reset", ~std::uint64_t{0}))
        definition.reset = reset;
    if (const JsonValue* const fields = members.find("fields"))
        readFields(*fields, definition);
}

void BlockForm::readFields(const JsonValue& value, MapDefinition& definition) {
    if (value.kind != JsonValue::Kind::object)
        problems_.add(value, "has to be an object");
    std::vector<MapField>& fields = definition.fields;
    for (const JsonValue& each : value) {
        const auto known = std::find_if(fields.begin(), fields.end(),
                                        [&](const MapField& field) { return field.name == each.key; });
        if (!isIdentifier(each.key)) {
            problems_.add(each, "is no name: letters, digits and '_', a letter first, 64 at most");
        } else if (known != fields.end() && each.kind == JsonValue::Kind::null && mode_ != Mode::declare) {
            fields.erase(known);
        } else if (known != fields.end()) {
            readField(each, enumerations_, *known, problems_);
        } else if (fields.size() == 64) {
            problems_.add(each, "is one field more than a register has bits");
            return;
        } else if (fieldsLeft_ == 0) {
            problems_.add(each, "is one field more than the 65536 of a map");
            return;
        } else {
            --fieldsLeft_;
            MapField& field = fields.emplace_back();
            field.name = each.key;
            field.access = definition.access;
            readField(each, enumerations_, field, problems_);
        }
    }
}

} // namespace Orvane::Maps
