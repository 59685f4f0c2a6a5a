// Which registers are handed to the PHY's firmware, and whether an adapter's flags want them to be.
#include "ov_sys/routing/RegisterClasses.h"

#include "ov_sys/capi/AdapterTables.h"

using namespace Orvane;

extern "C" {

int isNECRegister(unsigned int mmd, unsigned int address) {
    return Routing::isNec(mmd, address) ? 1 : 0;
}

int isDECRegister(unsigned int mmd, unsigned int address) {
    return Routing::isDec(mmd, address) ? 1 : 0;
}

int shouldDelegateWrite(unsigned int adapter, unsigned int mmd, unsigned int /*address*/) {
    return mmd == Routing::kPagedMmd && delegated(adapter, Delegation::WriteMmd28) ? 1 : 0;
}

int shouldDelegateRead(unsigned int adapter, unsigned int mmd, unsigned int address) {
    const bool inClass = Routing::isNec(mmd, address) || Routing::isDec(mmd, address);
    if (inClass && delegated(adapter, Delegation::ReadNecDec))
        return 1;
    return mmd == Routing::kPagedMmd && delegated(adapter, Delegation::ReadMmd28) ? 1 : 0;
}
}
