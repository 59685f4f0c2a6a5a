"""Counts of what happens to boards and sessions."""
from __future__ import annotations

import threading
from typing import Dict, Set, Tuple

from orvane.codes import EventKind
from orvane.events import Event

__all__ = ["EventCounts"]


class EventCounts:
    """Takes events, on any thread."""

    def __init__(self) -> None:
        self._lock = threading.Condition()  # guards what is below, and tells of each event
        self._pings_lost: Dict[str, int] = {}
        self._open: Dict[str, Set[Tuple[object, object]]] = {}

    def take(self, event: Event) -> None:
        """One more."""
        place = (event.port, event.phy)
        with self._lock:
            if event.kind is EventKind.PING_LOST:
                self._pings_lost[event.board] = self._pings_lost.get(event.board, 0) + 1
            elif event.kind in (EventKind.OPENED, EventKind.REOPENED):
                self._open.setdefault(event.board, set()).add(place)
            elif event.kind in (EventKind.CLOSED, EventKind.LOST):
                self._open.setdefault(event.board, set()).discard(place)
            self._lock.notify_all()

    def pings_lost(self, board: str) -> int:
        """Pings of the board's sessions that were not answered in time."""
        with self._lock:
            return self._pings_lost.get(board, 0)

    def sessions(self, board: str) -> int:
        """Sessions that are open on the board."""
        with self._lock:
            return len(self._open.get(board, ()))

    def await_session(self, board: str, seconds: float) -> bool:
        """Waits so many seconds at most for a session on the board: events come a little after what they tell."""
        with self._lock:
            return self._lock.wait_for(lambda: bool(self._open.get(board)), seconds)
