"""What comes of points on another host, until the data set is told."""
from __future__ import annotations

import dataclasses
from collections import abc
from typing import Any, Callable, List, Optional, Tuple

from orvane.run.recorder import Keeper, Measured, Mishap

__all__ = ["Notes", "Outcome"]


class Notes:
    """A Keeper that can be sent. One thread at a time."""

    def __init__(self) -> None:
        self._notes: List[Tuple[str, Tuple[Any, ...]]] = []

    def keep(self, point: Measured) -> None:
        """As Keeper has it."""
        self._notes.append(("keep", (point,)))

    def keep_step(self, name: str, kind: str, port: Optional[str], conditions: abc.Mapping[str, Any], begun: str,
                  seconds: float, problem: Optional[str] = None) -> None:
        """As Keeper has it."""
        self._notes.append(("keep_step", (name, kind, port, dict(conditions), begun, seconds, problem)))

    def keep_mishap(self, mishap: Mishap, port: Optional[str]) -> None:
        """As Keeper has it."""
        self._notes.append(("keep_mishap", (mishap, port)))

    def tell(self, line: str) -> None:
        """A line for the person who waits."""
        self._notes.append(("", (line,)))

    def taken(self) -> Notes:
        """What is noted so far, which is forgotten here."""
        found = Notes()
        found._notes, self._notes = self._notes, []
        return found

    def pass_on(self, keeper: Keeper, tell: Callable[[str], None]) -> None:
        """Tells everything, in its order."""
        for method, arguments in self._notes:
            (getattr(keeper, method) if method else tell)(*arguments)


@dataclasses.dataclass(frozen=True)
class Outcome:
    """What came of one point, or of the attempt to measure it."""

    port: str
    process: str
    """who measured"""
    worker: str
    """where that is, as Dask has it"""
    notes: Notes
    used: bool = False
    """whether the board is to be made safe"""
    stopped: bool = False
    """nothing was measured: its host was told to end"""
    lost: Optional[str] = None
    """why the board is to be given up"""
    fault: Optional[BaseException] = None
    """what no other point would survive"""
