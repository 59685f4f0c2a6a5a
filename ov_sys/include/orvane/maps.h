/* Register maps: names, fields and meanings of a PHY's registers, for C99 and C++. <orvane/maps.hpp> says the
 * same at length; docs/maps.md describes the files.
 *
 * Status. Every function returns an ORVANE_MAP_... status; results are written only with ORVANE_MAP_OK,
 * except that a function with a parameter `problems` writes there what is wrong, one problem a line, or NULL.
 * A null pointer may stand for every result that is not wanted. Nothing is printed.
 *
 * Ownership. A map lives until orvane_map_release(); records, and the texts in them, live as long as it.
 * Texts that are returned as char * are freed with orvane_map_free().
 *
 * Threads. Any thread may use any map, without locks. Releasing it must not overlap with its use.
 *
 * Blocking. Only orvane_map_load() and orvane_map_import() read files and may block on them. */
#ifndef ORVANE_MAPS_H
#define ORVANE_MAPS_H

#include <orvane/api.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* A map. */
typedef struct orvane_map orvane_map;

/* How a call ended. */
enum orvane_map_status {
    ORVANE_MAP_OK = 0,
    ORVANE_MAP_INVALID = 1,   /* a file, a text, a value or an argument is wrong */
    ORVANE_MAP_NOT_FOUND = 2, /* there is no such name, address or index */
    ORVANE_MAP_FAILED = 3     /* out of memory, or the like */
};

/* How a register is reached; the values are those of Orvane::MapSpace. */
enum orvane_map_space { ORVANE_MAP_C45 = 0, ORVANE_MAP_C22 = 1, ORVANE_MAP_EXT32 = 2, ORVANE_MAP_SMBUS = 3 };

/* A register. */
typedef struct orvane_map_register {
    size_t index;            /* in file order */
    const char *name;        /* with its blocks' */
    const char *text;        /* may be empty */
    const char *access;      /* the word of the source form, as "rw" */
    int space;               /* an orvane_map_space */
    unsigned mmd;            /* of Clause 45 */
    uint32_t number;         /* within its space or MMD */
    int64_t page;            /* -1: none */
    const char *page_select; /* name of the register that selects the page; NULL: none */
    unsigned width;          /* in bits: 8, 16, 32 or 64 */
    int has_reset;           /* whether `reset` is known */
    uint64_t reset;
    int is_readable;
    int is_safe_to_read;           /* whether a plain read changes nothing */
    uint64_t writable_mask;        /* bits that a write may change */
    uint64_t changed_by_read_mask; /* bits that a read changes */
    size_t fields;                 /* number of its fields */
} orvane_map_register;

/* A field of a register. */
typedef struct orvane_map_field {
    size_t register_index; /* of its register, in file order */
    size_t index;          /* among the register's fields */
    const char *name;      /* without the register's */
    const char *text;      /* may be empty */
    const char *access;    /* the word of the source form, as "latching-low" */
    uint64_t mask;         /* of its bits, within the register */
    unsigned width;        /* number of its bits */
    int has_side_effects;
    int is_signed;
    double scale; /* meaning = number * scale + offset */
    double offset;
    const char *unit; /* may be empty */
    size_t choices;   /* number of its named values */
} orvane_map_field;

/* Loads a file, for the PHY of this identifier (register 2 in the high half), or NULL for any. */
ORVANE_C_API int orvane_map_load(const char *path, const uint32_t *identifier, orvane_map **map,
                                 char **problems);
/* Reads `length` bytes of text; `name` stands for it in problems. */
ORVANE_C_API int orvane_map_parse(const char *json, size_t length, const char *name,
                                  const uint32_t *identifier, orvane_map **map, char **problems);
/* The registers of IEEE 802.3. */
ORVANE_C_API int orvane_map_ieee8023(orvane_map **map);
/* Translates a file of CMSIS-SVD, uHAL or CSV into the space and MMD; `problems` also tells what was not
 * carried over. */
ORVANE_C_API int orvane_map_import(const char *path, int space, unsigned mmd, orvane_map **map,
                                   char **problems);
/* Frees a map; NULL does nothing. */
ORVANE_C_API void orvane_map_release(orvane_map *map);
/* Frees a text; NULL does nothing. */
ORVANE_C_API void orvane_map_free(char *text);

/* The number of registers. */
ORVANE_C_API int orvane_map_size(const orvane_map *map, size_t *size);
/* The register at an index in file order. */
ORVANE_C_API int orvane_map_register_at(const orvane_map *map, size_t index, orvane_map_register *reg);
/* The field at an index of a register. */
ORVANE_C_API int orvane_map_field_at(const orvane_map *map, size_t register_index, size_t index,
                                     orvane_map_field *field);
/* A named value of a field, by index, in order of the values. */
ORVANE_C_API int orvane_map_choice_at(const orvane_map *map, const orvane_map_field *field, size_t index,
                                      uint64_t *value, const char **name);
/* The register of a full name, or the register and field; `is_field` tells which. `suggestion` is a name that
 * may have been meant, or NULL; it is written with ORVANE_MAP_NOT_FOUND only. */
ORVANE_C_API int orvane_map_resolve(const orvane_map *map, const char *name, orvane_map_register *reg,
                                    orvane_map_field *field, int *is_field, char **suggestion);
/* The register at an address; page -1: reached on any page. */
ORVANE_C_API int orvane_map_find(const orvane_map *map, int space, unsigned mmd, uint32_t number,
                                 int64_t page, orvane_map_register *reg);

/* The field's raw value within a register's. */
ORVANE_C_API int orvane_map_extract(const orvane_map *map, const orvane_map_field *field,
                                    uint64_t register_value, uint64_t *raw);
/* The register's value with the field's bits replaced; ORVANE_MAP_INVALID when the raw value does not fit. */
ORVANE_C_API int orvane_map_insert(const orvane_map *map, const orvane_map_field *field,
                                   uint64_t register_value, uint64_t raw, uint64_t *result, char **problems);
/* A raw value in words or its unit, and what a latched bit tells ("" for nothing). */
ORVANE_C_API int orvane_map_explain(const orvane_map *map, const orvane_map_field *field, uint64_t raw,
                                    char **text, char **note);

/* Full names, one a line: what matches a pattern, what holds the words, how a beginning may go on. */
ORVANE_C_API int orvane_map_match(const orvane_map *map, const char *pattern, char **names);
ORVANE_C_API int orvane_map_search(const orvane_map *map, const char *words, char **names);
ORVANE_C_API int orvane_map_complete(const orvane_map *map, const char *beginning, char **names);

/* The map as a file of the source form, as a C header, as tables in Markdown. */
ORVANE_C_API int orvane_map_to_json(const orvane_map *map, char **text);
ORVANE_C_API int orvane_map_to_c_header(const orvane_map *map, const char *prefix, char **text);
ORVANE_C_API int orvane_map_to_markdown(const orvane_map *map, char **text);

#ifdef __cplusplus
}
#endif

#endif
