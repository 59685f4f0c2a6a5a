// What a RegisterMap shares with its copies.
#pragma once

#include "ov_sys/maps/Declaration.h"
#include "ov_sys/maps/Index.h"
#include "ov_sys/maps/NameIndex.h"

namespace Orvane {

struct MapContent {
    std::string name;
    std::string text;
    std::vector<MapIdentifier> identifiers;
    Maps::BlockDeclaration root;
    std::vector<MapRegister> registers; // in file order
    Maps::NameIndex byName;
    Maps::Index byAddress;

    const MapRegister* find(std::string_view name) const noexcept;
    const MapRegister* find(const MapAddress& address) const noexcept;
    MapReference resolve(std::string_view name) const noexcept;

    // Enters the register of this number. The one whose place it would take, and keeps; null: none.
    const MapRegister* indexAddress(std::uint32_t number);
};

// Makes what only the room may make.
struct MapBuilder {
    static RegisterMap mapOf(std::shared_ptr<const MapContent> content) {
        return RegisterMap(std::move(content));
    }
    static const MapContent& contentOf(const RegisterMap& map) { return *map.content_; }
    static MapRegister registerOf(std::string name, const MapAddress& address,
                                  const MapDefinition& definition) {
        MapRegister made;
        made.name_ = std::move(name);
        made.address_ = address;
        made.definition_ = &definition;
        return made;
    }
    static void setPage(MapRegister& reg, const MapReference& select) {
        reg.select_ = select.reg;
        reg.selectField_ = select.field;
    }
};

namespace Maps {

// Lays the declared blocks and arrays out as registers, and checks names, addresses and pages. Must not be
// called again; the content must not move afterwards.
void layOut(MapContent& content, Problems& problems);

} // namespace Maps
} // namespace Orvane
