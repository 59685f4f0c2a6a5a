"""Who answers at the addresses of boards: one thread that asks all of them at once, again and again."""
from __future__ import annotations

import atexit
import threading
import time
import weakref
from collections import abc
from typing import Dict, FrozenSet, List, Optional, Set

from orvane.errors import Error
from orvane.limits import Cancellation, Within
from orvane.rack import FoundBoard, Rack

__all__ = ["BoardWatch"]

_PATIENCE = 2.0  # seconds that an answer may take


class BoardWatch:
    """Keeps in mind which ports answer where. Any thread may use it; nothing of it waits but next_round().

    A board counts as there when it says its own name at its address: another board that took the address is not it.
    Nothing is sent to other addresses, unless a board without an address is watched: then boards are searched for.
    """

    def __init__(self, pause: float = 1.0) -> None:
        self._pause = pause
        self._changed = threading.Condition()
        self._wanted: Set[str] = set()
        self._searches = False
        self._rounds = 0
        self._there: Dict[str, FrozenSet[str]] = {}
        self._where: Dict[str, str] = {}
        self._hurry = threading.Event()
        self._ends = False
        self._cancellation = Cancellation()
        self._thread: Optional[threading.Thread] = None

    def ask_at(self, address: str) -> None:
        """From the next round on this address is asked, too; "": boards are searched for."""
        with self._changed:
            if address:
                self._wanted.add(address)
            else:
                self._searches = True
            if self._thread is None:
                self._thread = threading.Thread(target=self._run, name="orvane-labgrid-watch", daemon=True)
                self._thread.start()
                atexit.register(_end, weakref.ref(self))

    def answers(self, device: str, port: int, address: str) -> bool:
        """Whether the board said its name there in the last round, and has that port."""
        with self._changed:
            return f"{device.upper()}:{port}" in self._there.get(address or self._where.get(device.upper(), ""), ())

    def where(self, device: str) -> Optional[str]:
        """The address at which a board answered last."""
        with self._changed:
            return self._where.get(device.upper())

    def next_round(self, within: float = 10.0) -> bool:
        """Waits until every address that is known now was asked; False when that took too long."""
        with self._changed:
            due = self._rounds + 2  # the round under way may have begun without it
            while not self._ends and self._rounds < due:
                self._hurry.set()
                before, begun = self._rounds, time.monotonic()
                if not self._changed.wait_for(lambda: self._rounds > before or self._ends, within):
                    return False
                within -= time.monotonic() - begun
            return True

    def close(self) -> None:
        """Asks nobody any more."""
        self._ends = True
        self._hurry.set()
        self._cancellation.cancel()
        if self._thread is not None:
            self._thread.join()

    def _run(self) -> None:
        with Rack() as rack:
            while not self._ends:
                found = self._round(rack)
                there: Dict[str, Set[str]] = {}
                for board in found:
                    there.setdefault(board.address, set()).update(f"{board.serial}:{port}" for port in board.ports)
                with self._changed:
                    self._there = {address: frozenset(ports) for address, ports in there.items()}
                    self._where.update((board.serial, board.address) for board in found)
                    self._rounds += 1
                    self._changed.notify_all()
                self._hurry.wait(self._pause)
                self._hurry.clear()

    def _round(self, rack: Rack) -> List[FoundBoard]:
        with self._changed:
            wanted, searches = sorted(self._wanted), self._searches
        within = Within(_PATIENCE, cancellation=self._cancellation)
        found: List[FoundBoard] = []
        try:
            if wanted:
                found += rack.ask(*wanted, within=within)
            if searches:
                found += rack.discover(within=Within(1.0, cancellation=self._cancellation))
        except Error:
            pass  # no network, or the end: nobody is there
        return found


def _end(watch: abc.Callable[[], Optional[BoardWatch]]) -> None:
    left = watch()
    if left is not None:
        left.close()
