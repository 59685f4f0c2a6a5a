"""What the steps of a run are given: a board, and the point that is measured."""
from __future__ import annotations

import threading
from collections import abc
from typing import Any, Dict

from orvane.phy import Phy
from orvane.rack import Port
from orvane.run.recipe import Scalar
from orvane.run.values import checked

__all__ = ["OnBoard", "Point", "Stopped"]


class Stopped(Exception):
    """The run is to end: what is measured now is left for the next time."""


class OnBoard:
    """A board of the run, for its set-up, identity and safe-state steps."""

    def __init__(self, port: Port, phy: Phy, stopping: threading.Event) -> None:
        self.port = port
        self.phy = phy
        """the PHY of the run"""
        self._stopping = stopping

    @property
    def board(self) -> str:
        """The board's serial number."""
        return self.port.board

    def sleep(self, seconds: float) -> None:
        """Waits; ends at once, with an exception, when the run is to end."""
        if self._stopping.wait(seconds):
            raise Stopped("the run is to end")


class Point(OnBoard):
    """A point that is being measured. Its values are kept when the step has ended well."""

    def __init__(self, on: OnBoard, conditions: abc.Mapping[str, Scalar], repeat: int, attempt: int) -> None:
        super().__init__(on.port, on.phy, on._stopping)
        self.conditions = conditions
        self.repeat = repeat
        """0, 1, ... of points that are measured several times"""
        self.attempt = attempt
        """1, 2, ..."""
        self.values: Dict[str, Any] = {}
        """what was recorded"""

    def __repr__(self) -> str:
        told = ", ".join(f"{name}={value!r}" for name, value in self.conditions.items())
        return f"<orvane.run.Point {self.port.name} {told}>"

    def record(self, **values: Any) -> None:
        """Keeps values by names: numbers, texts, bytes, True, False, None, numpy arrays and lists of numbers."""
        for name, value in values.items():
            if name in self.conditions or name in self.values:
                what = "a condition" if name in self.conditions else "recorded already"
                raise ValueError(f"{name} is {what}: a value needs a name of its own")
            self.values[name] = checked(name, value)
