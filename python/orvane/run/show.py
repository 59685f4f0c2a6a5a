"""A data set in words."""
from __future__ import annotations

from typing import TYPE_CHECKING, List

if TYPE_CHECKING:
    from orvane.run.dataset import DataSet as _DataSet

__all__ = ["text"]

_LISTED = 10


def text(data: _DataSet) -> str:
    """For a person: what is not safe first, then boards, points, what is missing, sessions and errors."""
    points = list(data.points(with_values=False))
    missing, errors = data.missing(), data.errors()
    failed = sum(not each.done for each in points)
    lines = [f"NOT IN A SAFE STATE: {port}: {why}" for port, why in data.not_safe().items()]
    lines.append(f"{data.recipe.name}: {len(points) - failed} points, {len(missing)} missing"
                 f"{f' ({failed} failed)' if failed else ''}, recipe {data.hash[:12]}")
    for name, values in data.recipe.conditions.items():
        lines.append(f"  {name}: {', '.join(map(str, values[:8]))}{', ...' if len(values) > 8 else ''}")
    for board in data.boards():
        done = sum(each.done for each in points if each.port == board.port)
        details = "".join(f", {name} {value}" for name, value in board.details.items())
        lines.append(f"{board.port} PHY {board.phy} {board.identifier:#010x}{details}: {done} points")
    lines += [f"session {each.id}: {each.begun} to {each.ended or '?'}: {each.how or 'killed, or at work'}"
              for each in data.sessions()]
    lines += _first([f"missing: {each.port} {each.key}{f' repeat {each.repeat}' if each.repeat else ''}"
                     for each in missing])
    lines += _first([f"error: {each.at} {each.port or ''} {each.conditions or ''} {each.step}: {each.kind}: {each.text}"
                     for each in reversed(errors)])
    return "\n".join(lines)


def _first(lines: List[str]) -> List[str]:
    return lines[:_LISTED] + ([f"... and {len(lines) - _LISTED} more"] if len(lines) > _LISTED else [])
