"""Run: a sweep of conditions over boards."""
from __future__ import annotations

import contextlib
import os
import secrets
import sys
from collections import abc
from typing import Any, Callable, Dict, List, Optional, TypeVar, Union, cast

from orvane.names import Map
from orvane.rack import Rack
from orvane.registers import check_range
from orvane.run.bench import Bench, LocalBench
from orvane.run.engine import Engine, Summary
from orvane.run.environment import environment_of, firmware_names, map_identity
from orvane.run.hosts import HostsBench
from orvane.run.job import Job, Policy
from orvane.run.options import Options, current_options
from orvane.run.plan import Plan, missing_of, tasks_of
from orvane.run.recipe import Recipe, RecipeError, conditions_of
from orvane.run.recorder import Recorder
from orvane.run.steps import Steps
from orvane.run.storage import DataSetError, PathLike
from orvane.run.worker import Ending

__all__ = ["Run"]

Function = TypeVar("Function", bound=Callable[..., Any])


class Run:
    """Measurements at every combination of conditions, on every board, kept in a data set that survives the program.

    run = orvane.Run("drive-sweep", boards="OV*:0", phy=3, temperature=[0, 25, 70], drive=range(8))

    @run.setup
    def heat(p, temperature):           # when a board's temperature is another one
        p.port.thermal[0].target = temperature
        p.port.thermal[0].settled(within=600)

    @run.point
    def measure(p, temperature, drive):
        p.phy.TX.DRIVE = drive
        p.record(eye=p.port.adc.capture(4096).max())

    run.safe_state(lambda p: p.port.thermal.stop())
    run.go()                            # writes drive-sweep.orvrun

    boards     a name or pattern of ports, or several
    phy        of each port
    map        names of registers; those of IEEE 802.3 unless told
    repeat     how often each point is measured
    retries    attempts of a point after the first
    patience   seconds that a board which does not answer is waited for
    safe_within  seconds for the safe state of all boards
    exclusive, shared  of the sessions, as in Rack.open(); a key of its own is kept for those who resume
    firmware   names or patterns of the map that tell the PHY's firmware: kept for each board, and to be the same when
               the run goes on
    priority   a function of the conditions; points for which it is larger are measured first
    rack       one of the caller's; its own unless told

    All else are conditions, each with its values. Those that set-up steps take change least. Steps of different boards
    run side by side, each board's in a thread of its own.
    """

    def __init__(self, name: str, *, boards: Union[str, abc.Sequence[str]], phy: int = 0,
                 map: Union[Map, PathLike, None] = None, repeat: int = 1, retries: int = 2, patience: float = 60.0,
                 safe_within: float = 30.0, exclusive: Union[bool, int] = False, shared: Union[bool, int] = False,
                 firmware: Union[str, abc.Sequence[str]] = (), priority: Optional[Callable[..., Any]] = None,
                 rack: Optional[Rack] = None, **conditions: Any) -> None:
        self.name = name
        self.boards = (boards,) if isinstance(boards, str) else tuple(boards)
        self.phy = check_range("PHY", phy, 127)
        self.map = map if isinstance(map, Map) or map is None else Map.load(map)
        self.conditions = conditions_of(conditions)
        self.repeat = check_range("repeat", repeat, 1_000_000)
        self.policy = Policy(check_range("retries", retries, 1000), patience, safe_within)
        self._sessions = {"exclusive": exclusive, "shared": shared}
        self._priority = priority
        self._firmware = firmware_names([firmware] if isinstance(firmware, str) else firmware,
                                        self.map or Map.ieee8023())
        self._rack = rack
        self.steps = Steps()
        """what the decorators have added"""
        self._program = sys._getframe(1).f_code.co_filename
        if not self.boards or not all(isinstance(each, str) and ":" in each for each in self.boards):
            raise RecipeError(f"boards: {boards!r} is no name of a port, such as OV0001:0, or pattern, such as OV*:0")
        if not self.repeat:
            raise RecipeError("repeat: 0 times is no measurement")
        current_options().runs.append(self)  # which the command line looks for

    def __repr__(self) -> str:
        return f"<orvane.Run {self.name}>"

    def point(self, function: Optional[Function] = None, *, seconds: Optional[float] = None) -> Any:
        """A decorator: the step that measures; def measure(p, temperature, drive). `seconds`: how long it takes."""
        return self._step("point", function, seconds)

    def setup(self, function: Optional[Function] = None, *, seconds: Optional[float] = None) -> Any:
        """A decorator: a step that prepares a board. Its parameters behind the board say which conditions it sets: it
        is called when one of them changes, at the beginning, and when the board has restarted."""
        return self._step("setup", function, seconds)

    def shared_setup(self, function: Optional[Function] = None, *, seconds: Optional[float] = None) -> Any:
        """A decorator: a step for all boards together, such as their chamber's; def chamber(temperature). No board
        measures meanwhile."""
        return self._step("shared setup", function, seconds)

    def safe_state(self, function: Function) -> Function:
        """The step that makes a board safe; def off(p). It runs on every board that was used, however the run ends,
        several times if it fails: it must bear that."""
        self.steps.add("safe state", function, ())
        return function

    def identity(self, function: Function) -> Function:
        """A step that tells what must be the same when the run goes on, such as firmware: returns a dict of numbers and
        texts. It is called before anything is set up."""
        self.steps.add("identity", function, ())
        return function

    def recipe(self) -> Recipe:
        """What this run is. Raises RecipeError when it cannot be carried out."""
        self.steps.check(list(self.conditions))
        return Recipe(self.name, self.boards, self.phy, None if self.map is None else map_identity(self.map),
                      self.conditions, self.repeat, self.steps.sources())

    def plan(self, out: Optional[PathLike] = None) -> Plan:
        """What go() would do; looks for boards unless the data set has them, and opens no session."""
        recipe = self.recipe()
        path = self._path(out)
        if not os.path.exists(path) or os.path.getsize(path) == 0:
            with contextlib.closing(self._bench(Ending(), current_options())) as bench:
                return self._plan(recipe, self._found(bench), set(), {}, bench.at_once())
        from orvane.run.dataset import DataSet
        with DataSet(path) as data:
            return self._plan(recipe, [each.port for each in data.boards()], data.done(), data.durations(), None)

    def go(self, out: Optional[PathLike] = None, *, resume: bool = False, extend: bool = False, dask: Any = None
           ) -> Summary:
        """Measures what is missing in the data set `out`, "NAME.orvrun" unless told.

        resume  go on with a data set that is there: recipe, boards and PHYs have to be the same
        extend  likewise, with conditions, repeats or boards that it has not yet
        dask    address of a scheduler of Dask distributed, or a Client of it: the boards that its workers reach

        Raises NotSafe for boards that could not be made safe, RecipeError and DataSetError before anything was sent to
        a board, KeyboardInterrupt when it was interrupted, and what is wrong with a step. Points that failed are in the
        summary and in the data set.
        """
        options = current_options()
        if options.act is not None:
            found = options.act(self)
        else:
            found = self._measure(options.or_else(out, resume, extend, dask))
        options.done(found)
        return cast(Summary, found)

    def _measure(self, options: Options) -> Summary:
        recipe = self.recipe()
        path = self._path(options.out)
        self._check_free(path, options)
        ending = Ending()
        with contextlib.closing(Recorder(path)) as recorder:
            self._check_same(path, recorder.recipe, recipe, options)
            with contextlib.closing(self._bench(ending, options)) as bench:
                self._begin(bench, recorder, recipe, options)
                plan = self._plan(recipe, list(recorder.boards()), recorder.done(), recorder.durations(),
                                  bench.at_once())
                options.tell(plan.text())
                return Engine(plan, bench, self.steps, recorder, self.policy, ending, options.tell).go()

    def _begin(self, bench: Bench, recorder: Recorder, recipe: Recipe, options: Options) -> None:
        """A session of work on the boards of the data set and, when it is new or extended, those that are found. Raises
        DataSetError for one that is not what it was."""
        known = recorder.boards()
        keys = {name: key for name, (_, key) in known.items()}
        if not known or options.extend:
            new = next(iter(keys.values()), secrets.randbelow(0xFFFE) + 1)
            own = any(each is True for each in self._sessions.values())
            keys = {**keys, **{name: new if own else 0 for name in self._found(bench) if name not in keys}}
        identities = bench.identify(keys, {name: identity for name, (identity, _) in known.items()}, recorder)
        problems = [line for name, (identity, _) in known.items() if name in identities
                    for line in identity.differences(identities[name])]
        if problems:
            raise DataSetError(f"{recorder.path}: not the same run: {'; '.join(problems)}")
        recorder.keep_recipe(recipe, self.map)
        for name, key in keys.items():
            recorder.keep_board(identities[name] if name in identities else known[name][0], key)
        recorder.begin({**environment_of(self._program), **bench.about()})

    def _found(self, bench: Bench) -> List[str]:
        ports = bench.find()
        if not ports:
            raise RecipeError(f"boards: no port that answers matches {', '.join(self.boards)}")
        return ports

    def _job(self) -> Job:
        return Job(self.boards, self.phy, self.map, self._sessions, tuple(self._firmware), self.steps, self.policy)

    def _bench(self, ending: Ending, options: Options) -> Bench:
        if options.dask is not None:
            return HostsBench(self._job(), options.dask, self.name, ending, options.tell)
        return LocalBench(self._job(), self._rack, ending, options.tell)

    def _plan(self, recipe: Recipe, boards: abc.Sequence[str], done: Any, durations: abc.Mapping[str, float],
              at_once: Optional[int]) -> Plan:
        tasks = tasks_of(recipe, self.steps.slow(), self._priority)
        steps = [*self.steps.shared, *self.steps.setups]
        told: Dict[str, float] = {each.name: each.seconds for each in steps if each.seconds is not None}
        if self.steps.point is not None and self.steps.point.seconds is not None:
            told[""] = self.steps.point.seconds
        missing = missing_of(boards, tasks, done)
        there = len(tasks) * len(boards) - sum(map(len, missing.values()))
        return Plan(recipe, boards, tasks, missing, there, self.steps.shared_conditions(),
                    [(each.name, each.needs) for each in steps], {**told, **durations}, at_once)

    def _check_free(self, path: str, options: Options) -> None:
        if os.path.exists(path) and os.path.getsize(path) and not options.resume and not options.extend:
            raise DataSetError(f"{path}: there is such a data set already; resume goes on with it")

    @staticmethod
    def _check_same(path: str, kept: Optional[Recipe], recipe: Recipe, options: Options) -> None:
        found = [] if kept is None else kept.differences(recipe, options.extend)
        if found:
            raise DataSetError(f"{path}: not the same run: {'; '.join(found)}")

    def _path(self, out: Optional[PathLike]) -> str:
        return os.fspath(out or current_options().out or f"{self.name}.orvrun")

    def _step(self, kind: str, function: Optional[Function], seconds: Optional[float]) -> Any:
        def add(given: Function) -> Function:
            self.steps.add(kind, given, list(self.conditions), seconds)
            return given
        return add if function is None else add(function)
