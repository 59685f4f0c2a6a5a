// The maps for C: records of what the C++ objects say, and no exception beyond this file.
#include "ov_sys/maps/MapHandle.h"

#include <cstdlib>
#include <cstring>
#include <new>

char* Orvane::Maps::copyOf(const std::string& text) {
    auto* const copy = static_cast<char*>(std::malloc(text.size() + 1));
    if (copy == nullptr)
        throw std::bad_alloc();
    std::memcpy(copy, text.c_str(), text.size() + 1);
    return copy;
}

namespace {

using namespace Orvane;
using Maps::copyOf;

template <class Value, class Result>
void give(Result* to, const Value& value) {
    if (to != nullptr)
        *to = value;
}

void giveText(char** to, const std::string& text) {
    if (to != nullptr)
        *to = copyOf(text);
}

// Runs what may throw; `run` returns a status.
template <class Run>
int guarded(char** problems, Run run) noexcept {
    try {
        give(problems, nullptr);
        return run();
    } catch (const MapError& error) {
        if (problems != nullptr)
            *problems = ::strdup(error.what());
        return ORVANE_MAP_INVALID;
    } catch (...) {
        return ORVANE_MAP_FAILED;
    }
}

MapOptions optionsFor(const std::uint32_t* identifier) {
    MapOptions options;
    if (identifier != nullptr)
        options.identifier = *identifier;
    return options;
}

int giveMap(orvane_map** to, const RegisterMap& map) {
    give(to, nullptr);
    if (to != nullptr)
        *to = new orvane_map{map};
    return ORVANE_MAP_OK;
}

orvane_map_register recordOf(const RegisterMap& map, const MapRegister& reg) {
    const auto page = reg.page();
    orvane_map_register record{};
    record.index = static_cast<std::size_t>(&reg - map.registers().data());
    record.name = reg.name().c_str();
    record.text = reg.text().c_str();
    record.access = nameOf(reg.access());
    record.space = static_cast<int>(reg.address().space);
    record.mmd = reg.address().mmd;
    record.number = reg.address().number;
    record.page = reg.address().page;
    record.page_select = page ? page->select->name().c_str() : nullptr;
    record.width = reg.width();
    record.has_reset = reg.reset() ? 1 : 0;
    record.reset = reg.reset().value_or(0);
    record.is_readable = reg.isReadable() ? 1 : 0;
    record.is_safe_to_read = reg.isSafeToRead() ? 1 : 0;
    record.writable_mask = reg.writableMask();
    record.changed_by_read_mask = reg.changedByReadMask();
    record.fields = reg.fields().size();
    return record;
}

orvane_map_field recordOf(const RegisterMap& map, const MapRegister& reg, const MapField& field) {
    orvane_map_field record{};
    record.register_index = static_cast<std::size_t>(&reg - map.registers().data());
    record.index = static_cast<std::size_t>(&field - reg.fields().data());
    record.name = field.name.c_str();
    record.text = field.text.c_str();
    record.access = nameOf(field.access);
    record.mask = field.mask;
    record.width = field.width;
    record.has_side_effects = field.sideEffects ? 1 : 0;
    record.is_signed = field.isSigned ? 1 : 0;
    record.scale = field.scale;
    record.offset = field.offset;
    record.unit = field.unit.c_str();
    record.choices = field.choices.size();
    return record;
}

const MapRegister* registerAt(const orvane_map* map, std::size_t index) {
    return index < map->map.size() ? &map->map.registers()[index] : nullptr;
}

const MapField* fieldAt(const orvane_map* map, std::size_t registerIndex, std::size_t index) {
    const MapRegister* const reg = registerAt(map, registerIndex);
    return reg != nullptr && index < reg->fields().size() ? &reg->fields()[index] : nullptr;
}

// Runs with the field that a record names.
template <class Run>
int withField(const orvane_map* map, const orvane_map_field* record, char** problems, Run run) {
    return guarded(problems, [&]() -> int {
        if (map == nullptr || record == nullptr)
            return ORVANE_MAP_INVALID;
        const MapField* const field = fieldAt(map, record->register_index, record->index);
        return field == nullptr ? ORVANE_MAP_NOT_FOUND : run(*field);
    });
}

// Gives a text that is made of a map.
template <class Make>
int withText(const orvane_map* map, char** text, Make make) {
    return guarded(nullptr, [&]() -> int {
        if (map == nullptr)
            return ORVANE_MAP_INVALID;
        giveText(text, make(map->map));
        return ORVANE_MAP_OK;
    });
}

std::string linesOf(const std::vector<std::string>& names) {
    std::string lines;
    for (const std::string& each : names)
        lines += each + '\n';
    return lines;
}

std::string linesOf(const std::vector<MapReference>& references) {
    std::string lines;
    for (const MapReference& each : references)
        lines += each.name() + '\n';
    return lines;
}

std::string linesOf(const std::vector<MapProblem>& problems) {
    std::string lines;
    for (const MapProblem& each : problems)
        lines += each.text() + '\n';
    return lines;
}

} // namespace

