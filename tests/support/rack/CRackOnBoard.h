// The C interface's handles of a rack that knows one simulated board.
#pragma once

#include "tests/support/rack/RackOnBoard.h"

#include <orvane/rack.h>

namespace OrvaneTest {

// Port 1 of board7, whose PHY 3 the tests use; nothing is sent before they do.
struct CRackOnBoard : OneBoard {
    orvane_rack* rack = nullptr;
    orvane_phy* phy = nullptr;
    orvane_failure failure{};

    CRackOnBoard() {
        orvane_rack_new(&rack, nullptr);
        orvane_rack_know(rack, kBoardSerial, board.address().c_str(), nullptr);
        orvane_rack_phy(rack, "board7:1", {ORVANE_EXCLUSIVE, 7, 0}, 3, nullptr, &phy, nullptr);
    }
    ~CRackOnBoard() {
        orvane_phy_free(phy);
        orvane_rack_free(rack);
    }
    CRackOnBoard(const CRackOnBoard&) = delete;
    CRackOnBoard& operator=(const CRackOnBoard&) = delete;

    static constexpr orvane_register kRegister{ORVANE_CLAUSE45, 30, 0xC010};

    std::vector<std::string> procedures() const {
        std::vector<std::string> names;
        for (const Request& request : board.requests())
            names.push_back(request.procedure);
        return names;
    }
};

// What the board sent, as text; frees it.
inline std::string textOf(orvane_bytes* bytes) {
    std::string text(orvane_bytes_data(bytes), orvane_bytes_size(bytes));
    orvane_bytes_free(bytes);
    return text;
}

} // namespace OrvaneTest
