"""What both the writer and the reader of a data set ask for."""
from __future__ import annotations

import sqlite3
from typing import Dict, Set, Tuple

__all__ = ["done", "durations"]


def done(base: sqlite3.Connection) -> Set[Tuple[str, str, int]]:
    """What is measured: port, conditions as canonical(), repeat."""
    return set(base.execute("SELECT board.port, point.conditions, point.repeat FROM point "
                            "JOIN board ON board.id = point.board WHERE point.state = 'done'"))


def durations(base: sqlite3.Connection) -> Dict[str, float]:
    """Mean seconds of each set-up step by its name, and of points as ""; without those that there are none of."""
    found = dict(base.execute("SELECT name, avg(seconds) FROM step WHERE kind = 'setup' GROUP BY name").fetchall())
    points = base.execute("SELECT avg(seconds) FROM point WHERE state = 'done'").fetchone()[0]
    if points is not None:
        found[""] = points
    return found
