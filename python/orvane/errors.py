"""What Orvane raises: Error, with a class for each kind of failure.

An Error says on one line what went wrong, where, how often it was tried, for how long, and what to do. Its attributes
have the same for programs. Where the board gave a code of errno, the OSError of that is its cause (__cause__). Classes
that Python has a word for are that, too: InvalidArgument is a ValueError, NoSuchPort a LookupError, Unreachable a
ConnectionError, TimedOut a TimeoutError.
"""
from __future__ import annotations

import errno as _errno
import os
import subprocess
import sys
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
        return _again, (type(self), self.args[0], self.__dict__)

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
    """The board does not grant the session.

    Where the environment names labgrid's coordinator (LG_CROSSBAR, LG_COORDINATOR), the text says which place has the
    board, and who acquired it.
    """

    _holder: str | None = None

    @property
    def holder(self) -> str:
        """"place wren, acquired by desk/ann", as the coordinator says; empty when nothing is known. The coordinator is
        asked once, when this is looked at or the error is shown, and waited for 10 s at most."""
        if self._holder is None:
            named = any(os.environ.get(name) for name in ("LG_CROSSBAR", "LG_COORDINATOR"))
            self._holder = _ask_labgrid(f"{self.board}:{self.port}", str(self.phy)) if named else ""
        return self._holder

    def __str__(self) -> str:
        return f"{self.args[0]} It is labgrid's {self.holder}." if self.holder else str(self.args[0])


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


def _ask_labgrid(*what: str) -> str:
    """A process of its own asks: labgrid's client has an event loop, which would be in the way of the program's."""
    try:
        asked = subprocess.run([sys.executable, "-m", "orvane.labgrid.holder", *what], stdin=subprocess.DEVNULL,
                               stdout=subprocess.PIPE, stderr=subprocess.DEVNULL, timeout=10, text=True)
    except (OSError, subprocess.TimeoutExpired):
        return ""
    return asked.stdout.strip() if asked.returncode == 0 else ""


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
