/* The flat interface of Orvane: PHY registers on evaluation boards, for C99 and C++.
 *
 * A device is one port of a board; its adapter number is its place in the list of devices that this process
 * has seen, and never changes. A PHY on a device is named by its PHY id: its MDIO address, 0 to 31, or its
 * device address on an SMBus port (ports from 10 on).
 *
 * Errors. No function lets an exception out. A failure sets the flag that HW_Fail() returns, stores its text
 * for HW_Error(), and gives the neutral result that the function's comment names. Functions marked "reports"
 * also write an empty line and "Error: " with the text to the standard error stream. Diagnostic lines can be
 * taken over: see diagnostics.h.
 *
 * Threads. Any thread may call any function. Closing an adapter must not overlap with accesses to it. A
 * thread that is cancelled (pthread_cancel) ends behind the call that it is in.
 *
 * Blocking. Discovery takes 1 s when it looks for every board and up to 5 s when it looks for one name. An
 * access waits for the board's answer, 2 s at most for each attempt; a failing connection is looked for and
 * retried up to eight times. The first access to a PHY id on a device opens a session on the board.
 *
 * PHY arguments. A parameter named phyArg is a PHY id on the default adapter, or, when it is negative,
 * carries an adapter in bits 16 to 30 and a PHY id in bits 0 to 15.
 *
 * Strings that are returned as char * are allocated with malloc and freed by the caller with free(). */
#ifndef ORVANE_ORVANE_H
#define ORVANE_ORVANE_H

#include <orvane/blocks.h>
#include <orvane/core.h>
#include <orvane/diagnostics.h>
#include <orvane/logging.h>
#include <orvane/registers.h>
#include <orvane/widths.h>

#endif
