"""What a page shows of a data set, as JSON."""
from __future__ import annotations

import itertools
import json
import math
import sqlite3
import sys
from collections import abc
from typing import Any, Dict, Optional

import numpy

from orvane.run.dataset import DataSet
from orvane.run.storage import DataSetError

__all__ = ["contents", "main"]

_MOST_POINTS = 20_000


def contents(path: str) -> Dict[str, Any]:
    """Its points by their number, and what it is: "summary". An array is shown by its mean.

    Of more than 20,000 points it has the first, and says so in the summary's text.
    """
    with DataSet(path) as data:
        told: Dict[str, Any] = {"summary": {
            "name": data.recipe.name, "text": data.text(), "conditions": list(data.recipe.conditions),
            "missing": len(data.missing()), "going": any(each.ended is None for each in data.sessions())}}
        for index, point in enumerate(itertools.islice(data.points(), _MOST_POINTS)):
            told[str(index)] = [point.port, [_condition(each) for each in point.conditions.values()], point.repeat,
                                point.done, {name: _shown(value) for name, value in point.values.items()}]
        if len(told) > _MOST_POINTS:
            count = sum(1 for _ in data.points(with_values=False))
            if count > _MOST_POINTS:
                told["summary"]["text"] += f"\nonly the first {_MOST_POINTS} of {count} points are shown"
        return told


def main(arguments: Optional[abc.Sequence[str]] = None) -> int:
    """Prints what is in the data set that is named, or why it cannot be read; returns the exit status."""
    [path] = sys.argv[1:] if arguments is None else arguments
    try:
        print(json.dumps(contents(path), separators=(",", ":"), allow_nan=False, default=str))
        return 0
    except (DataSetError, OSError, sqlite3.Error) as problem:
        print(str(problem).removeprefix(f"{path}: "))
        return 1


def _condition(value: Any) -> Any:
    return str(value) if isinstance(value, float) and not math.isfinite(value) else value


def _shown(value: Any) -> Any:
    if isinstance(value, str):
        return value
    array = numpy.asarray(value)
    if array.dtype.kind not in "biuf" or not array.size:
        return str(value)
    mean = float(array.mean())
    return mean if numpy.isfinite(mean) else None


if __name__ == "__main__":
    sys.exit(main())
