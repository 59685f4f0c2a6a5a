/* Reads a board's EEPROM over I2C and writes to it. */
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
    uint8_t serial[7] = "";
    uint8_t bytes[2];
    const uint8_t written[] = {0x40, 0xCA, 0xFE}; /* the register number goes first */
    /* Bus 0, device 0x50: from register 0 on, whose number has one byte. */
    require(orvane_i2c_read_register(phy, 0, 0x50, 0, 1, 6, NULL, serial, &failure));
    printf("serial   %s\n", (const char*)serial);
    require(orvane_i2c_write(phy, 0, 0x50, written, sizeof written, NULL, &failure));
    require(orvane_i2c_read_register(phy, 0, 0x50, 0x40, 1, sizeof bytes, NULL, bytes, &failure));
    printf("written  %02X%02X\n", bytes[0], bytes[1]);
    /* Several transfers, on any bus, in one call. */
    const orvane_i2c_transfer both[] = {{0, 0x50, 0, 1, 2, serial}, {0, 0x50, 0x40, 1, 2, bytes}};
    require(orvane_i2c_read_block(phy, both, 2, NULL, &failure));
    printf("block    %c%c %02X%02X\n", serial[0], serial[1], bytes[0], bytes[1]);
    orvane_phy_free(phy);
    orvane_rack_free(rack);
    return EXIT_SUCCESS;
}
