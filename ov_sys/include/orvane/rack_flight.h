/* Operations on any number of boards under way at once, from one thread; see <orvane/rack.h>. */
#ifndef ORVANE_RACK_FLIGHT_H
#define ORVANE_RACK_FLIGHT_H

#include <orvane/rack_core.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Starts operations and collects what they come to. Operations of one board are sent in the order of their
 * start. Nothing moves but in its functions and in those of orvane_pending; while operations are under way on
 * a board, other threads' calls on it wait for them. One thread at a time. */
typedef struct orvane_flight orvane_flight;

/* What becomes of one operation. To be used by the thread of the flight; may outlive it. */
typedef struct orvane_pending orvane_pending;

/* `window`: calls in flight on one board at most, 1 to 64; 8 is good. */
ORVANE_C_API int orvane_flight_new(unsigned window, orvane_flight **flight, orvane_failure *failure);
/* Cancels what is under way. */
ORVANE_C_API void orvane_flight_free(orvane_flight *flight);

/* The functions below start what those of orvane_phy do, and do not block. They fail for arguments that are
 * wrong; what goes wrong later is the result's. `pending` may be null: nobody wants to know. */
ORVANE_C_API int orvane_flight_read(orvane_flight *flight, orvane_phy *phy, orvane_register address,
                                    const orvane_limits *limits, orvane_pending **pending,
                                    orvane_failure *failure);
ORVANE_C_API int orvane_flight_write(orvane_flight *flight, orvane_phy *phy, orvane_register address,
                                     uint32_t value, const orvane_limits *limits, orvane_pending **pending,
                                     orvane_failure *failure);
ORVANE_C_API int orvane_flight_read_list(orvane_flight *flight, orvane_phy *phy, orvane_register first,
                                         size_t count, const orvane_limits *limits, orvane_pending **pending,
                                         orvane_failure *failure);
/* The operations are copied. */
ORVANE_C_API int orvane_flight_run(orvane_flight *flight, orvane_phy *phy, const orvane_operation *operations,
                                   size_t count, const orvane_limits *limits, orvane_pending **pending,
                                   orvane_failure *failure);
ORVANE_C_API int orvane_flight_open(orvane_flight *flight, orvane_phy *phy, const orvane_limits *limits,
                                    orvane_pending **pending, orvane_failure *failure);
ORVANE_C_API int orvane_flight_close(orvane_flight *flight, orvane_phy *phy, const orvane_limits *limits,
                                     orvane_pending **pending, orvane_failure *failure);

/* For an event loop: readable when orvane_flight_step() has something to do. The flight's; -1 for null. */
ORVANE_C_API int orvane_flight_descriptor(const orvane_flight *flight);
/* Operations that have not ended; 0 for null. */
ORVANE_C_API size_t orvane_flight_under_way(const orvane_flight *flight);
/* Does what can be done without waiting. Fails when a session's hook does. */
ORVANE_C_API int orvane_flight_step(orvane_flight *flight, orvane_failure *failure);
/* Blocks until nothing is under way. Fails when a session's hook does. */
ORVANE_C_API int orvane_flight_wait(orvane_flight *flight, orvane_failure *failure);
/* Blocks for something to happen, for a second at most, and steps. Fails when a session's hook does. */
ORVANE_C_API int orvane_flight_wait_some(orvane_flight *flight, orvane_failure *failure);

/* 1 when the operation has ended, well or not, else 0; 1 for null. */
ORVANE_C_API int orvane_pending_done(const orvane_pending *pending);
/* Waits for the end; returns the operation's status and copies what it read or wrote: one value, of a list as
 * many as were asked for, which `count` must say. Openings, closings and batches have none: `values` may be
 * null. */
ORVANE_C_API int orvane_pending_get(orvane_pending *pending, uint32_t *values, size_t count,
                                    orvane_failure *failure);
/* Waits for the end of a batch and sets value, state and code of its operations, as orvane_phy_run() does. */
ORVANE_C_API int orvane_pending_outcomes(orvane_pending *pending, orvane_operation *operations, size_t count,
                                         orvane_failure *failure);
/* The operation goes on. */
ORVANE_C_API void orvane_pending_free(orvane_pending *pending);

#ifdef __cplusplus
}
#endif

#endif
