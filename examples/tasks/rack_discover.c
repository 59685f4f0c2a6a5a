/* Lists every board that answers, with its ports. */
#include <orvane/rack.h>
#include <stdio.h>
#include <stdlib.h>

int main(void) {
    orvane_failure failure;
    orvane_rack* rack = NULL;
    orvane_board_list* boards = NULL;
    int status = orvane_rack_new(&rack, &failure);
    if (status == ORVANE_DONE)
        status = orvane_rack_discover(rack, NULL, &boards, &failure); /* listens for 1 s */
    if (status != ORVANE_DONE) {
        fprintf(stderr, "failed: %s\n", failure.message);
        return EXIT_FAILURE;
    }
    for (size_t i = 0; i < orvane_board_list_size(boards); ++i) {
        const orvane_board* board = orvane_board_list_at(boards, i);
        printf("%s at %s:", board->serial, board->address);
        for (size_t port = 0; port < board->port_count; ++port)
            printf(" %u", board->ports[port]);
        puts("");
    }
    printf("%lu malformed answers\n", (unsigned long)orvane_board_list_malformed(boards));
    orvane_board_list_free(boards);
    orvane_rack_free(rack);
    return EXIT_SUCCESS;
}
