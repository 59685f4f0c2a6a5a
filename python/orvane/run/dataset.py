"""Reads a data set: what it has, what is missing, and its values in other forms."""
from __future__ import annotations

import dataclasses
import json
from collections import abc
from types import TracebackType
from typing import Any, Dict, List, Optional, Set, Tuple, Type

from orvane.names import Map
from orvane.run import export, queries, report, show, values
from orvane.run.plan import Task, tasks_of
from orvane.run.recipe import Recipe, Scalar
from orvane.run.storage import DataSetError, PathLike, connect_to_read

__all__ = ["DataSet", "RecordedBoard", "RecordedError", "RecordedPoint", "RecordedSession", "RecordedStep"]


@dataclasses.dataclass(frozen=True)
class RecordedBoard:
    """A board of a data set."""

    port: str
    serial: str
    phy: int
    identifier: int
    details: Dict[str, Any]


@dataclasses.dataclass(frozen=True)
class RecordedSession:
    """A program that worked on a data set."""

    id: int
    begun: str
    ended: Optional[str]
    """None: it was killed, or is at work"""
    how: Optional[str]
    environment: Dict[str, Any]


@dataclasses.dataclass(frozen=True)
class RecordedPoint:
    """A point of a data set; one that failed has no values."""

    port: str
    conditions: Dict[str, Scalar]
    repeat: int
    done: bool
    begun: str
    ended: str
    seconds: float
    attempts: int
    session: int
    values: Dict[str, Any]
    """numbers, texts and numpy arrays, by name"""


@dataclasses.dataclass(frozen=True)
class RecordedError:
    """Something that went wrong, mended or not."""

    session: int
    port: Optional[str]
    conditions: Optional[Dict[str, Scalar]]
    """of its point; None when it belongs to none"""
    step: str
    attempt: int
    at: str
    kind: str
    """class of the exception"""
    text: str


@dataclasses.dataclass(frozen=True)
class RecordedStep:
    """A set-up or safe-state step."""

    session: int
    port: Optional[str]
    """None: of all boards together"""
    name: str
    kind: str
    conditions: Dict[str, Scalar]
    begun: str
    seconds: float
    problem: Optional[str]