extern "C" {

int orvane_map_load(const char* path, const std::uint32_t* identifier, orvane_map** map, char** problems) {
    return guarded(problems, [&]() -> int {
        return path == nullptr ? ORVANE_MAP_INVALID
                               : giveMap(map, RegisterMap::load(path, optionsFor(identifier)));
    });
}

int orvane_map_parse(const char* json, std::size_t length, const char* name, const std::uint32_t* identifier,
                     orvane_map** map, char** problems) {
    return guarded(problems, [&]() -> int {
        if (json == nullptr)
            return ORVANE_MAP_INVALID;
        return giveMap(
            map, RegisterMap::parse({json, length}, name == nullptr ? "map" : name, optionsFor(identifier)));
    });
}

int orvane_map_ieee8023(orvane_map** map) {
    return guarded(nullptr, [&] { return giveMap(map, RegisterMap::ieee8023()); });
}

int orvane_map_import(const char* path, int space, unsigned mmd, orvane_map** map, char** problems) {
    return guarded(problems, [&]() -> int {
        if (path == nullptr || space < ORVANE_MAP_C45 || space > ORVANE_MAP_SMBUS || mmd > 31)
            return ORVANE_MAP_INVALID;
        ImportOptions options;
        options.space = static_cast<MapSpace>(space);
        options.mmd = static_cast<std::uint8_t>(mmd);
        const ImportedMap imported = RegisterMap::importFile(path, options);
        giveText(problems, linesOf(imported.notCarriedOver));
        return giveMap(map, imported.map);
    });
}

void orvane_map_release(orvane_map* map) {
    delete map;
}

void orvane_map_free(char* text) {
    std::free(text);
}

int orvane_map_size(const orvane_map* map, std::size_t* size) {
    if (map == nullptr)
        return ORVANE_MAP_INVALID;
    give(size, map->map.size());
    return ORVANE_MAP_OK;
}

int orvane_map_register_at(const orvane_map* map, std::size_t index, orvane_map_register* reg) {
    const MapRegister* const found = map == nullptr ? nullptr : registerAt(map, index);
    if (found == nullptr)
        return map == nullptr ? ORVANE_MAP_INVALID : ORVANE_MAP_NOT_FOUND;
    give(reg, recordOf(map->map, *found));
    return ORVANE_MAP_OK;
}

int orvane_map_field_at(const orvane_map* map, std::size_t registerIndex, std::size_t index,
                        orvane_map_field* field) {
    const MapField* const found = map == nullptr ? nullptr : fieldAt(map, registerIndex, index);
    if (found == nullptr)
        return map == nullptr ? ORVANE_MAP_INVALID : ORVANE_MAP_NOT_FOUND;
    give(field, recordOf(map->map, *registerAt(map, registerIndex), *found));
    return ORVANE_MAP_OK;
}

int orvane_map_choice_at(const orvane_map* map, const orvane_map_field* field, std::size_t index,
                         std::uint64_t* value, const char** name) {
    return withField(map, field, nullptr, [&](const MapField& found) -> int {
        if (index >= found.choices.size())
            return ORVANE_MAP_NOT_FOUND;
        give(value, found.choices[index].value);
        give(name, found.choices[index].name.c_str());
        return ORVANE_MAP_OK;
    });
}

int orvane_map_resolve(const orvane_map* map, const char* name, orvane_map_register* reg,
                       orvane_map_field* field, int* isField, char** suggestion) {
    return guarded(suggestion, [&]() -> int {
        if (map == nullptr || name == nullptr)
            return ORVANE_MAP_INVALID;
        const MapReference found = map->map.resolve(name);
        if (!found) {
            const std::string meant = map->map.suggestion(name);
            if (!meant.empty())
                giveText(suggestion, meant);
            return ORVANE_MAP_NOT_FOUND;
        }
        give(reg, recordOf(map->map, *found.reg));
        give(isField, found.field == nullptr ? 0 : 1);
        if (found.field != nullptr)
            give(field, recordOf(map->map, *found.reg, *found.field));
        return ORVANE_MAP_OK;
    });
}

int orvane_map_find(const orvane_map* map, int space, unsigned mmd, std::uint32_t number, std::int64_t page,
                    orvane_map_register* reg) {
    if (map == nullptr || space < ORVANE_MAP_C45 || space > ORVANE_MAP_SMBUS || mmd > 31)
        return ORVANE_MAP_INVALID;
    const MapRegister* const found =
        map->map.find(MapAddress{static_cast<MapSpace>(space), static_cast<std::uint8_t>(mmd), number, page});
    if (found == nullptr)
        return ORVANE_MAP_NOT_FOUND;
    give(reg, recordOf(map->map, *found));
    return ORVANE_MAP_OK;
}

int orvane_map_extract(const orvane_map* map, const orvane_map_field* field, std::uint64_t registerValue,
                       std::uint64_t* raw) {
    return withField(map, field, nullptr, [&](const MapField& found) -> int {
        give(raw, found.extract(registerValue));
        return ORVANE_MAP_OK;
    });
}

int orvane_map_insert(const orvane_map* map, const orvane_map_field* field, std::uint64_t registerValue,
                      std::uint64_t raw, std::uint64_t* result, char** problems) {
    return withField(map, field, problems, [&](const MapField& found) -> int {
        give(result, found.insert(registerValue, raw));
        return ORVANE_MAP_OK;
    });
}

int orvane_map_explain(const orvane_map* map, const orvane_map_field* field, std::uint64_t raw, char** text,
                       char** note) {
    return withField(map, field, nullptr, [&](const MapField& found) -> int {
        const DecodedField decoded{&found, raw, found.number(raw), found.scaled(raw), found.choice(raw)};
        giveText(text, decoded.valueText());
        giveText(note, decoded.note());
        return ORVANE_MAP_OK;
    });
}

int orvane_map_match(const orvane_map* map, const char* pattern, char** names) {
    return withText(map, names, [&](const RegisterMap& of) {
        return linesOf(of.match(pattern == nullptr ? "" : pattern));
    });
}

int orvane_map_search(const orvane_map* map, const char* words, char** names) {
    return withText(map, names,
                    [&](const RegisterMap& of) { return linesOf(of.search(words == nullptr ? "" : words)); });
}

int orvane_map_complete(const orvane_map* map, const char* beginning, char** names) {
    return withText(map, names, [&](const RegisterMap& of) {
        return linesOf(of.complete(beginning == nullptr ? "" : beginning));
    });
}

int orvane_map_to_json(const orvane_map* map, char** text) {
    return withText(map, text, [](const RegisterMap& of) { return of.toJson(); });
}

int orvane_map_to_c_header(const orvane_map* map, const char* prefix, char** text) {
    return withText(map, text,
                    [&](const RegisterMap& of) { return of.toCHeader(prefix == nullptr ? "" : prefix); });
}

int orvane_map_to_markdown(const orvane_map* map, char** text) {
    return withText(map, text, [](const RegisterMap& of) { return of.toMarkdown(); });
}

} // extern "C"
