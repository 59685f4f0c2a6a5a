/* Writes and reads many registers of a PHY in few calls. */
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
    orvane_operation operations[128];
    for (uint32_t i = 0; i < 128; ++i) { /* 64 writes, then as many reads */
        const orvane_operation one = {{ORVANE_CLAUSE45, 30, 0xC100 + i % 64}, i < 64, 0xC000 + i % 64, 0, 0};
        operations[i] = one;
    }
    require(orvane_phy_run(phy, operations, 128, NULL, &failure));
    printf("last write %s\n", orvane_operation_state_text(operations[63].state));
    printf("0x%04X to 0x%04X\n", (unsigned)operations[64].value, (unsigned)operations[127].value);
    orvane_phy_free(phy);
    orvane_rack_free(rack);
    return EXIT_SUCCESS;
}
