"""Which boards an exporter tells of: found at addresses or by a search, again and again."""
from __future__ import annotations

import atexit
import dataclasses
import fnmatch
import ipaddress
import re
import threading
from collections import abc
from typing import Dict, List, Optional, Tuple

from orvane.errors import Error
from orvane.limits import Cancellation, Within
from orvane.rack import FoundBoard, Rack

__all__ = ["FoundPort", "Scout", "addresses_of"]

_MOST = 4096  # addresses


@dataclasses.dataclass(frozen=True)
class FoundPort:
    """A PHY of a board that answered."""

    device: str
    address: str
    port: int
    phy: int
    identifier: Optional[int]
    """registers 2 and 3 of the PHY's PMA, if they could be read"""
    more: Tuple[Tuple[str, str], ...] = ()
    """tags that the exporter was told"""
    kind: str = ""
    """the board's type, as it says when it is looked for"""

    def tags(self) -> Dict[str, str]:
        """As labgrid's reservations can ask for them: lower-case letters, digits, underscores."""
        kind = {"board": self.kind} if self.kind else {}
        told = {**kind, **dict(self.more), "serial": self.device, "port": str(self.port), "phy": str(self.phy)}
        if self.identifier is not None:
            told["phy_id"] = f"{self.identifier:08x}"
        return {name: re.sub("[^a-z0-9_]", "_", value.lower()) for name, value in told.items()}


def addresses_of(text: str) -> Optional[List[str]]:
    """The addresses of "10.0.0.5", "10.0.0.5-20" or "10.0.0.0/28"; None: it is none of these. ValueError: too many."""
    row = re.fullmatch(r"(\d+\.\d+\.\d+\.)(\d+)-(\d+)", text)
    if row is not None:
        first, last = int(row[2]), int(row[3])
        return [str(ipaddress.IPv4Address(f"{row[1]}{number}")) for number in range(first, last + 1)]
    if not re.fullmatch(r"[\d.]+(/\d+)?", text):
        return None
    network = ipaddress.IPv4Network(text)
    if network.num_addresses > _MOST:
        raise ValueError(f"{text}: {network.num_addresses} addresses are too many, {_MOST} at most")
    return [str(each) for each in network.hosts()]


class Scout:
    """Looks for ports whose names fit, and keeps in mind what it has found. Any thread may ask it."""

    def __init__(self, rack: Rack, patterns: abc.Sequence[str], addresses: abc.Sequence[str], phys: abc.Sequence[int],
                 pause: float = 5.0, tags: abc.Mapping[str, str] = {}) -> None:
        self._rack = rack
        self._patterns = [each.upper() for each in patterns] or ["*:0"]
        self._addresses = list(addresses)
        self._phys = list(phys)
        self._pause = pause
        self._tags = tuple(tags.items())
        self._lock = threading.Lock()
        self._found: Dict[Tuple[str, int, int], FoundPort] = {}
        self._ends = threading.Event()
        self._cancellation = Cancellation()

    def found(self) -> List[FoundPort]:
        """Every port that has answered by now, where it answered last; by serial number."""
        with self._lock:
            return [self._found[key] for key in sorted(self._found)]

    def start(self) -> None:
        """Looks from now on, on a thread of its own, until the program ends."""
        thread = threading.Thread(target=self._run, name="orvane-labgrid-scout", daemon=True)
        thread.start()

        def end() -> None:
            self._ends.set()
            self._cancellation.cancel()
            thread.join()

        atexit.register(end)

    def look(self) -> List[FoundPort]:
        """One round; found() after it."""
        within = Within(2.0 if self._addresses else 1.0, cancellation=self._cancellation)
        try:
            boards = self._rack.ask(*self._addresses, within=within) if self._addresses else \
                self._rack.discover(within=within)
        except Error:
            return self.found()  # no network for now
        for board in boards:
            for port in board.ports:
                if any(fnmatch.fnmatchcase(f"{board.serial}:{port}", pattern) for pattern in self._patterns):
                    for phy in self._phys:
                        self._note(board, port, phy)
        return self.found()

    def _run(self) -> None:
        while not self._ends.is_set():
            self.look()
            self._ends.wait(self._pause)

    def _note(self, board: FoundBoard, port: int, phy: int) -> None:
        known = self._found.get((board.serial, port, phy))
        identifier = known.identifier if known is not None else None
        if identifier is None:
            identifier = self._identifier(board, port, phy)
        with self._lock:
            self._found[board.serial, port, phy] = FoundPort(board.serial, board.address, port, phy, identifier,
                                                             self._tags, board.kind)

    def _identifier(self, board: FoundBoard, port: int, phy: int) -> Optional[int]:
        try:
            self._rack.know(board.serial, board.address)
            with self._rack.open(f"{board.serial}:{port}", within=1.0) as opened:
                high, low = opened.phy(phy).read([(1, 2), (1, 3)], within=1.0)
        except Error:  # held by somebody, or not a PHY: asked again in the next round
            return None
        return int(high) << 16 | int(low)
