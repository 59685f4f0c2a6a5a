"""One PHY of a port: its registers, and the services of its board."""
from __future__ import annotations

from collections import abc
from typing import Any, Callable, Optional, Tuple, Union, cast, overload

import numpy
import numpy.typing

from orvane import _aio, _orvane
from orvane.batch import Batch, BatchResult
from orvane.codes import SmbusProtocol, Space
from orvane.limits import USUAL, WithinLike, limits_of
from orvane.names import NamesOfPhy
from orvane.registers import Register, RegisterLike, check_value, clause45, register_at
from orvane.services import Services

__all__ = ["Phy", "Routed"]

Values = numpy.typing.NDArray[Any]
_LIMITS = limits_of(USUAL)


class Phy(NamesOfPhy, Services):
    """The registers of a PHY.

    phy[1, 2]                     a register of Clause 45, as an int
    phy[30, 0xC010] = 0xCAFE      writes it
    phy[clause22(2)]              registers of the other spaces
    phy[1, 0:16]                  a row of registers, as a numpy array
    phy["AN.STATUS.LINK"]         a register or field by its name in the map in use
    phy.AN.STATUS.LINK            the same, to be read, written, completed
    phy.read(1, range(4096))      the same, with limits of its own if need be

    The session is opened by the first use. Any thread may use it; calls on one board take turns. What was not read
    is not returned: a failure is an orvane.Error.
    """

    def __init__(self, core: _orvane.Phy, port: str, number: int) -> None:
        self._core = core
        self._name = f"{port} PHY {number}"
        self._id = number

    @property
    def id(self) -> int:
        """PHY id, or the SMBus device's address."""
        return self._id

    def __repr__(self) -> str:
        return f"<orvane.Phy {self._name}>"

    def _session(self) -> _orvane.Phy:
        return self._core

    @overload
    def read(self, where: RegisterLike, number: None = None, *, within: WithinLike = None) -> int: ...
    @overload
    def read(self, where: abc.Iterable[RegisterLike], number: None = None, *, within: WithinLike = None) -> Values: ...
    @overload
    def read(self, where: int, number: int, *, within: WithinLike = None) -> int: ...
    @overload
    def read(self, where: int, number: range, *, within: WithinLike = None) -> Values: ...

    def read(self, where: Union[RegisterLike, abc.Iterable[RegisterLike], int],
             number: Union[int, range, None] = None, *, within: WithinLike = None) -> Union[int, Values]:
        """Reads registers: one as an int, several as a numpy array of uint16 (uint32 of the 32-bit extension).

        read(1, 2), read((1, 2)), read(clause22(2)); read(1, range(32)), read([(1, 2), clause22(3)])

        Blocks of any length are cut into what a board takes at once.
        """
        limits = limits_of(within)
        if isinstance(where, tuple) and number is None:
            return self._core.read(*register_at(where), limits)  # type: ignore[arg-type]
        if isinstance(number, range):
            return self._read_row(where, number, limits)  # type: ignore[arg-type]
        if number is not None:
            return self._core.read(*clause45(where, number), limits)  # type: ignore[arg-type]
        batch = Batch()
        readings = batch.read_all(where)  # type: ignore[arg-type]
        return BatchResult(self._core.run(batch._core, limits), batch._registers)[readings]

    def _read_row(self, mmd: int, numbers: range, limits: _orvane.Limits) -> Values:
        if not numbers:
            return numpy.empty(0, numpy.uint16)
        first, _ = clause45(mmd, numbers[0]), clause45(mmd, numbers[-1])
        return self._core.read_row(*first, numbers.step, len(numbers), limits)

    def write(self, where: RegisterLike, value: int, *, within: WithinLike = None) -> None:
        """Writes a register."""
        register = register_at(where)
        check_value(register, value)
        self._core.write(*register, value, limits_of(within))

    def modify(self, where: RegisterLike, mask: int, value: int, *, within: WithinLike = None) -> int:
        """Replaces the bits of `mask` by those of `value`; returns what was written.

        No other call of this process comes between the read and the write.
        """
        register = register_at(where)
        check_value(register, mask)
        check_value(register, value)
        return self._core.modify(*register, mask, value, limits_of(within))

    def __getitem__(self, key: Union[RegisterLike, Tuple[int, slice], str]) -> Any:
        if type(key) is tuple and len(key) == 2:
            mmd, number = cast(Tuple[int, Any], key)
            if type(mmd) is type(number) is int and 0 <= mmd <= 31 and 0 <= number <= 0xFFFF:  # the usual, made quick
                return self._core.read(Space.C45, mmd, number, _LIMITS)
            if isinstance(number, slice):
                return self._read_row(mmd, _row(number), _LIMITS)
            return self._core.read(*clause45(mmd, number), _LIMITS)
        if isinstance(key, str):
            return self._core.named_read(key, _LIMITS)
        return self._core.read(*register_at(key), _LIMITS)  # type: ignore[arg-type]

    def __setitem__(self, key: Union[RegisterLike, Tuple[int, slice], str],
                    value: Union[int, str, abc.Sequence[int]]) -> None:
        if isinstance(key, str):
            self._place(key).write(value)  # type: ignore[arg-type]
        elif type(key) is tuple and len(key) == 2 and isinstance(key[1], slice):
            self._write_row(key[0], _row(key[1]), value)  # type: ignore[arg-type]
        else:
            self.write(key, value)  # type: ignore[arg-type]

    def _write_row(self, mmd: int, numbers: range, values: abc.Sequence[int]) -> None:
        if len(values) != len(numbers):
            raise ValueError(f"{len(values)} values for {len(numbers)} registers")
        batch = Batch()
        for number, value in zip(numbers, values):
            batch.write((mmd, number), int(value))
        failure = self.run(batch).failure
        if failure is not None:
            raise failure

    def run(self, batch: Batch, *, within: WithinLike = None) -> BatchResult:
        """Carries a batch out. What went wrong with the board is in the result; nothing is raised for it."""
        return BatchResult(self._core.run(batch._core, limits_of(within)), list(batch._registers))

    async def aread(self, mmd_or_register: Union[RegisterLike, int], number: Optional[int] = None, *,
                    within: WithinLike = None) -> int:
        """read() of one register for asyncio: any number may be under way, and no thread is needed."""
        register = _one(mmd_or_register, number)
        limits = limits_of(within)
        value = await _aio.start(lambda flight, token: flight.read(token, self._core, *register, limits))
        return int(value)

    async def awrite(self, where: RegisterLike, value: int, *, within: WithinLike = None) -> None:
        """write() for asyncio."""
        register = register_at(where)
        check_value(register, value)
        limits = limits_of(within)
        await _aio.start(lambda flight, token: flight.write(token, self._core, *register, value, limits))

    async def arun(self, batch: Batch, *, within: WithinLike = None) -> BatchResult:
        """run() for asyncio; not on SMBus ports."""
        limits = limits_of(within)
        done = await _aio.start(lambda flight, token: flight.run(token, self._core, batch._core, limits))
        return BatchResult(done, list(batch._registers))

    def routed(self, *, read_classes: bool = True, write_paged: bool = True, read_paged: bool = True, tge: bool = True,
               serdes: bool = True, over_clause22: bool = False) -> Routed:
        """The same PHY by the paths that its indirect registers ask for.

        The first five say what is left to the PHY's firmware; the last carries all of Clause 45 over registers 13
        and 14 of Clause 22.
        """
        core = _orvane.Routed(self._core, (read_classes, write_paged, read_paged, tge, serdes), over_clause22)
        return Routed(core, self._name)

    def open(self, *, within: WithinLike = None) -> None:
        """Opens the session now; otherwise its first use does."""
        self._core.open(limits_of(within))

    def close(self, *, within: WithinLike = None) -> None:
        """Closes the session, also for those who share it. The next use opens it again."""
        self._core.close(limits_of(within))

    @property
    def is_open(self) -> bool:
        """Whether the session is open."""
        return self._core.is_open

    @property
    def key(self) -> int:
        """The session's key as the board gave it; 0 when there is none, or the session is not open."""
        return self._core.key

    def together(self, work: Callable[[], object], *, within: WithinLike = None) -> None:
        """Calls work() with no other call of this process on the board in between; what it raises leaves here.

        `within` bounds the wait for the board's turn only.
        """
        self._core.together(work, limits_of(within))

    def on_reopen(self, hook: Optional[Callable[[], object]]) -> None:
        """Called after the board lost the session and it was opened again, before the call that noticed goes on: to
        restore what the board forgot. What it raises leaves that call. None: no more."""
        self._core.on_reopen(hook)

    def set_smbus_protocol(self, protocol: SmbusProtocol) -> None:
        """How 32-bit registers are reached on an SMBus port; PAGED16 at first."""
        self._core.set_smbus_protocol(protocol)


