"""What happens to boards and sessions, and what was counted of their calls."""
from __future__ import annotations

import dataclasses
from datetime import datetime, timezone
from typing import Any, Dict, Optional

from orvane._orvane import Latency
from orvane.codes import EventKind, EventLevel

__all__ = ["BoardCounters", "Event", "Latency", "ProgramCounters"]

_LEVELS = (EventLevel.DEBUG, EventLevel.INFO, EventLevel.WARNING)


@dataclasses.dataclass(frozen=True)
class Event:
    """Something that happened to a board, or to a session on it."""

    time: datetime
    board: str
    port: Optional[int]
    """None: the board as a whole"""
    phy: Optional[int]
    kind: EventKind
    level: EventLevel
    text: str
    """details, such as the board's new address; may be empty"""

    def __str__(self) -> str:
        place = self.board if self.port is None else f"{self.board}:{self.port} PHY {self.phy}"
        what = self.kind.name.lower().replace("_", " ")
        return f"{place}: {what}, {self.text}" if self.text else f"{place}: {what}"


@dataclasses.dataclass(frozen=True)
class ProgramCounters:
    """Counts of one program of a board since its rack knows it."""

    calls: int
    succeeded: int
    failed: int
    timed_out: int
    board_errors: int
    repeats: int
    bytes_sent: int
    bytes_received: int
    latency: Latency
    """of the calls that succeeded: latency.count, latency.percentile(99) in seconds, right within 5 %"""


@dataclasses.dataclass(frozen=True)
class BoardCounters:
    """Counts of one board, by the name of the program: "mdio", "setup", "keepAlive", ..."""

    programs: Dict[str, ProgramCounters]
    opens: int
    reopens: int
    moves: int
    strays: int
    """datagrams that answered nothing"""


def event_of(time: float, board: str, port: int, phy: int, kind: int, level: int, text: str) -> Event:
    """An Event from what the module gives."""
    return Event(datetime.fromtimestamp(time, timezone.utc), board, None if port < 0 else port,
                 None if phy < 0 else phy, EventKind(kind), _LEVELS[level], text)


def counters_of(counts: Dict[str, Any]) -> BoardCounters:
    """BoardCounters from what the module gives."""
    programs = {name: ProgramCounters(**each) for name, each in counts["programs"].items()}
    return BoardCounters(programs, counts["opens"], counts["reopens"], counts["moves"], counts["strays"])
