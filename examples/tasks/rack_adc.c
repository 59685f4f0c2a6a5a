/* Captures samples of an analogue input. */
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
    orvane_bytes* samples = NULL;
    require(orvane_adc_initialize(phy, NULL, &failure));
    require(orvane_adc_set_channel_mask(phy, 1, NULL, &failure)); /* channel 0 */
    require(orvane_adc_start(phy, NULL, &failure));
    require(orvane_adc_data(phy, 8, NULL, &samples, &failure));
    require(orvane_adc_stop(phy, NULL, &failure));
    const unsigned char* bytes = (const unsigned char*)orvane_bytes_data(samples);
    for (size_t i = 0; i < orvane_bytes_size(samples); ++i)
        printf("%d\n", bytes[i]);
    orvane_bytes_free(samples);
    orvane_phy_free(phy);
    orvane_rack_free(rack);
    return EXIT_SUCCESS;
}
