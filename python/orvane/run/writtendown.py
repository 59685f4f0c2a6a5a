"""A board that writes down what it is asked for, and has zeros for an answer."""
from __future__ import annotations

import threading
from typing import Any, Callable, Optional, Tuple

import numpy

from orvane import _orvane
from orvane.codes import OperationState
from orvane.limits import Cancellation
from orvane.names import Map
from orvane.phy import Phy, Routed
from orvane.rack import Port
from orvane.run.point import OnBoard

__all__ = ["board_written_down"]

Tell = Callable[[str], object]
_LISTS = ("i2c_read", "i2c_read_register", "i2c_read_block", "gpio_read", "gpio_output_enables", "adc_max",
          "adc_events", "jtag_shift", "gpio_bit_bang")
_BY_FIRMWARE = ("read_classes", "write_paged", "read_paged", "tge", "serdes")
"""of Phy.routed()"""


def board_written_down(name: str, phy: int, names: Map, tell: Tell) -> OnBoard:
    """The port of that name, for the steps of a run: each access is told as a line, with the names of the map."""
    board, _, number = name.partition(":")
    port = _Port(_PortCore(board, int(number), _PhyCore(names._core, tell)), "dry run")  # type: ignore[arg-type]
    return OnBoard(port, port.phy(phy), threading.Event())


class _Port(Port):
    def phy(self, number: int) -> Phy:
        known = self._phys.get(number)
        if known is None:
            known = self._phys[number] = _Phy(self._core.phy(number), self.name, number)
        return known


class _Phy(Phy):
    def routed(self, **ways: bool) -> Routed:
        by_firmware = tuple(ways.get(each, True) for each in _BY_FIRMWARE)
        core = _RoutedCore(self._core, by_firmware, ways.get("over_clause22", False))  # type: ignore[arg-type]
        return Routed(core, self._name)  # type: ignore[arg-type]


class _PortCore:
    """In place of the module's Port."""

    def __init__(self, board: str, number: int, phy: _PhyCore) -> None:
        self.board = board
        self.number = number
        self._phy = phy

    def phy(self, number: int) -> _PhyCore:
        return self._phy

    def close(self) -> None:
        pass


class _ResultCore:
    """In place of the module's BatchResult: everything was done, 0 was read."""

    def __init__(self, batch: _orvane.Batch) -> None:
        self.values = batch.written()
        self.states = numpy.full(len(batch), OperationState.DONE, numpy.uint8)
        self.codes = numpy.zeros(len(batch), numpy.int32)
        self.failure = None


class _PhyCore:
    """In place of the module's Phy: every method is a line, and gives zeros of the kind that it gives."""

    def __init__(self, names: _orvane.Map, tell: Tell) -> None:
        self._map = names
        self._tell = tell
        self.is_open = True
        self.key = 0

    def map(self) -> _orvane.Map:
        return self._map

    def use(self, names: _orvane.Map) -> None:
        self._map = names

    def tell(self, batch: _orvane.Batch, pages: int = 0) -> None:
        """A line for each operation. The last ones, which put pages back, are one: what is not known stands there."""
        lines = _orvane.plan(batch, self._map).splitlines()
        for line in lines[:len(lines) - pages]:
            self._tell(f"  {line}".rstrip())
        if pages:
            self._tell("  and the pages as they were")

    def read(self, space: int, mmd: int, number: int, limits: Any) -> int:
        batch = _orvane.Batch()
        batch.read(space, mmd, number)
        self.tell(batch)
        return 0

    def write(self, space: int, mmd: int, number: int, value: int, limits: Any) -> None:
        batch = _orvane.Batch()
        batch.write(space, mmd, number, value)
        self.tell(batch)

    def modify(self, space: int, mmd: int, number: int, mask: int, value: int, limits: Any) -> int:
        self.read(space, mmd, number, limits)
        self.write(space, mmd, number, value & mask, limits)
        return value & mask

    def read_row(self, space: int, mmd: int, first: int, step: int, count: int, limits: Any) -> Any:
        self._tell(f"  read  {count} from {mmd}.0x{first:04X}{f', each {step}th' if step != 1 else ''}")
        return numpy.zeros(count, numpy.uint16)

    def run(self, batch: _orvane.Batch, limits: Any) -> _ResultCore:
        self.tell(batch)
        return _ResultCore(batch)

    def together(self, work: Callable[[], object], limits: Any) -> None:
        work()

    def snapshot(self, names: list[str], side_effects: bool, limits: Any) -> _orvane.Snapshot:
        taken = self._map.blank(names, side_effects)
        self.tell(*taken.reads())
        return taken

    def restore(self, snapshot: _orvane.Snapshot, limits: Any) -> Tuple[int, list[Any]]:
        batch, pages = snapshot.writes_to_restore()
        self.tell(batch, pages)
        return len(batch), []

    def named_write(self, name: str, value: int, limits: Any) -> None:
        self._tell(f"  write {name} = {value}")

    def named_write_choice(self, name: str, choice: str, limits: Any) -> None:
        self._tell(f"  write {name} = {choice}")

    def named_write_scaled(self, name: str, value: float, limits: Any) -> None:
        self._tell(f"  write {name} = {value}")

    def adc_data(self, count: int, limits: Any) -> Any:
        self._tell(f"  adc data {count}")
        return numpy.zeros(count, numpy.uint8)

    def __getattr__(self, name: str) -> Callable[..., Any]:
        if name.startswith("__"):
            raise AttributeError(name)

        def asked(*arguments: Any) -> Any:
            told = [repr(each) for each in arguments if _is_plain(each)]
            self._tell(f"  {name.replace('named_', '').replace('_', ' ')} {', '.join(told)}".rstrip())
            return _nothing(name, arguments)

        return asked


class _RoutedCore:
    """In place of the module's Routed: the steps of the path that it would take."""

    def __init__(self, phy: _PhyCore, by_firmware: Tuple[bool, ...], over_clause22: bool) -> None:
        self._phy = phy
        self._ways = by_firmware, over_clause22

    def _steps(self, mmd: int, number: int, value: Optional[int] = None) -> None:
        self._phy.tell(_orvane.routed_steps(mmd, number, value, *self._ways))

    def read(self, mmd: int, number: int, limits: Any) -> int:
        self._steps(mmd, number)
        return 0

    def write(self, mmd: int, number: int, value: int, limits: Any) -> None:
        self._steps(mmd, number, value)

    def modify(self, mmd: int, number: int, mask: int, value: int, limits: Any) -> int:
        self._steps(mmd, number)
        self._steps(mmd, number, value & mask)
        return value & mask


def _is_plain(argument: Any) -> bool:
    return isinstance(argument, (int, float, str, list, tuple, bytes)) and not isinstance(argument, Cancellation)


def _nothing(name: str, arguments: Any) -> Any:
    """What a method gives when nothing is known."""
    if name in ("named_text", "shell_address"):
        return "0"
    if name == "named_twice":
        return 0, 0
    if name in ("thermal_temperature", "thermal_settled", "named_scaled", "shell_ping"):
        return 0.0
    if name == "shell_run":
        return 0, b"", b""
    if name in _LISTS:
        count = next((each for each in reversed(arguments) if isinstance(each, int)), 1)
        return [0] * (len(arguments[0]) if isinstance(arguments[0], list) else count)
    return 0
