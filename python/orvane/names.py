"""Registers and fields by the names of a register map, and snapshots of many."""
from __future__ import annotations

import html
import os
import typing
from collections import abc
from typing import Any, List, Optional, Tuple, Union

from orvane import _orvane
from orvane.limits import WithinLike, limits_of
from orvane.registers import RegisterLike, check_value, register_at
from orvane.tables import marked, table

__all__ = ["Change", "Decoded", "Diff", "Map", "NamesOfPhy", "Place", "Restored", "Snapshot"]


class Decoded(typing.NamedTuple):
    """What a value of a register means."""

    name: str
    address: str
    value: int
    fields: List[Tuple[str, int, str]]
    """names, raw values and the same in words, most significant first"""

    def __str__(self) -> str:
        return "\n".join([f"{self.name} ({self.address}) = 0x{self.value:04X}",
                          *(f"    {name} {text}" for name, _, text in self.fields)])


class Map:
    """A register map: names, fields and meanings. Map.load(file), Map.ieee8023()."""

    def __init__(self, core: _orvane.Map) -> None:
        self._core = core

    @classmethod
    def load(cls, path: Union[str, os.PathLike[str]]) -> Map:
        """Reads a file and those that it includes. Raises MapError with everything that is wrong with them."""
        return cls(_orvane.Map.load(os.fspath(path)))

    @classmethod
    def parse(cls, text: str, name: str = "map") -> Map:
        """The map of a file's text, such as that of to_json(); `name` stands for it in problems. Built-in maps are all
        that it may include. Raises MapError."""
        return cls(_orvane.Map.parse(text, name))

    @classmethod
    def ieee8023(cls) -> Map:
        """The registers of IEEE 802.3, which a PHY has unless it was told to use others."""
        return cls(_orvane.Map.ieee8023())

    @property
    def name(self) -> str:
        """The map's name."""
        return self._core.name

    def __len__(self) -> int:
        return len(self._core)

    def __repr__(self) -> str:
        return f"<orvane.Map {self.name}, {len(self)} registers>"

    def __contains__(self, name: str) -> bool:
        return self._core.address_of(name) is not None

    def decode(self, where: Union[RegisterLike, str], value: int) -> Decoded:
        """What a value means, read long ago or elsewhere: decode("AN.STATUS", 0x29), decode((7, 1), 0x29).

        Raises KeyError for what is no register of the map, ValueError for what is none at all.
        """
        if isinstance(where, str):
            known = self._core.decode_named(where, value)
            near = self._core.suggestion(where) if known is None else ""
        else:
            register = register_at(where)
            check_value(register, value)
            known, near = self._core.decode_at(*register, value), ""
        if known is None:
            raise KeyError(f"{self.name} has no register {where}" + (f"; is {near} meant?" if near else ""))
        return Decoded(*known)

    def to_json(self) -> str:
        """The whole map as one file of the source form; what it includes is worked in."""
        return self._core.to_json()

    def match(self, pattern: str) -> List[str]:
        """Names that match: '*' is any text without a dot, '**' any text, '?' a character."""
        return self._core.match(pattern)

    def search(self, words: str) -> List[str]:
        """Names of what has every word in its name or text."""
        return self._core.search(words)


