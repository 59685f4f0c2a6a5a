// A rack that knows one simulated board, PHY 3 of which has a map.
#pragma once

#include "tests/support/rack/RackOnBoard.h"

#include <orvane/lab_maps.h>
#include <orvane/rack.hpp>

namespace OrvaneTest {

constexpr const char* kWren = R"({
  "format": "orvane-map-1", "name": "wren",
  "blocks": {"CHIP": {"at": "30.0xC000", "registers": {
    "CONTROL": {"at": 0, "reset": "0x2040", "fields": {
        "RESET": "15 self-clearing", "SPEED": {"bits": "6,13", "values": {"0": "10 Mb/s", "1": "100 Mb/s", "2": "1000 Mb/s"}},
        "MODEL": "11:10 ro", "LED": 0}},
    "STATUS": {"at": 1, "reset": "0x0004", "access": "ro", "fields": {"LINK": "2 latching-low", "UP": "0"}},
    "ALARMS": {"at": 2, "reset": 3, "fields": {"HOT": "0 w1c", "COLD": "1 w1c", "LIMIT": "15:8"}},
    "ERRORS": {"at": 3, "reset": 5, "access": "clear-on-read"},
    "TEMPERATURE": {"at": 4, "fields": {"VALUE": {"bits": "7:0", "signed": true, "scale": 0.5, "unit": "C"}}},
    "KEY": {"at": 5, "access": "wo"},
    "MODE": {"at": 6, "reset": "0x0110", "fields": {"SECRET": "15:8 wo", "LEVEL": "7:0"}},
    "PAGE": {"at": "0x1F", "fields": {"NUMBER": "3:0", "OTHER": "15:4"}}},
    "blocks": {
      "ONE": {"at": "0x10", "page": {"select": "CHIP.PAGE.NUMBER", "value": 1},
              "registers": {"HEIGHT": {"at": 0, "reset": 11}, "WIDTH": {"at": 1, "reset": 12}}},
      "TWO": {"at": "0x10", "page": {"select": "CHIP.PAGE.NUMBER", "value": 2},
              "registers": {"HEIGHT": {"at": 0, "reset": 22}}}}
  }},
  "registers": {"WORD": {"at": "ext32:0x100", "reset": "0x12345678"}, "DEVICE": {"at": "smbus:1"}}})";

// Values as the simulated PHY has them, and as its map knows them.
struct MappedBoard : RackOnBoard {
    Orvane::RegisterMap map = Orvane::RegisterMap::parse(kWren);

    MappedBoard() {
        board.useMap({1, 3, OrvaneSim::MdioPorts::kIdentifier, OrvaneSim::mappedRegisters(map)});
        phy.use(map);
    }

    // Another map for PHY 3, which then behaves as that says; `members` are its registers and blocks.
    void give(const std::string& members) {
        map = Orvane::RegisterMap::parse(R"({"format": "orvane-map-1", "name": "wagtail", )" + members + "}");
        board.useMap({1, 3, OrvaneSim::MdioPorts::kIdentifier, OrvaneSim::mappedRegisters(map)});
        phy.use(map);
    }

    // Register `number` of the chip.
    void set(std::uint32_t number, std::uint32_t value) {
        board.setRegister(Space::C45, 1, 3, 0x1EC000 + number, value);
    }
    std::uint32_t held(std::uint32_t number) const {
        return board.registerValue(Space::C45, 1, 3, 0x1EC000 + number);
    }
    // Register accesses that the board was asked for.
    std::vector<std::string> accesses() const {
        std::vector<std::string> names;
        for (const std::string& each : procedures())
            if (each != "open_connection")
                names.push_back(each);
        return names;
    }
};

using Names = std::vector<std::string>;

} // namespace OrvaneTest
