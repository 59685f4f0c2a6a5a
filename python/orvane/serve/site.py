"""What a server shows: the rack, maps, logs, runs; and whether it may write."""
from __future__ import annotations

import dataclasses
from typing import Dict, List, Optional

from orvane.rack import Rack
from orvane.serve.fleet import Fleet
from orvane.serve.logs import LogFile
from orvane.serve.maps import KnownMap
from orvane.serve.registers import PhyPollers
from orvane.serve.sessions import Sessions
from orvane.serve.topics import Hub

__all__ = ["Site", "Wishes"]


@dataclasses.dataclass(frozen=True)
class Wishes:
    """What the command line asked for."""

    boards: List[str] = dataclasses.field(default_factory=list)
    """patterns of serial numbers; none: every board"""
    addresses: List[str] = dataclasses.field(default_factory=list)
    """of boards that searches do not find"""
    maps: List[KnownMap] = dataclasses.field(default_factory=list)
    logs: List[str] = dataclasses.field(default_factory=list)
    runs: List[str] = dataclasses.field(default_factory=list)
    write: bool = False


class Site:
    """Everything that viewers share. Made in the event loop."""

    def __init__(self, wishes: Wishes, rack: Optional[Rack] = None) -> None:
        self.wishes = wishes
        self.rack = rack or Rack()
        self.sessions = Sessions(self.rack)
        self.hub = Hub()
        self.fleet = Fleet(self.sessions, wishes.boards, wishes.addresses)
        self.pollers = PhyPollers(self.sessions)
        self.maps: Dict[str, KnownMap] = {each.map.name: each for each in wishes.maps}
        self.logs = [LogFile(each) for each in wishes.logs]
        self.viewers = 0
        self.messages = 0
        """updates sent"""

    def close(self) -> None:
        """Asks no board any more."""
        self.fleet.close()
        self.sessions.end()
