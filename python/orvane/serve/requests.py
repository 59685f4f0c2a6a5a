"""What a viewer may ask for, each by its name in `do`."""
from __future__ import annotations

import contextlib
import inspect
import os
import time
from collections import abc
from typing import Any, Callable, Dict, List, Optional, Union

from orvane.errors import BoardError, Error, InvalidArgument
from orvane.limits import Within
from orvane.phy import Phy
from orvane.registers import RegisterLike, check_range, clause22
from orvane.serve.board import Board
from orvane.serve.fleet import port_of
from orvane.serve.logs import LiveLog
from orvane.serve.maps import KnownMap
from orvane.serve.runs import RunTopic
from orvane.serve.site import Site
from orvane.serve.topics import Topic, Watcher

__all__ = ["Requests"]

_INTERVALS = (0.1, 0.2, 0.5, 1.0, 2.0, 5.0)
_MOST_NAMES = 4_096
_MOST_SAMPLES = 65_536
_MOST_BOARDS = 500
_READ_ONLY = "this server only shows; 'orvane serve --write' changes things, too"
_WRITES_TO_SCAN = "an SMBus is scanned by writing to what is on it: 'orvane serve --write' does"


class Requests:
    """Answers the requests of one viewer. A ValueError or orvane.Error is an answer, too."""

    def __init__(self, site: Site, viewer: Watcher) -> None:
        self._site = site
        self._viewer = viewer
        self._watched: Dict[int, Topic] = {}
        self._known: Dict[str, Callable[[Dict[str, Any]], Any]] = {
            "hello": self._hello, "watch": self._watch, "unwatch": self._unwatch, "look": self._look,
            "search": self._search, "map": self._map, "describe": self._describe, "read": self._read,
            "write": self._write, "scan": self._scan, "capture": self._capture, "temperature": self._temperature,
            "log": self._log}

    async def answer(self, message: Dict[str, Any]) -> Any:
        """The answer to a request."""
        act = self._known.get(str(message.get("do")))
        if act is None:
            raise ValueError(f"there is no request {message.get('do')}")
        told = act(message)
        return await told if inspect.isawaitable(told) else told

    def end(self) -> None:
        """The viewer has left."""
        self._site.fleet.leave(self._viewer)
        for topic in self._watched.values():
            self._site.hub.unwatch(self._viewer, topic)

    def _hello(self, _: Dict[str, Any]) -> Any:
        wishes = self._site.wishes
        return {"write": wishes.write, "maps": list(self._site.maps), "logs": [each.name for each in self._site.logs],
                "runs": [os.path.basename(each) for each in wishes.runs], "intervals": _INTERVALS}

    def _watch(self, message: Dict[str, Any]) -> Any:
        if len(self._watched) >= 32:
            raise ValueError("a viewer watches 32 things at most")
        make = {"rack": self._watch_rack, "board": self._watch_board, "registers": self._watch_registers,
                "log": self._watch_log, "run": self._watch_run}.get(str(message.get("kind")))
        if make is None:
            raise ValueError(f"there is nothing of the kind {message.get('kind')} to watch")
        topic: Topic = make(message)
        self._watched[topic.number] = topic
        self._viewer.notice(topic)
        return {"topic": topic.number}

    def _watch_rack(self, _: Dict[str, Any]) -> Topic:
        return self._site.hub.watch(self._viewer, "rack", lambda: self._site.fleet)

    def _watch_board(self, message: Dict[str, Any]) -> Topic:
        board = self._board(message)
        return self._site.hub.watch(self._viewer, f"board {board.serial}", lambda: self._site.fleet.page(board))

    def _watch_registers(self, message: Dict[str, Any]) -> Topic:
        port, phy, known = self._place(message), _phy(message), self._map_of(message)
        names = _texts(message, "names", _MOST_NAMES)
        interval = message.get("interval", 1.0)
        if interval not in _INTERVALS:
            raise ValueError(f"an interval is one of {', '.join(map(str, _INTERVALS))} seconds")
        unsafe = [each for each in names if not known.is_safe(each)]
        if unsafe:
            raise ValueError(f"reading {unsafe[0]} changes something: it is read by a click only")
        key = f"registers {port} {phy} {known.map.name} {interval} {' '.join(names)}"
        return self._site.hub.watch(self._viewer, key, lambda: self._site.pollers.topic(
            port, phy, [known.target(each) for each in names], known.map, float(interval)))

    def _watch_log(self, _: Dict[str, Any]) -> Topic:
        return self._site.hub.watch(self._viewer, "log", lambda: LiveLog(self._site.rack))

    def _watch_run(self, message: Dict[str, Any]) -> Topic:
        index = _index(message, "run", self._site.wishes.runs)
        path = self._site.wishes.runs[index]
        return self._site.hub.watch(self._viewer, f"run {index}", lambda: RunTopic(self._site.sessions, path))

    def _unwatch(self, message: Dict[str, Any]) -> Any:
        topic = self._watched.pop(_number(message, "topic", 1 << 53), None)
        if topic is not None:
            self._site.hub.unwatch(self._viewer, topic)

    def _look(self, message: Dict[str, Any]) -> Any:
        self._site.fleet.look(self._viewer, _texts(message, "boards", _MOST_BOARDS))

    async def _search(self, _: Dict[str, Any]) -> Any:
        await self._site.fleet.search()

    def _map(self, message: Dict[str, Any]) -> Any:
        return self._map_of(message).list(_text(message, "words", ""))

    def _describe(self, message: Dict[str, Any]) -> Any:
        return self._map_of(message).describe(_texts(message, "names", 256))

    async def _read(self, message: Dict[str, Any]) -> Any:
        """By a click: also what a read changes, and never twice."""
        known, name = self._map_of(message), _text(message, "name")
        known.is_safe(name)
        return await self._named(message, known, f"read {name}",
                                 lambda phy: phy._place(name).read(within=Within.once(2.0)))

    async def _write(self, message: Dict[str, Any]) -> Any:
        self._check_write()
        known, name, value = self._map_of(message), _text(message, "name"), _value(message)
        return await self._named(message, known, f"write {name} = {value}",
                                 lambda phy: phy._place(name).write(value, within=Within.once(2.0)))

    async def _named(self, message: Dict[str, Any], known: KnownMap, what: str, work: Callable[[Phy], Any]) -> Any:
        port, number = self._place(message), _phy(message)

        async def act() -> Any:
            async with self._site.sessions.use(port, number) as handle, handle.lock:
                handle.phy.use(known.map)
                return await self._site.sessions.run(lambda: work(handle.phy))
        return await self._noted(port_of(self._site.fleet, port), f"{port} PHY {number} {what}", act)

    async def _noted(self, board: Board, what: str, act: Callable[[], abc.Awaitable[Any]]) -> Any:
        """Does something to a board, and keeps that on its page."""
        began, outcome = time.monotonic(), "done"
        try:
            return await act()
        except Error as problem:
            outcome = str(problem)
            raise
        finally:
            board.requested(what, outcome, time.monotonic() - began)
            self._site.fleet.refresh(board)

    async def _scan(self, message: Dict[str, Any]) -> Any:
        """Which PHYs answer, or which devices of an SMBus; by identifiers, which no read changes.

        On an SMBus a device is told first which register is to be read: one that is no PHY may keep that.
        """
        port = self._place(message)
        board, number = port_of(self._site.fleet, port), int(port.rpartition(":")[2])
        if number >= _FIRST_SMBUS and not self._site.wishes.write:
            raise ValueError(_WRITES_TO_SCAN)

        async def act() -> None:
            opened = await self._site.sessions.run(lambda: self._site.rack.open(port, within=2.0))
            board.phys[number] = [found for phy in (_PHYS if number < _FIRST_SMBUS else _DEVICES)
                                  for found in [await self._site.sessions.run(lambda: _identify(opened.phy(phy)))]
                                  if found is not None]
        await self._noted(board, f"{port} scan", act)

    async def _capture(self, message: Dict[str, Any]) -> Any:
        """Starts and stops the converter: a change."""
        self._check_write()
        board = self._board(message)
        count = check_range("samples", _number(message, "count", _MOST_SAMPLES), _MOST_SAMPLES, least=1)

        async def act() -> List[int]:
            async with self._site.sessions.use(board.port, 0) as handle:
                taken = await self._site.sessions.run(lambda: handle.phy.adc.capture(count, within=5.0))
                return [int(each) for each in taken]
        return await self._noted(board, f"{board.port} capture of {count} samples", act)

    async def _temperature(self, message: Dict[str, Any]) -> Any:
        """Sets the temperature to reach."""
        self._check_write()
        board, channel, celsius = self._board(message), _number(message, "channel", 3), _celsius(message)

        async def act() -> None:
            async with self._site.sessions.use(board.port, 0) as handle:
                await self._site.sessions.run(
                    lambda: handle.phy.thermal[channel].set(celsius, flag=1, within=2.0))
                board.set_points[channel] = celsius
        await self._noted(board, f"{board.port} set channel {channel} to {celsius} C", act)

    async def _log(self, message: Dict[str, Any]) -> Any:
        log = self._site.logs[_index(message, "log", self._site.logs)]
        first, words = _number(message, "first", 1 << 31), _text(message, "words", "")
        return await self._site.sessions.run(lambda: log.page(first, words))

    def _check_write(self) -> None:
        if not self._site.wishes.write:
            raise ValueError(_READ_ONLY)

    def _place(self, message: Dict[str, Any]) -> str:
        port = _text(message, "port")
        port_of(self._site.fleet, port)
        return port

    def _board(self, message: Dict[str, Any]) -> Board:
        serial = _text(message, "board")
        board = self._site.fleet.board(serial)
        if board is None:
            raise ValueError(f"there is no board {serial} here")
        return board

    def _map_of(self, message: Dict[str, Any]) -> KnownMap:
        name = _text(message, "map", next(iter(self._site.maps)))
        known = self._site.maps.get(name)
        if known is None:
            raise ValueError(f"there is no map {name} here")
        return known


