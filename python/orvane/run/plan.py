"""The order of points, and how long they take."""
from __future__ import annotations

import dataclasses
import itertools
from collections import abc
from typing import Any, Callable, Dict, List, Optional, Set, Tuple

from orvane.run.recipe import Recipe, Scalar, canonical

__all__ = ["Plan", "Task", "duration_text", "tasks_of"]


_LISTED = 8


@dataclasses.dataclass(frozen=True)
class Task:
    """A point to be measured on one board."""

    conditions: abc.Mapping[str, Scalar]
    repeat: int
    port: str = ""
    key: str = dataclasses.field(init=False)
    """its conditions as the data set has them"""

    def __post_init__(self) -> None:
        object.__setattr__(self, "key", canonical(dict(self.conditions)))


def tasks_of(recipe: Recipe, slow: abc.Sequence[str] = (), priority: Optional[Callable[..., Any]] = None) -> List[Task]:
    """Every point of a board: the conditions of `slow` change least, repeats most. Points for which
    priority(**conditions) is larger come first."""
    order = [*(name for name in slow), *(name for name in recipe.conditions if name not in slow)]
    ranges = [recipe.conditions[name] for name in order]
    tasks = [Task(dict(zip(order, values)), repeat)
             for values in itertools.product(*ranges) for repeat in range(recipe.repeat)]
    if priority is not None:
        rank = priority
        tasks.sort(key=lambda task: -float(rank(**task.conditions)))
    return tasks


@dataclasses.dataclass
class Plan:
    """What is to be measured, and how long that may take."""

    recipe: Recipe
    boards: abc.Sequence[str]
    order: abc.Sequence[Task]
    """every point of a board"""
    tasks: Dict[str, List[Task]]
    """what is missing, in that order, for each board"""
    done: int
    """points that are there"""
    shared: abc.Sequence[str]
    """conditions that are set for all boards together"""
    setups: abc.Sequence[Tuple[str, abc.Sequence[str]]]
    """set-up steps, shared ones, too, and the conditions that each depends on"""
    seconds: Dict[str, float]
    """how long a step takes, as far as it is known; the point's is ""  """
    at_once: Optional[int] = None
    """how many boards are measured at a time; None: all"""

    @property
    def missing(self) -> int:
        """Points that are to be measured."""
        return sum(map(len, self.tasks.values()))

    def groups(self) -> List[Dict[str, List[Task]]]:
        """What boards may do side by side, in order; between two groups, something changes for all of them."""
        place: Dict[Tuple[str, int], int] = {}
        runs = itertools.groupby(self.order, lambda task: [task.conditions[name] for name in self.shared])
        for index, (_, tasks) in enumerate(runs):
            place.update(((task.key, task.repeat), index) for task in tasks)
        found: Dict[int, Dict[str, List[Task]]] = {}
        for board, missing in self.tasks.items():
            for task in missing:
                found.setdefault(place[task.key, task.repeat], {}).setdefault(board, []).append(task)
        return [found[index] for index in sorted(found)]

    def expected(self) -> Optional[float]:
        """Seconds until the end, boards side by side; None when nothing is known of the point."""
        if not self.missing:
            return 0.0
        if "" not in self.seconds:
            return None
        each = [self.expected_of(tasks) for tasks in self.tasks.values()]
        return max(max(each), sum(each) / (self.at_once or len(each)))

    def expected_of(self, tasks: abc.Sequence[Task]) -> float:
        """Seconds that one board takes for these points and what has to be set up for them."""
        total = len(tasks) * self.seconds.get("", 0.0)
        for name, needs in self.setups:
            total += changes(tasks, needs) * self.seconds.get(name, 0.0)
        return total

    def text(self) -> str:
        """For a person, before it begins."""
        recipe = self.recipe
        more = f", ... ({len(self.boards)})" if len(self.boards) > _LISTED else ""
        boards = ", ".join(self.boards[:_LISTED]) + more
        beside = "side by side" if self.at_once is None else f"{self.at_once} at a time"
        lines = [f"{recipe.name}: {self.missing} points to measure, {self.done} are there",
                 f"  boards      {boards}, PHY {recipe.phy}, {beside}"]
        for name in self.order[0].conditions:
            values = recipe.conditions[name]
            shown = ", ".join(map(str, values[:8])) + (", ..." if len(values) > 8 else "")
            lines.append(f"  {name:<11} {shown}{'  (all boards together)' if name in self.shared else ''}")
        if recipe.repeat > 1:
            lines.append(f"  repeated    {recipe.repeat} times")
        longest: abc.Sequence[Task] = max(self.tasks.values(), key=len, default=[])
        for name, needs in self.setups:
            lines.append(f"  set-up      {name}: {changes(longest, needs)} times{self._each(name)}")
        lines.append(f"  expected    {duration_text(self.expected())}{self._each('')}")
        return "\n".join(lines)

    def _each(self, name: str) -> str:
        return f", {self.seconds[name]:.3g} s each" if name in self.seconds else ""


def changes(tasks: abc.Iterable[Task], needs: abc.Sequence[str]) -> int:
    """How often a step that depends on some conditions has to be done."""
    return sum(1 for _ in itertools.groupby(tasks, lambda task: [task.conditions[name] for name in needs]))


def duration_text(seconds: Optional[float]) -> str:
    """As a person says it."""
    if seconds is None:
        return "not known before the first points"
    if seconds < 90:
        return f"{seconds:.0f} s"
    if seconds < 90 * 60:
        return f"{seconds / 60:.0f} min"
    return f"{seconds / 3600:.1f} h"


def missing_of(boards: abc.Iterable[str], tasks: abc.Sequence[Task], done: Set[Tuple[str, str, int]]
               ) -> Dict[str, List[Task]]:
    """What is missing of each board, in order."""
    return {board: [dataclasses.replace(task, port=board) for task in tasks
                    if (board, task.key, task.repeat) not in done] for board in boards}
