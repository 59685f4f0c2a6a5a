/* Registers and fields of a PHY by the names of a register map, for C99; part of <orvane/rack.h>, which says
 * what holds for every function here. docs/names.md says what the words mean.
 *
 * Names are those of the map in use, at first of IEEE 802.3. Texts that are given as char ** are freed with
 * orvane_map_free(); on failure they are not set. */
#ifndef ORVANE_RACK_NAMES_H
#define ORVANE_RACK_NAMES_H

#include <orvane/maps.h>
#include <orvane/rack_core.h>
#include <orvane/rack_routed.h>

#ifdef __cplusplus
extern "C" {
#endif

/* From now on names are those of `map`, which may be released, for every handle of this session. */
ORVANE_C_API int orvane_phy_use(orvane_phy *phy, const orvane_map *map, orvane_failure *failure);

/* The raw value of a register or field. What a read changes is read once only. */
ORVANE_C_API int orvane_phy_read_name(orvane_phy *phy, const char *name, const orvane_limits *limits,
                                      uint64_t *raw, orvane_failure *failure);
/* The same in words, as "100 Mb/s" or "0: was low since the last read". */
ORVANE_C_API int orvane_phy_read_text(orvane_phy *phy, const char *name, const orvane_limits *limits,
                                      char **text, orvane_failure *failure);
/* Two reads in one block: what a latched bit held, and what it holds. */
ORVANE_C_API int orvane_phy_read_twice(orvane_phy *phy, const char *name, const orvane_limits *limits,
                                       uint64_t *before, uint64_t *now, orvane_failure *failure);
/* Of a field, only its bits change. ORVANE_INVALID_ARGUMENT, with nothing sent, where nothing can be written
 * and for a value that does not fit. */
ORVANE_C_API int orvane_phy_write_name(orvane_phy *phy, const char *name, uint64_t raw,
                                       const orvane_limits *limits, orvane_failure *failure);
/* The same by the name of one of the field's values. */
ORVANE_C_API int orvane_phy_write_choice(orvane_phy *phy, const char *name, const char *choice,
                                         const orvane_limits *limits, orvane_failure *failure);

/* The fields of a value that you have already, a line each, as "CHIP.STATUS.LINK: 0: was low since the last
 * read"; of a register without fields its own line; empty for an address that the map has not. Sends
 * nothing. */
ORVANE_C_API int orvane_phy_decode(orvane_phy *phy, orvane_register address, uint32_t value, char **text,
                                   orvane_failure *failure);

/* What registers held at one time. A value that never changes; any thread. */
typedef struct orvane_snapshot orvane_snapshot;

/* Reads the registers that `count` names, blocks and patterns mean; those that a read changes only where they
 * are named in full, or with `side_effects` not 0. */
ORVANE_C_API int orvane_phy_snapshot(orvane_phy *phy, const char *const *names, size_t count,
                                     int side_effects, const orvane_limits *limits,
                                     orvane_snapshot **snapshot, orvane_failure *failure);
ORVANE_C_API void orvane_snapshot_free(orvane_snapshot *snapshot);
/* The number of registers in it, and the one at an index, whose name lives as long as the snapshot. */
ORVANE_C_API size_t orvane_snapshot_size(const orvane_snapshot *snapshot);
ORVANE_C_API int orvane_snapshot_at(const orvane_snapshot *snapshot, size_t index, const char **name,
                                    uint64_t *value, orvane_failure *failure);
/* The fields that differ, a line each, as "CHIP.CONTROL.SPEED: 100 Mb/s -> 10 Mb/s"; empty for none. */
ORVANE_C_API int orvane_snapshot_diff(const orvane_snapshot *before, const orvane_snapshot *after,
                                      char **changes, orvane_failure *failure);
/* Writes the writable registers in the map's order and reads them back: `written` is their number,
 * `not_taken` what did not take, as orvane_snapshot_diff() has it. */
ORVANE_C_API int orvane_phy_restore(orvane_phy *phy, const orvane_snapshot *snapshot,
                                    const orvane_limits *limits, size_t *written, char **not_taken,
                                    orvane_failure *failure);

/* What orvane_phy_run() would send, a line each; `map` may be NULL for IEEE 802.3. Sends nothing. */
ORVANE_C_API int orvane_plan(const orvane_operation *operations, size_t count, const orvane_map *map,
                             char **text, orvane_failure *failure);
/* The same for the steps that orvane_routed_read() would take, or with `value` those of
 * orvane_routed_write(): each busy status taken to be done at its first look. `paths` as there; empty for an
 * address that no path leads to. */
ORVANE_C_API int orvane_routed_plan(orvane_register address, const uint32_t *value, const orvane_paths *paths,
                                    const orvane_map *map, char **text, orvane_failure *failure);

#ifdef __cplusplus
}
#endif

#endif
