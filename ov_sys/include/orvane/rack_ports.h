/* Many ports opened and closed together; see <orvane/rack.h>. */
#ifndef ORVANE_RACK_PORTS_H
#define ORVANE_RACK_PORTS_H

#include <orvane/rack_core.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What became of the ports that were asked for. */
typedef struct orvane_port_list orvane_port_list;

/* What became of one. The string stays good as long as the list. */
typedef struct orvane_opened_port {
    const char *name;       /* as it was given; a pattern's is that of the port, "OV0001:0" */
    int exists;             /* not 0: orvane_port_list_phy() gives its PHYs */
    orvane_failure failure; /* the first thing that went wrong with it; its kind is ORVANE_DONE for nothing */
} orvane_opened_port;

/* Ports by their names, all together: in each, '*', '?' and "[...]" stand for what they do in file names, so
 * that "OV*:0" is port 0 of every such board that answers within a second. The sessions of `phys` (which may
 * be null for none) are opened on all of them at the same time. The list is in the order of the names; no
 * failure of one costs another, nor makes this function fail. */
ORVANE_C_API int orvane_rack_open_all(orvane_rack *rack, const char *const *names, size_t name_count,
                                      const unsigned *phys, size_t phy_count, orvane_access access,
                                      const orvane_limits *limits, orvane_port_list **ports,
                                      orvane_failure *failure);
ORVANE_C_API size_t orvane_port_list_size(const orvane_port_list *ports);
/* Null beyond the last. */
ORVANE_C_API const orvane_opened_port *orvane_port_list_at(const orvane_port_list *ports, size_t index);
/* PHY `id` of the port at `index`: the one that was opened, if it was among `phys`. */
ORVANE_C_API int orvane_port_list_phy(const orvane_port_list *ports, size_t index, unsigned id,
                                      orvane_phy **phy, orvane_failure *failure);
/* Sessions that no PHY of the caller's has are closed. */
ORVANE_C_API void orvane_port_list_free(orvane_port_list *ports);

/* Closes every session of the rack, all at the same time; their next use opens them again. Those that their
 * board could not be told of are closed here all the same: `count` becomes their number, and the first `room`
 * of `failures` (which may be null for none) say why. */
ORVANE_C_API int orvane_rack_close_all(orvane_rack *rack, const orvane_limits *limits,
                                       orvane_failure *failures, size_t room, size_t *count,
                                       orvane_failure *failure);

#ifdef __cplusplus
}
#endif

#endif
