/* Reaches one PHY over MDIO and over SMBus, where it is the device of port 10. */
#include <orvane/rack.h>
#include <stdio.h>
#include <stdlib.h>

static orvane_failure failure;

static void require(int status) {
    if (status == ORVANE_DONE)
        return;
    fprintf(stderr, "failed: %s\n", failure.message);
    exit(EXIT_FAILURE);
}

int main(void) {
    const orvane_access simple = {ORVANE_SIMPLE, 0, 0};
    orvane_rack* rack = NULL;
    orvane_phy* phy = NULL;
    require(orvane_rack_new(&rack, &failure));
    require(orvane_rack_phy(rack, "OV0001:0", simple, 3, NULL, &phy, &failure));
    const orvane_register half = {ORVANE_CLAUSE45, 1, 0xC040};
    const orvane_register word = {ORVANE_EXT32, 0, 0x80005000};
    orvane_phy* smbus = NULL;
    uint32_t value = 0;
    require(orvane_rack_phy(rack, "OV0001:10", simple, 3, NULL, &smbus, &failure)); /* I2C bus 0 */
    require(orvane_phy_write(phy, half, 0x5EB5, NULL, &failure));
    require(orvane_phy_write(phy, word, 0xB0A710AD, NULL, &failure));
    require(orvane_phy_read(smbus, half, NULL, &value, &failure));
    printf("16 bits          0x%04X\n", (unsigned)value);
    require(orvane_phy_read(smbus, word, NULL, &value, &failure));
    printf("32 bits, paged   0x%08X\n", (unsigned)value);
    require(orvane_phy_set_smbus_protocol(smbus, ORVANE_SMBUS_DIRECT32, &failure));
    require(orvane_phy_read(smbus, word, NULL, &value, &failure));
    printf("32 bits, direct  0x%08X\n", (unsigned)value);
    orvane_phy_free(smbus);
    orvane_phy_free(phy);
    orvane_rack_free(rack);
    return EXIT_SUCCESS;
}
