/* Registers of a PHY that are reached by way of others; see <orvane/rack.h>. */
#ifndef ORVANE_RACK_ROUTED_H
#define ORVANE_RACK_ROUTED_H

#include <orvane/rack_core.h>

#ifdef __cplusplus
extern "C" {
#endif

/* What is asked of the firmware (not 0) rather than reached by another path. */
typedef struct orvane_paths {
    int read_classes;  /* reads of NEC and DEC registers of MMD 31, which are plain otherwise */
    int write_paged;   /* writes to MMD 28, by pages otherwise */
    int read_paged;    /* reads of MMD 28, by pages otherwise */
    int tge;           /* MMD 11, by the TGE's indirect registers otherwise */
    int serdes;        /* MMD 27, by the SerDes bridge otherwise */
    int over_clause22; /* not 0: all by Clause 22 registers 13 and 14, and no other path */
} orvane_paths;

/* The usual ways: all that it can by the firmware. */
ORVANE_C_API orvane_paths orvane_default_paths(void);

/* Clause 45 registers by the path that MMD and register ask for; `paths` may be null: the usual ways. An
 * access keeps the board to itself from its first step to its last. Firmware or window that stays busy is
 * ORVANE_BUSY, an error that either reports ORVANE_BOARD_ERROR without a code. */
ORVANE_C_API int orvane_routed_read(orvane_phy *phy, const orvane_paths *paths, orvane_register address,
                                    const orvane_limits *limits, uint32_t *value, orvane_failure *failure);
ORVANE_C_API int orvane_routed_write(orvane_phy *phy, const orvane_paths *paths, orvane_register address,
                                     uint32_t value, const orvane_limits *limits, orvane_failure *failure);
/* Replaces the bits of `mask`; `written`, which may be null, becomes the whole value. */
ORVANE_C_API int orvane_routed_modify(orvane_phy *phy, const orvane_paths *paths, orvane_register address,
                                      uint32_t mask, uint32_t value, const orvane_limits *limits,
                                      uint32_t *written, orvane_failure *failure);

#ifdef __cplusplus
}
#endif

#endif
