"""How objects of the package show themselves in notebooks: tables, and plots where matplotlib is there."""
from __future__ import annotations

import html
import io
from collections import abc
from typing import Any, Optional

__all__ = ["marked", "plot", "table"]


class marked(str):
    """Text of a cell that is HTML already."""


def table(heads: abc.Sequence[str], rows: abc.Iterable[abc.Sequence[str]]) -> str:
    """A table of HTML; what is not marked() is text."""
    def line(kind: str, cells: abc.Sequence[str]) -> str:
        return "<tr>" + "".join(f"<{kind}>{_escaped(cell)}</{kind}>" for cell in cells) + "</tr>"
    return "<table>" + line("th", heads) + "".join(line("td", row) for row in rows) + "</table>"


def plot(values: Any, across: str, up: str) -> Optional[str]:
    """A curve of numbers as SVG in HTML; None without matplotlib. The same numbers give the same text."""
    try:
        import matplotlib  # type: ignore[import]
        from matplotlib.figure import Figure  # type: ignore[import]
    except ImportError:
        return None
    with matplotlib.rc_context({"svg.hashsalt": "orvane", "svg.fonttype": "none"}):
        figure = Figure(figsize=(8, 2.5), layout="tight")
        axes = figure.subplots()
        axes.plot(values, linewidth=1)
        axes.set(xlabel=across, ylabel=up)
        file = io.StringIO()
        figure.savefig(file, format="svg", metadata={"Creator": None, "Date": None, "Format": None, "Type": None})
    text = file.getvalue()
    return f"<div>{text[text.index('<svg'):].rstrip()}</div>"


def _escaped(cell: str) -> str:
    return cell if isinstance(cell, marked) else html.escape(cell)
