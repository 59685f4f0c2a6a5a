// Which map a member names: a file, or the one that is built in.
#include "simulator/script/MapMember.h"

#include <filesystem>
#include <orvane/lab_maps.h>

namespace OrvaneSim {
namespace {

constexpr unsigned kDevices = 256;
constexpr unsigned kPhys = 32;
constexpr const char* kBuiltIn = "ieee8023";

Orvane::RegisterMap mapOf(const std::string& file, std::uint32_t identifier) {
    // orvane-sim ctl makes each file's name absolute: what is built in has no folder.
    if (std::filesystem::path(file).filename() == kBuiltIn && !std::filesystem::exists(file))
        return Orvane::RegisterMap::ieee8023();
    Orvane::MapOptions options;
    options.identifier = identifier;
    return Orvane::RegisterMap::load(file, options);
}

} // namespace

PhyAddress readPhy(ObjectReader& object) {
    PhyAddress where;
    where.device = static_cast<unsigned>(object.number("device", 0, 0, kDevices - 1));
    where.phy = static_cast<unsigned>(object.number("phy", 0, 0, kPhys - 1));
    return where;
}

UseMap readMap(ObjectReader& object) {
    const PhyAddress where = readPhy(object);
    object.need("file");
    const auto identifier =
        static_cast<std::uint32_t>(object.number("identifier", MdioPorts::kIdentifier, 0, UINT32_MAX));
    try {
        return {where.device, where.phy, identifier,
                mappedRegisters(mapOf(object.text("file", ""), identifier))};
    } catch (const Orvane::MapError& error) {
        throw ScriptError(object.at("file"), error.what());
    }
}

} // namespace OrvaneSim
