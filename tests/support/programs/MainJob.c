/* A user's program: opens the named device, writes registers, reads them back and closes. */
#include <orvane/orvane.h>
#include <stdio.h>
#include <stdlib.h>

static void printNames(char** names) {
    size_t i = 0;
    for (; names != NULL && names[i] != NULL; ++i) {
        printf("device %s\n", names[i]);
        free(names[i]);
    }
    free(names);
}

int main(int argc, char** argv) {
    const unsigned int phy = 5;
    unsigned int adapter = 0;
    if (argc != 2)
        return 2;
    if (HW_Initialize() != 1 || HW_Open(argv[1]) != 1)
        return 1;
    printNames(HW_DeviceList());
    adapter = HW_GetDefaultAdapter();
    printf("adapter %u of %u\n", adapter, HW_NumberOfDevices());
    HW_Write_Abstracted(adapter, phy, 0x1E, 0x0001, 0xCAFE);
    printf("clause 45 %04X\n", HW_Read_Abstracted(adapter, phy, 0x1E, 0x0001));
    HW_Write_C22(adapter, phy, 0x11, 0xBEEF);
    printf("clause 22 %04X\n", HW_Read_C22(adapter, phy, 0x11));
    HW_Close();
    printf("closed %u\n", HW_Read_Abstracted(adapter, phy, 0x1E, 0x0001));
    printf("error %s\n", HW_Error() != NULL ? HW_Error() : "(none)");
    return HW_Fail();
}
