/* How the flat interface is exported. */
#ifndef ORVANE_API_H
#define ORVANE_API_H

/* Marks an exported function or variable of the flat interface. */
#define ORVANE_C_API __attribute__((visibility("default")))

/* The highest adapter that the tables indexed by adapter have a row for. */
#define ORVANE_TABLE_ADAPTERS 3000
/* The rows of these tables. */
#define ORVANE_TABLE_ROWS (ORVANE_TABLE_ADAPTERS + 1)

#endif
