"""Where a run took place: versions, host, program; boards and maps as they can be compared."""
from __future__ import annotations

import getpass
import hashlib
import pathlib
import platform
import socket
import sqlite3
import sys
from collections import abc
from typing import Any, Callable, Dict, List, Optional

import numpy

from orvane import _orvane
from orvane.names import Map, Place
from orvane.run.point import OnBoard
from orvane.run.recipe import RecipeError, canonical
from orvane.run.recorder import BoardIdentity

__all__ = ["environment_of", "firmware_names", "identity_of", "map_identity"]

_LARGEST_PROGRAM = 1 << 20


def environment_of(program: Optional[str]) -> Dict[str, Any]:
    """Versions, host, user, and the text of the program that has the run."""
    found: Dict[str, Any] = {
        "python": platform.python_version(), "numpy": numpy.__version__, "sqlite": sqlite3.sqlite_version,
        "system": platform.platform(), "host": socket.gethostname(), "user": _user(), "arguments": sys.argv,
        "orvane": _orvane.version, "module": _module()}
    if program is not None and pathlib.Path(program).is_file():
        path = pathlib.Path(program)
        found["program"] = str(path)
        if path.stat().st_size <= _LARGEST_PROGRAM:
            found["source"] = path.read_text(encoding="utf-8", errors="replace")
    return found


def map_identity(register_map: Map) -> Dict[str, str]:
    """A map's name, and a hash of all that it says."""
    return {"name": register_map.name, "hash": hashlib.sha256(register_map.to_json().encode()).hexdigest()}


def firmware_names(given: abc.Iterable[str], register_map: Map) -> List[str]:
    """The registers and fields of names and patterns. Raises RecipeError for one that the map has not."""
    found = []
    for each in given:
        names = register_map.match(each) if set(each) & set("*?") else [each] if each in register_map else []
        if not names:
            raise RecipeError(f"firmware: there is no {each} in the map {register_map.name}")
        found += names
    return found


def identity_of(on: OnBoard, step: Optional[Callable[..., abc.Mapping[str, Any]]], firmware: abc.Iterable[str],
                within: float) -> BoardIdentity:
    """What has to be the same when the run goes on: PHY, what the names of `firmware` say, what the step tells.
    Raises orvane.Error."""
    high, low = (on.phy.read((1, number), within=within) for number in (2, 3))
    versions = {name: Place(on.phy._core, on.port.name, name).text(within=within) for name in firmware}
    details = {**({"firmware": versions} if versions else {}), **({} if step is None else step(on))}
    return BoardIdentity(on.port.name, on.board, on.phy.id, high << 16 | low, canonical(details))


def _user() -> str:
    try:
        return getpass.getuser()
    except (KeyError, OSError):  # a user without a name
        return ""


def _module() -> str:
    """A hash of the compiled module: which build of the library took part."""
    return hashlib.sha256(pathlib.Path(_orvane.__file__).read_bytes()).hexdigest()[:16]
