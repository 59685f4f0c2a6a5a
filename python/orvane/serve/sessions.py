"""PHYs in use: one handle for each, whose session is closed when nobody has used it for a while."""
from __future__ import annotations

import asyncio
import concurrent.futures
import contextlib
from collections import abc
from typing import Callable, Dict, Optional, Tuple, TypeVar

from orvane.errors import Error
from orvane.phy import Phy
from orvane.rack import Rack

__all__ = ["Handle", "Sessions"]

Result = TypeVar("Result")
_LINGER = 5.0  # seconds, for a viewer who goes to a page and back
_WORKERS = 16


class Handle:
    """One PHY, for everybody."""

    def __init__(self, phy: Phy) -> None:
        self.phy = phy
        self.lock = asyncio.Lock()
        """held while the map in use matters"""
        self.users = 0
        self.closing: Optional[asyncio.TimerHandle] = None


class Sessions:
    """The handles, and the threads that wait for boards in calls that the event loop cannot wait for itself."""

    def __init__(self, rack: Rack) -> None:
        self.rack = rack
        self._pool = concurrent.futures.ThreadPoolExecutor(_WORKERS, "orvane-serve")
        self._handles: Dict[Tuple[str, int], Handle] = {}

    async def run(self, work: Callable[[], Result]) -> Result:
        """Does something that waits for a board."""
        return await asyncio.get_running_loop().run_in_executor(self._pool, work)

    @contextlib.asynccontextmanager
    async def use(self, port: str, number: int) -> abc.AsyncIterator[Handle]:
        """The handle of a PHY, its session open."""
        handle = self._handles.get((port, number))
        if handle is None:
            opened = await self.run(lambda: self.rack.open(port, within=2.0).phy(number))
            handle = self._handles.setdefault((port, number), Handle(opened))
        phy = handle.phy
        if handle.closing is not None:
            handle.closing.cancel()
            handle.closing = None
        handle.users += 1
        try:
            if not phy.is_open:
                await self.run(lambda: phy.open(within=2.0))
            yield handle
        finally:
            handle.users -= 1
            if not handle.users:
                handle.closing = asyncio.get_running_loop().call_later(_LINGER, self._close, port, number)

    def _close(self, port: str, number: int) -> None:
        handle = self._handles.pop((port, number))
        self._pool.submit(_close_quietly, handle.phy)

    def end(self) -> None:
        """Ends the threads; the rack closes the sessions."""
        self._pool.shutdown(wait=False, cancel_futures=True)


def _close_quietly(phy: Phy) -> None:
    with contextlib.suppress(Error):  # a board that is away has forgotten it by itself
        phy.close(within=2.0)
