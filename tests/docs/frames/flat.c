/* Around a fragment that uses the flat interface: OV0001:0 is open and the default adapter. */
#include <orvane/orvane.h>
#include <stdio.h>
#include <stdlib.h>

int main(void) {
    HW_Initialize();
    if (!HW_Open("OV0001:0"))
        return 2;
    const unsigned int adapter = HW_GetDefaultAdapter();
    (void)adapter;
    /* SAMPLE */
    HW_Close();
    return 0;
}