class DataSet:
    """The data set of a run, to be read; also while the run goes on.

    with orvane.DataSet("drive-sweep.orvrun") as data:
        for point in data.points():
            print(point.port, point.conditions, point.values)
        frame = data.to_pandas()
    """

    def __init__(self, path: PathLike) -> None:
        self._base = connect_to_read(path)
        self.path = str(path)
        row = self._base.execute("SELECT json, hash FROM recipe ORDER BY id DESC LIMIT 1").fetchone()
        if row is None:
            self.close()
            raise DataSetError(f"{self.path}: a data set that was not begun")
        self.recipe = Recipe.parse(row[0])
        """what was asked for, last"""
        self.hash: str = row[1]
        """of the recipe"""

    def close(self) -> None:
        """Ends reading."""
        self._base.close()

    def __enter__(self) -> DataSet:
        return self

    def __exit__(self, kind: Optional[Type[BaseException]], raised: Optional[BaseException],
                 trace: Optional[TracebackType]) -> None:
        self.close()

    def __repr__(self) -> str:
        done = sum(point.done for point in self.points(with_values=False))
        return f"<orvane.DataSet {self.recipe.name}: {done} points, {len(self.missing())} missing>"

    def map(self) -> Optional[Map]:
        """The register map of the recipe; None: that of IEEE 802.3."""
        if self.recipe.map is None:
            return None
        row = self._base.execute("SELECT json FROM map WHERE hash = ?", (self.recipe.map["hash"],)).fetchone()
        return Map.parse(row[0], self.recipe.map["name"])

    def boards(self) -> List[RecordedBoard]:
        """Its boards, as they were found."""
        rows = self._base.execute("SELECT port, serial, phy, identifier, details FROM board ORDER BY id")
        return [RecordedBoard(row[0], row[1], row[2], row[3], json.loads(row[4])) for row in rows]

    def sessions(self) -> List[RecordedSession]:
        """The programs that worked on it, in turn."""
        rows = self._base.execute("SELECT id, begun, ended, how, environment FROM session ORDER BY id")
        return [RecordedSession(row[0], row[1], row[2], row[3], json.loads(row[4])) for row in rows]

    def points(self, *, with_values: bool = True) -> abc.Iterator[RecordedPoint]:
        """Its points, by board, in the order of their measurement."""
        rows = self._base.execute(
            "SELECT board.port, conditions, repeat, state = 'done', begun, ended, seconds, attempts, session, point.id "
            "FROM point JOIN board ON board.id = point.board ORDER BY board.id, point.id").fetchall()
        for row in rows:
            kept = self._values_of(row[9]) if with_values else {}
            yield RecordedPoint(row[0], json.loads(row[1]), row[2], bool(row[3]), row[4], row[5], row[6], row[7],
                                row[8], kept)

    def missing(self) -> List[Task]:
        """Points that are to be measured still, in the order of the recipe, each with the board's port."""
        done = queries.done(self._base)
        ports = [board.port for board in self.boards()]
        return [dataclasses.replace(task, port=port) for port in ports for task in tasks_of(self.recipe)
                if (port, task.key, task.repeat) not in done]

    def done(self) -> Set[Tuple[str, str, int]]:
        """What is measured: port, conditions as JSON with sorted names, repeat."""
        return queries.done(self._base)

    def durations(self) -> Dict[str, float]:
        """Mean seconds of set-up steps by their names, and of points as ""."""
        return queries.durations(self._base)

    def errors(self) -> List[RecordedError]:
        """What went wrong, in turn."""
        rows = self._base.execute(
            "SELECT error.session, board.port, point.conditions, step, attempt, at, class, text FROM error "
            "LEFT JOIN board ON board.id = error.board LEFT JOIN point ON point.id = error.point ORDER BY error.id")
        return [RecordedError(row[0], row[1], None if row[2] is None else json.loads(row[2]), row[3], row[4],
                              row[5], row[6], row[7]) for row in rows]

    def steps(self) -> List[RecordedStep]:
        """Set-up and safe-state steps, in turn."""
        rows = self._base.execute(
            "SELECT session, board.port, name, kind, conditions, begun, seconds, problem FROM step "
            "LEFT JOIN board ON board.id = step.board ORDER BY step.id")
        return [RecordedStep(row[0], row[1], row[2], row[3], json.loads(row[4]), row[5], row[6], row[7])
                for row in rows]

    def not_safe(self) -> Dict[str, str]:
        """Boards that were used after their last safe-state step that succeeded, and why."""
        steps = [each for each in self.steps() if each.kind == "safe"]
        last = {each.port: each for each in steps if each.port is not None}
        sessions = self.sessions()
        found = {}
        for board in self.boards():
            step = last.get(board.port)
            if step is not None and step.problem is not None:
                found[board.port] = step.problem
            elif sessions and sessions[-1].ended is None and (step is None or step.session != sessions[-1].id):
                found[board.port] = "the program was killed, or is at work"
        return found

    def to_csv(self, path: PathLike) -> None:
        """Writes every point that was measured: a row each; arrays as JSON."""
        export.to_csv(self, path)

    def to_pandas(self) -> Any:
        """A pandas.DataFrame with a row for each point that was measured."""
        return export.to_pandas(self)

    def to_xarray(self) -> Any:
        """An xarray.Dataset over boards, conditions and repeats; what was not measured is NaN."""
        return export.to_xarray(self)

    def to_hdf5(self, path: PathLike) -> None:
        """Writes an HDF5 file: a data set for each value over boards, conditions and repeats."""
        export.to_hdf5(self, path)

    def to_html(self, path: PathLike) -> None:
        """Writes a page with what text() tells and a plot of each value."""
        report.to_html(self, path, self.text())

    def text(self) -> str:
        """In words: what is not safe first, then points, what is missing, sessions and errors."""
        return show.text(self)

    def _values_of(self, point: int) -> Dict[str, Any]:
        plain = self._base.execute("SELECT name, kind, value FROM value WHERE point = ? ORDER BY name", (point,))
        found = {name: values.value_from_row(kind, value) for name, kind, value in plain}
        arrays = self._base.execute("SELECT name, dtype, shape, data FROM array WHERE point = ? ORDER BY name",
                                    (point,))
        found.update((name, values.array_from_row(*row)) for name, *row in arrays)
        return found
