// Raw accesses to a board's own registers, which are refused.
#include "ov_sys/capi/Forward.h"

using namespace Orvane;

extern "C" {

unsigned Board_Read(unsigned address) {
    return forwarded(&HWInterface::boardRead, address);
}

void Board_Write(unsigned address, unsigned data) {
    forwarded(&HWInterface::boardWrite, address, data);
}

unsigned Board_ReadAdapter(unsigned adapter, unsigned address) {
    return forwarded(&HWInterface::boardReadAdapter, adapter, address);
}

void Board_WriteAdapter(unsigned adapter, unsigned address, unsigned data) {
    forwarded(&HWInterface::boardWriteAdapter, adapter, address, data);
}

unsigned Board_Read32(unsigned address) {
    return forwarded(&HWInterface::boardRead32, address);
}

void Board_Write32(unsigned address, unsigned data) {
    forwarded(&HWInterface::boardWrite32, address, data);
}

unsigned Board_Read32Adapter(unsigned adapter, unsigned address) {
    return forwarded(&HWInterface::boardRead32Adapter, adapter, address);
}

void Board_Write32Adapter(unsigned adapter, unsigned address, unsigned data) {
    forwarded(&HWInterface::boardWrite32Adapter, adapter, address, data);
}

unsigned long long Board_Read64(unsigned address) {
    return forwarded(&HWInterface::boardRead64, address);
}

void Board_Write64(unsigned address, unsigned long long data) {
    forwarded(&HWInterface::boardWrite64, address, data);
}

unsigned long long Board_Read64Adapter(unsigned adapter, unsigned address) {
    return forwarded(&HWInterface::boardRead64Adapter, adapter, address);
}

void Board_Write64Adapter(unsigned adapter, unsigned address, unsigned long long data) {
    forwarded(&HWInterface::boardWrite64Adapter, adapter, address, data);
}
}
