"""A run on many hosts: points go to the workers of Dask distributed that reach their boards."""
from __future__ import annotations

import asyncio
import contextlib
import secrets
import threading
import time
from collections import abc
from typing import Any, Callable, Dict, List, Optional, Set, Tuple

from orvane import _orvane
from orvane.run.cluster import ANSWER, CONNECT, Cluster
from orvane.run.host import (Host, Seen, beat_there, identify_there, look_there, make_safe_there, measure_there,
                             resource_of)
from orvane.run.job import Job
from orvane.run.notes import Outcome
from orvane.run.plan import Task
from orvane.run.recipe import RecipeError
from orvane.run.recorder import BoardIdentity, Keeper, Measured, Mishap, now
from orvane.run.worker import Ending

__all__ = ["HostsBench"]

SILENCE = 20.0
"""seconds after which a host that hears nothing of the run makes its boards safe"""
_BEAT = 1.0


class _Going:
    """A point that was sent to the workers."""

    def __init__(self, task: Task, future: Any, able: Set[str]) -> None:
        self.task = task
        self.future = future
        self.able = able
        """processes that may measure it: Dask does not give it to one that announces the board later"""


class HostsBench:
    """The boards that a scheduler's workers reach; see Bench for its members.

    A board has one point under way at a time, which is kept before the next one is sent. What a worker that died was
    about is measured again by another that reaches the board, or when one does; a board that nobody reaches for the
    policy's patience is given up.
    """

    def __init__(self, job: Job, dask: Any, name: str, ending: Ending, tell: Callable[[str], None]) -> None:
        self._job = job
        self._name = f"orvane run {name} {secrets.token_hex(4)}"
        self._ending = ending
        self._tell = tell
        self._keeper: Optional[Keeper] = None
        self._seen: Dict[str, Seen] = {}
        self._keys: Dict[str, int] = {}
        self._identities: Dict[str, BoardIdentity] = {}
        self._todo: Dict[str, List[Task]] = {}
        self._going: Dict[str, _Going] = {}
        self._holders: Dict[str, Tuple[str, str]] = {}  # process and worker of each board's last point
        self._used: Set[str] = set()
        self._lost: Dict[str, str] = {}
        self._missed: Dict[str, float] = {}  # since when nobody reaches a port
        self._sent = 0
        self._looked = 0.0
        self._news = threading.Event()
        self._unreached: List[str] = []
        self._cluster = Cluster(dask, self._name, Host(job.packed(), SILENCE))
        self._cluster.keep_telling(beat_there, lambda: self._unreached, _BEAT)

    @property
    def lost(self) -> Dict[str, str]:
        """Boards that were given up, and why."""
        return self._lost

    def find(self) -> List[str]:
        """As Bench has it. Raises RecipeError, too, when there is no worker, or one of another version."""
        workers = self._cluster.look()
        if not workers:
            raise RecipeError(f"no worker is connected to {self._cluster.address}")
        for worker, seen in self._cluster.ask(look_there, {each: () for each in workers}, ANSWER).items():
            problem = str(seen) if isinstance(seen, BaseException) else seen.problem
            if problem is None and seen.about["orvane"] != _orvane.version:
                problem = f"it has version {seen.about['orvane']}, not {_orvane.version}"
            if problem is not None:
                raise RecipeError(f"worker {worker}: {problem}")
            self._seen[worker] = seen
        self._cluster.look()
        return sorted({*self._addresses(), *self._job.named()})

    def _addresses(self) -> Dict[str, str]:
        """Where boards are. Raises RecipeError for one that is at two places."""
        found: Dict[str, Tuple[str, str]] = {}
        for seen in self._seen.values():
            for port, address in seen.boards.items():
                there, host = found.setdefault(port, (address, seen.about["host"]))
                if there != address:
                    raise RecipeError(f"boards: there are several {port.partition(':')[0]}, at {there} of {host} and "
                                      f"{address} of {seen.about['host']}")
        return {port: address for port, (address, _) in found.items()}

    def identify(self, keys: abc.Mapping[str, int], known: abc.Mapping[str, BoardIdentity], keeper: Keeper
                 ) -> Dict[str, BoardIdentity]:
        """As Bench has it. Raises RecipeError for boards that the data set does not know and that cannot be opened."""
        if not self._seen:
            self.find()
        self._keeper = keeper
        self._keys = dict(keys)
        asked: Dict[str, Dict[str, int]] = {}
        for port, key in keys.items():
            if port in self._cluster.reached:
                asked.setdefault(min(self._cluster.reached[port]), {})[port] = key
        answers = self._cluster.ask(identify_there, {worker: (ports,) for worker, ports in asked.items()}, ANSWER)
        found = {}
        for worker, ports in asked.items():
            answer = answers[worker]
            found.update({port: answer if isinstance(answer, BaseException) else answer[port] for port in ports})
        for port in keys:
            problem = found.get(port, "no worker reaches it")
            if port not in known and not isinstance(problem, BoardIdentity):
                raise RecipeError(f"boards: {port}: {problem}")
        identities = {port: each for port, each in found.items() if isinstance(each, BoardIdentity)}
        self._identities = {**identities, **known}
        return identities

    def about(self) -> Dict[str, Any]:
        """As Bench has it."""
        return {"boards": self._addresses(), "workers": {worker: seen.about for worker, seen in self._seen.items()}}

    def at_once(self) -> Optional[int]:
        """As Bench has it: a worker measures as many boards at a time as it has threads."""
        workers = self._cluster.look()
        able: Set[str] = set().union(*self._cluster.reached.values())
        return sum(worker["nthreads"] for address, worker in workers.items() if address in able) or None

    def begin(self, group: abc.Mapping[str, List[Task]]) -> None:
        """As Bench has it."""
        self._todo = {port: list(reversed(tasks)) for port, tasks in group.items()}
        self._cluster.look()
        for port in self._todo:
            self._send(port)

    def _send(self, port: str) -> None:
        """Sends the board's next point to a worker that reaches it; if there is none, that is tried again later."""
        tasks, workers = self._todo[port], self._cluster.reached.get(port, set())
        if not tasks:
            del self._todo[port]
            return
        if not workers or self._ending.stopping.is_set():
            return
        process, worker = self._holders.get(port, ("", ""))
        pinned = worker if len(workers) > 1 and worker in workers else None  # what is set up stays so
        self._sent += 1
        self._used.add(port)
        what = (port, self._keys[port], self._identities[port], tasks[-1], process)
        future = self._cluster.client.submit(
            measure_there, self._name, *what, key=f"{self._name} {port} {self._sent}",
            resources={resource_of(port): 1}, workers=pinned, pure=False)
        able = self._cluster.processes(workers if pinned is None else [pinned])
        self._going[port] = _Going(tasks[-1], future, able)
        future.add_done_callback(lambda _: self._news.set())

    def wait(self, seconds: float) -> bool:
        """As Bench has it."""
        if self._todo:
            self._news.wait(seconds)
            self._news.clear()
            self._take_what_is_done()
            if time.monotonic() - self._looked > _BEAT:
                self._look_after()
                self._looked = time.monotonic()
        return bool(self._todo)

    def _take_what_is_done(self) -> None:
        done = {port: going for port, going in self._going.items() if going.future.done()}
        finished = [going.future for going in done.values() if going.future.status == "finished"]
        for outcome in self._cluster.results(finished):
            del self._going[outcome.port]
            self._take(outcome)
        for port, going in done.items():
            if going.future.status == "error":
                del self._going[port]
                self._take_failure(port, going)
            elif going.future.status != "finished":  # the scheduler has forgotten it: it is sent again
                self._going.pop(port, None)

    def _take(self, outcome: Outcome) -> None:
        assert self._keeper is not None
        outcome.notes.pass_on(self._keeper, self._tell)
        port = outcome.port
        if not outcome.used:
            self._used.discard(port)
        if outcome.fault is not None:
            raise outcome.fault
        if outcome.lost is not None:
            self._give_up(port, outcome.lost)
            return
        self._holders[port] = outcome.process, outcome.worker
        if not outcome.stopped:
            self._todo[port].pop()
        self._send(port)

    def _take_failure(self, port: str, going: _Going) -> None:
        """The workers that measured it died again and again, or have not our plugin."""
        assert self._keeper is not None
        problem, task, at = going.future.exception(timeout=CONNECT), going.task, now()
        self._keeper.keep(Measured(port, task.conditions, task.repeat, at, at, 0.0, 1, {},
                                   [Mishap.of("point", 1, problem)], False))
        self._tell(f"{port}: {task.key}: {problem}")
        self._todo[port].pop()
        self._send(port)

    def _give_up(self, port: str, why: str) -> None:
        assert self._keeper is not None
        self._lost[port] = why
        del self._todo[port]
        self._keeper.keep_mishap(Mishap.of("lost", 1, RuntimeError(why)), port)

    def _look_after(self) -> None:
        """Sends again what a host cannot measure any more, and gives up what nobody can."""
        self._cluster.look()
        self._unreached = [port for port in self._todo if port not in self._cluster.reached]
        for port in list(self._todo):
            going, reached = self._going.get(port), self._cluster.reached.get(port, set())
            if going is not None and not going.able & self._cluster.processes(reached):
                going.future.cancel()
                del self._going[port]
                going = None
            if reached:
                self._missed.pop(port, None)
                if going is None:
                    self._send(port)
            elif time.monotonic() - self._missed.setdefault(port, time.monotonic()) > self._job.policy.patience:
                self._give_up(port, "no worker reaches it")
                self._tell(f"{port}: given up: no worker reaches it")

    def make_safe(self) -> Dict[str, str]:
        """As Bench has it."""
        for going in self._going.values():
            going.future.cancel()
        waiting = {port: "no worker reaches it" for port in self._used} if self._job.steps.safe is not None else {}
        unsafe: Dict[str, str] = {}
        tried: Set[str] = set()
        while waiting:
            try:
                asked = self._hosts_of(waiting, tried)
            except (asyncio.TimeoutError, OSError):
                waiting = dict.fromkeys(waiting, "the scheduler does not answer")
                break
            if not asked:
                break
            tried.update(asked)
            answers = self._cluster.ask(make_safe_there, {worker: (ports,) for worker, ports in asked.items()},
                                        self._job.policy.safe_within + CONNECT)
            for worker, ports in asked.items():
                if isinstance(answers[worker], BaseException):
                    waiting.update((port, str(answers[worker])) for port in ports)
                    continue
                notes, problems = answers[worker]
                assert self._keeper is not None
                notes.pass_on(self._keeper, self._tell)
                for port in ports:
                    del waiting[port]
                unsafe.update(problems)
        for port, why in waiting.items():
            self._tell(f"NOT IN A SAFE STATE: {port}: {why}")
            with contextlib.suppress(Exception):  # a full disk has been told of; safety does not depend on it
                self._keep_unsafe(port, why)
        return {**unsafe, **waiting}

    def _keep_unsafe(self, port: str, why: str) -> None:
        assert self._keeper is not None and self._job.steps.safe is not None
        self._keeper.keep_step(self._job.steps.safe.name, "safe", port, {}, now(), 0.0, why)

    def _hosts_of(self, ports: abc.Iterable[str], tried: Set[str]) -> Dict[str, Dict[str, int]]:
        """Who may make these boards safe: who measured them last, else who reaches them, each asked once."""
        self._cluster.look()
        found: Dict[str, Dict[str, int]] = {}
        for port in ports:
            able = self._cluster.reached.get(port, set()) - tried
            if able:
                last = self._holders.get(port, ("", ""))[1]
                found.setdefault(last if last in able else min(able), {})[port] = self._keys[port]
        return found

    def close(self) -> None:
        """As Bench has it."""
        self._cluster.close(self._job.policy.safe_within + CONNECT)
