// Names and patterns become registers in the order of their addresses.
#include "ov_sys/names/Selection.h"

#include <algorithm>

namespace Orvane {
namespace {

enum class Wanted { No, ByPattern, ByName };

class Selector {
public:
    explicit Selector(const RegisterMap& map) : map_(map), wanted_(map.size(), Wanted::No) {}

    void take(const std::string& name) {
        if (name.find_first_of("*?") != std::string::npos)
            return takeAll(name, name);
        if (const MapReference found = map_.resolve(name)) {
            mark(found, Wanted::ByName);
            return;
        }
        // A block, an array, or what throws with a suggestion.
        if (!takeMatching(name + ".**") && !takeMatching(name + "[*]") && !takeMatching(name + "[*].**"))
            static_cast<void>(map_.at(name));
    }

    Selection result(bool withSideEffects) const {
        Selection selection;
        for (std::size_t i = 0; i < wanted_.size(); ++i) {
            const MapRegister& reg = map_.registers()[i];
            const bool taken =
                wanted_[i] == Wanted::ByName || reg.isSafeToRead() || (withSideEffects && reg.isReadable());
            if (wanted_[i] != Wanted::No)
                (taken ? selection.registers : selection.leftOut).push_back(&reg);
        }
        return selection;
    }

private:
    void takeAll(const std::string& pattern, const std::string& name) {
        if (!takeMatching(pattern))
            throw MapError("nothing in the map " + map_.name() + " matches '" + name + "'");
    }

    bool takeMatching(const std::string& pattern) {
        const std::vector<MapReference> found = map_.match(pattern);
        for (const MapReference& each : found)
            mark(each, Wanted::ByPattern);
        return !found.empty();
    }

    void mark(const MapReference& reference, Wanted how) {
        Wanted& place = wanted_[static_cast<std::size_t>(reference.reg - map_.registers().data())];
        place = std::max(place, how);
    }

    const RegisterMap& map_;
    std::vector<Wanted> wanted_; // of each register
};

} // namespace

Selection select(const RegisterMap& map, const Scope& scope) {
    Selector selector(map);
    for (const std::string& name : scope.names)
        selector.take(name);
    return selector.result(scope.withSideEffects);
}

} // namespace Orvane
