"""Connections that ask for nothing yet: few, and not for long."""
from __future__ import annotations

import asyncio
import contextlib
from collections import abc
from typing import Any, Dict, Optional

from aiohttp import web

__all__ = ["Lobby"]


class Lobby:
    """Bounds connections that have not sent a whole request.

    places   so many wait at most; one more, and the one that has waited longest is closed
    seconds  a request must be complete by then
    """

    def __init__(self, places: int = 128, seconds: float = 10.0) -> None:
        self._places = places
        self._seconds = seconds
        self._waiting: Dict[_Connection, None] = {}  # in the order in which they came
        self._by_handler: Dict[Any, _Connection] = {}

    def __len__(self) -> int:
        return len(self._waiting)

    def protocols(self, server: web.Server) -> abc.Callable[[], asyncio.Protocol]:
        """What a listening socket makes of each connection."""
        return lambda: _Connection(self, server())

    @contextlib.contextmanager
    def inside(self, handler: Any) -> abc.Iterator[None]:
        """A request has come as a whole: its connection waits no longer until it is answered."""
        connection = self._by_handler.get(handler)
        if connection is not None:
            self.remove(connection)
        try:
            yield
        finally:
            if connection is not None and connection.is_open:
                self.add(connection)

    def add(self, connection: _Connection) -> None:
        """From now on it waits."""
        while len(self._waiting) >= self._places:
            oldest = next(iter(self._waiting))
            self.remove(oldest)
            oldest.abort()
        self._waiting[connection] = None
        self._by_handler[connection.handler] = connection
        connection.end_after(self._seconds)

    def remove(self, connection: _Connection) -> None:
        """It does not wait, or is gone."""
        self._waiting.pop(connection, None)
        connection.end_after(None)

    def forget(self, connection: _Connection) -> None:
        """It is closed."""
        self.remove(connection)
        self._by_handler.pop(connection.handler, None)


class _Connection(asyncio.Protocol):
    """Hands everything on to aiohttp's protocol."""

    def __init__(self, lobby: Lobby, handler: Any) -> None:
        self.handler = handler
        self.is_open = False
        self._lobby = lobby
        self._transport: Optional[asyncio.Transport] = None
        self._timer: Optional[asyncio.TimerHandle] = None

    def end_after(self, seconds: Optional[float]) -> None:
        """Closes it after so long; None: not at all."""
        if self._timer is not None:
            self._timer.cancel()
        self._timer = None if seconds is None else asyncio.get_running_loop().call_later(seconds, self.abort)

    def abort(self) -> None:
        """Closes it at once."""
        if self._transport is not None:
            self._transport.abort()

    def connection_made(self, transport: asyncio.BaseTransport) -> None:
        assert isinstance(transport, asyncio.Transport)
        self._transport = transport
        self.is_open = True
        self._lobby.add(self)
        self.handler.connection_made(transport)

    def connection_lost(self, problem: Optional[Exception]) -> None:
        self.is_open = False
        self._lobby.forget(self)
        self.handler.connection_lost(problem)

    def data_received(self, data: bytes) -> None:
        self.handler.data_received(data)

    def eof_received(self) -> Optional[bool]:
        told: Optional[bool] = self.handler.eof_received()
        return told

    def pause_writing(self) -> None:
        self.handler.pause_writing()

    def resume_writing(self) -> None:
        self.handler.resume_writing()
