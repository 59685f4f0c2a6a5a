"""What a run is to do, as text that can be kept and compared: conditions, boards, PHY, map and the steps' source."""
from __future__ import annotations

import ast
import dataclasses
import hashlib
import inspect
import json
import math
import textwrap
from collections import abc
from typing import Any, Callable, Dict, List, Optional, Tuple, Union

import numpy

__all__ = ["Recipe", "RecipeError", "Scalar", "canonical", "conditions_of", "source_of"]

Scalar = Union[int, float, str, bool, None]


class RecipeError(ValueError):
    """A run that cannot be carried out as it was asked for. Nothing was sent."""


@dataclasses.dataclass(frozen=True)
class Recipe:
    """What makes two runs the same one."""

    name: str
    boards: Tuple[str, ...]
    """names or patterns of ports, as they were given"""
    phy: int
    map: Optional[Dict[str, str]]
    """name and hash of the register map; None: that of IEEE 802.3"""
    conditions: Dict[str, Tuple[Scalar, ...]]
    repeat: int
    steps: Dict[str, str]
    """the source of each step, by kind and name: "point measure\""""

    def json(self) -> str:
        """As data sets have it, its conditions in their order."""
        return json.dumps(dataclasses.asdict(self), ensure_ascii=False, allow_nan=False)

    @property
    def hash(self) -> str:
        """SHA-256 of it in one form only, whatever the order of the conditions."""
        return hashlib.sha256(canonical(dataclasses.asdict(self)).encode()).hexdigest()

    @classmethod
    def parse(cls, text: str) -> Recipe:
        """The recipe of json(). Raises RecipeError for fields that are missing or not known."""
        try:
            told = json.loads(text)
        except ValueError as broken:
            raise RecipeError(f"recipe: {broken}") from broken
        known = {field.name for field in dataclasses.fields(cls)}
        for problem, names in (("unknown field", set(told) - known), ("missing field", known - set(told))):
            if names:
                raise RecipeError(f"recipe: {problem} {', '.join(sorted(names))}")
        told["boards"] = tuple(told["boards"])
        told["conditions"] = {name: tuple(values) for name, values in told["conditions"].items()}
        return cls(**told)

    def differences(self, now: Recipe, extending: bool = False) -> List[str]:
        """What is not the same in `now`, a line each. When extending, what only adds points is none."""
        found = [f"{each}: {getattr(self, each)!r} in the data set, {getattr(now, each)!r} now"
                 for each in ("name", "phy") if getattr(self, each) != getattr(now, each)]
        if self.map != now.map:
            found.append(f"map: {_map_text(self.map)} in the data set, {_map_text(now.map)} now")
        if self.boards != now.boards and not extending:
            found.append(f"boards: {', '.join(self.boards)} in the data set, {', '.join(now.boards)} now")
        if now.repeat < self.repeat or now.repeat != self.repeat and not extending:
            found.append(f"repeat: {self.repeat} in the data set, {now.repeat} now")
        found += self._differing_conditions(now, extending)
        for name in sorted({*self.steps, *now.steps}):
            if self.steps.get(name) != now.steps.get(name):
                missing = "" if name in now.steps else " is not there now" if name in self.steps else ""
                added = " is not in the data set" if name not in self.steps else ""
                found.append(f"step: {name}{missing or added or ' is not what it was'}")
        return found

    def _differing_conditions(self, now: Recipe, extending: bool) -> List[str]:
        found = []
        for name in sorted({*self.conditions, *now.conditions}):
            old, new = self.conditions.get(name), now.conditions.get(name)
            if old is None or new is None:
                where = "the data set" if new is None else "this run"
                found.append(f"condition: {name} is in {where} only")
            elif set(old) - set(new) or set(old) != set(new) and not extending:
                found.append(f"condition: {name} is {_values_text(old)} in the data set, {_values_text(new)} now")
        return found


def canonical(what: Any) -> str:
    """JSON in one form only."""
    return json.dumps(what, sort_keys=True, ensure_ascii=False, separators=(", ", ": "), allow_nan=False)


def conditions_of(given: abc.Mapping[str, Any]) -> Dict[str, Tuple[Scalar, ...]]:
    """Ranges of conditions as they are kept. Raises RecipeError for those that make no points."""
    return {name: _range_of(name, values) for name, values in given.items()}


def source_of(step: Callable[..., object]) -> str:
    """A function's source without decorators, comments and layout; of one that has none, its instructions."""
    try:
        tree = ast.parse(textwrap.dedent(inspect.getsource(step)))
    except (OSError, TypeError, SyntaxError):
        code = getattr(step, "__code__", None)
        return repr(step) if code is None else f"{code.co_code.hex()} {code.co_consts!r} {code.co_names!r}"
    lambdas = [each for each in ast.walk(tree) if isinstance(each, ast.Lambda)]
    if getattr(step, "__name__", "") == "<lambda>" and len(lambdas) == 1:
        return ast.unparse(lambdas[0])
    for each in ast.walk(tree):
        if isinstance(each, (ast.FunctionDef, ast.AsyncFunctionDef)):
            each.decorator_list = []
    return ast.unparse(tree)


def _range_of(name: str, given: Any) -> Tuple[Scalar, ...]:
    if isinstance(given, (str, bytes)) or not isinstance(given, abc.Iterable):
        raise RecipeError(f"{name}: {given!r} is no option of a run, and no list of values of a condition")
    values = tuple(_scalar(name, each) for each in given)
    if not values:
        raise RecipeError(f"{name}: no values, so that there is no point to measure")
    twice = [each for index, each in enumerate(values) if each in values[:index]]
    if twice:
        raise RecipeError(f"{name}: {twice[0]!r} is there twice; repeat=2 measures each point twice")
    return values


def _scalar(name: str, value: Any) -> Scalar:
    plain = value.item() if isinstance(value, numpy.generic) else value
    if not (plain is None or isinstance(plain, (bool, int, float, str))):
        raise RecipeError(f"{name}: {value!r} is no number, text, True, False or None")
    if isinstance(plain, float) and not math.isfinite(plain):
        raise RecipeError(f"{name}: {plain} is no condition that could be reached")
    return plain


def _map_text(known: Optional[Dict[str, str]]) -> str:
    return "that of IEEE 802.3" if known is None else f"{known['name']} ({known['hash'][:12]})"


def _values_text(values: Tuple[Scalar, ...]) -> str:
    shown = ", ".join(map(repr, values[:8]))
    return f"[{shown}{', ...' if len(values) > 8 else ''}]"
