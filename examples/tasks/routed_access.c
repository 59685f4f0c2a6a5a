/* Reaches registers that are not on the MDIO bus itself: routed accesses and their delegation to the
 * firmware. */
#include <orvane/orvane.h>
#include <stdio.h>
#include <stdlib.h>

enum { PHY = 3, SERDES_MMD = 27, SERDES_DELEGATION = 4 };

static void write_and_read(const char* how, unsigned int value) {
    ZR_API_MDIO_Write(PHY, SERDES_MMD, 0x0010, value);
    printf("%-18s 0x%04X\n", how, ZR_API_MDIO_Read(PHY, SERDES_MMD, 0x0010));
}

int main(void) {
    HW_Initialize();
    if (!HW_Open("OV0001:0"))
        return EXIT_FAILURE;
    const unsigned int adapter = HW_GetDefaultAdapter();
    write_and_read("by the firmware", 0x1234); /* after HW_Initialize() every class is delegated */
    HW_SetDelegationType(SERDES_DELEGATION, adapter, 0);
    write_and_read("by the bridge", 0x5678);
    HW_SetDelegationType(SERDES_DELEGATION, adapter, 1);
    HW_Close();
    return HW_Fail() ? EXIT_FAILURE : EXIT_SUCCESS;
}