_FIRST_SMBUS = 10  # of the numbers of ports
_PHYS, _DEVICES = range(32), range(0x03, 0x78)  # those that are no reserved addresses
_IDENTIFIERS: List[List[RegisterLike]] = [[(1, 2), (1, 3)], [clause22(2), clause22(3)]]


def _identify(phy: Phy) -> Optional[List[Any]]:
    """Its number and identifier; None: nobody there. Waits for the board."""
    was_open = phy.is_open
    try:
        for registers in _IDENTIFIERS:
            with contextlib.suppress(BoardError, InvalidArgument):  # nobody there; no Clause 22 over SMBus
                high, low = (int(each) for each in phy.read(registers, within=2.0))
                if (high, low) not in ((0, 0), (0xFFFF, 0xFFFF)):
                    return [phy.id, f"0x{high:04X}{low:04X}"]
        return None
    except Error as problem:
        return [phy.id, str(problem)]
    finally:
        if not was_open and phy.is_open:
            phy.close(within=2.0)


def _phy(message: Dict[str, Any]) -> int:
    return _number(message, "phy", 127)


def _number(message: Dict[str, Any], name: str, most: int) -> int:
    value = message.get(name, 0)
    if not isinstance(value, int) or isinstance(value, bool):
        raise ValueError(f"{name} is a whole number")
    return check_range(name, value, most)


def _value(message: Dict[str, Any]) -> Union[int, str]:
    value = message.get("value")
    if not isinstance(value, (int, str)) or isinstance(value, bool):
        raise ValueError("a value is a whole number, or the name of a choice")
    return value


def _celsius(message: Dict[str, Any]) -> float:
    value = message.get("celsius")
    if isinstance(value, bool) or not isinstance(value, (int, float)):
        raise ValueError("a temperature is a number of degrees Celsius")
    return float(value)


def _index(message: Dict[str, Any], name: str, things: abc.Sequence[Any]) -> int:
    value = _number(message, name, 1 << 31)
    if value >= len(things):
        raise ValueError(f"there is no {name} {value} here")
    return value


def _text(message: Dict[str, Any], name: str, usual: Optional[str] = None) -> str:
    value = message.get(name, usual)
    if not isinstance(value, str) or len(value) > 256:
        raise ValueError(f"{name} is a text of 256 characters at most")
    return value


def _texts(message: Dict[str, Any], name: str, most: int) -> List[str]:
    values = message.get(name)
    if not isinstance(values, list) or len(values) > most or not all(isinstance(each, str) for each in values):
        raise ValueError(f"{name} are {most} texts at most")
    return values
