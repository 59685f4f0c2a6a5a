"""Writes a data set while a run goes on."""
from __future__ import annotations

import contextlib
import dataclasses
import datetime
import json
import sqlite3
import threading
from collections import abc
from typing import Any, Dict, List, Optional, Protocol, Set, Tuple

from orvane.names import Map
from orvane.run import queries, values
from orvane.run.recipe import Recipe, canonical
from orvane.run.storage import DataSetError, Lock, PathLike, connect_to_write

__all__ = ["BoardIdentity", "Keeper", "Measured", "Mishap", "Recorder", "now"]


def now() -> str:
    """The time as data sets have it."""
    return datetime.datetime.now(datetime.timezone.utc).strftime("%Y-%m-%dT%H:%M:%S.%fZ")


@dataclasses.dataclass(frozen=True)
class BoardIdentity:
    """What has to be the same when a run goes on."""

    port: str
    serial: str
    phy: int
    identifier: int
    """of the PHY: registers 1.2 and 1.3"""
    details: str
    """JSON of what the run's identity step told"""

    def differences(self, now: BoardIdentity) -> List[str]:
        """What is not the same in `now`."""
        found = []
        if self.identifier != now.identifier:
            found.append(f"PHY: {self.port} PHY {self.phy} is {self.identifier:#010x} in the data set, "
                         f"{now.identifier:#010x} now")
        if self.details != now.details:
            found.append(f"board: {self.port} is {self.details} in the data set, {now.details} now")
        return found


@dataclasses.dataclass(frozen=True)
class Mishap:
    """Something that went wrong."""

    step: str
    attempt: int
    kind: str
    """class of the exception"""
    text: str
    at: str

    @classmethod
    def of(cls, step: str, attempt: int, problem: BaseException) -> Mishap:
        """It happens now."""
        return cls(step, attempt, type(problem).__name__, str(problem), now())


@dataclasses.dataclass(frozen=True)
class Measured:
    """A point when it was measured, or given up."""

    port: str
    conditions: abc.Mapping[str, Any]
    repeat: int
    begun: str
    ended: str
    seconds: float
    attempts: int
    values: abc.Mapping[str, Any]
    mishaps: List[Mishap]
    done: bool = True


class Keeper(Protocol):
    """Takes what comes of a board's points."""

    def keep(self, point: Measured) -> None:
        """A point."""

    def keep_step(self, name: str, kind: str, port: Optional[str], conditions: abc.Mapping[str, Any], begun: str,
                  seconds: float, problem: Optional[str] = None) -> None:
        """A set-up or safe-state step, of one board or, without a port, of all."""

    def keep_mishap(self, mishap: Mishap, port: Optional[str]) -> None:
        """What went wrong outside of a point."""


