// PHYs, their sessions and registers, for C.
#include "ov_sys/rack/c/Failures.h"
#include "ov_sys/rack/c/Handles.h"
#include "ov_sys/rack/c/Values.h"

#include <algorithm>
#include <functional>
#include <vector>

using namespace Orvane::RackC;

static_assert(static_cast<int>(Orvane::SmbusProtocol::Paged16) == ORVANE_SMBUS_PAGED16);
static_assert(static_cast<int>(Orvane::SmbusProtocol::Direct32) == ORVANE_SMBUS_DIRECT32);

namespace {

std::function<void()> hookOf(orvane_reopen_hook hook, void* context) {
    if (hook == nullptr)
        return {};
    return [hook, context] {
        orvane_failure said{};
        said.port = said.phy = -1;
        if (const int status = hook(context, &said); status != ORVANE_DONE)
            rethrow(status, said);
    };
}

} // namespace

extern "C" {

int orvane_rack_phy(orvane_rack* rack, const char* port, orvane_access access, unsigned id,
                    const orvane_limits* limits, orvane_phy** phy, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({rack, port, phy});
        *phy = new orvane_phy{rack->rack.open(port, accessOf(access), withinOf(limits)).phy(id)};
    });
}

void orvane_phy_free(orvane_phy* phy) {
    delete phy;
}

int orvane_phy_id(orvane_phy* phy, unsigned* id, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, id});
        *id = phy->phy.id();
    });
}

int orvane_phy_open(orvane_phy* phy, const orvane_limits* limits, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy});
        phy->phy.open(withinOf(limits));
    });
}

int orvane_phy_close(orvane_phy* phy, const orvane_limits* limits, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy});
        phy->phy.close(withinOf(limits));
    });
}

int orvane_phy_is_open(orvane_phy* phy, int* open, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, open});
        *open = phy->phy.isOpen() ? 1 : 0;
    });
}

int orvane_phy_key(orvane_phy* phy, uint16_t* key, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, key});
        *key = phy->phy.key();
    });
}

int orvane_phy_on_reopen(orvane_phy* phy, orvane_reopen_hook hook, void* context, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy});
        phy->phy.onReopen(hookOf(hook, context));
    });
}

int orvane_phy_set_smbus_protocol(orvane_phy* phy, int protocol, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy});
        if (protocol != ORVANE_SMBUS_PAGED16 && protocol != ORVANE_SMBUS_DIRECT32)
            refuse("There is no such SMBus protocol.");
        phy->phy.setSmbusProtocol(static_cast<Orvane::SmbusProtocol>(protocol));
    });
}

int orvane_phy_read(orvane_phy* phy, orvane_register address, const orvane_limits* limits, uint32_t* value,
                    orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, value});
        *value = phy->phy.read(addressOf(address), withinOf(limits));
    });
}

int orvane_phy_write(orvane_phy* phy, orvane_register address, uint32_t value, const orvane_limits* limits,
                     orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy});
        phy->phy.write(addressOf(address), value, withinOf(limits));
    });
}

int orvane_phy_modify(orvane_phy* phy, orvane_register address, uint32_t mask, uint32_t value,
                      const orvane_limits* limits, uint32_t* written, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy});
        const std::uint32_t whole = phy->phy.modify(addressOf(address), mask, value, withinOf(limits));
        if (written != nullptr)
            *written = whole;
    });
}

int orvane_phy_read_list(orvane_phy* phy, orvane_register first, size_t count, const orvane_limits* limits,
                         uint32_t* values, orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, values});
        const std::vector<std::uint32_t> read = phy->phy.read(addressOf(first), count, withinOf(limits));
        std::copy(read.begin(), read.end(), values);
    });
}

int orvane_phy_run(orvane_phy* phy, orvane_operation* operations, size_t count, const orvane_limits* limits,
                   orvane_failure* failure) {
    return guarded(failure, [&] {
        need({phy, operations});
        const Orvane::Batch batch = batchOf(operations, count);
        for (size_t i = 0; i < count; ++i)
            operations[i].state = ORVANE_OPERATION_UNKNOWN; // if a hook throws
        store(phy->phy.run(batch, withinOf(limits)), operations);
    });
}

} // extern "C"
