// What the handles of the C interface are.
#pragma once

#include "ov_sys/rack/Flight.h"
#include "ov_sys/rack/Rack.h"

#include <cstdint>
#include <orvane/rack.h>
#include <string>
#include <variant>
#include <vector>

struct orvane_rack {
    Orvane::Rack rack;
};

struct orvane_phy {
    Orvane::Phy phy;
};

struct orvane_cancellation {
    Orvane::Cancellation cancellation;
};

struct orvane_board_list {
    Orvane::Discovery found;
    std::vector<orvane_board> boards; // points into what was found
};

struct orvane_bytes {
    std::string bytes;
};

struct orvane_flight {
    explicit orvane_flight(unsigned window) : flight(window) {}
    Orvane::Flight flight;
};

struct orvane_pending {
    std::variant<Orvane::Pending<std::uint32_t>, Orvane::Pending<std::vector<std::uint32_t>>,
                 Orvane::Pending<Orvane::BatchResult>, Orvane::Pending<bool>>
        result;
};
