"""The exclusive session that an exporter holds on a board while a place is acquired, and the key that goes with it."""
from __future__ import annotations

import json
import os
import pathlib
import secrets
import threading
import time
from typing import Dict, List, Optional

from orvane.errors import Error, Refused
from orvane.rack import Port, Rack

__all__ = ["Keys", "Lock", "Locks"]

_PATIENCE = 2.0  # seconds that opening may take; labgrid's coordinator waits meanwhile
_PAUSE = 2.0     # seconds between two looks at a lock


class Keys:
    """A key for each acquisition, kept in a file: an exporter that comes back finds the locks that it left."""

    def __init__(self, file: pathlib.Path) -> None:
        self._file = file
        try:
            self._given: Dict[str, List[str]] = json.loads(file.read_text(encoding="utf-8"))
        except (FileNotFoundError, ValueError):
            self._given = {}

    def key_for(self, name: str, place: str) -> int:
        """The key of a place's acquisition of the port `name`, 1 to 0xFFFF; a new one unless it has one already."""
        given = self._given.get(name)
        if given is None or given[0] != place:
            given = self._given[name] = [place, f"{secrets.randbelow(0xFFFF) + 1:#06x}"]
            self._save()
        return int(given[1], 16)

    def forget(self, name: str) -> None:
        """The acquisition has ended."""
        if self._given.pop(name, None) is not None:
            self._save()

    def _save(self) -> None:
        self._file.parent.mkdir(parents=True, exist_ok=True)
        beside = self._file.with_suffix(f".{os.getpid()}")
        beside.write_text(json.dumps(self._given), encoding="utf-8")
        beside.chmod(0o600)
        beside.replace(self._file)


class Locks:
    """What the locks of an exporter share: a rack, whose thread keeps their sessions, and the keys."""

    def __init__(self, rack: Rack, keys: Keys) -> None:
        self.rack = rack
        self.keys = keys

    def lock(self, device: str, port: int, phy: int) -> Lock:
        """The lock of a PHY; free."""
        return Lock(self, device, port, phy)


class Lock:
    """Free, held for a place, or in somebody else's hands, as the board says. For one thread."""

    def __init__(self, locks: Locks, device: str, port: int, phy: int) -> None:
        self._locks = locks
        self._device = device
        self._name = f"{device}:{port}"
        self._id = f"{self._name}/{phy}"
        self._phy = phy
        self._port: Optional[Port] = None
        self._next = 0.0
        self.key: Optional[int] = None
        """of the session, while it is held"""
        self.state = "free"
        """in words, for people"""

    @property
    def held(self) -> bool:
        """Whether the board's session is ours."""
        return self._port is not None

    def take(self, place: str, address: str) -> None:
        """Opens the session for a place. Raises an orvane.Error, and is not held then."""
        key = self._locks.keys.key_for(self._id, place)
        self._next = time.monotonic() + _PAUSE
        try:
            self._port = self._open(key, address)
        except Refused:
            self.state = f"refused since {_now()}: a session of somebody else is open on {self._id}"
            raise
        self.key = key
        self.state = f"held for place {place}"

    def mind(self, place: Optional[str], address: str) -> None:
        """To be called now and then while the board is there: takes what is due to a place, finds out whether a lock
        that was lost or refused can be had again. Waits two seconds for the board at most, and seldom."""
        nothing_due = self._port is None and place is None and self.state == "free"
        if nothing_due or time.monotonic() < self._next:
            return
        self._next = time.monotonic() + _PAUSE
        try:
            if self._port is not None:
                self._keep(place)
            elif place is not None:
                self.take(place, address)
            else:
                self._look_whether_free(address)
        except Refused:
            pass  # said so by the state
        except Error as problem:
            self.state = f"not known: {problem.args[0]}"

    def give_back(self, there: bool) -> None:
        """Closes the session; when the board is not there, in the background. Whether others have left sessions on the
        board is found out by mind()."""
        port, self._port, self.key = self._port, None, None
        self._locks.keys.forget(self._id)
        if port is not None:
            self.state = "released"
            self._next = 0.0
            if there:
                _closed(port)
            else:
                threading.Thread(target=_closed, args=(port,), name="orvane-labgrid-close", daemon=True).start()

    def _look_whether_free(self, address: str) -> None:
        try:
            self._open(None, address).close()
        except Refused:
            if not self.state.startswith(("refused", "stale")):
                self.state = f"stale since {_now()}: a session of a program that has ended, or of somebody else, is " \
                             f"open on {self._id}"
            raise
        self.state = "free"

    def _keep(self, place: Optional[str]) -> None:
        assert self._port is not None
        phy = self._port.phy(self._phy)
        if phy.is_open:
            self.state = f"held for place {place}"
            return
        try:
            phy.open(within=_PATIENCE)
        except Refused:
            self.state = f"lost since {_now()}: a session of somebody else is open on {self._id}"
            raise

    def _open(self, key: Optional[int], address: str) -> Port:
        self._locks.rack.know(self._device, address)
        port = self._locks.rack.open(self._name, exclusive=True if key is None else key, within=_PATIENCE)
        try:
            port.phy(self._phy).open(within=_PATIENCE)
        except Error:
            port.close()
            raise
        return port


def _closed(port: Port) -> None:
    try:
        port.close()
    except Error:
        pass  # the board keeps the session, or is gone with it


def _now() -> str:
    return time.strftime("%H:%M:%S")
