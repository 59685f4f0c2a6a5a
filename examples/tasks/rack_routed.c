/* Reaches a SerDes register by the firmware and by the bridge. */
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
    const orvane_register serdes = {ORVANE_CLAUSE45, 27, 0x0010};
    orvane_paths bridge = orvane_default_paths();
    uint32_t value = 0;
    bridge.serdes = 0;
    require(orvane_routed_write(phy, NULL, serdes, 0x1234, NULL, &failure)); /* by the firmware */
    require(orvane_routed_read(phy, &bridge, serdes, NULL, &value, &failure));
    printf("0x%04X\n", (unsigned)value);
    orvane_phy_free(phy);
    orvane_rack_free(rack);
    return EXIT_SUCCESS;
}
