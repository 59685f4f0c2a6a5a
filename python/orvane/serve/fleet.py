"""The boards of the rack: found by searches, asked while somebody looks at them."""
from __future__ import annotations

import asyncio
import contextlib
import fnmatch
import time
from collections import abc
from typing import Any, Dict, Optional, Set

from orvane.errors import Error
from orvane.events import Event
from orvane.metrics import EventCounts
from orvane.rack import Discovery
from orvane.serve.board import Answers, Board, BoardTopic
from orvane.serve.sessions import Sessions
from orvane.serve.topics import Topic, Watcher

__all__ = ["Fleet"]

_SEARCH_EVERY = 30.0
_ASK_EVERY = 1.0
_MOST_BOARDS = 10_000
_MOST_EVENTS = 10_000  # that wait for the event loop
_CHANNELS = 4  # of temperature control, on a board's page; the table has the first


class Fleet(Topic):
    """Rows of the rack's table by serial number. Searches go on while somebody watches it; a board is asked while it is
    on somebody's screen."""

    def __init__(self, sessions: Sessions, patterns: abc.Sequence[str], addresses: abc.Sequence[str]) -> None:
        super().__init__()
        self.boards: Dict[str, Board] = {}
        self.counts = EventCounts()
        self.events_dropped = 0
        self._sessions = sessions
        self._patterns = patterns or ["*"]
        self._addresses = addresses
        self._looks: Dict[Watcher, Set[str]] = {}
        self._pages: Dict[str, BoardTopic] = {}
        self._asking: Set[str] = set()
        self._searching: Optional[asyncio.Task[None]] = None
        self._waiting_events = 0
        self._loop = asyncio.get_running_loop()
        self._tasks = [self._loop.create_task(self._ask_those_in_sight())]
        sessions.rack.on_event(self._event_elsewhere)

    def begin(self) -> None:
        self._searching = self._loop.create_task(self._search_on())

    def end(self) -> None:
        if self._searching is not None:
            self._searching.cancel()

    def close(self) -> None:
        """Asks no more."""
        self.end()
        for task in self._tasks:
            task.cancel()
        self._sessions.rack.on_event(None)

    def board(self, serial: str) -> Optional[Board]:
        """A board that was found."""
        return self.boards.get(serial)

    def look(self, watcher: Watcher, serials: abc.Iterable[str]) -> None:
        """From now on these boards are what a watcher has in sight."""
        self._looks[watcher] = {each for each in serials if each in self.boards}

    def leave(self, watcher: Watcher) -> None:
        """It has nothing in sight any more."""
        self._looks.pop(watcher, None)

    def page(self, board: Board) -> BoardTopic:
        """The topic of a board's page."""
        return _Page(self, board)

    def open_page(self, page: BoardTopic) -> None:
        """Somebody has come to it."""
        self._pages[page.board.serial] = page

    def close_page(self, page: BoardTopic) -> None:
        """Nobody is there."""
        self._pages.pop(page.board.serial, None)

    def refresh(self, board: Board) -> None:
        """Shows what is new of a board."""
        self.put({board.serial: board.row()})
        page = self._pages.get(board.serial)
        if page is not None:
            page.refresh()

    async def search(self) -> None:
        """Looks for boards once."""
        rack = self._sessions.rack
        with contextlib.suppress(Error):  # no network now; the next search may find one
            found = await self._sessions.run(lambda: rack.discover(within=1.0))
            self._take(found, all_of_them=False)
            if self._addresses:
                self._take(await self._sessions.run(lambda: rack.ask(*self._addresses)), all_of_them=True)

    def _take(self, found: Discovery, *, all_of_them: bool) -> None:
        news = {}
        for each in found:
            if not all_of_them and not any(fnmatch.fnmatchcase(each.serial, pattern) for pattern in self._patterns):
                continue
            if each.serial not in self.boards and len(self.boards) >= _MOST_BOARDS:
                continue
            board = self.boards.setdefault(each.serial, Board(each.serial))
            board.found(each.address, each.ports)
            news[each.serial] = board.row()
        self.put(news)

    async def _search_on(self) -> None:
        while True:
            await self.search()
            await asyncio.sleep(_SEARCH_EVERY)

    async def _ask_those_in_sight(self) -> None:
        while True:
            in_sight: Set[str] = set().union(*self._looks.values(), self._pages)
            for serial in in_sight - self._asking:
                self._asking.add(serial)
                task = self._loop.create_task(self._ask(self.boards[serial]))
                task.add_done_callback(lambda _, serial=serial: self._asking.discard(serial))  # type: ignore[misc]
            await asyncio.sleep(_ASK_EVERY)

    async def _ask(self, board: Board) -> None:
        page = board.serial in self._pages
        began = time.monotonic()
        try:
            async with self._sessions.use(board.port, 0) as handle:
                answers = await self._sessions.run(
                    lambda: board.ask(handle.phy, _CHANNELS if page else 1, page and not board.services))
        except Error as problem:
            answers = board.failed(problem)
        self._note(board, answers, time.monotonic() - began)
        board.take(answers)
        self.refresh(board)

    @staticmethod
    def _note(board: Board, answers: Answers, seconds: float) -> None:
        if answers.state != "up" and answers.problem != board.problem:
            board.requested("ping", answers.problem, seconds)

    def _event_elsewhere(self, event: Event) -> None:
        """On the rack's own thread."""
        self.counts.take(event)
        if self._waiting_events >= _MOST_EVENTS:
            self.events_dropped += 1
            return
        self._waiting_events += 1
        with contextlib.suppress(RuntimeError):  # the loop has ended
            self._loop.call_soon_threadsafe(self._event, event)

    def _event(self, event: Event) -> None:
        self._waiting_events -= 1
        board = self.boards.get(event.board)
        if board is not None:
            board.happened(event)
            self.refresh(board)


class _Page(BoardTopic):
    def __init__(self, fleet: Fleet, board: Board) -> None:
        super().__init__(board)
        self._fleet = fleet

    def begin(self) -> None:
        self._fleet.open_page(self)

    def end(self) -> None:
        self._fleet.close_page(self)


def port_of(fleet: Fleet, name: Any) -> Board:
    """The board of a port that was found; a ValueError says what is not there."""
    serial, _, number = str(name).rpartition(":")
    board = fleet.board(serial)
    if board is None or not number.isdecimal() or int(number) not in board.ports:
        raise ValueError(f"there is no port {name} here")
    return board
