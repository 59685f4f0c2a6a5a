/* The Rack interface of Orvane for C99: boards, ports and PHYs by handles, every failure in a struct of the
 * caller's. The names are those of <orvane/rack.hpp>; what the words mean stands in docs/rack.md.
 *
 * Status. Every function that returns int, but for those that count, returns ORVANE_DONE or the kind of
 * failure, and fills `failure`, which may be null, in the latter case. Out parameters are set on success
 * only. Pointers must not be null where nothing says that they may; what is null all the same is refused as
 * ORVANE_INVALID_ARGUMENT. Memory that runs out is ORVANE_OUT_OF_RESOURCES; where it is an answer that finds
 * no room, or an operation of a flight, it may look as its loss (ORVANE_BAD_REPLY, ORVANE_TIMED_OUT) or
 * ORVANE_CANCELLED.
 *
 * Limits. `limits` may always be null: 5 s, healing, reads repeated up to the end and writes at most 16
 * times; functions that say "sent once" repeat nothing then.
 *
 * Ownership. What a function gives through `orvane_... **` is the caller's, who frees it by the function of
 * that name; these ignore null.
 *
 * Threads. Handles may be used by any thread, but for flights and what they started (one thread at a time); a
 * call on a board waits for others on it. Freeing a handle must not overlap with its use.
 *
 * Nothing is printed, and no C++ exception leaves; a thread is not cancelled inside a function.
 */
#ifndef ORVANE_RACK_H
#define ORVANE_RACK_H

#include <orvane/rack_core.h>
#include <orvane/rack_flight.h>
#include <orvane/rack_names.h>
#include <orvane/rack_ports.h>
#include <orvane/rack_routed.h>
#include <orvane/rack_services.h>
#include <orvane/rack_watch.h>

#endif
