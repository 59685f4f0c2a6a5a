"""Brings boards to their safe state, in a bounded time."""
from __future__ import annotations

import contextlib
import threading
import time
from collections import abc
from typing import Callable, Dict, Optional

from orvane import _orvane
from orvane.limits import Cancellation
from orvane.run.point import OnBoard
from orvane.run.recorder import Keeper, now
from orvane.run.steps import Step

__all__ = ["NotSafe", "SafeState", "make_safe"]

_PAUSE = 0.2
_LAST_CALLS = 1.0


class NotSafe(RuntimeError):
    """Boards that could not be brought to their safe state: `boards` has the reasons, by port."""

    def __init__(self, boards: Dict[str, str]) -> None:
        told = "; ".join(f"{port}: {problem}" for port, problem in boards.items())
        super().__init__(f"NOT IN A SAFE STATE: {told}")
        self.boards = boards


class SafeState(threading.Thread):
    """The safe-state step of one board, again until it succeeds or its time is over."""

    def __init__(self, on: OnBoard, step: Step, until: float) -> None:
        super().__init__(name=f"safe state of {on.port.name}", daemon=True)
        self.on = on
        self.begun = now()
        self.seconds = 0.0
        self.problem: str | None = "it did not end in time"
        self._step = step
        self._until = until
        self._over = threading.Event()
        self._cancellation = Cancellation()

    def run(self) -> None:
        """The thread's."""
        _orvane.cancel_thread_by(self._cancellation)
        start = time.monotonic()
        try:
            while not self._over.is_set():
                problem = self._attempt()
                if problem is None or time.monotonic() >= self._until:
                    self.problem = problem
                    return
                self.problem = problem
                self._over.wait(_PAUSE)
        finally:
            self.seconds = time.monotonic() - start
            _orvane.cancel_thread_by(None)

    def end(self) -> None:
        """Its time is over: calls on the board end now."""
        self._over.set()
        self._cancellation.cancel()

    def _attempt(self) -> str | None:
        try:
            self._step.function(self.on)
            return None
        except Exception as problem:
            if self._over.is_set():
                return self.problem
            return str(problem) or type(problem).__name__


def make_safe(boards: abc.Iterable[OnBoard], step: Optional[Step], within: float, keeper: Keeper,
              tell: Callable[[str], None]) -> Dict[str, str]:
    """Runs the step on all boards side by side, keeps and tells what came of it; the boards that are not safe after
    `within` seconds and one more, and why.

    A step that is stuck outside of the board's calls is left behind.
    """
    if step is None:
        return {}
    until = time.monotonic() + within
    attempts = [SafeState(OnBoard(each.port, each.phy, threading.Event()), step, until) for each in boards]
    for attempt in attempts:
        attempt.start()
    for attempt in attempts:
        attempt.join(max(0.0, until - time.monotonic()))
    for attempt in attempts:
        attempt.end()
    last = time.monotonic() + _LAST_CALLS
    for attempt in attempts:
        attempt.join(max(0.0, last - time.monotonic()))
    unsafe = {}
    for attempt in attempts:
        port, problem = attempt.on.port.name, attempt.problem
        if problem is not None:
            unsafe[port] = problem
            tell(f"NOT IN A SAFE STATE: {port}: {problem}")
        with contextlib.suppress(Exception):  # a full disk has been told of; safety does not depend on it
            keeper.keep_step(step.name, "safe", port, {}, attempt.begun, attempt.seconds, problem)
    return unsafe
