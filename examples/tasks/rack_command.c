/* Runs a command on a board. */
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
    orvane_bytes* output = NULL;
    double seconds = 0;
    int status = 0;
    require(orvane_shell_ping(phy, NULL, &seconds, &failure)); /* fails when nobody answers */
    require(orvane_shell_run(phy, "cat /boardInfo/name", 5, NULL, &status, &output, NULL, &failure));
    printf("exit status %d\n%s", status, orvane_bytes_data(output));
    orvane_bytes_free(output);
    orvane_phy_free(phy);
    orvane_rack_free(rack);
    return EXIT_SUCCESS;
}