class Place:
    """A block, register or field. Nothing is read before it is asked for.

    int(place), place.read()      the raw value
    place.text()                  in words
    place.NAME, place[2]          what is in it; an element
    place.NAME = 1                writes that: a number, or the name of a choice
    """

    __slots__ = ("_core", "_phy", "_name")

    _core: _orvane.Phy
    _phy: str
    _name: str

    def __init__(self, core: _orvane.Phy, phy: str, name: str) -> None:
        object.__setattr__(self, "_core", core)
        object.__setattr__(self, "_phy", phy)
        object.__setattr__(self, "_name", name)

    def __repr__(self) -> str:
        address = self._core.map().address_of(self._name)
        return f"<{self._phy} {self._name}{' at ' + address if address else ''}>"

    def read(self, *, within: WithinLike = None) -> int:
        """The raw value."""
        return self._core.named_read(self._name, limits_of(within))

    def __int__(self) -> int:
        return self.read()

    __index__ = __int__

    def scaled(self, *, within: WithinLike = None) -> float:
        """In the field's unit."""
        return self._core.named_scaled(self._name, limits_of(within))

    def text(self, *, within: WithinLike = None) -> str:
        """In words: a choice's name or the value with its unit, and what a latched bit tells."""
        return self._core.named_text(self._name, limits_of(within))

    def twice(self, *, within: WithinLike = None) -> Tuple[int, int]:
        """Two reads in one block: what a latched bit held, and what it holds."""
        return self._core.named_twice(self._name, limits_of(within))

    def write(self, value: Union[int, str], *, within: WithinLike = None) -> None:
        """Writes a raw value, or a choice by its name. The bits beside a field keep what they hold."""
        if isinstance(value, str):
            self._core.named_write_choice(self._name, value, limits_of(within))
        elif not 0 <= value <= 0xFFFFFFFFFFFFFFFF:
            raise ValueError(f"value {value} is out of range: {self._name} takes 0 or more")
        else:
            self._core.named_write(self._name, value, limits_of(within))

    def write_scaled(self, value: float, *, within: WithinLike = None) -> None:
        """Writes a value in the field's unit, to the nearest."""
        self._core.named_write_scaled(self._name, value, limits_of(within))

    def __getattr__(self, name: str) -> Place:
        return _inner(self._core, self._phy, f"{self._name}.{name}", name)

    def __setattr__(self, name: str, value: Union[int, str]) -> None:
        _inner(self._core, self._phy, f"{self._name}.{name}", name).write(value)

    def __getitem__(self, index: int) -> Place:
        return _inner(self._core, self._phy, f"{self._name}[{index}]", str(index))

    def __dir__(self) -> abc.Iterable[str]:
        return [*object.__dir__(self), *_members(self._core, f"{self._name}.")]


class NamesOfPhy:
    """What a PHY knows of names."""

    _core: _orvane.Phy
    _name: str

    def use(self, register_map: Union[Map, str, os.PathLike[str]]) -> None:
        """From now on names are those of a map, or of its file."""
        known = register_map if isinstance(register_map, Map) else Map.load(register_map)
        self._core.use(known._core)

    @property
    def map(self) -> Map:
        """The map in use; that of IEEE 802.3 unless another one was said."""
        return Map(self._core.map())

    def snapshot(self, *names: str, side_effects: bool = False, within: WithinLike = None) -> Snapshot:
        """Reads every register of blocks, registers or patterns ("**" unless told) that is safe to read, in blocks.

        With side_effects, also those that a read changes.
        """
        return Snapshot(self._core.snapshot(list(names) or ["**"], side_effects, limits_of(within)))

    def restore(self, snapshot: Snapshot, *, within: WithinLike = None) -> Restored:
        """Writes the writable registers of a snapshot and reads them back."""
        written, not_taken = self._core.restore(snapshot._core, limits_of(within))
        return Restored(written, Diff(Change(*each) for each in not_taken))

    def _place(self, name: str) -> Place:
        return Place(self._core, self._name, name)

    def __getattr__(self, name: str) -> Place:
        return _inner(self._core, self._name, name, name)

    def __setattr__(self, name: str, value: Any) -> None:
        if name.startswith("_"):
            object.__setattr__(self, name, value)
        else:
            _inner(self._core, self._name, name, name).write(value)

    def __dir__(self) -> abc.Iterable[str]:
        return [*object.__dir__(self), *_members(self._core, "")]


