"""What differs between two data sets."""
from __future__ import annotations

import dataclasses
import math
from collections import abc
from typing import Any, Dict, List, Tuple

import numpy

from orvane.run.dataset import DataSet, RecordedPoint
from orvane.run.plan import Task
from orvane.run.recipe import RecipeError

__all__ = ["Tolerance", "differences", "tolerances_of"]


@dataclasses.dataclass(frozen=True)
class Tolerance:
    """How far two numbers may be apart."""

    absolute: float = 0.0
    relative: float = 0.0
    """of the larger one"""


EXACT = Tolerance()


def tolerances_of(words: abc.Sequence[str]) -> Dict[str, Tolerance]:
    """Of "eye=2" and "temp=1%"."""
    found = {}
    for word in words:
        name, _, number = word.partition("=")
        try:
            limit = float(number.rstrip("%"))
        except ValueError:
            limit = -1.0
        if not limit >= 0:
            raise RecipeError(f"--tolerance {word}: a name and how far its values may differ, as eye=2 or temp=1%")
        found[name] = Tolerance(relative=limit / 100) if number.endswith("%") else Tolerance(absolute=limit)
    return found


def differences(first: DataSet, second: DataSet, tolerances: abc.Mapping[str, Tolerance]) -> List[str]:
    """A line for each; points are held against those of the same port, conditions and repeat."""
    before, after = _points(first), _points(second)
    names = {name for point in (*before.values(), *after.values()) for name in point.values}
    unknown = sorted(set(tolerances) - names)
    if unknown:
        raise RecipeError(f"--tolerance {unknown[0]}: no point has such a value; there are {', '.join(sorted(names))}")
    found = []
    for key in [*before, *(each for each in after if each not in before)]:
        where = f"{key[0]} {key[1]}{f' repeat {key[2]}' if key[2] else ''}"
        if key not in before or key not in after:
            found.append(f"{where}: only in {first.path if key in before else second.path}")
        else:
            found += [f"{where} {line}" for line in _differing(before[key].values, after[key].values, tolerances)]
    return found


def _points(data: DataSet) -> Dict[Tuple[str, str, int], RecordedPoint]:
    return {(point.port, Task(point.conditions, point.repeat).key, point.repeat): point
            for point in data.points() if point.done}


def _differing(before: abc.Mapping[str, Any], after: abc.Mapping[str, Any],
               tolerances: abc.Mapping[str, Tolerance]) -> List[str]:
    found = []
    for name in sorted({*before, *after}):
        if name not in before or name not in after:
            found.append(f"{name}: only in the {'first' if name in before else 'second'}")
        elif not _same(before[name], after[name], tolerances.get(name, EXACT)):
            found.append(f"{name}: {_text(before[name])} -> {_text(after[name])}")
    return found


def _same(before: Any, after: Any, tolerance: Tolerance) -> bool:
    if isinstance(before, numpy.ndarray) or isinstance(after, numpy.ndarray):
        if numpy.shape(before) != numpy.shape(after):
            return False
        pairs = zip(numpy.ravel(before).tolist(), numpy.ravel(after).tolist())
        return all(_same(one, other, tolerance) for one, other in pairs)
    if not all(isinstance(each, (int, float)) for each in (before, after)):
        return bool(before == after)
    if before == after or math.isnan(before) and math.isnan(after):
        return True
    limit = max(tolerance.absolute, tolerance.relative * max(abs(before), abs(after)))
    return bool(abs(before - after) <= limit)


def _text(value: Any) -> str:
    return numpy.array2string(value, threshold=8) if isinstance(value, numpy.ndarray) else repr(value)
