"""Numbers with names: kinds of failures, the board's codes, states, events."""
from __future__ import annotations

import enum

__all__ = ["AccessMode", "Code", "EventKind", "EventLevel", "FailureKind", "OperationState", "SmbusProtocol", "Space"]


class Space(enum.IntEnum):
    """Where a register is."""

    C45 = 0
    C22 = 1
    EXT32 = 2


class AccessMode(enum.IntEnum):
    """How a port is shared with other programs."""

    EXCLUSIVE = 0
    SHARED = 1
    SIMPLE = 2


class SmbusProtocol(enum.IntEnum):
    """How 32-bit registers are reached over SMBus."""

    PAGED16 = 0
    DIRECT32 = 1


class FailureKind(enum.IntEnum):
    """What went wrong; each has its class in orvane.errors."""

    INVALID_ARGUMENT = 0
    NO_SUCH_PORT = 1
    UNREACHABLE = 2
    TIMED_OUT = 3
    REFUSED = 4
    BUSY = 5
    LOST_SESSION = 6
    BAD_REPLY = 7
    BOARD_ERROR = 8
    CANCELLED = 9


class OperationState(enum.IntEnum):
    """What became of one operation of a batch."""

    NOT_SENT = 0
    """certainly not executed"""
    DONE = 1
    """executed"""
    REFUSED = 2
    """the board answered a code, for it and for all that it was sent with"""
    UNKNOWN = 3
    """sent, and no usable answer: it may have been executed"""


class EventKind(enum.IntEnum):
    """What happened to a board or session."""

    OPENED = 0
    LOST = 1
    RETRIED = 2
    MOVED = 3
    REOPENED = 4
    PING_LOST = 5
    CLOSED = 6
    LOG_FAILED = 7


class EventLevel(enum.IntEnum):
    """How much an event matters; the numbers are those of logging."""

    DEBUG = 10
    INFO = 20
    WARNING = 30


class Code(enum.IntEnum):
    """Codes that boards answer with: negative errno values. Others stay plain numbers."""

    EPERM = -1
    ENOENT = -2
    EIO = -5
    ENXIO = -6
    EBADF = -9
    EAGAIN = -11
    ENOMEM = -12
    EACCES = -13
    EBUSY = -16
    ENODEV = -19
    EINVAL = -22
    ENOSPC = -28
    ERANGE = -34
    ENOSYS = -38
    EPROTO = -71
    EOPNOTSUPP = -95
    ETIMEDOUT = -110
    ECONNREFUSED = -111
    EALREADY = -114
    EREMOTEIO = -121
    ECANCELED = -125
