"""The registers that somebody watches: read once for all, as often as the most impatient viewer asks."""
from __future__ import annotations

import asyncio
import dataclasses
from collections import abc
from typing import Any, Dict, List, Optional, Sequence, Set

import numpy
import numpy.typing

from orvane.batch import Batch, BatchResult
from orvane.codes import OperationState
from orvane.errors import Error
from orvane.limits import Within
from orvane.names import Map
from orvane.registers import Register
from orvane.serve.sessions import Sessions
from orvane.serve.topics import Topic

__all__ = ["PhyPollers", "RegisterTopic"]

_SLOW = 1.0  # seconds between reads on pages and over SMBus, and of a board that does not answer


@dataclasses.dataclass(frozen=True)
class Target:
    """A register, and what is needed to read it."""

    name: str
    register: Optional[Register]
    """None: by its name only, for its page is to be turned"""


class RegisterTopic(Topic):
    """Values of registers of one PHY, by their place in the list; None: not read. "problem" says why."""

    def __init__(self, poller: _PhyPoller, targets: Sequence[Target], map_: Map, interval: float) -> None:
        super().__init__()
        self.map = map_
        self.interval = interval
        self.plain = {index: each.register for index, each in enumerate(targets) if each.register is not None}
        self.named = {index: each.name for index, each in enumerate(targets) if each.register is None}
        self._poller = poller

    def begin(self) -> None:
        self._poller.add(self)

    def end(self) -> None:
        self._poller.remove(self)


class PhyPollers:
    """A poller for each PHY of which registers are watched."""

    def __init__(self, sessions: Sessions) -> None:
        self._sessions = sessions
        self._pollers: Dict[tuple[str, int], _PhyPoller] = {}

    def topic(self, port: str, phy: int, targets: Sequence[Target], map_: Map, interval: float) -> RegisterTopic:
        """What reads these registers, to be watched."""
        poller = self._pollers.setdefault((port, phy), _PhyPoller(self._sessions, port, phy))
        return RegisterTopic(poller, targets, map_, interval)


class _PhyPoller:
    def __init__(self, sessions: Sessions, port: str, phy: int) -> None:
        self._sessions = sessions
        self._place = (port, phy)
        self._topics: Set[RegisterTopic] = set()
        self._tasks: Dict[float, asyncio.Task[None]] = {}
        self._named: Optional[asyncio.Task[None]] = None

    def add(self, topic: RegisterTopic) -> None:
        self._topics.add(topic)
        for interval in {each.interval for each in self._topics}:
            self._restart(interval)  # what a quicker one reads now, the slower ones need not
        if self._named is None and topic.named:
            self._named = asyncio.create_task(self._read_named())

    def remove(self, topic: RegisterTopic) -> None:
        self._topics.discard(topic)
        for interval in list(self._tasks):
            self._restart(interval)
        if self._named is not None and not any(each.named for each in self._topics):
            self._named.cancel()
            self._named = None

    def _restart(self, interval: float) -> None:
        if interval in self._tasks:
            self._tasks.pop(interval).cancel()
        quicker = {register for each in self._topics if each.interval < interval
                   for register in each.plain.values()}
        wanted = {register for each in self._topics if each.interval == interval
                  for register in each.plain.values()} - quicker
        if wanted:
            self._tasks[interval] = asyncio.create_task(self._read_plain(interval, sorted(wanted)))

    async def _read_plain(self, interval: float, registers: List[Register]) -> None:
        """Reads them again and again until nobody wants them so often."""
        loop = asyncio.get_running_loop()
        batch = Batch()
        batch.read_all(registers)
        sharing = _Sharing(registers, self._topics)
        while True:
            due = loop.time() + interval
            try:
                async with self._sessions.use(*self._place) as handle:
                    while not sharing.take(await handle.phy.arun(batch, within=_LIMITS)):
                        await asyncio.sleep(max(0.0, due - loop.time()))
                        due = max(due + interval, loop.time())
            except Error as problem:
                sharing.tell(problem)
            await asyncio.sleep(max(_SLOW, due - loop.time()))

    async def _read_named(self) -> None:
        while True:
            for topic in [each for each in self._topics if each.named]:
                names = topic.named
                try:
                    async with self._sessions.use(*self._place) as handle, handle.lock:
                        handle.phy.use(topic.map)
                        taken = await self._sessions.run(lambda: handle.phy.snapshot(*names.values(), within=5.0))
                    topic.put({str(index): taken.get(name) for index, name in names.items()})
                except Error as problem:
                    topic.put({"problem": str(problem)})
            await asyncio.sleep(_SLOW)


_LIMITS = Within(2.0)


class _Sharing:
    """Gives what a batch read to the topics that want it."""

    def __init__(self, registers: Sequence[Register], topics: abc.Iterable[RegisterTopic]) -> None:
        place = {register: index for index, register in enumerate(registers)}
        self._wanted: List[tuple[RegisterTopic, List[int], Any]] = []
        for topic in topics:
            mine = {index: place[register] for index, register in topic.plain.items() if register in place}
            if mine:
                self._wanted.append((topic, list(mine), numpy.fromiter(mine.values(), dtype=numpy.intp)))
        self._last: Optional[numpy.typing.NDArray[Any]] = None

    def take(self, result: BatchResult) -> bool:
        """Whether the board failed, so that it is to be left in peace for a while."""
        values = numpy.where(result.states == OperationState.DONE, result._values.astype(numpy.int64), -1)
        problem = None if result.failure is None else str(result.failure)
        before = self._last
        for topic, indexes, places in self._wanted:
            mine = values[places]
            news = range(len(indexes)) if before is None else numpy.flatnonzero(mine != before[places]).tolist()
            told: Dict[str, Any] = {str(indexes[each]): int(mine[each]) if mine[each] >= 0 else None for each in news}
            told["problem"] = problem
            topic.put(told)
        self._last = values
        return problem is not None and not (result.states == OperationState.DONE).any()

    def tell(self, problem: Error) -> None:
        """The board could not be asked at all."""
        self._last = None
        for topic, indexes, _ in self._wanted:
            topic.put({"problem": str(problem), **{str(each): None for each in indexes}})
