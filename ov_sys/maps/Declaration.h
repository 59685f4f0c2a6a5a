// What the files of a map declare, before arrays and blocks are laid out.
#pragma once

#include "ov_sys/maps/Json.h"

#include <cstdint>
#include <memory>
#include <optional>
#include <orvane/maps.hpp>
#include <string>
#include <unordered_map>
#include <vector>

namespace Orvane {

// What all elements of an array of registers share.
struct MapDefinition {
    std::string text;
    unsigned width = 16;
    std::optional<std::uint64_t> reset;
    MapAccess access = MapAccess::rw;
    bool sideEffects = false;
    std::vector<MapField> fields;
};

namespace Maps {

// Where something begins: in a space, or so far behind the block that it lies in.
struct Place {
    bool isRelative = false;
    MapAddress address; // only its number where relative
};

// How often something is there; an array's elements have names with an index.
struct Repetition {
    bool isArray = false;
    std::uint32_t count = 1;
    std::uint32_t stride = 0; // from one element to the next
};

struct PageDeclaration {
    std::string select; // full name of a register or a field
    std::uint32_t value = 0;
    std::uint32_t step = 0; // from one element of the block's array to the next
};

struct RegisterDeclaration {
    std::string name;
    Place at;
    Repetition repetition;
    std::shared_ptr<MapDefinition> definition;
    const JsonValue* source = nullptr; // while the map is being loaded
};

struct BlockDeclaration {
    std::string name;
    std::string text;
    std::optional<Place> at;
    Repetition repetition;
    std::optional<PageDeclaration> page;
    MapSpace space = MapSpace::c45; // of what lies in it, unless that says otherwise
    std::optional<unsigned> width;  // likewise
    MapAccess access = MapAccess::rw;
    std::vector<RegisterDeclaration> registers;
    std::vector<std::unique_ptr<BlockDeclaration>> blocks;
    std::unordered_map<std::string, std::size_t> registerIndex; // by name
    std::unordered_map<std::string, std::size_t> blockIndex;
    const JsonValue* source = nullptr; // while the map is being loaded
};

} // namespace Maps
} // namespace Orvane
