"""Measures the points of one board, in a thread of its own."""
from __future__ import annotations

import threading
import time
from collections import abc
from typing import Any, Callable, Dict, List, Optional, Tuple, Type

from orvane import _orvane
from orvane.errors import Error, InvalidArgument
from orvane.limits import Cancellation
from orvane.phy import Phy
from orvane.rack import Port
from orvane.run.job import Job
from orvane.run.plan import Task
from orvane.run.point import OnBoard, Point, Stopped
from orvane.run.recorder import BoardIdentity, Keeper, Measured, Mishap, now
from orvane.run.steps import Step
from orvane.run.storage import DataSetError

__all__ = ["Ending", "Restarted", "Worker"]

_FAULTS: Tuple[Type[BaseException], ...] = (NameError, TypeError, AttributeError, ImportError, SyntaxError,
                                            InvalidArgument)
"""Another attempt would end the same way, and so would every other point."""
_RESTARTS = 20


class Restarted(Exception):
    """The board lost its session, and with it what was set up: the point begins again."""


class Ending:
    """Whether a run is to end, and why."""

    def __init__(self) -> None:
        self.stopping = threading.Event()
        self.problem: Optional[BaseException] = None
        self._mutex = threading.Lock()

    def stop(self, problem: Optional[BaseException] = None) -> None:
        """From now on no point begins. The first problem is the run's."""
        with self._mutex:
            self.problem = self.problem or problem
        self.stopping.set()


class Worker:
    """One board of a run. measure() is called by one thread at a time."""

    def __init__(self, port: Port, phy: Phy, job: Job, keeper: Keeper, ending: Ending,
                 tell: Callable[[str], None]) -> None:
        self.on = OnBoard(port, phy, ending.stopping)
        self.cancellation = Cancellation()
        self.lost: Optional[BaseException] = None
        """why the board was given up"""
        self.used = False
        """whether a step may have changed something on it"""
        self.identity: Optional[BoardIdentity] = None
        self.when_lost: Callable[[Worker], None] = lambda worker: None
        self._job = job
        self._steps = job.steps
        self._policy = job.policy
        self._keeper = keeper
        self._ending = ending
        self._tell = tell
        self._set_up: Dict[Step, Dict[str, Any]] = {}
        self._restarted = threading.Event()

    @property
    def name(self) -> str:
        """The port's."""
        return self.on.port.name

    def forget_set_up(self) -> None:
        """A hook of the session: called when the board had lost it. Ends the step that is under way, for what it was
        about is not set up any more."""
        self._restarted.set()
        self.cancellation.cancel()

    def set_up_anew(self) -> None:
        """Someone else may have been at work on the board: the next point is set up whatever was before. Not while
        measure() is under way."""
        self._set_up.clear()

    def measure(self, tasks: abc.Sequence[Task]) -> None:
        """Measures points until they are done, the run is to end, or the board is lost."""
        _orvane.cancel_thread_by(self.cancellation)
        try:
            for task in tasks:
                if self._ending.stopping.is_set() or self.lost is not None:
                    return
                self._measure(task)
                if self.lost is not None and not self._ending.stopping.is_set():
                    _orvane.cancel_thread_by(None)
                    self.when_lost(self)
        except Stopped:
            pass
        except BaseException as problem:  # what cannot be kept, or is wrong with the program: for all boards
            self._ending.stop(problem)
        finally:
            _orvane.cancel_thread_by(None)

    def _measure(self, task: Task) -> None:
        mishaps: List[Mishap] = []
        attempts = failures = restarts = 0
        while True:
            attempts += 1
            begun, start = now(), time.monotonic()
            values, step, problem = self._attempt(task, attempts)
            if problem is not None:
                mishaps.append(Mishap.of(step, attempts, problem))
                if isinstance(problem, Restarted):
                    restarts += 1
                else:
                    failures += 1
                if restarts <= _RESTARTS and failures <= self._policy.retries and self._is_there():
                    continue
            self._keeper.keep(Measured(self.name, task.conditions, task.repeat, begun, now(),
                                       time.monotonic() - start, attempts, values, mishaps, problem is None))
            if problem is not None:
                self._tell(f"{self.name}: {task.key}: {problem}")
                self._look_after(problem)
            return

    def _attempt(self, task: Task, attempt: int) -> Tuple[Dict[str, Any], str, Optional[BaseException]]:
        """Values, the step that it ended in, and what went wrong."""
        self.used = True
        self._begin()
        measure = self._steps.point
        assert measure is not None  # the recipe was checked
        step = measure
        try:
            for step in self._steps.setups:
                self._set_up_by(step, task)
            step = measure
            point = Point(self.on, task.conditions, task.repeat, attempt)
            step.function(point, **step.chosen(task.conditions))
            if self._restarted.is_set():
                raise Restarted("seen at the end of the step")
            return point.values, step.name, None
        except Exception as problem:
            return {}, step.name, self._judged(step, problem)

    def _begin(self) -> None:
        """Calls on the board are possible from now on, unless the run is to end."""
        if self._restarted.is_set():
            self._restarted.clear()
            self._set_up.clear()
        self.cancellation.reset()
        if self._ending.stopping.is_set():  # which is said before the cancellation
            raise Stopped("the run is to end")

    def _judged(self, step: Step, problem: Exception) -> BaseException:
        """What is to be done another time. Raises what ends the run."""
        if self._ending.stopping.is_set():
            raise Stopped("the run is to end") from problem
        if isinstance(problem, DataSetError):
            raise problem
        if self._restarted.is_set():
            return Restarted(f"the board restarted or forgot its session: {problem}")
        if isinstance(problem, _FAULTS):
            self._keeper.keep_mishap(Mishap.of(step.name, 1, problem), self.name)
            raise problem
        self._set_up.pop(step, None)
        return problem

    def _set_up_by(self, step: Step, task: Task) -> None:
        chosen = step.chosen(task.conditions)
        if self._set_up.get(step) == chosen:
            return
        self._set_up.pop(step, None)
        begun, start = now(), time.monotonic()
        step.function(self.on, **chosen)
        self._keeper.keep_step(step.name, "setup", self.name, chosen, begun, time.monotonic() - start)
        self._set_up[step] = chosen

    def _is_there(self) -> bool:
        """Waits for a board that does not answer. False: it is lost."""
        self._begin()
        try:
            self.check_identity(self._policy.patience)
            return True
        except Exception as problem:
            if self._ending.stopping.is_set():
                raise Stopped("the run is to end") from problem
            if self._restarted.is_set():
                return True
            self.lost = problem
            return False

    def _look_after(self, problem: BaseException) -> None:
        """After a point that failed: a board that is gone is asked for nothing more."""
        if self.lost is None and isinstance(problem, Error):
            self._is_there()
        if self.lost is not None:
            self._keeper.keep_mishap(Mishap.of("lost", 1, self.lost), self.name)
            self._tell(f"{self.name}: given up: {self.lost}")

    def check_identity(self, within: float) -> None:
        """Whether the board answers and is still the same. Raises what went wrong."""
        found = self._job.identity(self.on, within)
        known = self.identity
        if known is not None and known.differences(found):
            raise RuntimeError("; ".join(known.differences(found)))
