// The register maps that a command knows.
#pragma once

#include "tools/orvane/board/Context.h"
#include "tools/orvane/board/RegisterAddress.h"

#include <cstdint>
#include <orvane/rack.hpp>
#include <string>
#include <vector>

namespace OrvaneTool {

// A register that an argument means.
struct Asked {
    Register reg;
    const Orvane::MapRegister* mapped = nullptr; // null: no map has it
    const Orvane::MapField* field = nullptr;     // the one that was named; null: all
    bool byName = false;
};

// Those given by --map or ORVANE_MAPS, those beside the user's configuration that are for the PHY, and IEEE
// 802.3, in this order: the first that has a name or an address is asked. Pointers live as long as the
// object.
class KnownMaps {
public:
    // Loads what is given. Throws UsageError with all that is wrong with a map.
    explicit KnownMaps(const Context& context);

    // Whether there are maps beside the user's configuration, and the PHY's identifier has to be asked for to
    // choose.
    bool wantsIdentifier() const { return !configured_.empty(); }
    // Loads those of them that describe this PHY. A broken one is left out, with a line on standard error.
    void identify(std::uint32_t identifier);

    // Whether there is any but IEEE 802.3.
    bool given() const { return maps_.size() > 1; }
    const std::vector<Orvane::RegisterMap>& all() const { return maps_; }

    const Orvane::MapRegister* find(const Register& reg) const;
    // The registers of one argument: a name, a field, a block, a pattern, or an address or range in `space`.
    // Those that a read would change and that only a pattern, a block or (where a map is given) a range means
    // are left out, their names in `leftOut`, unless the context says otherwise. Throws UsageError.
    std::vector<Asked> parse(const std::string& text, Space space, std::uint32_t step,
                             std::vector<std::string>& leftOut) const;

private:
    std::vector<Asked> named(const std::string& text, std::vector<std::string>& leftOut) const;
    [[noreturn]] void refuse(const std::string& text, const std::string& why) const;

    const Context& context_;
    std::vector<std::string> configured_; // files
    std::vector<Orvane::RegisterMap> maps_;
};

// Whether an argument is a name or a pattern rather than an address.
bool isName(const std::string& text);

// Where the tool has a register of a map; SMBus devices' own registers and those wider than 32 bits throw
// UsageError.
Register registerOf(const Orvane::MapRegister& reg);
Register registerOf(const Orvane::RegisterAddress& address);
// And back; on which page is lost.
Orvane::RegisterAddress addressOf(const Register& reg);

// Whether one of them was named.
bool isNamed(const std::vector<Asked>& list);

// Whether fields are shown: as asked for, else on a terminal, where a map was given or something was named.
bool showsFields(const Context& context, const KnownMaps& maps, const std::vector<Asked>& list);

} // namespace OrvaneTool