class Change(typing.NamedTuple):
    """A field that is not the same in two snapshots."""

    name: str
    before: int
    after: int
    text: str
    """in words: "CHIP.CONTROL.SPEED: 100 Mb/s -> 1000 Mb/s\""""

    def __str__(self) -> str:
        return self.text


class Diff(List[Change]):
    """The fields that differ. In notebooks a table of their registers with all fields, the changed ones marked."""

    def __init__(self, changes: abc.Iterable[Change] = (), before: Optional[Snapshot] = None,
                 after: Optional[Snapshot] = None) -> None:
        super().__init__(changes)
        self._sides = (before, after)

    def __str__(self) -> str:
        return "\n".join(each.text for each in self) or "no difference"

    def _repr_html_(self) -> str:
        before, after = self._sides
        if before is None or after is None:
            return table(("field", "before", "after"),
                         ((each.name, *each.text[len(each.name) + 2:].split(" -> ", 1)) for each in self))
        changed = {each.name for each in self}
        return table(("register", "address", "before", "after"),
                     ((name, address, _fields(name, was, changed), _fields(name, after._registers[name], changed))
                      for name, was in before._registers.items() for address in (was.address,)
                      if name in changed or any(f"{name}.{field}" in changed for field, _, _ in was.fields)))


class Restored(typing.NamedTuple):
    """What a restore did."""

    written: int
    """registers"""
    not_taken: Diff
    """`before`: what was to be written, `after`: what was read back"""


class Snapshot(abc.Mapping[str, int]):
    """Values of registers by their names."""

    def __init__(self, core: _orvane.Snapshot) -> None:
        self._core = core
        self._registers = {each[0]: Decoded(*each) for each in core.decoded()}

    @property
    def left_out(self) -> List[str]:
        """Registers that were not read: a read would change them or tell nothing, or no board reaches them."""
        return self._core.left_out()

    def diff(self, later: Snapshot) -> Diff:
        """The fields that differ, of registers that both have."""
        return Diff((Change(*each) for each in self._core.diff(later._core)), self, later)

    def __getitem__(self, name: str) -> int:
        return self._registers[name].value

    def __iter__(self) -> abc.Iterator[str]:
        return iter(self._registers)

    def __len__(self) -> int:
        return len(self._registers)

    def __repr__(self) -> str:
        return f"<orvane.Snapshot of {len(self)} registers>"

    def __str__(self) -> str:
        return "\n".join(f"{name} = 0x{each.value:04X}" for name, each in self._registers.items())

    def _repr_html_(self) -> str:
        return table(("register", "address", "value", "fields"),
                     ((name, each.address, f"0x{each.value:04X}",
                       ", ".join(f"{field} {text}" for field, _, text in each.fields))
                      for name, each in self._registers.items()))


def _fields(register: str, held: Decoded, changed: abc.Set[str]) -> marked:
    """A register's value and fields as a cell, with what has changed marked."""
    def mark(text: str, name: str) -> str:
        return f"<mark>{html.escape(text)}</mark>" if name in changed else html.escape(text)
    fields = (mark(f"{field} {text}", f"{register}.{field}") for field, _, text in held.fields)
    return marked(", ".join([mark(f"0x{held.value:04X}", register), *fields]))


def _members(core: _orvane.Phy, beginning: str) -> List[str]:
    """How a name goes on, as attributes; elements of arrays are no attributes, their array is."""
    found = (each[len(beginning):].rstrip(".").partition("[")[0] for each in core.map().complete(beginning))
    return list(dict.fromkeys(found))


def _inner(core: _orvane.Phy, phy: str, full: str, name: str) -> Place:
    known: Optional[_orvane.Map] = None if name.startswith("_") else core.map()
    if known is not None and (known.address_of(full) is not None or known.complete(full + ".")
                              or known.complete(full + "[")):
        return Place(core, phy, full)
    near = known.suggestion(full) if known is not None else ""
    raise AttributeError(f"there is no {full}" + (f"; is {near} meant?" if near else ""))
