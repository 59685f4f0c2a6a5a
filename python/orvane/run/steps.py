"""The steps of a run: plain functions, and the conditions that each one's parameters ask for."""
from __future__ import annotations

import dataclasses
import inspect
from collections import abc
from typing import Any, Callable, Dict, List, Optional, Tuple

from orvane.run.recipe import RecipeError, source_of

__all__ = ["Step", "Steps"]


@dataclasses.dataclass(frozen=True)
class Step:
    """A function of the user's."""

    kind: str
    function: Callable[..., Any]
    needs: Tuple[str, ...] = ()
    """conditions that it is given, by its parameters"""
    seconds: Optional[float] = None
    """how long it takes, as far as the user said"""

    @property
    def name(self) -> str:
        """As it stands in data sets and messages."""
        return str(getattr(self.function, "__name__", type(self.function).__name__))

    def chosen(self, conditions: abc.Mapping[str, Any]) -> Dict[str, Any]:
        """What it is called with."""
        return {name: conditions[name] for name in self.needs}


class Steps:
    """All of a run's."""

    def __init__(self) -> None:
        self.point: Optional[Step] = None
        self.setups: List[Step] = []
        self.shared: List[Step] = []
        self.safe: Optional[Step] = None
        self.identity: Optional[Step] = None

    def add(self, kind: str, function: Callable[..., Any], conditions: abc.Sequence[str],
            seconds: Optional[float] = None) -> None:
        """A step. Raises RecipeError when it cannot be called with what there is."""
        first = () if kind == "shared setup" else ("p",)
        takes_conditions = kind in ("point", "setup", "shared setup")
        needs = _needs(kind, function, len(first), conditions if takes_conditions else ())
        step = Step(kind, function, needs, seconds)
        if kind == "setup":
            self.setups.append(step)
        elif kind == "shared setup":
            self.shared.append(step)
        elif getattr(self, kind.partition(" ")[0]) is not None:
            raise RecipeError(f"{step.name}: the run has a {kind} step already")
        else:
            setattr(self, kind.partition(" ")[0], step)

    def all(self) -> List[Step]:
        """Every step, in the order of their work."""
        single = [each for each in (self.point, self.identity, self.safe) if each is not None]
        return [*self.shared, *self.setups, *single]

    def sources(self) -> Dict[str, str]:
        """The source of each, by kind and name."""
        return {f"{each.kind} {each.name}": source_of(each.function) for each in self.all()}

    def check(self, conditions: abc.Sequence[str]) -> None:
        """Raises RecipeError unless the steps and the conditions fit."""
        if self.point is None:
            raise RecipeError("there is no step to measure: @run.point")
        names = [f"{each.kind} {each.name}" for each in self.all()]
        twice = [each for index, each in enumerate(names) if each in names[:index]]
        if twice:
            raise RecipeError(f"{twice[0]}: there are two steps of that name")
        used = {name for each in self.all() for name in each.needs}
        unused = [name for name in conditions if name not in used]
        if unused:
            raise RecipeError(f"{', '.join(unused)}: no step takes that condition; {self.point.name}() takes "
                              f"{', '.join(self.point.needs) or 'none'}")

    def slow(self) -> List[str]:
        """Conditions that cost more to change than the point's own: those of shared steps, then of set-up steps."""
        return list(dict.fromkeys(name for each in (*self.shared, *self.setups) for name in each.needs))

    def shared_conditions(self) -> List[str]:
        """Conditions that are set for all boards together."""
        return list(dict.fromkeys(name for each in self.shared for name in each.needs))


def _needs(kind: str, function: Callable[..., Any], before: int, conditions: abc.Sequence[str]) -> Tuple[str, ...]:
    name = getattr(function, "__name__", repr(function))
    parameters = list(inspect.signature(function).parameters.values())
    plain = [each for each in parameters if each.kind in (each.POSITIONAL_ONLY, each.POSITIONAL_OR_KEYWORD)]
    if len(plain) < before:
        raise RecipeError(f"{name}(): a {kind} step takes the board as its first argument")
    if any(each.kind is each.VAR_KEYWORD for each in parameters):
        return tuple(conditions)
    taken = [each for each in parameters[before:] if each.kind in (each.POSITIONAL_OR_KEYWORD, each.KEYWORD_ONLY)]
    for each in taken:
        if each.name not in conditions and each.default is each.empty:
            known = ", ".join(conditions) or "none"
            raise RecipeError(f"{name}(): {each.name} is no condition of the run; its conditions: {known}")
    return tuple(each.name for each in taken if each.name in conditions)
