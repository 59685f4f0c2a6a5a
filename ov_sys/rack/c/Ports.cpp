// Many ports at once, for C.
#include "ov_sys/rack/c/Failures.h"
#include "ov_sys/rack/c/Handles.h"
#include "ov_sys/rack/c/Values.h"

#include <algorithm>
#include <memory>
#include <string>
#include <utility>
#include <vector>

using namespace Orvane::RackC;

struct orvane_port_list {
    explicit orvane_port_list(std::vector<Orvane::OpenedPort> ports) : opened(std::move(ports)) {
        for (const Orvane::OpenedPort& one : opened) {
            records.push_back({one.name.c_str(), one.port ? 1 : 0, {}});
            if (one.failure)
                fail(&records.back().failure, *one.failure);
        }
    }

    const std::vector<Orvane::OpenedPort> opened; // what the records point into
    std::vector<orvane_opened_port> records;
};

namespace {

std::vector<std::string> namesOf(const char* const* names, std::size_t count) {
    std::vector<std::string> list;
    for (std::size_t i = 0; i < count; ++i) {
        need({names[i]});
        list.emplace_back(names[i]);
    }
    return list;
}

} // namespace

extern "C" {

int orvane_rack_open_all(orvane_rack* rack, const char* const* names, size_t name_count, const unsigned* phys,
                         size_t phy_count, orvane_access access, const orvane_limits* limits,
                         orvane_port_list** ports, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({rack, names, ports});
        const std::vector<unsigned> ids(phys, phys == nullptr ? phys : phys + phy_count);
        *ports = new orvane_port_list(
            rack->rack.openAll(namesOf(names, name_count), ids, accessOf(access), withinOf(limits)));
    });
}

size_t orvane_port_list_size(const orvane_port_list* ports) {
    return ports == nullptr ? 0 : ports->records.size();
}

const orvane_opened_port* orvane_port_list_at(const orvane_port_list* ports, size_t index) {
    return index < orvane_port_list_size(ports) ? &ports->records[index] : nullptr;
}

int orvane_port_list_phy(const orvane_port_list* ports, size_t index, unsigned id, orvane_phy** phy,
                         orvane_failure* failure) {
    return guarded(failure, [&] {
        need({ports, phy});
        if (index >= ports->opened.size() || !ports->opened[index].port)
            refuse("There is no such port in the list.");
        *phy = new orvane_phy{ports->opened[index].port->phy(id)};
    });
}

void orvane_port_list_free(orvane_port_list* ports) {
    delete ports;
}

int orvane_rack_close_all(orvane_rack* rack, const orvane_limits* limits, orvane_failure* failures,
                          size_t room, size_t* count, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({rack, count});
        const std::vector<Orvane::Failure> untold = rack->rack.closeAll(withinOf(limits));
        for (size_t i = 0; failures != nullptr && i < std::min(room, untold.size()); ++i)
            fail(&failures[i], untold[i]);
        *count = untold.size();
    });
}

} // extern "C"
