// Which registers of a map are meant, and which of them may be read by the way.
#pragma once

#include "ov_sys/Interface/foundation/Export.h"

#include <initializer_list>
#include <orvane/maps.hpp>
#include <string>
#include <utility>
#include <vector>

namespace Orvane {

// Names of registers, fields and blocks, and patterns as RegisterMap::match() has them. A plain value.
struct Scope {
    std::vector<std::string> names{"**"};
    // Also registers that a read changes and that only a pattern or a block names.
    bool withSideEffects = false;

    Scope() = default;
    // One, several in braces, or a list. NOLINTBEGIN(google-explicit-constructor): names are given as they
    // are
    Scope(const char* name) : names{name} {}
    Scope(std::string name) : names{std::move(name)} {}
    Scope(std::initializer_list<const char*> several) : names(several.begin(), several.end()) {}
    Scope(std::vector<std::string> several) : names(std::move(several)) {}
    // NOLINTEND(google-explicit-constructor)
    Scope& sideEffects(bool wanted = true) {
        withSideEffects = wanted;
        return *this;
    }
};

// Registers, each once and in file order. Valid as long as a copy of the map.
struct Selection {
    std::vector<const MapRegister*> registers;
    // Meant by a pattern or a block, but a read would change them, or tells nothing.
    std::vector<const MapRegister*> leftOut;
};

// What a scope means in a map. A register that is named in full, or by a field of it, is taken whatever a
// read does to it. Throws MapError for a name that is not there and a pattern that nothing matches. Does not
// block; any thread.
ORVANE_API Selection select(const RegisterMap& map, const Scope& scope);

} // namespace Orvane
