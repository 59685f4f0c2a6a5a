/* A board's services beside its registers, through the session of a PHY; see <orvane/rack.h>. An answer with
 * another number of values than asked for is ORVANE_BAD_REPLY. */
#ifndef ORVANE_RACK_SERVICES_H
#define ORVANE_RACK_SERVICES_H

#include <orvane/rack_core.h>

#ifdef __cplusplus
extern "C" {
#endif

/* Bytes that a board sent, as many as it liked. */
typedef struct orvane_bytes orvane_bytes;

/* The first byte; behind the last one stands a zero. Empty for null. */
ORVANE_C_API const char *orvane_bytes_data(const orvane_bytes *bytes);
ORVANE_C_API size_t orvane_bytes_size(const orvane_bytes *bytes);
ORVANE_C_API void orvane_bytes_free(orvane_bytes *bytes);

/* ---- I2C ----
 * Buses 0 to 9, device addresses of 7 bits. Sent once. */

/* One transfer of a block: what is written, or where what is read goes. */
typedef struct orvane_i2c_transfer {
    uint8_t bus;
    uint32_t device;
    uint32_t reg;
    uint32_t format; /* bytes of the register number, 0 to 4 */
    uint32_t length; /* of `bytes` */
    uint8_t *bytes;  /* to write, or where what is read goes */
} orvane_i2c_transfer;

/* Writes bytes to a device. */
ORVANE_C_API int orvane_i2c_write(orvane_phy *phy, uint8_t bus, uint32_t device, const uint8_t *bytes,
                                  size_t count, const orvane_limits *limits, orvane_failure *failure);
/* Writes the byte `command`, then reads `length` bytes, 1 to 255. */
ORVANE_C_API int orvane_i2c_read(orvane_phy *phy, uint8_t bus, uint32_t device, uint8_t command,
                                 uint32_t length, const orvane_limits *limits, uint8_t *bytes,
                                 orvane_failure *failure);
/* The same with a register number of `format` bytes. */
ORVANE_C_API int orvane_i2c_read_register(orvane_phy *phy, uint8_t bus, uint32_t device, uint32_t reg,
                                          uint8_t format, uint32_t length, const orvane_limits *limits,
                                          uint8_t *bytes, orvane_failure *failure);
/* All transfers in one call, in order, until the first that fails. */
ORVANE_C_API int orvane_i2c_read_block(orvane_phy *phy, const orvane_i2c_transfer *transfers, size_t count,
                                       const orvane_limits *limits, orvane_failure *failure);
ORVANE_C_API int orvane_i2c_write_block(orvane_phy *phy, const orvane_i2c_transfer *transfers, size_t count,
                                        const orvane_limits *limits, orvane_failure *failure);
/* Changes the bits of `mask` only. */
ORVANE_C_API int orvane_i2c_write_block_masked(orvane_phy *phy, const orvane_i2c_transfer *transfers,
                                               size_t count, uint8_t mask, const orvane_limits *limits,
                                               orvane_failure *failure);

/* ---- GPIO ----
 * Lines by their indexes, `count` of them, and as many states, 0 or 1, a byte each. */

ORVANE_C_API int orvane_gpio_read(orvane_phy *phy, const uint8_t *lines, size_t count,
                                  const orvane_limits *limits, uint8_t *states, orvane_failure *failure);
ORVANE_C_API int orvane_gpio_write(orvane_phy *phy, const uint8_t *lines, const uint8_t *states, size_t count,
                                   const orvane_limits *limits, orvane_failure *failure);
ORVANE_C_API int orvane_gpio_enable_output(orvane_phy *phy, const uint8_t *lines, const uint8_t *enables,
                                           size_t count, const orvane_limits *limits,
                                           orvane_failure *failure);
ORVANE_C_API int orvane_gpio_output_enables(orvane_phy *phy, const uint8_t *lines, size_t count,
                                            const orvane_limits *limits, uint8_t *enables,
                                            orvane_failure *failure);
ORVANE_C_API int orvane_gpio_set_default(orvane_phy *phy, const uint8_t *lines, size_t count,
                                         const orvane_limits *limits, orvane_failure *failure);
/* Every line as after power-on. */
ORVANE_C_API int orvane_gpio_reset(orvane_phy *phy, const orvane_limits *limits, orvane_failure *failure);
/* Three lists of `count`, as the board's service defines them; as many states back. Sent once. */
ORVANE_C_API int orvane_gpio_bit_bang(orvane_phy *phy, const uint8_t *first, const uint8_t *second,
                                      const uint8_t *third, size_t count, const orvane_limits *limits,
                                      uint8_t *states, orvane_failure *failure);

/* ---- JTAG ---- */

/* Texts of "0" and "1". */
typedef struct orvane_jtag_shift_entry {
    const char *data;
    const char *tms;
    const char *last_tms;
    char *result; /* room for as much as `tms` has, and a zero */
} orvane_jtag_shift_entry;

/* The longest shift that the board accepts, in bytes. */
ORVANE_C_API int orvane_jtag_max_bytes(orvane_phy *phy, const orvane_limits *limits, unsigned *bytes,
                                       orvane_failure *failure);
/* All shifts in one call. Sent once. */
ORVANE_C_API int orvane_jtag_shift(orvane_phy *phy, const orvane_jtag_shift_entry *shifts, size_t count,
                                   const orvane_limits *limits, orvane_failure *failure);

/* ---- ADC ----
 * The board's capture of analogue inputs, over TCP. Sent once. */

ORVANE_C_API int orvane_adc_initialize(orvane_phy *phy, const orvane_limits *limits, orvane_failure *failure);
ORVANE_C_API int orvane_adc_start(orvane_phy *phy, const orvane_limits *limits, orvane_failure *failure);
ORVANE_C_API int orvane_adc_stop(orvane_phy *phy, const orvane_limits *limits, orvane_failure *failure);
/* One bit for each channel. */
ORVANE_C_API int orvane_adc_set_channel_mask(orvane_phy *phy, uint32_t mask, const orvane_limits *limits,
                                             orvane_failure *failure);
ORVANE_C_API int orvane_adc_set_dump_file(orvane_phy *phy, const char *name, const orvane_limits *limits,
                                          orvane_failure *failure);
ORVANE_C_API int orvane_adc_set_event_name(orvane_phy *phy, const char *name, const orvane_limits *limits,
                                           orvane_failure *failure);
/* Up to `count` bytes; what was read is gone from the board. */
ORVANE_C_API int orvane_adc_data(orvane_phy *phy, uint32_t count, const orvane_limits *limits,
                                 orvane_bytes **bytes, orvane_failure *failure);
/* The largest sample of each channel. */
ORVANE_C_API int orvane_adc_max_adc(orvane_phy *phy, const orvane_limits *limits, orvane_bytes **bytes,
                                    orvane_failure *failure);
/* The events as text, a line each. */
ORVANE_C_API int orvane_adc_events(orvane_phy *phy, const orvane_limits *limits, orvane_bytes **bytes,
                                   orvane_failure *failure);

/* ---- Thermal control ----
 * In degrees Celsius. */

ORVANE_C_API int orvane_thermal_connect(orvane_phy *phy, const orvane_limits *limits,
                                        orvane_failure *failure);
ORVANE_C_API int orvane_thermal_disconnect(orvane_phy *phy, const orvane_limits *limits,
                                           orvane_failure *failure);
/* As the board's service numbers them. */
ORVANE_C_API int orvane_thermal_state(orvane_phy *phy, const orvane_limits *limits, int *state,
                                      orvane_failure *failure);
ORVANE_C_API int orvane_thermal_temperature(orvane_phy *phy, unsigned channel, const orvane_limits *limits,
                                            float *celsius, orvane_failure *failure);
/* Answered when it has settled: allow for it. */
ORVANE_C_API int orvane_thermal_settled_temperature(orvane_phy *phy, unsigned channel,
                                                    const orvane_limits *limits, float *celsius,
                                                    orvane_failure *failure);
/* `flag` not 0: control begins, too. */
ORVANE_C_API int orvane_thermal_set_temperature(orvane_phy *phy, unsigned channel, float celsius,
                                                uint8_t flag, const orvane_limits *limits,
                                                orvane_failure *failure);
ORVANE_C_API int orvane_thermal_set_default_temperature(orvane_phy *phy, unsigned channel, float celsius,
                                                        uint8_t flag, const orvane_limits *limits,
                                                        orvane_failure *failure);
ORVANE_C_API int orvane_thermal_start_control(orvane_phy *phy, unsigned channel, const orvane_limits *limits,
                                              orvane_failure *failure);
ORVANE_C_API int orvane_thermal_stop_control(orvane_phy *phy, const orvane_limits *limits,
                                             orvane_failure *failure);

/* ---- The board itself ---- */

/* Runs a command on the board, which ends it after `seconds` (1 and up). Blocks for 5 s longer at most, or
 * until `cancellation`, which may be null. Any of the results may be null: the exit status, and what the
 * command wrote on its output and its error stream. */
ORVANE_C_API int orvane_shell_run(orvane_phy *phy, const char *command, unsigned seconds,
                                  orvane_cancellation *cancellation, int *status, orvane_bytes **output,
                                  orvane_bytes **errors, orvane_failure *failure);
/* The seconds that an answer of the board took; the latter two through the session, by the setup service and
 * by the one that keeps sessions alive. */
ORVANE_C_API int orvane_shell_ping(orvane_phy *phy, const orvane_limits *limits, double *seconds,
                                   orvane_failure *failure);
ORVANE_C_API int orvane_shell_ping_session(orvane_phy *phy, const orvane_limits *limits, double *seconds,
                                           orvane_failure *failure);
ORVANE_C_API int orvane_shell_ping_keep_alive(orvane_phy *phy, const orvane_limits *limits, double *seconds,
                                              orvane_failure *failure);
/* What the board has on record for one of its codes, a negative errno value; zeros when it has nothing. The
 * numbers are the board's own. */
ORVANE_C_API int orvane_shell_error_record(orvane_phy *phy, int code, const orvane_limits *limits,
                                           unsigned *kind, int *detail, orvane_failure *failure);

/* A service of a board, and the port at which it is. */
typedef struct orvane_service {
    char name[16]; /* "mdio", "setup", ... */
    uint16_t port;
} orvane_service;

/* The services that the board's port mapper knows, by name: `count` becomes their number, and the first
 * `room` of `services` (which may be null for none) are set. */
ORVANE_C_API int orvane_shell_services(orvane_phy *phy, const orvane_limits *limits, orvane_service *services,
                                       size_t room, size_t *count, orvane_failure *failure);
/* Where the board is, dotted, with a zero behind it. Does not block. */
ORVANE_C_API int orvane_shell_address(orvane_phy *phy, char address[16], orvane_failure *failure);

/* ---- The MDIO bus ----
 * What of it is no plain register access. For MDIO ports. */

ORVANE_C_API int orvane_mdio_flush(orvane_phy *phy, const orvane_limits *limits, orvane_failure *failure);
/* Lets writes reach every PHY of the port (`on` not 0). */
ORVANE_C_API int orvane_mdio_set_single_wire(orvane_phy *phy, int on, const orvane_limits *limits,
                                             orvane_failure *failure);
/* Bits of preamble. */
ORVANE_C_API int orvane_mdio_set_preamble_count(orvane_phy *phy, uint32_t count, const orvane_limits *limits,
                                                orvane_failure *failure);
/* Words of the 32-bit extension at its address register, which the first two move on before the access; these
 * are sent once. */
ORVANE_C_API int orvane_mdio_read_next(orvane_phy *phy, const orvane_limits *limits, uint32_t *value,
                                       orvane_failure *failure);
ORVANE_C_API int orvane_mdio_write_next(orvane_phy *phy, uint32_t value, const orvane_limits *limits,
                                        orvane_failure *failure);
ORVANE_C_API int orvane_mdio_read_current(orvane_phy *phy, const orvane_limits *limits, uint32_t *value,
                                          orvane_failure *failure);
ORVANE_C_API int orvane_mdio_write_current(orvane_phy *phy, uint32_t value, const orvane_limits *limits,
                                           orvane_failure *failure);
/* Interrupts, as the board's service defines the numbers; `result` becomes the board's. The wait is sent
 * once. */
ORVANE_C_API int orvane_mdio_request_interrupt(orvane_phy *phy, uint8_t first, uint8_t second, int third,
                                               int fourth, const orvane_limits *limits, int *result,
                                               orvane_failure *failure);
ORVANE_C_API int orvane_mdio_wait_for_interrupt(orvane_phy *phy, uint32_t value, const orvane_limits *limits,
                                                int *result, orvane_failure *failure);
ORVANE_C_API int orvane_mdio_interrupt_processed(orvane_phy *phy, uint32_t value, const orvane_limits *limits,
                                                 int *result, orvane_failure *failure);
ORVANE_C_API int orvane_mdio_release_interrupt(orvane_phy *phy, uint32_t value, const orvane_limits *limits,
                                               int *result, orvane_failure *failure);

#ifdef __cplusplus
}
#endif

#endif
