"""One board of the rack: what was learnt of it by asking, and what happened to it."""
from __future__ import annotations

import collections
import contextlib
import dataclasses
import math
import time
from collections import abc
from typing import Any, Deque, Dict, List, Optional, Set, Tuple

from orvane.codes import EventKind
from orvane.errors import Error, Refused, TimedOut, Unreachable
from orvane.events import Event
from orvane.phy import Phy
from orvane.serve.topics import Topic

__all__ = ["Board", "BoardTopic"]

_KEPT = 200
_ROUND_TRIPS = 100
_ASK_AGAIN = 60.0  # seconds until a board without temperatures is asked for them again


@dataclasses.dataclass
class Answers:
    """What one round of questions came to."""

    state: str
    problem: str = ""
    seconds: Optional[float] = None
    """of the ping"""
    temperatures: Optional[List[Optional[float]]] = None
    """None: not asked; empty: the board tells none"""
    services: Optional[Dict[str, int]] = None


class Board:
    """What the server knows of a board."""

    def __init__(self, serial: str) -> None:
        self.serial = serial
        self.address = ""
        self.ports: Tuple[int, ...] = ()
        self.state = "found"
        self.problem = ""
        self.events: Deque[Tuple[float, str, str, str]] = collections.deque(maxlen=_KEPT)
        self.requests: Deque[Tuple[float, str, str, float]] = collections.deque(maxlen=_KEPT)
        self.sessions: Set[str] = set()
        self.services: Dict[str, int] = {}
        self.temperatures: List[Optional[float]] = []
        self.set_points: Dict[int, float] = {}
        self.phys: Dict[int, Any] = {}
        """what scans found, by port"""
        self._round_trips: Deque[float] = collections.deque(maxlen=_ROUND_TRIPS)
        self._no_temperatures_until = 0.0

    def found(self, address: str, ports: abc.Iterable[int]) -> None:
        """It answered a search."""
        self.address, self.ports = address, tuple(ports)

    @property
    def port(self) -> str:
        """The port whose session is used for what concerns the board as a whole."""
        mdio = [each for each in self.ports if each < 10] or list(self.ports) or [0]
        return f"{self.serial}:{mdio[0]}"

    def ask(self, phy: Phy, channels: int, services: bool) -> Answers:
        """Pings, reads temperatures; waits for the board."""
        try:
            answers = Answers("up", seconds=phy.shell.ping(within=1.0))
            if services:
                answers.services = phy.shell.services(within=1.0)
        except Error as problem:
            return self.failed(problem)
        if time.monotonic() >= self._no_temperatures_until:
            answers.temperatures = self._temperatures(phy, channels)
        return answers

    @staticmethod
    def failed(problem: Error) -> Answers:
        """What a board that could not be asked is like."""
        if isinstance(problem, (Unreachable, TimedOut)):
            return Answers("away", str(problem))
        return Answers("held" if isinstance(problem, Refused) else "trouble", str(problem))

    def _temperatures(self, phy: Phy, channels: int) -> List[Optional[float]]:
        """Of the channels; nothing when the board tells none, which is asked again a while later."""
        found = [_temperature(phy, channel) for channel in range(channels)]
        if all(each is None for each in found):
            with contextlib.suppress(Error):  # somebody may have disconnected the unit
                phy.thermal.connect(within=1.0)
            found = [_temperature(phy, channel) for channel in range(channels)]
        if any(each is not None for each in found):
            return found
        self._no_temperatures_until = time.monotonic() + _ASK_AGAIN
        return []

    def take(self, answers: Answers) -> None:
        """Keeps what a round of questions came to."""
        self.state, self.problem = answers.state, answers.problem
        if answers.seconds is not None:
            self._round_trips.append(answers.seconds)
        if answers.services is not None:
            self.services = answers.services
        if answers.temperatures is not None:
            kept = self.temperatures[len(answers.temperatures):] if answers.temperatures else []
            self.temperatures = answers.temperatures + kept

    def happened(self, event: Event) -> None:
        """Keeps an event, and which sessions are open."""
        kind = event.kind.name.lower().replace("_", " ")
        place = "" if event.port is None else f"{event.port} PHY {event.phy}"
        self.events.append((round(event.time.timestamp(), 3), kind, place, event.text))
        if event.kind in (EventKind.OPENED, EventKind.REOPENED):
            self.sessions.add(place)
        elif event.kind in (EventKind.CLOSED, EventKind.LOST):
            self.sessions.discard(place)

    def requested(self, what: str, outcome: str, seconds: float) -> None:
        """Keeps what this server asked of the board."""
        self.requests.append((round(time.time(), 3), what, outcome, round(seconds * 1000, 2)))

    def row(self) -> Dict[str, Any]:
        """For the table of the rack; times in milliseconds. What a board that is away told last is not true now."""
        times = sorted(self._round_trips)
        now = list(self._round_trips)[-1:] if self.state == "up" else []
        return {"address": self.address, "ports": list(self.ports), "state": self.state, "problem": self.problem,
                "sessions": sorted(self.sessions),
                "now": _milliseconds(now, 0),
                "median": _milliseconds(times, 50), "p99": _milliseconds(times, 99),
                "temperatures": self.temperatures if self.state == "up" else []}

    def details(self) -> Dict[str, Any]:
        """For the board's page."""
        return {"row": self.row(), "services": self.services, "events": list(self.events),
                "requests": list(self.requests), "phys": {str(port): found for port, found in self.phys.items()},
                "setPoints": {str(channel): celsius for channel, celsius in self.set_points.items()}}


class BoardTopic(Topic):
    """The page of a board; the fleet tells it what is new."""

    def __init__(self, board: Board) -> None:
        super().__init__()
        self.board = board
        self.refresh()

    def refresh(self) -> None:
        """Takes what is known now."""
        self.put(self.board.details())


def _temperature(phy: Phy, channel: int) -> Optional[float]:
    try:
        celsius = phy.thermal[channel].temperature
    except Error:  # a board without that channel, or without control
        return None
    return round(celsius, 2) if math.isfinite(celsius) else None


def _milliseconds(times: abc.Sequence[float], percent: int) -> Optional[float]:
    if not times:
        return None
    return round(times[min(len(times) - 1, len(times) * percent // 100)] * 1000, 3)
