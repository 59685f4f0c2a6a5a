"""A page with a plot of each value of a data set; it needs nothing but a browser."""
from __future__ import annotations

import html
import itertools
import math
from collections import abc
from typing import TYPE_CHECKING, Any, Dict, List, Tuple

import numpy

from orvane.run.storage import PathLike

if TYPE_CHECKING:
    from orvane.run.dataset import DataSet as _DataSet

__all__ = ["to_html"]

Curve = List[Tuple[float, float]]
_WIDTH, _HEIGHT, _LEFT, _BELOW = 640, 280, 70, 36
_COLOURS = ("#0b6bcb", "#c2410c", "#15803d", "#7e22ce", "#b91c1c", "#0e7490", "#a16207", "#475569")
_SHOWN = 40
_PAGE = """<!doctype html>
<html lang="en"><meta charset="utf-8"><title>{title}</title>
<style>body {{ font: 14px/1.5 sans-serif; max-width: 60em; margin: 2em auto; padding: 0 1em }}
pre {{ background: #f4f4f5; padding: 1em; overflow-x: auto }} svg {{ background: #fff; max-width: 100% }}
text {{ font: 11px sans-serif; fill: #333 }}</style>
<h1>{title}</h1><pre>{summary}</pre>
{plots}
</html>
"""


def to_html(data: _DataSet, path: PathLike, summary: str) -> None:
    """Writes the page. Each numeric value is plotted over the condition that has most values, a curve for each board
    and combination of the others; of arrays, the mean."""
    numeric = {name: values for name, values in data.recipe.conditions.items()
               if all(isinstance(each, (int, float)) for each in values)}
    over = max(numeric, key=lambda name: len(numeric[name]), default="")
    plots = [_plot(name, over, curves) for name, curves in sorted(_curves(data, over).items())]
    page = _PAGE.format(title=html.escape(data.recipe.name), summary=html.escape(summary), plots="\n".join(plots))
    with open(path, "w", encoding="utf-8") as file:
        file.write(page)


def _curves(data: _DataSet, over: str) -> Dict[str, Dict[str, Curve]]:
    """By value and by what stands beside the curve."""
    found: Dict[str, Dict[str, Curve]] = {}
    for point in data.points():
        fixed = (f"{name} {value}" for name, value in point.conditions.items() if name != over)
        others = ", ".join([point.port, *fixed])
        for name, value in point.values.items():
            number = _number(value)
            if number is not None and over:
                found.setdefault(name, {}).setdefault(others, []).append((float(point.conditions[over] or 0), number))
    return {name: {label: sorted(curve) for label, curve in curves.items()} for name, curves in found.items()}


def _number(value: Any) -> float | None:
    array = numpy.asarray(value)
    if array.dtype.kind not in "biuf" or not array.size:
        return None
    mean = float(array.mean())
    return mean if math.isfinite(mean) else None


def _plot(name: str, over: str, curves: abc.Mapping[str, Curve]) -> str:
    xs = [x for curve in curves.values() for x, _ in curve]
    ys = [y for curve in curves.values() for _, y in curve]
    left, right, low, high = *_span(xs), *_span(ys)
    parts = [f'<text x="{_LEFT}" y="{_HEIGHT - 4}">{html.escape(over)}</text>']
    for x in (left, right):
        parts.append(f'<text x="{_across(x, left, right):.1f}" y="{_HEIGHT - _BELOW + 14}" text-anchor="middle">'
                     f"{x:g}</text>")
    for y in (low, high):
        parts.append(f'<text x="{_LEFT - 6}" y="{_up(y, low, high) + 4:.1f}" text-anchor="end">{y:.6g}</text>')
    for colour, (label, curve) in zip(itertools.cycle(_COLOURS), itertools.islice(curves.items(), _SHOWN)):
        path = " ".join(f"{_across(x, left, right):.1f},{_up(y, low, high):.1f}" for x, y in curve)
        parts.append(f'<polyline points="{path}" fill="none" stroke="{colour}" stroke-width="1.5"><title>'
                     f"{html.escape(label)}</title></polyline>")
    more = f" (the first {_SHOWN} of {len(curves)} curves)" if len(curves) > _SHOWN else ""
    return (f"<h2>{html.escape(name)}{more}</h2>"
            f'<svg viewBox="0 0 {_WIDTH} {_HEIGHT}" width="{_WIDTH}" height="{_HEIGHT}">{"".join(parts)}</svg>')


def _span(values: abc.Sequence[float]) -> Tuple[float, float]:
    low, high = min(values), max(values)
    return (low, high) if high > low else (low - 0.5, high + 0.5)


def _across(x: float, left: float, right: float) -> float:
    return _LEFT + (x - left) / (right - left) * (_WIDTH - _LEFT - 20)


def _up(y: float, low: float, high: float) -> float:
    return _HEIGHT - _BELOW - (y - low) / (high - low) * (_HEIGHT - _BELOW - 12)
