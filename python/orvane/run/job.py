"""What a run does with boards, wherever they are: on this host, or on others that it is sent to."""
from __future__ import annotations

import dataclasses
import fnmatch
import importlib
import pickle
from typing import Any, Dict, List, Optional, Tuple

from orvane.names import Map
from orvane.phy import Phy
from orvane.rack import Port, Rack
from orvane.run.environment import identity_of
from orvane.run.point import OnBoard
from orvane.run.recipe import RecipeError
from orvane.run.recorder import BoardIdentity
from orvane.run.steps import Steps

__all__ = ["Job", "Policy"]

_OPEN = 15.0
_PATTERN = set("*?[")


@dataclasses.dataclass(frozen=True)
class Policy:
    """What is done about failures."""

    retries: int = 2
    """attempts of a point after the first"""
    patience: float = 60.0
    """seconds that a board which is gone is waited for"""
    safe_within: float = 30.0
    """seconds for the safe state of all boards"""


@dataclasses.dataclass(frozen=True)
class Job:
    """Which boards, how they are opened, and the steps."""

    boards: Tuple[str, ...]
    """names or patterns of ports"""
    phy: int
    map: Optional[Map]
    sessions: Dict[str, Any]
    """exclusive and shared, as in Rack.open(); True stands for the run's own key"""
    firmware: Tuple[str, ...]
    steps: Steps
    policy: Policy

    def named(self) -> List[str]:
        """The ports that `boards` names without a pattern."""
        return [each.upper() for each in self.boards if not set(each) & _PATTERN]

    def find(self, rack: Rack) -> List[str]:
        """The ports that `boards` names. Raises RecipeError for a board that is there twice."""
        patterns = [each for each in self.boards if set(each) & _PATTERN]
        ports = self.named()
        if patterns:
            found = rack.discover()
            serials = [each.serial for each in found]
            for board in found:
                names = [f"{board.serial}:{number}" for number in board.ports]
                chosen = [name for name in names if any(fnmatch.fnmatchcase(name, each.upper()) for each in patterns)]
                if chosen and serials.count(board.serial) > 1:
                    where = ", ".join(each.address for each in found if each.serial == board.serial)
                    raise RecipeError(f"boards: there are several {board.serial}, at {where}")
                ports += chosen
        return list(dict.fromkeys(ports))

    def port(self, rack: Rack, name: str, key: int, within: float = _OPEN) -> Port:
        """A port of it. Opens no session. Raises orvane.Error."""
        sessions = {mode: key if wanted is True and key else wanted for mode, wanted in self.sessions.items()}
        return rack.open(name, **sessions, within=within)

    def phy_of(self, port: Port, within: float = _OPEN) -> Phy:
        """Its PHY, which knows the map's names, with its session. Raises orvane.Error."""
        phy = port.phy(self.phy)
        if self.map is not None:
            phy.use(self.map)
        phy.open(within=within)
        return phy

    def identity(self, on: OnBoard, within: float = _OPEN) -> BoardIdentity:
        """What the board is now. Raises orvane.Error, and what the identity step raises."""
        step = self.steps.identity
        return identity_of(on, None if step is None else step.function, self.firmware, within)

    def packed(self) -> bytes:
        """It as bytes for another host. Raises RecipeError for steps that cannot be sent there."""
        plain = {each.name: getattr(self, each.name) for each in dataclasses.fields(self)}
        plain["map"] = None if self.map is None else (self.map.to_json(), self.map.name)
        try:
            packed: bytes = importlib.import_module("cloudpickle").dumps(plain)
        except Exception as problem:  # whatever the user's objects raise
            raise RecipeError(f"the steps cannot be sent to other hosts: {problem}") from problem
        return packed

    @classmethod
    def unpacked(cls, packed: bytes) -> Job:
        """That of packed()."""
        plain: Dict[str, Any] = pickle.loads(packed)
        plain["map"] = None if plain["map"] is None else Map.parse(*plain["map"])
        return cls(**plain)
