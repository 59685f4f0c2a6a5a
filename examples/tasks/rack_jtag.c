/* Reads the identification of the last device of a JTAG chain. */
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
    /* TMS takes the chain to Shift-DR; 32 bits come out, the lowest first. */
    const char* zeros = "00000000000000000000000000000000";
    const char* shifting = "00000000000000000000000000000001";
    char reset[10];
    char bits[33];
    const orvane_jtag_shift_entry shifts[] = {{"", "111110100", "", reset}, {zeros, shifting, "10", bits}};
    unsigned longest = 0;
    require(orvane_jtag_shift(phy, shifts, 2, NULL, &failure));
    unsigned long code = 0;
    for (int i = 32; i-- > 0;)
        code = code << 1 | (bits[i] == '1');
    printf("id code 0x%08lX\n", code);
    require(orvane_jtag_max_bytes(phy, NULL, &longest, &failure));
    printf("longest shift %u bytes\n", longest);
    orvane_phy_free(phy);
    orvane_rack_free(rack);
    return EXIT_SUCCESS;
}
