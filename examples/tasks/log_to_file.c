/* Logs register accesses to a CSV file and prints it. */
#include <orvane/orvane.h>
#include <stdio.h>
#include <stdlib.h>

enum { PHY = 3, MMD = 1 };

/* Only the logged forms write records: those without _Abstracted in their names. */
static void accesses(void) {
    ZR_API_MDIO_Write(PHY, MMD, 0xC010, 0x1234);
    ZR_API_MDIO_Read(PHY, MMD, 0xC010);
    ZR_API_MDIO_BlockWrite(PHY, MMD, 0xC011, 0xAAAA);
    ZR_API_MDIO_BlockRead(PHY, MMD, 0xC011);
    ZR_API_MDIO_BlockOperationExecute(PHY);
}

static void print(const char* path) {
    FILE* file = fopen(path, "r");
    if (file == NULL)
        return;
    for (int byte = fgetc(file); byte != EOF; byte = fgetc(file))
        putchar(byte);
    fclose(file);
}

int main(int argc, char** argv) {
    const char* path = argc > 1 ? argv[1] : "accesses.csv";
    HW_Initialize();
    if (!HW_Open("OV0001:0"))
        return EXIT_FAILURE;
    FILE* file = fopen(path, "w");
    if (file == NULL)
        return EXIT_FAILURE;
    HW_EnableLogging(file);
    accesses();
    HW_DisableLogging(1); /* closes the file */
    HW_Close();
    print(path);
    return HW_Fail() ? EXIT_FAILURE : EXIT_SUCCESS;
}
