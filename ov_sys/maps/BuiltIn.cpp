// Finds a map among the files that the build puts into the library.
#include "ov_sys/maps/BuiltIn.h"

#include "ov_sys/maps/Loader.h"

namespace Orvane {

namespace Maps {

std::string_view builtInMap(std::string_view name) {
    constexpr std::string_view kEnding = ".json";
    for (const BuiltInFile& each : kBuiltInFiles)
        if (each.path == name || (each.path.substr(0, each.path.size() - kEnding.size()) == name &&
                                  name.find('/') == std::string_view::npos))
            return each.text;
    return {};
}

} // namespace Maps

const RegisterMap& RegisterMap::ieee8023() {
    static const RegisterMap map =
        Maps::Loader(MapOptions{}).parse(Maps::builtInMap("ieee8023"), "ieee8023.json");
    return map;
}

} // namespace Orvane
