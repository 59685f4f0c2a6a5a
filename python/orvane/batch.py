"""Register accesses that are carried out together, in order, and what became of each."""
from __future__ import annotations

from collections import abc
from typing import Any, Dict, List, Optional, Tuple, Union, overload

import numpy
import numpy.typing

from orvane import _orvane
from orvane.codes import OperationState
from orvane.errors import Error
from orvane.registers import Register, RegisterLike, check_value, register_at

__all__ = ["Batch", "BatchResult", "Outcome", "Reading", "Readings"]


class Reading:
    """One read of a batch: result[reading] is its value."""

    __slots__ = ("index", "register")

    def __init__(self, index: int, register: Register) -> None:
        self.index = index
        self.register = register

    def __repr__(self) -> str:
        return f"<read of {self.register}, operation {self.index}>"


class Readings:
    """Several reads of a batch: result[readings] is an array of their values."""

    __slots__ = ("first", "count", "wide")

    def __init__(self, first: int, count: int, wide: bool) -> None:
        self.first = first
        self.count = count
        self.wide = wide

    def __repr__(self) -> str:
        return f"<{self.count} reads, from operation {self.first} on>"


class Batch:
    """A list of reads and writes, of any length and any mix. It is cut into what a board takes at once by Phy.run().

    >>> batch = Batch()
    >>> batch.write((30, 0x10), 0x1234)
    >>> one = batch.read((30, 0x10))
    >>> result = phy.run(batch)
    >>> result[one]
    4660
    """

    def __init__(self) -> None:
        self._core = _orvane.Batch()
        self._registers: List[Register] = []
        self._written: Dict[int, int] = {}

    def __reduce__(self) -> Tuple[Any, ...]:
        return _again, (self._registers, self._written)

    def read(self, where: RegisterLike) -> Reading:
        """Adds a read of one register."""
        register = register_at(where)
        self._registers.append(register)
        return Reading(self._core.read(*register), register)

    def read_all(self, registers: abc.Iterable[RegisterLike]) -> Readings:
        """Adds a read of each of the registers."""
        all_of_them = [register_at(each) for each in registers]
        first = len(self._core)
        for each in all_of_them:
            self._core.read(*each)
        self._registers += all_of_them
        return Readings(first, len(all_of_them), any(each.limit > 0xFFFF for each in all_of_them))

    def write(self, where: RegisterLike, value: int) -> None:
        """Adds a write."""
        register = register_at(where)
        check_value(register, value)
        self._core.write(*register, value)
        self._written[len(self._registers)] = value
        self._registers.append(register)

    def __len__(self) -> int:
        return len(self._registers)

    def __repr__(self) -> str:
        return f"<orvane.Batch of {len(self)} operations>"


def _again(registers: List[Register], written: Dict[int, int]) -> Batch:
    batch = Batch()
    for index, register in enumerate(registers):
        if index in written:
            batch.write(register, written[index])
        else:
            batch.read(register)
    return batch


class Outcome:
    """What became of one operation."""

    __slots__ = ("register", "state", "value", "code")

    def __init__(self, register: Register, state: OperationState, value: Optional[int], code: int) -> None:
        self.register = register
        self.state = state
        self.value = value
        """what was read or written; None unless it was done"""
        self.code = code
        """the board's code when it refused, else 0"""

    def __repr__(self) -> str:
        told = f" 0x{self.value:04X}" if self.value is not None else f" {self.code}" if self.code else ""
        return f"<{self.register}: {self.state.name.lower().replace('_', ' ')}{told}>"


class BatchResult:
    """The outcomes of a batch, in its order: result.outcome(0), len(result), result[reading]."""

    def __init__(self, core: _orvane.BatchResult, registers: List[Register]) -> None:
        self._registers = registers
        self.states: numpy.typing.NDArray[numpy.uint8] = core.states
        """an OperationState for each operation"""
        self._values = core.values
        self._codes = core.codes
        self.failure: Optional[Error] = core.failure
        """the first thing that went wrong; None when every operation was done"""

    @property
    def complete(self) -> bool:
        """Whether every operation was done."""
        return self.failure is None

    def outcome(self, index: int) -> Outcome:
        """What became of one operation."""
        state = OperationState(int(self.states[index]))
        value = int(self._values[index]) if state is OperationState.DONE else None
        return Outcome(self._registers[index], state, value, int(self._codes[index]))

    @overload
    def __getitem__(self, reading: Reading) -> int: ...
    @overload
    def __getitem__(self, reading: Readings) -> numpy.typing.NDArray[Any]: ...

    def __getitem__(self, reading: Union[Reading, Readings]
                    ) -> Union[int, numpy.typing.NDArray[Any]]:
        """What was read. Raises the failure when it was not."""
        first, count = (reading.first, reading.count) if isinstance(reading, Readings) else (reading.index, 1)
        if first + count > len(self):
            raise IndexError("a reading of another batch")
        if self.failure is not None and (self.states[first:first + count] != OperationState.DONE).any():
            raise self.failure.with_traceback(None)
        if isinstance(reading, Reading):
            return int(self._values[first])
        values = self._values[first:first + count]
        return values.copy() if reading.wide else values.astype(numpy.uint16)

    def __len__(self) -> int:
        return len(self._registers)

    def __repr__(self) -> str:
        done = int((self.states == OperationState.DONE).sum())
        tail = "" if self.failure is None else f": {self.failure}"
        return f"<orvane.BatchResult: {done} of {len(self)} operations done{tail}>"
