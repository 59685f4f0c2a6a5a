"""Register maps as pages need them: lists to choose from, and what fields mean."""
from __future__ import annotations

from typing import Any, Dict, List, Optional, Sequence

from orvane.codes import Space
from orvane.names import Map
from orvane.registers import Register
from orvane.serve.registers import Target

__all__ = ["KnownMap", "load"]

_LISTED = 5_000
_SPACES = {"c45": Space.C45, "c22": Space.C22, "ext32": Space.EXT32}


class KnownMap:
    """A map, with its registers by name."""

    def __init__(self, map_: Map) -> None:
        self.map = map_
        self._registers = {each[0]: each for each in map_._core.registers()}

    def list(self, words: str) -> Dict[str, Any]:
        """Registers that have every word in name, field or text, as [name, address, bits, access, safe to read,
        readable, writable]; of many, the first."""
        names: Sequence[str] = list(self._registers)
        if words.strip():
            found = {self._register_of(each) for each in self.map.search(words)}
            names = [each for each in names if each in found]
        shown = (self._registers[each] for each in names[:_LISTED])
        return {"total": len(names), "registers": [[each[0], each[1], *each[6:]] for each in shown]}

    def describe(self, names: Sequence[str]) -> Dict[str, Any]:
        """What the map says of registers, by name."""
        return {name: self.map._core.describe(name) for name in names if name in self._registers}

    def is_safe(self, name: str) -> bool:
        """Whether a read changes nothing and tells something; ValueError when there is no such register."""
        told = self._told(name)
        return bool(told[8] and told[9])

    def target(self, name: str) -> Target:
        """How a register is read."""
        _, _, space, mmd, number, paged, bits, *_ = self._told(name)
        if paged or bits > 32 or space not in _SPACES or (bits > 16 and space != "ext32"):
            return Target(name, None)
        return Target(name, Register(_SPACES[space], mmd, number))

    def _told(self, name: str) -> Any:
        told = self._registers.get(name)
        if told is None:
            near = self.map._core.suggestion(name)
            meant = f"; is {near} meant?" if near else ""
            raise ValueError(f"there is no register {name} in {self.map.name}{meant}")
        return told

    def _register_of(self, name: str) -> Optional[str]:
        """The register that a name is, or is in."""
        while name and name not in self._registers:
            name = name.rpartition(".")[0]
        return name or None


def load(files: Sequence[str]) -> List[KnownMap]:
    """Those of the files, and that of the standard."""
    return [KnownMap(Map.load(each)) for each in files] + [KnownMap(Map.ieee8023())]
