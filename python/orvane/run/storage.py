"""The file of a data set: opening it, its locks, and what is refused."""
from __future__ import annotations

import fcntl
import os
import pathlib
import sqlite3
from typing import Union

from orvane.run.schema import APPLICATION, TABLES, VERSION

__all__ = ["DataSetError", "Lock", "PathLike", "connect_to_read", "connect_to_write"]

PathLike = Union[str, "os.PathLike[str]"]


class DataSetError(RuntimeError):
    """A data set that cannot be read or gone on with. It is as it was."""


class Lock:
    """Keeps other programs from going on with a data set while this one does. The system ends it with the process."""

    def __init__(self, path: PathLike) -> None:
        self.path = os.fspath(path)
        try:
            self._file = os.open(self.path, os.O_RDWR | os.O_CREAT | os.O_CLOEXEC, 0o666)
        except OSError as problem:
            raise DataSetError(f"{self.path}: {problem.strerror}") from problem
        try:
            fcntl.flock(self._file, fcntl.LOCK_EX | fcntl.LOCK_NB)
        except OSError as problem:
            os.close(self._file)
            raise DataSetError(f"{self.path}: another program is at work on it") from problem

    def release(self) -> None:
        """To be called when the database is closed: the end of a descriptor ends SQLite's own locks, too."""
        os.close(self._file)


def connect_to_write(path: PathLike) -> sqlite3.Connection:
    """A connection that any thread may use, one at a time. What is no data set is refused; an empty file becomes one.

    A commit has reached the disk when it returns.
    """
    text = os.fspath(path)
    try:
        base = sqlite3.connect(text, isolation_level=None, check_same_thread=False, timeout=30)
    except sqlite3.Error as problem:
        raise DataSetError(f"{text}: {problem}") from problem
    try:
        if _is_empty(base):
            _make(base)
        _check(base, text)
        base.execute("PRAGMA journal_mode = WAL")
        base.execute("PRAGMA synchronous = FULL")
        base.execute("PRAGMA foreign_keys = ON")
    except sqlite3.Error as problem:
        base.close()
        raise _refusal(text, problem) from problem
    except BaseException:
        base.close()
        raise
    return base


def connect_to_read(path: PathLike) -> sqlite3.Connection:
    """A connection that changes nothing, also of a data set that a program is at work on."""
    text = os.fspath(path)
    if not os.path.exists(text):
        raise DataSetError(f"{text}: there is no such file")
    place = pathlib.Path(text).absolute().as_uri()
    problem: Exception = DataSetError(text)
    for mode in ("mode=ro", "immutable=1"):  # the latter where the folder cannot be written to
        try:
            base = sqlite3.connect(f"{place}?{mode}", uri=True, isolation_level=None, check_same_thread=False)
        except sqlite3.Error as found:
            problem = found
            continue
        try:
            _check(base, text)
            return base
        except sqlite3.Error as found:
            problem = found
            base.close()
        except BaseException:
            base.close()
            raise
    raise _refusal(text, problem) from problem


def _refusal(path: str, problem: Exception) -> DataSetError:
    if "not a database" in str(problem):
        return DataSetError(f"{path}: not a data set of a run, nor a database at all")
    return DataSetError(f"{path}: {problem}")


def _is_empty(base: sqlite3.Connection) -> bool:
    tables = base.execute("SELECT count(*) FROM sqlite_master").fetchone()[0]
    return tables == 0 and _pragma(base, "application_id") == 0


def _make(base: sqlite3.Connection) -> None:
    """All or nothing: a program that is killed meanwhile leaves an empty database."""
    base.executescript(f"BEGIN; PRAGMA application_id = {APPLICATION}; PRAGMA user_version = {VERSION}; "
                       f"{TABLES} COMMIT;")


def _check(base: sqlite3.Connection, path: str) -> None:
    application, version = _pragma(base, "application_id"), _pragma(base, "user_version")
    if application != APPLICATION:
        raise DataSetError(f"{path}: not a data set of a run, but a database of another program")
    if version != VERSION:
        raise DataSetError(f"{path}: its tables are of version {version}, and this program knows version {VERSION}")


def _pragma(base: sqlite3.Connection, name: str) -> int:
    return int(base.execute(f"PRAGMA {name}").fetchone()[0])
