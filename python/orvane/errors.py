"""What Orvane raises: Error, with a class for each kind of failure.

An Error says on one line what went wrong, where, how often it was tried, for how long, and what to do. Its attributes
have the same for programs. Where the board gave a code of errno, the OSError of that is its cause (__cause__). Classes
that Python has a word for are that, too: InvalidArgument is a ValueError, NoSuchPort a LookupError, Unreachable a
ConnectionError, TimedOut a TimeoutError.
"""
from __future__ import annotations

import errno as _errno
import os
from typing import Any

from orvane.codes import Code, FailureKind

__all__ = ["BadReply", "BoardError", "Busy", "Cancelled", "Error", "InvalidArgument", "LostSession", "MapError",
           "NoSuchPort", "Refused", "TimedOut", "Unreachable"]


class Error(Exception):
    """A failure of a call on a board."""

    kind: FailureKind
    board: str
    """serial number; empty when the failure concerns none"""
    port: int | None
    phy: int | None
    """PHY id, or SMBus device address"""
    operation: str
    """"read", "open", ..."""
    location: str
    """the register, as "30.0xC010"; empty when there is none"""
    code: int
    """the board's code, a Code where it has a name; 0 when the board gave none"""
    attempts: int
    """times that the request was sent"""
    seconds: float
    """how long the call took"""
    advice: str
    """what to do about it, in a sentence"""

    def __init__(self, text: str, **details: Any) -> None:
        super().__init__(text)
        self.__dict__.update(details)

    def __reduce__(self) -> tuple[Any, ...]:
        return _again, (type(self), str(self), self.__dict__)

    @property
    def errno(self) -> int | None:
        """The board's code as a number of the module errno; None when the board gave none."""
        return -self.code if self.code < 0 else None

    @property
    def code_name(self) -> str:
        """The code's name, as "EREMOTEIO"; empty for 0, the number where there is no name."""
        return _errno.errorcode.get(-self.code, str(self.code)) if self.code else ""


class InvalidArgument(Error, ValueError):
    """Refused here: nothing was sent."""


class NoSuchPort(Error, LookupError):
    """No board or port of that name was found."""


class Unreachable(Error, ConnectionError):  # type: ignore[misc]
    """Nobody answers where the board is, or was."""


class TimedOut(Error, TimeoutError):  # type: ignore[misc]
    """Sent, and no answer within the limit: whether it was done is not known."""


class Refused(Error):
    """The board does not grant the session."""


class Busy(Error):
    """The board, or another call on it, was busy up to the limit."""


class LostSession(Error):
    """The board forgot the session, and the call was told not to open it again."""


class BadReply(Error):
    """An answer that is none; no value is made of it."""


class BoardError(Error):
    """The board answered with a code of its own: `code`, `code_name`, `errno`."""


class Cancelled(Error):
    """Ended by the program. What was already sent may have been executed."""


class MapError(ValueError):
    """What is wrong with a register map's file; a problem a line."""


_CLASSES: dict[FailureKind, type[Error]] = {
    FailureKind.INVALID_ARGUMENT: InvalidArgument,
    FailureKind.NO_SUCH_PORT: NoSuchPort,
    FailureKind.UNREACHABLE: Unreachable,
    FailureKind.TIMED_OUT: TimedOut,
    FailureKind.REFUSED: Refused,
    FailureKind.BUSY: Busy,
    FailureKind.LOST_SESSION: LostSession,
    FailureKind.BAD_REPLY: BadReply,
    FailureKind.BOARD_ERROR: BoardError,
    FailureKind.CANCELLED: Cancelled,
}


def _again(which: type[Error], text: str, details: dict[str, Any]) -> Error:
    return which(text, **details)


def make(text: str, *, kind: int, code: int, **details: Any) -> Error:
    """The exception of a failure; for the module orvane._orvane."""
    named = Code(code) if code in _CODES else code
    error = _CLASSES[FailureKind(kind)](text, kind=FailureKind(kind), code=named, **details)
    if -code in _errno.errorcode:
        error.__cause__ = OSError(-code, f"{os.strerror(-code)}, says the board")
    return error


_CODES = frozenset(int(each) for each in Code)
