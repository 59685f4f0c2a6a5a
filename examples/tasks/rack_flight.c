/* Reads registers of every board at the same time, from one thread. */
#include <orvane/rack.h>
#include <stdio.h>
#include <stdlib.h>

enum { MOST = 64, PHY = 3 };

static orvane_failure failure;

static void require(int status) {
    if (status == ORVANE_DONE)
        return;
    fprintf(stderr, "failed: %s\n", failure.message);
    exit(EXIT_FAILURE);
}

int main(void) {
    const orvane_access simple = {ORVANE_SIMPLE, 0, 0};
    const orvane_register scratch = {ORVANE_CLAUSE45, 30, 0xC010};
    const char* names[] = {"OV*:0"};
    const unsigned id = PHY;
    orvane_rack* rack = NULL;
    orvane_flight* flight = NULL;
    orvane_port_list* ports = NULL;
    orvane_phy* phys[MOST];
    orvane_pending* values[MOST];
    require(orvane_rack_new(&rack, &failure));
    require(orvane_rack_open_all(rack, names, 1, &id, 1, simple, NULL, &ports, &failure));
    require(orvane_flight_new(8, &flight, &failure));

    const size_t count = orvane_port_list_size(ports) < MOST ? orvane_port_list_size(ports) : MOST;
    for (size_t i = 0; i < count; ++i) {
        require(orvane_port_list_phy(ports, i, PHY, &phys[i], &failure));
        require(orvane_flight_write(flight, phys[i], scratch, 0xCAFE, NULL, NULL, &failure));
        require(
            orvane_flight_read(flight, phys[i], scratch, NULL, &values[i], &failure)); /* after the write */
    }
    require(orvane_flight_wait(flight, &failure));
    for (size_t i = 0; i < count; ++i) {
        uint32_t value = 0;
        require(orvane_pending_get(values[i], &value, 1, &failure));
        printf("%s 0x%04X\n", orvane_port_list_at(ports, i)->name, (unsigned)value);
        orvane_pending_free(values[i]);
        orvane_phy_free(phys[i]);
    }
    orvane_flight_free(flight);
    orvane_port_list_free(ports);
    orvane_rack_free(rack);
    return EXIT_SUCCESS;
}
