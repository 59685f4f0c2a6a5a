/* Heats a channel, waits until it has settled, and lets it go. */
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
    const orvane_limits patient = orvane_within(600);
    float celsius = 0;
    require(orvane_thermal_connect(phy, NULL, &failure));
    int status = orvane_thermal_set_temperature(phy, 0, 85, 1, NULL, &failure); /* 1: begin */
    if (status == ORVANE_DONE)
        status = orvane_thermal_settled_temperature(phy, 0, &patient, &celsius, &failure);
    orvane_thermal_disconnect(phy, NULL, NULL); /* whatever happened; ends control, too */
    require(status);
    printf("settled at %.0f\n", (double)celsius);
    orvane_phy_free(phy);
    orvane_rack_free(rack);
    return EXIT_SUCCESS;
}
