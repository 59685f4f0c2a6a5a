/* Tells what happens to a session, and what was counted of its calls. */
#include <orvane/rack.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>

static orvane_failure failure;

static void require(int status) {
    if (status == ORVANE_DONE)
        return;
    fprintf(stderr, "failed: %s\n", failure.message);
    exit(EXIT_FAILURE);
}

/* Called on the rack's own thread. */
static void tell(void* stream, const orvane_event* event) {
    if (event->level == ORVANE_LEVEL_DEBUG) /* repeats */
        return;
    fprintf(stream, "%s:%d PHY %d: %s\n", event->board, event->port, event->phy,
            orvane_event_kind_text(event->kind));
}

int main(void) {
    const orvane_access simple = {ORVANE_SIMPLE, 0, 0};
    orvane_rack* rack = NULL;
    orvane_phy* phy = NULL;
    require(orvane_rack_new(&rack, &failure));
    require(orvane_rack_phy(rack, "OV0001:0", simple, 3, NULL, &phy, &failure));
    const orvane_register identifier = {ORVANE_CLAUSE45, 1, 2};
    orvane_counters* counters = NULL;
    uint32_t value = 0;
    require(orvane_rack_on_event(rack, tell, stdout, &failure));
    for (int i = 0; i < 100; ++i)
        require(orvane_phy_read(phy, identifier, NULL, &value, &failure));
    require(orvane_rack_counters(rack, &counters, &failure));
    require(orvane_phy_close(phy, NULL, &failure));
    orvane_phy_free(phy);
    orvane_rack_free(rack); /* the last events have come */

    const orvane_board_counters* board = orvane_counters_at(counters, 0);
    for (size_t i = 0; i < board->program_count; ++i)
        if (strcmp(board->programs[i].program, "mdio") == 0) {
            printf("%lu of %lu calls succeeded\n", (unsigned long)board->programs[i].succeeded,
                   (unsigned long)board->programs[i].calls);
            printf("half of them within %s\n",
                   orvane_latency_percentile(board->programs[i].latency, 50) < 0.1 ? "0.1 s" : "more");
        }
    orvane_counters_free(counters);
    return EXIT_SUCCESS;
}
