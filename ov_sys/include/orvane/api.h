/* How the flat interface is exported. */
#ifndef ORVANE_API_H
#define ORVANE_API_H

#define ORVANE_C_API __attribute__((visibility("default")))

/* Adapters that the tables indexed by adapter have a row for, and the rows that are stored: one more. */
#define ORVANE_TABLE_ADAPTERS 3000
#define ORVANE_TABLE_ROWS (ORVANE_TABLE_ADAPTERS + 1)

#endif
