// Bounded access to the exported tables that are indexed by adapter.
#pragma once

#include "ov_sys/capi/Globals.h"
#include "ov_sys/routing/Route.h"

#include <orvane/orvane.h>

namespace Orvane {

// Register classes that can be handed to the PHY's firmware; the columns of delegationStatus.
enum class Delegation : unsigned { ReadNecDec = 0, WriteMmd28 = 1, ReadMmd28 = 2, Mmd11 = 3, Mmd27 = 4 };
constexpr unsigned kDelegations = 5;

// Entry of a table, which other threads may read and write; an adapter beyond the stored rows has no entry:
// reads give 0 and writes are dropped.
inline unsigned tableRead(const unsigned* entry) {
    return entry != nullptr ? __atomic_load_n(entry, __ATOMIC_RELAXED) : 0;
}

// NOLINTNEXTLINE(readability-non-const-parameter): written through
inline void tableWrite(unsigned* entry, unsigned value) {
    if (entry != nullptr)
        __atomic_store_n(entry, value, __ATOMIC_RELAXED);
}

inline unsigned* delegationEntry(unsigned adapter, Delegation column) {
    return adapter < ORVANE_TABLE_ROWS ? &globals.delegationStatus[adapter][static_cast<unsigned>(column)]
                                       : nullptr;
}

inline unsigned* clause22Entry(unsigned adapter) {
    return adapter < ORVANE_TABLE_ROWS ? &globals.clause22Enable[adapter] : nullptr;
}

inline bool delegated(unsigned adapter, Delegation column) {
    return tableRead(delegationEntry(adapter, column)) != 0;
}

// Whether the PHYs of an adapter are reached by Clause 45 carried over Clause 22.
inline bool overClause22(unsigned adapter) {
    return tableRead(clause22Entry(adapter)) == 1;
}

// The same as the routing wants it.
inline Routing::Delegations delegationsOf(unsigned adapter) {
    return {delegated(adapter, Delegation::ReadNecDec), delegated(adapter, Delegation::WriteMmd28),
            delegated(adapter, Delegation::ReadMmd28), delegated(adapter, Delegation::Mmd11),
            delegated(adapter, Delegation::Mmd27)};
}

// MMDs that ZR_API_MDIO_Read() and ZR_API_MDIO_Write() reach, and neither queued accesses nor those that name
// their adapter.
constexpr bool reachedByDefaultAdapterOnly(unsigned mmd) {
    return mmd == Routing::kWindowMmd || mmd == Routing::kPagedMmd;
}

} // namespace Orvane
