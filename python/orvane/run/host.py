"""What a worker of Dask distributed does for a run: it measures the boards that its host reaches.

Its methods but setup() and teardown() may be called by any thread.
"""
from __future__ import annotations

import asyncio
import concurrent.futures
import dataclasses
import importlib
import pickle
import platform
import socket
import threading
import time
import uuid
from collections import abc
from typing import Any, Dict, List, Optional, Tuple, Union

from orvane import _orvane
from orvane.rack import Port, Rack
from orvane.run.job import Job
from orvane.run.notes import Notes, Outcome
from orvane.run.plan import Task
from orvane.run.point import OnBoard
from orvane.run.recorder import BoardIdentity, now
from orvane.run.safety import make_safe
from orvane.run.worker import Ending, Worker

__all__ = ["Host", "Seen", "beat_there", "identify_there", "look_there", "make_safe_there", "measure_there",
           "resource_of"]

_GRACE = 3.0
_LOOK_AGAIN = 10.0


def resource_of(port: str) -> str:
    """The resource of Dask that stands for a board: a worker that reaches it announces one."""
    return f"orvane {port}"


@dataclasses.dataclass(frozen=True)
class Seen:
    """What a host has."""

    boards: Dict[str, str]
    """addresses by port"""
    about: Dict[str, Any]
    problem: Optional[str] = None
    """why it cannot take part"""


class _Board:
    """A board that is measured here."""

    def __init__(self, worker: Worker, notes: Notes, ending: Ending) -> None:
        self.worker = worker
        self.notes = notes
        self.ending = ending
        self.turn = threading.Lock()


