"""What a run would send: its steps are carried out on a board that only writes down what it is asked for."""
from __future__ import annotations

import threading
from typing import TYPE_CHECKING, Any, Callable, Dict

import numpy

from orvane.limits import Cancellation
from orvane.names import Map
from orvane.rack import Port
from orvane.run.point import OnBoard, Point
from orvane.run.steps import Step

if TYPE_CHECKING:
    from orvane.run.run import Run as _Run

__all__ = ["print_steps"]

_LISTS = ("i2c_read", "i2c_read_register", "i2c_read_block", "gpio_read", "gpio_output_enables", "adc_max",
          "adc_events", "jtag_shift", "gpio_bit_bang")
_SPACES = {1: "clause 22", 2: "ext32"}


def print_steps(run: _Run, tell: Callable[[str], object] = print) -> None:
    """Prints what each step would send, in order. What is read is 0, so that a step may go another way than on a
    board."""
    plan = run.plan()
    for port, tasks in plan.tasks.items():
        on = _board(run, port, tell)
        set_up: Dict[Step, Dict[str, Any]] = {}
        for task in tasks:
            for step in (*run.steps.shared, *run.steps.setups):
                chosen = step.chosen(task.conditions)
                if set_up.get(step) != chosen:
                    set_up[step] = chosen
                    tell(f"{port} {step.name} {_conditions(chosen)}".rstrip())
                    if step in run.steps.setups:
                        step.function(on, **chosen)
            assert run.steps.point is not None
            tell(f"{port} {run.steps.point.name} {_conditions(task.conditions)}")
            point = Point(on, task.conditions, task.repeat, 1)
            run.steps.point.function(point, **run.steps.point.chosen(task.conditions))
            tell(f"  records {', '.join(point.values) or 'nothing'}")
        if run.steps.safe is not None:
            tell(f"{port} {run.steps.safe.name}")
            run.steps.safe.function(on)


def _conditions(chosen: Any) -> str:
    return ", ".join(f"{name} {value}" for name, value in chosen.items())


def _board(run: _Run, name: str, tell: Callable[[str], object]) -> OnBoard:
    board, _, number = name.partition(":")
    core = _WrittenDown((run.map or Map.ieee8023())._core, tell)
    port = Port(_PortWrittenDown(board, int(number), core), "dry run")  # type: ignore[arg-type]
    return OnBoard(port, port.phy(run.phy), threading.Event())


class _PortWrittenDown:
    """In place of the module's Port."""

    def __init__(self, board: str, number: int, phy: _WrittenDown) -> None:
        self.board = board
        self.number = number
        self._phy = phy

    def phy(self, number: int) -> _WrittenDown:
        return self._phy

    def close(self) -> None:
        pass


class _WrittenDown:
    """In place of the module's Phy: every method is a line, and gives zeros of the kind that it gives."""

    def __init__(self, register_map: Any, tell: Callable[[str], object]) -> None:
        self._map = register_map
        self._tell = tell
        self.is_open = True
        self.key = 0

    def map(self) -> Any:
        return self._map

    def use(self, register_map: Any) -> None:
        self._map = register_map

    def read(self, space: int, mmd: int, number: int, limits: Any) -> int:
        self._tell(f"  read {_register(space, mmd, number)}")
        return 0

    def write(self, space: int, mmd: int, number: int, value: int, limits: Any) -> None:
        self._tell(f"  write {_register(space, mmd, number)} {value:#06x}")

    def modify(self, space: int, mmd: int, number: int, mask: int, value: int, limits: Any) -> int:
        self._tell(f"  modify {_register(space, mmd, number)} bits {mask:#06x} to {value:#06x}")
        return value

    def read_row(self, space: int, mmd: int, first: int, step: int, count: int, limits: Any) -> Any:
        self._tell(f"  read {count} from {_register(space, mmd, first)}")
        return numpy.zeros(count, numpy.uint16)

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


def _register(space: int, mmd: int, number: int) -> str:
    return f"{_SPACES[space]} {number:#06x}" if space in _SPACES else f"{mmd}.{number:#06x}"


def _is_plain(argument: Any) -> bool:
    return isinstance(argument, (int, float, str, list, tuple, bytes)) and not isinstance(argument, Cancellation)


def _nothing(name: str, arguments: Any) -> Any:
    """What a method gives when nothing is known."""
    if name in ("named_text",):
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
    if name in ("snapshot", "restore", "run"):
        raise NotImplementedError(f"{name}: a dry run cannot tell what it would do")
    return 0
