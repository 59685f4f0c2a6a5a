"""Who measures: the boards of this host, or those of many (orvane.run.hosts)."""
from __future__ import annotations

import threading
import time
from collections import abc
from typing import Any, Callable, Dict, List, Optional, Protocol

from orvane.rack import Rack
from orvane.run.job import Job
from orvane.run.plan import Task
from orvane.run.point import OnBoard
from orvane.run.recorder import BoardIdentity, Keeper
from orvane.run.safety import make_safe
from orvane.run.worker import Ending, Worker

__all__ = ["Bench", "LocalBench"]

_GRACE = 3.0


class Bench(Protocol):
    """Boards, wherever they are. Its methods are called by one thread."""

    @property
    def lost(self) -> Dict[str, str]:
        """Boards that were given up, and why."""

    def find(self) -> List[str]:
        """The ports that the job's boards are. Raises RecipeError where a board is there twice."""

    def identify(self, keys: abc.Mapping[str, int], known: abc.Mapping[str, BoardIdentity], keeper: Keeper
                 ) -> Dict[str, BoardIdentity]:
        """Opens sessions, with the key of each port, and tells what the boards are now. Of those that the data set
        knows, some may be left out: they are waited for when they are measured. From now on `keeper` is told what
        comes of their points."""

    def about(self) -> Dict[str, Any]:
        """For the environment that the data set keeps."""

    def at_once(self) -> Optional[int]:
        """How many boards are measured at a time; None: all."""

    def begin(self, group: abc.Mapping[str, List[Task]]) -> None:
        """Has points of boards measured side by side."""

    def wait(self, seconds: float) -> bool:
        """Waits so long at most; whether anything is under way still. Raises what no other point would survive."""

    def make_safe(self) -> Dict[str, str]:
        """Ends what is under way, brings the boards that were used to their safe state, within the policy's seconds
        and a few; those that are not safe, and why."""

    def close(self) -> None:
        """Ends sessions."""


class LocalBench:
    """The boards of this host, each measured in a thread of its own."""

    def __init__(self, job: Job, rack: Optional[Rack], ending: Ending, tell: Callable[[str], None]) -> None:
        self._job = job
        self._own = rack is None
        self._rack = Rack() if rack is None else rack
        self._keeper: Optional[Keeper] = None
        self._ending = ending
        self._tell = tell
        self._workers: Dict[str, Worker] = {}
        self._threads: List[threading.Thread] = []

    @property
    def lost(self) -> Dict[str, str]:
        """Boards that were given up, and why."""
        return {port: str(worker.lost) for port, worker in self._workers.items() if worker.lost is not None}

    def find(self) -> List[str]:
        """As Bench has it."""
        return self._job.find(self._rack)

    def identify(self, keys: abc.Mapping[str, int], known: abc.Mapping[str, BoardIdentity], keeper: Keeper
                 ) -> Dict[str, BoardIdentity]:
        """As Bench has it. Raises orvane.Error for the first board that is not there."""
        self._keeper = keeper
        found = {}
        for name, key in keys.items():
            port = self._job.port(self._rack, name, key)
            worker = Worker(port, self._job.phy_of(port), self._job, keeper, self._ending, self._tell)
            worker.identity = found[name] = self._job.identity(worker.on)
            worker.when_lost = self._make_lost_one_safe
            worker.on.phy.on_reopen(worker.forget_set_up)
            self._workers[name] = worker
        return found

    def about(self) -> Dict[str, Any]:
        """As Bench has it."""
        return {"boards": {name: worker.on.phy.shell.address for name, worker in self._workers.items()}}

    def at_once(self) -> Optional[int]:
        """As Bench has it."""
        return None

    def begin(self, group: abc.Mapping[str, List[Task]]) -> None:
        """As Bench has it."""
        self._threads = [threading.Thread(target=self._workers[port].measure, args=(tasks,), name=port, daemon=True)
                         for port, tasks in group.items()]
        for thread in self._threads:
            thread.start()

    def wait(self, seconds: float) -> bool:
        """As Bench has it."""
        if any(thread.is_alive() for thread in self._threads):
            self._ending.stopping.wait(seconds)
        return any(thread.is_alive() for thread in self._threads)

    def make_safe(self) -> Dict[str, str]:
        """As Bench has it."""
        for worker in self._workers.values():
            worker.cancellation.cancel()
        last = time.monotonic() + _GRACE
        for thread in self._threads:
            thread.join(max(0.0, last - time.monotonic()))
            if thread.is_alive():
                self._tell(f"{thread.name}: its step has not ended; the safe state is made beside it")
        return self._make_safe([worker for worker in self._workers.values() if worker.used])

    def _make_lost_one_safe(self, worker: Worker) -> None:
        """While the others go on: a board may be gone for us and still do what it was told."""
        if self._job.steps.safe is not None and not self._make_safe([worker]):
            worker.used = False

    def _make_safe(self, workers: abc.Iterable[Worker]) -> Dict[str, str]:
        boards: List[OnBoard] = [worker.on for worker in workers]
        if self._keeper is None:  # no board was identified, and none was used
            return {}
        return make_safe(boards, self._job.steps.safe, self._job.policy.safe_within, self._keeper, self._tell)

    def close(self) -> None:
        """As Bench has it. A rack of the caller's stays open."""
        if self._own:
            self._rack.close()
