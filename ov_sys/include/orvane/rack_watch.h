/* What happens to boards and sessions, a log of all accesses, and what was counted of them; see
 * <orvane/rack.h>. */
#ifndef ORVANE_RACK_WATCH_H
#define ORVANE_RACK_WATCH_H

#include <orvane/rack_core.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Events ---- */

/* What happened. */
enum orvane_event_kind {
    ORVANE_EVENT_OPENED = 0,
    ORVANE_EVENT_LOST = 1,
    ORVANE_EVENT_RETRIED = 2,
    ORVANE_EVENT_MOVED = 3,
    ORVANE_EVENT_REOPENED = 4,
    ORVANE_EVENT_PING_LOST = 5,
    ORVANE_EVENT_CLOSED = 6,
    ORVANE_EVENT_LOG_FAILED = 7
};

/* How much it matters. */
enum orvane_event_level { ORVANE_LEVEL_DEBUG = 0, ORVANE_LEVEL_INFO = 1, ORVANE_LEVEL_WARNING = 2 };

/* Something that happened. The strings are good during the callback only. */
typedef struct orvane_event {
    double time;       /* seconds since 1970 (UTC) */
    int kind;          /* an orvane_event_kind */
    int level;         /* an orvane_event_level */
    int port;          /* -1: the board as a whole */
    int phy;           /* -1: none */
    const char *board; /* serial number; empty: none of the boards */
    const char *text;  /* details, e.g. the board's new address; may be empty */
} orvane_event;

/* Called on the rack's own thread, one event at a time and in order, under no lock of the library's. It may
 * use the rack but must not free it. */
typedef void (*orvane_event_callback)(void *context, const orvane_event *event);

/* Replaces the callback; null ends the events. Waits for the former one while it runs, unless it is called
 * from it: its `context` may end then. */
ORVANE_C_API int orvane_rack_on_event(orvane_rack *rack, orvane_event_callback callback, void *context,
                                      orvane_failure *failure);
/* A kind in words, e.g. "ping lost". Never null. */
ORVANE_C_API const char *orvane_event_kind_text(int kind);

/* ---- The transaction log ---- */

/* Takes one line or several, each with its end, which are not terminated. Called by the thread whose access
 * it is, one at a time, and must not use the rack. Returns 0, or an errno value, and the lines are lost. */
typedef int (*orvane_log_sink)(void *context, const char *lines, size_t length);

/* From now on every access of this rack leaves a line in that file, at its end, until the log is ended or
 * another one is begun; docs/rack.md has the columns. A log that fails costs no access: it is told once as an
 * event. */
ORVANE_C_API int orvane_rack_log_to(orvane_rack *rack, const char *path, orvane_failure *failure);
/* The same to a function. `context` must last until the log's end or the rack's. */
ORVANE_C_API int orvane_rack_log_to_sink(orvane_rack *rack, orvane_log_sink sink, void *context,
                                         orvane_failure *failure);
/* When it returns, nothing is written any more. */
ORVANE_C_API int orvane_rack_end_log(orvane_rack *rack, orvane_failure *failure);
/* A line of the caller's own, at its place in the log. Without a log it is nothing. */
ORVANE_C_API int orvane_rack_note(orvane_rack *rack, const char *text, orvane_failure *failure);

/* ---- Counters ---- */

/* How long the answered calls took. */
typedef struct orvane_latency orvane_latency;

/* Counts of one program of one board since the rack knows it. */
typedef struct orvane_program_counters {
    const char *program; /* "mdio", "setup", "keepAlive", "portmap", ... */
    uint64_t calls;      /* that ended */
    uint64_t succeeded;
    uint64_t failed; /* of these: timed out, refused, ... */
    uint64_t timed_out;
    uint64_t board_errors;
    uint64_t repeats; /* requests sent again */
    uint64_t bytes_sent;
    uint64_t bytes_received;
    const orvane_latency *latency; /* of those that succeeded */
} orvane_program_counters;

/* Counts of one board. */
typedef struct orvane_board_counters {
    const char *board;
    uint64_t opens;   /* sessions opened for the first time */
    uint64_t reopens; /* sessions opened again after a loss */
    uint64_t moves;   /* other addresses at which the board was found */
    uint64_t strays;  /* datagrams that answered nothing */
    const orvane_program_counters *programs;
    size_t program_count;
} orvane_board_counters;

/* The counts of a moment. What it points at lives as long as it. */
typedef struct orvane_counters orvane_counters;

/* Counts of each board that was opened, by serial number. Stops nothing. */
ORVANE_C_API int orvane_rack_counters(orvane_rack *rack, orvane_counters **counters, orvane_failure *failure);
ORVANE_C_API size_t orvane_counters_size(const orvane_counters *counters);
/* Null beyond the last. */
ORVANE_C_API const orvane_board_counters *orvane_counters_at(const orvane_counters *counters, size_t index);
ORVANE_C_API void orvane_counters_free(orvane_counters *counters);
/* The seconds that `percent` (0 to 100) of the calls did not exceed, right within 5 %; 0 when there were
 * none, and for null. */
ORVANE_C_API double orvane_latency_percentile(const orvane_latency *latency, double percent);

#ifdef __cplusplus
}
#endif

#endif
