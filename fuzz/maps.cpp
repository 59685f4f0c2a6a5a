// Map files: the loader, and what a map that was loaded says of itself.
#include "fuzz/Input.h"

#include <orvane/maps.hpp>
#include <string>
#include <string_view>

namespace {

using namespace OrvaneFuzz;
using Orvane::RegisterMap;

// Every register is found under its name and its address, and takes a value apart and together again.
void useRegister(const RegisterMap& map, const Orvane::MapRegister& reg) {
    mustHold(map.find(reg.name()) == &reg);
    mustHold(map.find(reg.address()) == &reg);
    constexpr std::uint64_t kBits = 0xA5C396F00F693C5A;
    for (const Orvane::DecodedField& each : RegisterMap::decode(reg, kBits)) {
        mustHold(each.field->insert(kBits, each.raw) == kBits);
        mustHold(!each.valueText().empty());
    }
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    try {
        const RegisterMap map = RegisterMap::parse(text);
        std::size_t used = 0;
        for (const Orvane::MapRegister& each : map.registers())
            if (++used <= 1000)
                useRegister(map, each);
        if (map.size() <= 1000) {
            mustHold(RegisterMap::parse(map.toJson()).size() == map.size());
            map.toCHeader("X");
            map.toMarkdown();
            map.match(text.substr(0, 20));
            map.complete(text.substr(0, 1));
        }
    } catch (const Orvane::MapError& error) {
        mustHold(!error.problems().empty() && error.problems().size() <= 201);
    }
    return 0;
}
