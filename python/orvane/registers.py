"""Addresses of registers.

A register of Clause 45 is the pair (mmd, number); clause22() and ext32() name those of the other spaces.
"""
from __future__ import annotations

import typing
from typing import Tuple, Union

from orvane.codes import Space

__all__ = ["Register", "RegisterLike", "clause22", "clause45", "ext32"]


class Register(typing.NamedTuple):
    """A register of a PHY in one of its three spaces. Made by clause45(), clause22() and ext32(), which check it."""

    space: Space
    mmd: int
    number: int

    def __str__(self) -> str:
        if self.space is Space.C45:
            return f"{self.mmd}.0x{self.number:04X}"
        return f"c22.{self.number}" if self.space is Space.C22 else f"ext32.0x{self.number:08X}"

    def __repr__(self) -> str:
        if self.space is Space.C45:
            return f"clause45({self.mmd}, 0x{self.number:04X})"
        return f"clause22({self.number})" if self.space is Space.C22 else f"ext32(0x{self.number:08X})"

    @property
    def limit(self) -> int:
        """The largest value that it can hold."""
        return 0xFFFFFFFF if self.space is Space.EXT32 else 0xFFFF


RegisterLike = Union[Register, Tuple[int, int]]
"""A Register, or (mmd, number) for one of Clause 45."""


def clause45(mmd: int, number: int) -> Register:
    """The register `number`, 0 to 0xFFFF, of an MMD, 0 to 31."""
    if not 0 <= mmd <= 31:
        raise ValueError(f"MMD {mmd} is out of range: MMDs are 0 to 31")
    if not 0 <= number <= 0xFFFF:
        raise ValueError(f"register {number:#x} is out of range: registers of an MMD are 0 to 0xFFFF")
    return Register(Space.C45, mmd, number)


def clause22(number: int) -> Register:
    """The register `number`, 0 to 31, of Clause 22."""
    if not 0 <= number <= 31:
        raise ValueError(f"register {number} is out of range: Clause 22 registers are 0 to 31")
    return Register(Space.C22, 0, number)


def ext32(address: int) -> Register:
    """The word at an address, 0 to 0xFFFFFFFF, of the 32-bit extension."""
    if not 0 <= address <= 0xFFFFFFFF:
        raise ValueError(f"address {address:#x} is out of range: the 32-bit extension is 0 to 0xFFFFFFFF")
    return Register(Space.EXT32, 0, address)


def register_at(where: RegisterLike) -> Register:
    """The Register that `where` stands for."""
    if isinstance(where, Register):
        return where
    if isinstance(where, tuple) and len(where) == 2:
        return clause45(*where)
    raise TypeError(f"a register is (mmd, number), clause22(number) or ext32(address), not {where!r}")


def check_value(where: Register, value: int) -> None:
    """Raises ValueError for what the register cannot hold."""
    if not 0 <= value <= where.limit:
        raise ValueError(f"value {value:#x} is out of range: register {where} holds 0 to {where.limit:#x}")


def check_range(name: str, value: int, most: int, *, least: int = 0) -> int:
    """`value`, or ValueError when it is not `least` to `most`."""
    if not least <= value <= most:
        raise ValueError(f"{name} {value} is out of range: {least} to {most}")
    return value
