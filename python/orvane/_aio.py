"""Calls that an asyncio loop waits for: one flight for each loop, watched by its descriptor."""
from __future__ import annotations

import asyncio
import itertools
import weakref
from collections import abc
from typing import Any, Callable, Dict

from orvane import _orvane


class _LoopFlight:
    """What is under way for one loop. The loop watches the descriptor only while there is something."""

    def __init__(self, loop: asyncio.AbstractEventLoop) -> None:
        self._loop = weakref.ref(loop)
        self._flight = _orvane.Flight()
        self._tokens = itertools.count()
        self._futures: Dict[int, asyncio.Future[Any]] = {}

    def start(self, begin: Callable[[_orvane.Flight, int], None]) -> asyncio.Future[Any]:
        loop = self._loop()
        assert loop is not None  # it runs
        token = next(self._tokens)
        begin(self._flight, token)
        future: asyncio.Future[Any] = loop.create_future()
        if not self._futures:
            loop.add_reader(self._flight.descriptor, self._step)
        self._futures[token] = future
        self._step()
        return future

    def _step(self) -> None:
        for token, value, error in self._flight.step():
            future = self._futures.pop(token)
            if future.done():  # its waiter has given up
                continue
            if error is not None:
                future.set_exception(error)
            else:
                future.set_result(value)
        loop = self._loop()
        if not self._futures and loop is not None:
            loop.remove_reader(self._flight.descriptor)


_flights: abc.MutableMapping[asyncio.AbstractEventLoop, _LoopFlight] = weakref.WeakKeyDictionary()


def start(begin: Callable[[_orvane.Flight, int], None]) -> asyncio.Future[Any]:
    """Begins an operation in the flight of the running loop."""
    loop = asyncio.get_running_loop()
    flight = _flights.get(loop)
    if flight is None:
        flight = _flights[loop] = _LoopFlight(loop)
    return flight.start(begin)
