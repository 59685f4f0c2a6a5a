/* Finds a board, reads and writes PHY registers on it and logs every access, with the C interface alone.
 *
 * Usage: orvane-example-c [DEVICE]
 * DEVICE is a board's serial number, a colon and a port, such as OV0001:0; without one, the first device that
 * answers is taken. */
#include <orvane/orvane.h>
#include <stdio.h>
#include <stdlib.h>

enum { PHY = 3, PMA_MMD = 1, SCRATCH = 0xC010 };

/* Opens the device, or the first of all. Returns 1 when one is open; it is the default adapter then. */
static int open_device(const char* name) {
    char** names = HW_DeviceList();
    if (names == NULL)
        return 0;
    for (char** each = names; *each != NULL; ++each)
        printf("found %s\n", *each);
    const int opened = HW_Open(name != NULL ? name : names[0]);
    for (char** each = names; *each != NULL; ++each)
        free(*each);
    free(names);
    return opened;
}

/* One register at a time. Returns 1 when the register holds what was written. */
static int write_and_read(void) {
    const unsigned int high = ZR_API_MDIO_Read(PHY, PMA_MMD, 2);
    const unsigned int low = ZR_API_MDIO_Read(PHY, PMA_MMD, 3);
    printf("identifier %04X%04X\n", high, low);
    ZR_API_MDIO_Write(PHY, PMA_MMD, SCRATCH, 0x1234);
    return ZR_API_MDIO_Read(PHY, PMA_MMD, SCRATCH) == 0x1234;
}

/* Many registers in one call to the board. Returns 1 when they hold what was written. */
static int write_and_read_block(void) {
    enum { COUNT = 8 };
    for (unsigned int i = 0; i < COUNT; ++i)
        ZR_API_MDIO_BlockWrite(PHY, PMA_MMD, SCRATCH + i, i * i);
    for (unsigned int i = 0; i < COUNT; ++i)
        ZR_API_MDIO_BlockRead(PHY, PMA_MMD, SCRATCH + i);
    const unsigned int* values = ZR_API_MDIO_BlockOperationExecute(PHY); /* the library's */
    if (values == NULL || HW_BlockReadQueueSize() != COUNT)
        return 0;
    for (unsigned int i = 0; i < COUNT; ++i)
        if (values[i] != i * i)
            return 0;
    return 1;
}

int main(int argc, char** argv) {
    HW_Initialize();
    if (!open_device(argc > 1 ? argv[1] : NULL)) {
        fprintf(stderr, "no such device: %s\n", HW_Fail() ? HW_Error() : "no board answered");
        return EXIT_FAILURE;
    }
    HW_EnableLoggingStdout();
    const int good = write_and_read() && write_and_read_block();
    HW_DisableLogging(0);
    HW_Close();
    if (!good || HW_Fail()) {
        fprintf(stderr, "failed: %s\n", HW_Fail() ? HW_Error() : "a register did not keep its value");
        return EXIT_FAILURE;
    }
    puts("every register holds what was written");
    return EXIT_SUCCESS;
}
