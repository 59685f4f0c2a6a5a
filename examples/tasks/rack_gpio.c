/* Drives a general-purpose line and sees it at the input that the board wires to it. */
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
    const uint8_t output = 0;
    const uint8_t input = 16;
    const uint8_t levels[] = {1, 0};
    require(orvane_gpio_enable_output(phy, &output, &levels[0], 1, NULL, &failure));
    for (int i = 0; i < 2; ++i) {
        uint8_t state;
        require(orvane_gpio_write(phy, &output, &levels[i], 1, NULL, &failure));
        require(orvane_gpio_read(phy, &input, 1, NULL, &state, &failure));
        printf("line 16 is %d\n", state);
    }
    require(orvane_gpio_set_default(phy, &output, 1, NULL, &failure));
    orvane_phy_free(phy);
    orvane_rack_free(rack);
    return EXIT_SUCCESS;
}
