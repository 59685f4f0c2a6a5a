"""Carries a plan out: boards side by side, an end to every wait, the safe state whatever happens."""
from __future__ import annotations

import contextlib
import dataclasses
import signal
import threading
import time
from collections import abc
from types import FrameType
from typing import Any, Callable, Dict, List, Optional

from orvane.run.bench import Bench
from orvane.run.job import Policy
from orvane.run.plan import Plan, Task
from orvane.run.progress import Progress
from orvane.run.recorder import Mishap, Recorder, now
from orvane.run.safety import NotSafe
from orvane.run.steps import Step, Steps
from orvane.run.worker import Ending

__all__ = ["Engine", "Summary"]

_LOOK = 0.1
_SIGNALS = (signal.SIGINT, signal.SIGTERM, signal.SIGHUP)


@dataclasses.dataclass(frozen=True)
class Summary:
    """What came of a run."""

    path: str
    done: int
    """points that the data set has"""
    failed: int
    """points of this session that were given up"""
    missing: int
    """points that are to be measured still, those that failed among them"""
    lost: Dict[str, str]
    """boards that were given up, and why"""
    seconds: float

    @property
    def complete(self) -> bool:
        """Whether every point was measured."""
        return self.missing == 0

    def __str__(self) -> str:
        told = f"{self.path}: {self.done} points"
        if self.missing:
            told += f", {self.missing} missing" + (f" ({self.failed} failed)" if self.failed else "")
        return told + "".join(f"\n  {port}: given up: {why}" for port, why in self.lost.items())


class Engine:
    """One session of a run."""

    def __init__(self, plan: Plan, bench: Bench, steps: Steps, recorder: Recorder, policy: Policy, ending: Ending,
                 tell: Callable[[str], None]) -> None:
        self._plan = plan
        self._bench = bench
        self._steps = steps
        self._recorder = recorder
        self._policy = policy
        self._ending = ending
        self._tell = tell
        self._shared: Dict[Step, Dict[str, Any]] = {}
        self._signal = 0
        self._sharing = False

    def go(self) -> Summary:
        """Measures what is missing. Raises NotSafe before anything else that went wrong; KeyboardInterrupt and what is
        wrong with the program or the data set after the boards are safe."""
        start = time.monotonic()
        with self._signals():
            try:
                with Progress(self._plan, self._recorder, self._tell) as progress:
                    for group in self._plan.groups():
                        self._measure(group, progress)
            except BaseException as raised:
                self._ending.stop(raised)
            unsafe = self._end()
        summary = self._summary(time.monotonic() - start)
        problem = self._ending.problem
        self._close(problem, summary)
        if unsafe:
            raise NotSafe(unsafe) from problem
        if problem is not None:
            raise problem
        return summary

    def _measure(self, group: Dict[str, List[Task]], progress: Progress) -> None:
        todo = {port: tasks for port, tasks in group.items() if port not in self._bench.lost}
        if self._is_to_end() or not todo:
            return
        self._share(next(iter(todo.values()))[0])
        self._bench.begin(todo)
        while self._bench.wait(_LOOK):
            if self._is_to_end():
                return
            progress.show()

    def _share(self, task: Task) -> None:
        """What is set for all boards together, while none of them measures."""
        for step in self._steps.shared:
            chosen = step.chosen(task.conditions)
            if self._shared.get(step) != chosen:
                begun, start = now(), time.monotonic()
                self._sharing = True
                try:
                    step.function(**chosen)
                finally:
                    self._sharing = False
                self._recorder.keep_step(step.name, "setup", None, chosen, begun, time.monotonic() - start)
                self._shared[step] = chosen

    def _end(self) -> Dict[str, str]:
        """Ends what is under way, makes boards safe; those that are not, and why."""
        if self._ending.problem is not None and self._steps.safe is not None:
            self._tell(f"ending; the boards are brought to their safe state, for which they have "
                       f"{self._policy.safe_within:g} s")
        self._ending.stopping.set()
        return self._bench.make_safe()

    def _summary(self, seconds: float) -> Summary:
        done = len(self._recorder.done())
        everything = len(self._plan.order) * len(self._plan.tasks)
        return Summary(self._recorder.path, done, self._recorder.failed, everything - done, self._bench.lost, seconds)

    def _close(self, problem: Optional[BaseException], summary: Summary) -> None:
        how = "complete" if summary.complete else "incomplete"
        if isinstance(problem, KeyboardInterrupt):
            how = "interrupted"
        elif problem is not None:
            how = f"{type(problem).__name__}: {problem}"
        with contextlib.suppress(Exception):  # likewise
            if problem is not None and how != "interrupted":
                self._recorder.keep_mishap(Mishap.of("run", 1, problem), None)
            self._recorder.end(how)

    @contextlib.contextmanager
    def _signals(self) -> abc.Iterator[None]:
        """A signal ends the run, and does not keep the boards from their safe state.

        The handler takes no lock, for it may come while its own thread has it.
        """
        if threading.current_thread() is not threading.main_thread():
            yield
            return

        def interrupt(number: int, frame: Optional[FrameType]) -> None:
            self._signal = number
            if self._sharing:
                raise KeyboardInterrupt(signal.Signals(number).name)

        ignored = {each for each in _SIGNALS if signal.getsignal(each) is signal.SIG_IGN}
        former = {each: signal.signal(each, interrupt) for each in _SIGNALS if each not in ignored}
        try:
            yield
        finally:
            for number, handler in former.items():
                signal.signal(number, handler)

    def _is_to_end(self) -> bool:
        if self._signal:
            self._ending.stop(KeyboardInterrupt(signal.Signals(self._signal).name))
        return self._ending.stopping.is_set()
