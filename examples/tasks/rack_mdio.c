/* Walks through words of the 32-bit extension by their address register, and sets switches of the bus. */
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
    const orvane_register first = {ORVANE_EXT32, 0, 0x1000};
    const orvane_register second = {ORVANE_EXT32, 0, 0x1004};
    uint32_t value = 0;
    require(orvane_mdio_set_preamble_count(phy, 32, NULL, &failure));
    require(orvane_mdio_flush(phy, NULL, &failure));
    require(orvane_phy_write(phy, first, 1, NULL, &failure)); /* sets the address */
    require(orvane_mdio_write_next(phy, 2, NULL, &failure));
    require(orvane_mdio_write_next(phy, 3, NULL, &failure));
    require(orvane_mdio_read_current(phy, NULL, &value, &failure));
    printf("here   %u\n", (unsigned)value);
    require(orvane_phy_read(phy, second, NULL, &value, &failure));
    printf("0x1004 %u\n", (unsigned)value);
    require(orvane_mdio_read_next(phy, NULL, &value, &failure)); /* of 0x1004 */
    printf("next   %u\n", (unsigned)value);
    orvane_phy_free(phy);
    orvane_rack_free(rack);
    return EXIT_SUCCESS;
}
