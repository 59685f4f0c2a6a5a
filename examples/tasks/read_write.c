/* Reads a PHY's identifier and writes one register, with the flat interface. */
#include <orvane/orvane.h>
#include <stdio.h>
#include <stdlib.h>

enum { PHY = 3, MMD = 1, SCRATCH = 0xC010 };

int main(int argc, char** argv) {
    HW_Initialize();
    if (!HW_Open(argc > 1 ? argv[1] : "OV0001:0")) {
        fprintf(stderr, "cannot open it: %s\n", HW_Error());
        return EXIT_FAILURE;
    }
    const unsigned int adapter = HW_GetDefaultAdapter();
    printf("identifier %04X%04X\n", HW_Read_Abstracted(adapter, PHY, MMD, 2),
           HW_Read_Abstracted(adapter, PHY, MMD, 3));
    HW_Write_Abstracted(adapter, PHY, MMD, SCRATCH, 0x1234);
    printf("register   %04X\n", HW_Read_Abstracted(adapter, PHY, MMD, SCRATCH));
    HW_Close();
    if (HW_Fail()) { /* any of the calls above */
        fprintf(stderr, "failed: %s\n", HW_Error());
        return EXIT_FAILURE;
    }
    return EXIT_SUCCESS;
}
