"""Data sets of runs, finished or going on."""
from __future__ import annotations

import asyncio
import os
from typing import Any, Dict, List, Optional, Tuple

from orvane.run.page import contents
from orvane.run.storage import DataSetError
from orvane.serve.sessions import Sessions
from orvane.serve.topics import Topic

__all__ = ["RunTopic", "read_run"]

_PAUSE = 1.0


class RunTopic(Topic):
    """A data set's points by their number, and what it is: "summary". It is read anew when its file has changed."""

    def __init__(self, sessions: Sessions, path: str) -> None:
        super().__init__()
        self._sessions = sessions
        self._path = path
        self._task: Optional[asyncio.Task[None]] = None

    def begin(self) -> None:
        self._task = asyncio.create_task(self._follow())

    def end(self) -> None:
        if self._task is not None:
            self._task.cancel()

    async def _follow(self) -> None:
        seen: List[Tuple[int, int]] = []
        while True:
            now = _state(self._path)
            if now != seen:
                self.put(await self._sessions.run(lambda: read_run(self._path)))
                seen = now
            await asyncio.sleep(_PAUSE)


def read_run(path: str) -> Dict[str, Any]:
    """Everything that the page shows of a data set, or why there is nothing."""
    try:
        return contents(path)
    except (DataSetError, OSError) as problem:
        return {"summary": {"name": os.path.basename(path), "text": str(problem), "conditions": [], "missing": 0,
                            "going": False}}


def _state(path: str) -> List[Tuple[int, int]]:
    found = []
    for name in (path, path + "-wal"):
        try:
            told = os.stat(name)
            found.append((told.st_size, told.st_mtime_ns))
        except FileNotFoundError:
            continue
    return found