class Recorder:
    """A data set that one run writes. Any thread may use it; what a call has written is on the disk when it returns.

    Every call raises DataSetError when that cannot be had, as on a full disk: what was written before is there.
    """

    def __init__(self, path: PathLike) -> None:
        self._lock = Lock(path)
        self._mutex = threading.Lock()  # guards the connection
        self._boards: Dict[str, int] = {}
        self._session: Optional[int] = None
        self._recipe: Optional[int] = None
        try:
            self._base = connect_to_write(path)
        except BaseException:
            self._lock.release()
            raise
        self.path = self._lock.path
        self._closed = False
        self.finished = 0
        """points that were kept by this session"""
        self.failed = 0
        """those of them that failed"""

    def close(self) -> None:
        """Ends the work; what comes later is refused."""
        with self._mutex:
            if not self._closed:
                self._closed = True
                self._base.close()
                self._lock.release()

    @property
    def recipe(self) -> Optional[Recipe]:
        """Of the data set; None when it is new."""
        with self._mutex:
            row = self._base.execute("SELECT json FROM recipe ORDER BY id DESC LIMIT 1").fetchone()
        return None if row is None else Recipe.parse(row[0])

    def boards(self) -> Dict[str, Tuple[BoardIdentity, int]]:
        """The boards of the data set with the keys of their sessions, by port."""
        with self._mutex:
            rows = self._base.execute("SELECT port, serial, phy, identifier, details, key FROM board ORDER BY id")
            return {row[0]: (BoardIdentity(*row[:5]), int(row[5])) for row in rows}

    def done(self) -> Set[Tuple[str, str, int]]:
        """What is measured: port, conditions as canonical(), repeat."""
        with self._mutex:
            return queries.done(self._base)

    def durations(self) -> Dict[str, float]:
        """Mean seconds of set-up steps by name, and of points as ""."""
        with self._mutex:
            return queries.durations(self._base)

    def keep_recipe(self, recipe: Recipe, register_map: Optional[Map] = None) -> None:
        """What is asked for from now on, and the map that it names."""
        with self._writing():
            if recipe.map is not None and register_map is not None:
                self._base.execute("INSERT INTO map VALUES (?, ?) ON CONFLICT DO NOTHING",
                                   (recipe.map["hash"], register_map.to_json()))
            self._base.execute("DELETE FROM recipe WHERE hash = ? AND id NOT IN (SELECT recipe FROM session)",
                               (recipe.hash,))
            self._base.execute("INSERT INTO recipe (hash, json, since) VALUES (?, ?, ?) ON CONFLICT DO NOTHING",
                               (recipe.hash, recipe.json(), now()))
            row = self._base.execute("SELECT id FROM recipe WHERE hash = ?", (recipe.hash,)).fetchone()
            self._recipe = int(row[0])

    def keep_board(self, board: BoardIdentity, key: int) -> None:
        """A board of this run, with the key of its sessions."""
        with self._writing():
            self._base.execute("INSERT INTO board (port, serial, phy, identifier, details, key) "
                               "VALUES (?, ?, ?, ?, ?, ?) ON CONFLICT (port) DO NOTHING",
                               (*dataclasses.astuple(board), key))
            row = self._base.execute("SELECT id FROM board WHERE port = ?", (board.port,)).fetchone()
            self._boards[board.port] = int(row[0])

    def begin(self, environment: abc.Mapping[str, Any]) -> None:
        """A session of work."""
        with self._writing():
            row = self._base.execute("INSERT INTO session (recipe, begun, environment) VALUES (?, ?, ?)",
                                     (self._recipe, now(), json.dumps(environment, sort_keys=True)))
            self._session = row.lastrowid

    def end(self, how: str) -> None:
        """The session's end."""
        with self._writing():
            self._base.execute("UPDATE session SET ended = ?, how = ? WHERE id = ?", (now(), how, self._session))

    def keep(self, point: Measured) -> None:
        """A point. One that is measured stays as it is, whatever comes later; one that failed is replaced."""
        with self._writing():
            row = self._base.execute(
                "INSERT INTO point (board, conditions, repeat, state, begun, ended, seconds, attempts, session) "
                "VALUES (?, ?, ?, ?, ?, ?, ?, ?, ?) ON CONFLICT (board, conditions, repeat) DO UPDATE SET "
                "state = excluded.state, begun = excluded.begun, ended = excluded.ended, seconds = excluded.seconds, "
                "attempts = attempts + excluded.attempts, session = excluded.session WHERE state = 'failed' "
                "RETURNING id",
                (self._boards[point.port], canonical(dict(point.conditions)), point.repeat,
                 "done" if point.done else "failed", point.begun, point.ended, point.seconds, point.attempts,
                 self._session)).fetchall()
            if row:
                self._keep_values(row[0][0], point.values)
                self._keep_mishaps(point.mishaps, self._boards[point.port], row[0][0])
        with self._mutex:
            self.finished += len(row)
            self.failed += bool(row) and not point.done

    def keep_step(self, name: str, kind: str, port: Optional[str], conditions: abc.Mapping[str, Any], begun: str,
                  seconds: float, problem: Optional[str] = None) -> None:
        """A set-up or safe-state step, of one board or, without a port, of all."""
        with self._writing():
            self._base.execute("INSERT INTO step (session, board, name, kind, conditions, begun, seconds, problem) "
                               "VALUES (?, ?, ?, ?, ?, ?, ?, ?)",
                               (self._session, None if port is None else self._boards[port], name, kind,
                                canonical(dict(conditions)), begun, seconds, problem))

    def keep_mishap(self, mishap: Mishap, port: Optional[str]) -> None:
        """What went wrong outside of a point."""
        with self._writing():
            self._keep_mishaps([mishap], None if port is None else self._boards.get(port), None)

    def _keep_values(self, point: int, recorded: abc.Mapping[str, Any]) -> None:
        plain, arrays = values.split(dict(recorded))
        self._base.executemany("INSERT INTO value VALUES (?, ?, ?, ?)",
                               [(point, name, *values.value_row(value)) for name, value in plain])
        self._base.executemany("INSERT INTO array (point, name, dtype, shape, data) VALUES (?, ?, ?, ?, ?)",
                               [(point, name, *values.array_row(array)) for name, array in arrays])

    def _keep_mishaps(self, mishaps: List[Mishap], board: Optional[int], point: Optional[int]) -> None:
        self._base.executemany(
            "INSERT INTO error (session, board, point, step, attempt, at, class, text) VALUES (?, ?, ?, ?, ?, ?, ?, ?)",
            [(self._session, board, point, each.step, each.attempt, each.at, each.kind, each.text) for each in mishaps])

    @contextlib.contextmanager
    def _writing(self) -> abc.Iterator[None]:
        with self._mutex:
            if self._closed:
                raise DataSetError(f"{self.path}: the run has ended")
            try:
                self._base.execute("BEGIN IMMEDIATE")
                yield
                self._base.execute("COMMIT")
            except sqlite3.Error as problem:
                self._roll_back()
                raise DataSetError(f"{self.path}: cannot be written: {problem}. What was written before is there; "
                                   "make room and resume") from problem
            except BaseException:
                self._roll_back()
                raise

    def _roll_back(self) -> None:
        with contextlib.suppress(sqlite3.Error):
            if self._base.in_transaction:
                self._base.execute("ROLLBACK")
