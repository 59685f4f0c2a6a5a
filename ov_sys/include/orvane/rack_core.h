/* Racks, PHYs and their registers; see <orvane/rack.h>, which has the rules for all of its functions. */
#ifndef ORVANE_RACK_CORE_H
#define ORVANE_RACK_CORE_H

#include <orvane/api.h>
#include <stddef.h>
#include <stdint.h>

#ifdef __cplusplus
extern "C" {
#endif

/* ---- Failures ---- */

/* Kinds of failure, and none. */
enum orvane_status {
    ORVANE_DONE = 0,
    ORVANE_INVALID_ARGUMENT = 1,
    ORVANE_NO_SUCH_PORT = 2,
    ORVANE_UNREACHABLE = 3,
    ORVANE_TIMED_OUT = 4,
    ORVANE_REFUSED = 5,
    ORVANE_BUSY = 6,
    ORVANE_LOST_SESSION = 7,
    ORVANE_BAD_REPLY = 8,
    ORVANE_BOARD_ERROR = 9,
    ORVANE_CANCELLED = 10,
    ORVANE_OUT_OF_RESOURCES = 11 /* no memory, descriptor or thread, or a hook's own status */
};

/* What went wrong. Texts are terminated, and cut where they do not fit. */
typedef struct orvane_failure {
    int kind;           /* an orvane_status */
    int code;           /* the board's: a negative errno value; 0 for none */
    int port;           /* -1: none */
    int phy;            /* -1: none */
    unsigned attempts;  /* times that the request was sent */
    double seconds;     /* that the call took */
    char code_name[24]; /* "EREMOTEIO" for -121; empty for 0 */
    char board[64];
    char operation[32];
    char location[64];
    char advice[256];  /* what to do, one sentence */
    char message[512]; /* everything, as one line for a person */
} orvane_failure;

/* A status in words, e.g. "timed out". Never null. */
ORVANE_C_API const char *orvane_status_text(int status);

/* ---- Limits ---- */

/* Ends waits of other threads, and of signal handlers' own; see orvane_cancellation_cancel(). */
typedef struct orvane_cancellation orvane_cancellation;

/* What a call may take. */
typedef struct orvane_limits {
    double seconds;                    /* from the beginning of the call */
    unsigned read_repeats;             /* of a request whose answer is missing; UINT32_MAX: up to the end */
    unsigned write_repeats;            /* the same for writes */
    int heals;                         /* not 0: lost sessions are opened again, lost boards looked up */
    orvane_cancellation *cancellation; /* or null */
} orvane_limits;

/* 5 s, healing, reads repeated up to the end and writes at most 16 times. */
ORVANE_C_API orvane_limits orvane_default_limits(void);
/* The same with another time. */
ORVANE_C_API orvane_limits orvane_within(double seconds);
/* The same limits without a repeat: for registers whose access has side effects. */
ORVANE_C_API orvane_limits orvane_once(orvane_limits limits);

/* Must outlive the calls that have it. */
ORVANE_C_API int orvane_cancellation_new(orvane_cancellation **cancellation, orvane_failure *failure);
/* Ends calls that have it in their limits within 50 ms, and later ones at once. Also from signal handlers. */
ORVANE_C_API void orvane_cancellation_cancel(orvane_cancellation *cancellation);
/* From now on calls are not cancelled. */
ORVANE_C_API void orvane_cancellation_reset(orvane_cancellation *cancellation);
/* No call may have it. */
ORVANE_C_API void orvane_cancellation_free(orvane_cancellation *cancellation);

/* ---- Racks ---- */

/* Any number of boards. */
typedef struct orvane_rack orvane_rack;

/* A board that was found. The strings stay good as long as the list. */
typedef struct orvane_board {
    const char *serial;
    const char *address;
    const unsigned *ports;
    size_t port_count;
} orvane_board;

/* What a search found. */
typedef struct orvane_board_list orvane_board_list;

/* A rack that knows no board yet. */
ORVANE_C_API int orvane_rack_new(orvane_rack **rack, orvane_failure *failure);
/* Its PHYs may outlive it. Waits for the event callback's end, and so must not be called from it. */
ORVANE_C_API void orvane_rack_free(orvane_rack *rack);
/* Makes a board known without a search. */
ORVANE_C_API int orvane_rack_know(orvane_rack *rack, const char *board, const char *address,
                                  orvane_failure *failure);
/* Every board that answers within the limits (null: 1 s); they are known then. */
ORVANE_C_API int orvane_rack_discover(orvane_rack *rack, const orvane_limits *limits,
                                      orvane_board_list **boards, orvane_failure *failure);
/* How many were found; 0 for null. */
ORVANE_C_API size_t orvane_board_list_size(const orvane_board_list *boards);
/* Different answers that name no port as they should. */
ORVANE_C_API size_t orvane_board_list_malformed(const orvane_board_list *boards);
/* Null beyond the last. */
ORVANE_C_API const orvane_board *orvane_board_list_at(const orvane_board_list *boards, size_t index);
/* Frees what a search found. */
ORVANE_C_API void orvane_board_list_free(orvane_board_list *boards);

/* ---- PHYs and their sessions ---- */

/* One PHY of a port, and its session. */
typedef struct orvane_phy orvane_phy;

/* Kinds of session. */
enum orvane_mode { ORVANE_EXCLUSIVE = 0, ORVANE_SHARED = 1, ORVANE_SIMPLE = 2 };

/* How a port is shared. */
typedef struct orvane_access {
    uint32_t mode; /* an orvane_mode */
    uint16_t key;  /* 0: none */
    int queues;    /* not 0: waits for the holder */
} orvane_access;

/* PHY `id` of the port of that name, such as "OV0001:0". Its session is opened by its first use. */
ORVANE_C_API int orvane_rack_phy(orvane_rack *rack, const char *port, orvane_access access, unsigned id,
                                 const orvane_limits *limits, orvane_phy **phy, orvane_failure *failure);
/* Closes the session when no other handle has it. */
ORVANE_C_API void orvane_phy_free(orvane_phy *phy);
/* PHY id, or the SMBus device's address. */
ORVANE_C_API int orvane_phy_id(orvane_phy *phy, unsigned *id, orvane_failure *failure);
/* Opens the session now; otherwise its first use does. */
ORVANE_C_API int orvane_phy_open(orvane_phy *phy, const orvane_limits *limits, orvane_failure *failure);
/* The next use opens it again. */
ORVANE_C_API int orvane_phy_close(orvane_phy *phy, const orvane_limits *limits, orvane_failure *failure);
/* `open` becomes 1 or 0. Waits for the call that is under way on the board. */
ORVANE_C_API int orvane_phy_is_open(orvane_phy *phy, int *open, orvane_failure *failure);
/* The session's key as the board gave it; 0 when there is none, or the session is not open. */
ORVANE_C_API int orvane_phy_key(orvane_phy *phy, uint16_t *key, orvane_failure *failure);

/* Restores what a board forgot with its session. Returns ORVANE_DONE, or the status of what went wrong, which
 * `failure` (never null) may describe: it becomes that of the call that noticed the loss. */
typedef int (*orvane_reopen_hook)(void *context, orvane_failure *failure);
/* Has the hook called after the board lost the session and it was opened again, before the call that noticed
 * goes on, on its thread, or on the rack's own when a ping noticed. It may use the PHY. Null ends that.
 * `context` must last until then, or until the PHY's last handle has been freed. */
ORVANE_C_API int orvane_phy_on_reopen(orvane_phy *phy, orvane_reopen_hook hook, void *context,
                                      orvane_failure *failure);

/* Ways to 32-bit registers over SMBus. */
enum orvane_smbus_protocol { ORVANE_SMBUS_PAGED16 = 0, ORVANE_SMBUS_DIRECT32 = 1 };

/* How 32-bit registers are reached on SMBus ports, an orvane_smbus_protocol; the first at first. */
ORVANE_C_API int orvane_phy_set_smbus_protocol(orvane_phy *phy, int protocol, orvane_failure *failure);

/* ---- Registers ---- */

/* Register spaces. */
enum orvane_space { ORVANE_CLAUSE45 = 0, ORVANE_CLAUSE22 = 1, ORVANE_EXT32 = 2 };

/* A register: `mmd` for Clause 45 only. */
typedef struct orvane_register {
    uint32_t space; /* an orvane_space */
    uint32_t mmd;
    uint32_t number;
} orvane_register;

/* The value of a register: 16 bits, of the 32-bit extension 32. */
ORVANE_C_API int orvane_phy_read(orvane_phy *phy, orvane_register address, const orvane_limits *limits,
                                 uint32_t *value, orvane_failure *failure);
/* Writes a register. */
ORVANE_C_API int orvane_phy_write(orvane_phy *phy, orvane_register address, uint32_t value,
                                  const orvane_limits *limits, orvane_failure *failure);
/* Replaces the bits of `mask`; `written`, which may be null, becomes the whole value. */
ORVANE_C_API int orvane_phy_modify(orvane_phy *phy, orvane_register address, uint32_t mask, uint32_t value,
                                   const orvane_limits *limits, uint32_t *written, orvane_failure *failure);
/* `count` registers from `first` on, any number. */
ORVANE_C_API int orvane_phy_read_list(orvane_phy *phy, orvane_register first, size_t count,
                                      const orvane_limits *limits, uint32_t *values, orvane_failure *failure);

/* One operation of a batch, and what became of it. */
typedef struct orvane_operation {
    orvane_register address;
    int writes;     /* not 0: `value` is written; else it is read */
    uint32_t value; /* good after ORVANE_OPERATION_DONE only */
    int state;      /* an orvane_operation_state; set by the call, as is `code` */
    int code;       /* the board's, when it refused */
} orvane_operation;

/* What became of an operation. */
enum orvane_operation_state {
    ORVANE_OPERATION_NOT_SENT = 0,
    ORVANE_OPERATION_DONE = 1,
    ORVANE_OPERATION_REFUSED = 2,
    ORVANE_OPERATION_UNKNOWN = 3 /* sent, and no usable answer */
};

/* A state in words, e.g. "not sent". Never null. */
ORVANE_C_API const char *orvane_operation_state_text(int state);

/* Carries out `operations` in order, in as few calls as the board takes, up to the first failure. The states
 * are set unless the result is ORVANE_INVALID_ARGUMENT. */
ORVANE_C_API int orvane_phy_run(orvane_phy *phy, orvane_operation *operations, size_t count,
                                const orvane_limits *limits, orvane_failure *failure);

#ifdef __cplusplus
}
#endif

#endif