class Routed:
    """Registers of a PHY by mailbox, bridge, window or pages, whichever MMD and register ask for."""

    __slots__ = ("_core", "_name")

    def __init__(self, core: _orvane.Routed, name: str) -> None:
        self._core = core
        self._name = name

    def __repr__(self) -> str:
        return f"<orvane.Routed {self._name}>"

    def read(self, mmd: int, number: int, *, within: WithinLike = None) -> int:
        """The value of a register of Clause 45."""
        clause45(mmd, number)
        return self._core.read(mmd, number, limits_of(within))

    def write(self, where: Tuple[int, int], value: int, *, within: WithinLike = None) -> None:
        """Writes a register of Clause 45."""
        check_value(clause45(*where), value)
        self._core.write(*where, value, limits_of(within))

    def modify(self, where: Tuple[int, int], mask: int, value: int, *, within: WithinLike = None) -> int:
        """Replaces the bits of `mask` by those of `value`; returns what was written."""
        check_value(clause45(*where), mask)
        check_value(clause45(*where), value)
        return self._core.modify(*where, mask, value, limits_of(within))

    def __getitem__(self, where: Tuple[int, int]) -> int:
        return self.read(*where)

    def __setitem__(self, where: Tuple[int, int], value: int) -> None:
        self.write(where, value)


def _one(where: Union[RegisterLike, int], number: Optional[int]) -> Register:
    if number is None:
        return register_at(where)  # type: ignore[arg-type]
    return clause45(where, number)  # type: ignore[arg-type]


def _row(part: slice) -> range:
    """The registers of phy[mmd, first:end:step]; `end` is left out, as everywhere in Python."""
    if part.stop is None:
        raise ValueError("a row of registers needs an end: phy[mmd, first:end]")
    return range(part.start or 0, part.stop, part.step or 1)
