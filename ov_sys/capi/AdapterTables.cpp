// The tables of delegation flags and Clause 22 switches, one row for each adapter.
#include "ov_sys/capi/AdapterTables.h"

#include "ov_sys/Interface/foundation/Diagnostics.h"

namespace {

using namespace Orvane;

constexpr unsigned kRangeError = 100;

bool adapterInRange(unsigned adapter) {
    if (adapter <= ORVANE_TABLE_ADAPTERS)
        return true;
    Diagnostics::output("Invalid adapter number ", static_cast<int>(adapter));
    return false;
}

bool typeInRange(int type) {
    return static_cast<unsigned>(type) < kDelegations; // which no negative one is
}

} // namespace

extern "C" {

void HW_InitializeDelegations(void) {
    for (unsigned adapter = 0; adapter < ORVANE_TABLE_ADAPTERS; ++adapter)
        for (unsigned column = 0; column < kDelegations; ++column)
            tableWrite(delegationEntry(adapter, static_cast<Delegation>(column)), 1);
}

void HW_InitializeClause22(void) {
    for (unsigned adapter = 0; adapter < ORVANE_TABLE_ADAPTERS; ++adapter)
        tableWrite(clause22Entry(adapter), 0);
}

unsigned int HW_SetDelegationType(int type, unsigned int adapter, unsigned int state) {
    if (!adapterInRange(adapter))
        return kRangeError;
    if (state >= 2) {
        Diagnostics::output("Invalid state ", static_cast<int>(state));
        return kRangeError;
    }
    if (!typeInRange(type))
        return kRangeError;
    tableWrite(delegationEntry(adapter, static_cast<Delegation>(type)), state);
    return 0;
}

unsigned int HW_GetDelegationType(int type, unsigned int adapter) {
    if (!adapterInRange(adapter) || !typeInRange(type))
        return kRangeError;
    return tableRead(delegationEntry(adapter, static_cast<Delegation>(type)));
}

void HW_EnableClause45OverClause22(int adapter) {
    tableWrite(clause22Entry(static_cast<unsigned>(adapter)), 1);
}

void HW_DisableClause45OverClause22(int adapter) {
    tableWrite(clause22Entry(static_cast<unsigned>(adapter)), 0);
}

unsigned int HW_GetClause45OverClause22State(int adapter) {
    return tableRead(clause22Entry(static_cast<unsigned>(adapter)));
}
}
