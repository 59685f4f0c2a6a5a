"""How far a run is, and how long it still takes."""
from __future__ import annotations

import sys
import time
from types import TracebackType
from typing import Callable, Optional, Type

from orvane.run.plan import Plan, duration_text
from orvane.run.recorder import Recorder

__all__ = ["Progress"]


class Progress:
    """A line that is renewed on a terminal, else one now and then."""

    def __init__(self, plan: Plan, recorder: Recorder, tell: Callable[[str], None]) -> None:
        self._plan = plan
        self._recorder = recorder
        self._tell = tell
        self._terminal = sys.stderr.isatty()
        self._begun = self._shown = time.monotonic()
        self._start = recorder.finished

    def __enter__(self) -> Progress:
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], raised: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        if self._terminal:
            sys.stderr.write("\r\033[K")

    def show(self) -> None:
        """To be called again and again."""
        pause = 0.5 if self._terminal else 30.0
        if time.monotonic() - self._shown < pause:
            return
        self._shown = time.monotonic()
        text = self.text(self._shown - self._begun)
        if self._terminal:
            sys.stderr.write(f"\r\033[K{text}")
            sys.stderr.flush()
        else:
            self._tell(text)

    def text(self, seconds: float) -> str:
        """After so many seconds."""
        finished = self._recorder.finished - self._start
        left = self._plan.missing - finished
        rest = None if finished == 0 else seconds / finished * left
        failed = f", {self._recorder.failed} failed" if self._recorder.failed else ""
        return f"{finished} of {self._plan.missing} points{failed}, rest: {duration_text(rest)}"