class Host:
    """A plugin of Dask's workers, one in each process.

    Boards are brought to their safe state when the run asks for that, when the worker ends, and when nothing was heard
    of the run for `silence` seconds.
    """

    def __init__(self, job: bytes, silence: float) -> None:
        self._packed = job
        self._silence = silence

    async def setup(self, worker: Any) -> None:
        """Called by the worker when the run begins, or when it joins later. Looks for boards and announces them."""
        self._dask = worker
        self._job = Job.unpacked(self._packed)
        self._rack = Rack()
        self._process = uuid.uuid4().hex
        self._address = worker.contact_address or worker.address
        self._mutex = threading.Lock()  # guards the next
        self._boards: Dict[str, _Board] = {}
        self._heard = time.monotonic()
        self._closed = threading.Event()
        threading.Thread(target=self._watch, name="orvane run", daemon=True).start()
        self._look_again()

    async def teardown(self, worker: Any) -> None:
        """Called by the worker when the run or the worker ends."""
        self._closed.set()
        await asyncio.to_thread(self._end)

    def _end(self) -> None:
        self.make_safe(self._used())
        self._rack.close()

    def _look_again(self) -> None:
        self._looked = time.monotonic()
        self._looking = asyncio.ensure_future(self._look())

    async def _look(self) -> Seen:
        seen = await asyncio.to_thread(self._see)
        known: Dict[str, float] = self._dask.state.total_resources
        gone = [each for each in known if each.startswith(resource_of("")) and known[each]
                and each[len(resource_of("")):] not in seen.boards]
        wanted = {**{each: 0 for each in gone}, **{resource_of(port): 1 for port in seen.boards}}
        if any(known.get(each) != count for each, count in wanted.items()):
            await self._dask.set_resources(**wanted)
        return seen

    def _see(self) -> Seen:
        about = {"host": socket.gethostname(), "orvane": _orvane.version, "python": platform.python_version()}
        try:
            names = self._job.find(self._rack)
            ports: List[Port] = list(self._rack.open_all(*names)) if names else []
            return Seen({port.name: port.phy(self._job.phy).shell.address for port in ports}, about)
        except Exception as problem:  # which the run tells
            return Seen({}, about, str(problem))

    async def look(self) -> Seen:
        """What is there."""
        return await self._looking

    def beat(self, wanted: abc.Sized) -> None:
        """The run is alive; these boards are reached by nobody, and may have appeared here. On the worker's loop."""
        self._heard = time.monotonic()
        if wanted and self._looking.done() and time.monotonic() - self._looked > _LOOK_AGAIN:
            self._look_again()

    def identify(self, keys: abc.Mapping[str, int]) -> Dict[str, Union[BoardIdentity, str]]:
        """What boards are now, or why that is not known."""
        def identity(port: str) -> Union[BoardIdentity, str]:
            try:
                found = self._board(port, keys[port], None).worker.identity
                assert found is not None
                return found
            except Exception as problem:
                return str(problem) or type(problem).__name__
        with concurrent.futures.ThreadPoolExecutor(32) as together:
            return dict(zip(keys, together.map(identity, keys)))

    def measure(self, port: str, key: int, known: BoardIdentity, task: Task, holder: str) -> Outcome:
        """Measures a point. `holder`: the process that measured the board's last one; another one sets it up anew."""
        try:
            board = self._board(port, key, known)
        except Exception as problem:
            return Outcome(port, self._process, self._address, Notes(), used=True,  # perhaps, by another process
                           lost=str(problem) or type(problem).__name__)
        with board.turn:
            if holder != self._process:
                board.worker.set_up_anew()
            board.worker.measure([task])
            fault, lost = board.ending.problem, board.worker.lost
            if fault is not None or lost is not None:
                self._forget(port, board)
            return Outcome(port, self._process, self._address, board.notes.taken(), board.worker.used,
                           fault is None and board.ending.stopping.is_set(),
                           None if lost is None else str(lost), None if fault is None else _sendable(fault))

    def _board(self, port: str, key: int, known: Optional[BoardIdentity]) -> _Board:
        """The board as it is measured here. Raises orvane.Error, and RuntimeError when it is not what it was."""
        with self._mutex:
            board = self._boards.get(port)
        if board is not None:
            return board
        opened = self._job.port(self._rack, port, key)
        notes, ending = Notes(), Ending()
        worker = Worker(opened, self._job.phy_of(opened), self._job, notes, ending, notes.tell)
        worker.identity = known
        if known is None:
            worker.identity = self._job.identity(worker.on)
        else:
            worker.check_identity(self._job.policy.patience)
        worker.when_lost = self._make_lost_one_safe
        worker.on.phy.on_reopen(worker.forget_set_up)
        with self._mutex:
            return self._boards.setdefault(port, _Board(worker, notes, ending))

    def _forget(self, port: str, board: _Board) -> None:
        with self._mutex:
            if self._boards.get(port) is board and not board.worker.used:
                del self._boards[port]

    def _make_lost_one_safe(self, worker: Worker) -> None:
        notes = self._boards[worker.name].notes
        policy, step = self._job.policy, self._job.steps.safe
        if step is not None and not make_safe([worker.on], step, policy.safe_within, notes, notes.tell):
            worker.used = False

    def make_safe(self, keys: abc.Mapping[str, int]) -> Tuple[Notes, Dict[str, str]]:
        """Ends what is under way on these boards and brings them to their safe state, in a bounded time; also those
        that were measured by another process. What is to be kept, and what is not safe."""
        with self._mutex:
            boards = {port: self._boards.pop(port) for port in keys if port in self._boards}
        for board in boards.values():
            board.ending.stop()
            board.worker.cancellation.cancel()
        last = time.monotonic() + _GRACE
        for board in boards.values():
            if board.turn.acquire(timeout=max(0.0, last - time.monotonic())):
                board.turn.release()
        if self._job.steps.safe is None:
            return Notes(), {}
        within = self._job.policy.safe_within
        ready = {port: board.worker.on for port, board in boards.items()}
        start = time.monotonic()
        opened, unsafe = self._open_within({port: key for port, key in keys.items() if port not in ready}, within / 2)
        notes = Notes()
        for port, why in unsafe.items():
            notes.tell(f"NOT IN A SAFE STATE: {port}: {why}")
            notes.keep_step(self._job.steps.safe.name, "safe", port, {}, now(), within / 2, why)
        unsafe.update(make_safe([*ready.values(), *opened], self._job.steps.safe,
                                within - (time.monotonic() - start), notes, notes.tell))
        return notes, unsafe

    def _open_within(self, keys: abc.Mapping[str, int], within: float) -> Tuple[List[OnBoard], Dict[str, str]]:
        """Boards that nobody here has at hand, and those that cannot be had."""
        def opened(name: str, key: int) -> OnBoard:
            port = self._job.port(self._rack, name, key, within)
            return OnBoard(port, self._job.phy_of(port, within), threading.Event())
        if not keys:
            return [], {}
        together = concurrent.futures.ThreadPoolExecutor(min(64, len(keys)))
        begun = {port: together.submit(opened, port, key) for port, key in keys.items()}
        concurrent.futures.wait(begun.values(), timeout=within)
        together.shutdown(wait=False, cancel_futures=True)
        problems = {port: "it cannot be opened in time" for port, each in begun.items() if not each.done()}
        problems.update((port, str(each.exception())) for port, each in begun.items()
                        if each.done() and each.exception() is not None)
        return [each.result() for port, each in begun.items() if port not in problems], problems

    def _used(self) -> Dict[str, int]:
        with self._mutex:
            return {port: 0 for port, board in self._boards.items() if board.worker.used}

    def _watch(self) -> None:
        """Nobody else brings boards to their safe state when the run was killed or its network is gone."""
        while not self._closed.wait(min(1.0, self._silence / 4)):
            if time.monotonic() - self._heard > self._silence:
                self.make_safe(self._used())


def _host(worker: Any, name: str) -> Host:
    found: Host = worker.plugins[name]
    return found


def _sendable(problem: BaseException) -> BaseException:
    try:
        pickle.loads(pickle.dumps(problem))
        return problem
    except Exception:  # whatever the user's exceptions do when they are copied
        return RuntimeError(f"{type(problem).__name__}: {problem}")


def measure_there(name: str, *what: Any) -> Outcome:
    """A task of Dask: Host.measure() of the run's plugin on the worker that carries it out."""
    return _host(importlib.import_module("distributed").get_worker(), name).measure(*what)


async def look_there(name: str, dask_worker: Any = None) -> Seen:
    """What the host of a worker has."""
    return await _host(dask_worker, name).look()


async def identify_there(name: str, keys: Dict[str, int], dask_worker: Any = None
                         ) -> Dict[str, Union[BoardIdentity, str]]:
    """Host.identify() on a worker."""
    return await asyncio.to_thread(_host(dask_worker, name).identify, keys)


async def beat_there(name: str, wanted: List[str], dask_worker: Any = None) -> None:
    """Host.beat() on a worker."""
    _host(dask_worker, name).beat(wanted)


async def make_safe_there(name: str, keys: Dict[str, int], dask_worker: Any = None) -> Tuple[Notes, Dict[str, str]]:
    """Host.make_safe() on a worker."""
    return await asyncio.to_thread(_host(dask_worker, name).make_safe, keys)
