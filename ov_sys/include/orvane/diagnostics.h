/* The library's diagnostic lines, which go to the standard streams unless a function of the caller's takes
 * them. */
#ifndef ORVANE_DIAGNOSTICS_H
#define ORVANE_DIAGNOSTICS_H

#include <orvane/api.h>

#ifdef __cplusplus
extern "C" {
#endif

enum {
    ORVANE_DIAGNOSTIC_INFORMATION = 0, /* otherwise written to the standard output */
    ORVANE_DIAGNOSTIC_WARNING = 1,     /* these two otherwise to the standard error stream */
    ORVANE_DIAGNOSTIC_ERROR = 2
};

/* One line and what is known about it. The texts are the library's and last until the function returns. */
typedef struct orvane_diagnostic {
    int level;         /* one of the three above */
    const char *board; /* name of the board that it is about, in upper case; empty when not known */
    long long time_us; /* microseconds since 1970-01-01 00:00 UTC */
    const char *line;  /* without line ends before and behind it; a few have one inside */
} orvane_diagnostic;

/* Gets each line, in the thread that has it to tell, which may be one of the library's own and may hold locks
 * of the library: keep it short. Several threads may be in it at once. It may call the library; lines of such
 * calls go to the standard streams. */
typedef void (*orvane_diagnostics_sink)(const orvane_diagnostic *diagnostic, void *context);

/* Makes `sink` get every line in place of the standard streams, with `context` handed on as it is; null
 * brings these back. Returns when the former sink is no longer running, except inside of a sink, where it
 * does not wait. `context` must last until the sink is taken back. 1 done, 0 no memory and nothing changed.
 * Any thread. Does not report. */
ORVANE_C_API int orvane_set_diagnostics(orvane_diagnostics_sink sink, void *context);

#ifdef __cplusplus
}
#endif

#endif
