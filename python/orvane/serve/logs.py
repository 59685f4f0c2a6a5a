"""Transaction logs: files that were named on the command line, and what the rack does now."""
from __future__ import annotations

import asyncio
import collections
import os
import pathlib
from collections import abc
from typing import Any, Deque, Dict, List, Optional, Tuple

from orvane.rack import Rack
from orvane.serve.topics import Topic

__all__ = ["LiveLog", "LogFile"]

_COLUMNS = 11
_MOST_BYTES = 16 << 20
_MOST_ROWS = 2_000
_KEPT = 2_000
_PAUSE = 0.1


def row_of(line: str) -> List[str]:
    """The columns of a line; the flat interface's has six of them."""
    cells = line.rstrip("\r\n").split(",")
    return (cells + [""] * _COLUMNS)[:_COLUMNS]


class LogFile:
    """A log that is looked at; it may grow meanwhile. Of a long one, the end."""

    def __init__(self, path: str) -> None:
        self.name = os.path.basename(path)
        self._path = pathlib.Path(path)
        self._read: Tuple[int, int] = (-1, -1)
        self._rows: List[Tuple[int, List[str]]] = []
        self._cut = False

    def page(self, first: int, words: str) -> Dict[str, Any]:
        """Rows from the `first` on of those that have every word; waits for the disk."""
        self._refresh()
        wanted = words.lower().split()
        rows = self._rows if not wanted else [
            each for each in self._rows if all(word in ",".join(each[1]).lower() for word in wanted)]
        return {"total": len(rows), "cut": self._cut, "rows": rows[first:first + _MOST_ROWS]}

    def _refresh(self) -> None:
        state = self._path.stat()
        if (state.st_size, state.st_mtime_ns) == self._read:
            return
        with self._path.open("rb") as file:
            self._cut = state.st_size > _MOST_BYTES
            if self._cut:
                file.seek(state.st_size - _MOST_BYTES)
                file.readline()  # the rest of a line
            lines = file.read(_MOST_BYTES).decode("utf-8", "replace").splitlines()
        self._rows = [(number, row_of(line)) for number, line in enumerate(lines, 1)
                      if line and not line.startswith("adapter,")]
        self._read = (state.st_size, state.st_mtime_ns)


class LiveLog(Topic):
    """The rack's accesses as they are made; it is logged only while somebody watches."""

    def __init__(self, rack: Rack) -> None:
        super().__init__(keep=_KEPT)
        self._rack = rack
        self._fresh: Deque[str] = collections.deque(maxlen=_KEPT)
        self._count = 0
        self._task: Optional[asyncio.Task[None]] = None

    def begin(self) -> None:
        self._rack.log_to(self._fresh.append)
        self._task = asyncio.create_task(self._take())

    def end(self) -> None:
        self._rack.log_to(None)
        if self._task is not None:
            self._task.cancel()

    async def _take(self) -> None:
        while True:
            self.put(dict(self._lines()))
            await asyncio.sleep(_PAUSE)

    def _lines(self) -> abc.Iterator[Tuple[str, List[str]]]:
        while self._fresh:
            line = self._fresh.popleft()
            if line.startswith("adapter,"):
                continue
            self._count += 1
            yield str(self._count), row_of(line)
