"""A board's services beside its registers, through the session of a PHY.

What a board should not do twice is sent once unless `within` says otherwise.
"""
from __future__ import annotations

from collections import abc
import typing
from typing import Any, Dict, List, Optional

import numpy
import numpy.typing

from orvane import _orvane
from orvane.limits import ONCE, WithinLike, limits_of
from orvane.registers import check_range
from orvane.tables import plot, table

__all__ = ["Adc", "Capture", "CommandOutcome", "ErrorRecord", "Gpio", "I2c", "Jtag", "Mdio", "Services", "Shell",
           "Shift", "Thermal", "ThermalChannel", "Transfer"]


class Transfer(typing.NamedTuple):
    """One transfer of an I2C block: what to write, or how many bytes to read."""

    bus: int
    device: int
    register: int
    register_bytes: int = 1
    """bytes of the register number, 0 to 4"""
    length: int = 0
    """bytes to read"""
    data: bytes = b""
    """bytes to write"""


class Shift(typing.NamedTuple):
    """One shift of a JTAG chain: texts of "0" and "1"."""

    data: str = ""
    tms: str = ""
    last_tms: str = ""


class CommandOutcome(typing.NamedTuple):
    """What a command on the board came to."""

    status: int
    output: bytes
    errors: bytes


class ErrorRecord(typing.NamedTuple):
    """What a board has on record for one of its codes; the numbers are the board's own."""

    kind: int
    """0 to 255"""
    detail: int


class _Service:
    __slots__ = ("_core",)

    def __init__(self, core: _orvane.Phy) -> None:
        self._core = core

    def __repr__(self) -> str:
        return f"<orvane service {type(self).__name__}>"


class I2c(_Service):
    """I2C buses of the board, 0 to 9. Device addresses have 7 bits."""

    __slots__ = ()

    def write(self, bus: int, device: int, data: bytes, *, within: WithinLike = None) -> None:
        """Writes bytes to a device."""
        self._core.i2c_write(_bus(bus), _device(device), list(data), limits_of(within, ONCE))

    def read(self, bus: int, device: int, command: int, length: int, *, within: WithinLike = None) -> bytes:
        """Writes the byte `command`, then reads 1 to 255 bytes."""
        check_range("command", command, 0xFF)
        check_range("length", length, 255, least=1)
        return bytes(self._core.i2c_read(_bus(bus), _device(device), command, length, limits_of(within, ONCE)))

    def read_register(self, bus: int, device: int, register: int, register_bytes: int, length: int, *,
                      within: WithinLike = None) -> bytes:
        """The same with a register number of 0 to 4 bytes."""
        check_range("register", register, 0xFFFFFFFF)
        check_range("bytes of a register number", register_bytes, 4)
        check_range("length", length, 255, least=1)
        return bytes(self._core.i2c_read_register(_bus(bus), _device(device), register, register_bytes, length,
                                                  limits_of(within, ONCE)))

    def read_block(self, transfers: abc.Iterable[Transfer], *, within: WithinLike = None) -> bytes:
        """All transfers in one call, in order, until the first that fails: the bytes of all reads."""
        return bytes(self._core.i2c_read_block(_plain(transfers), limits_of(within, ONCE)))

    def write_block(self, transfers: abc.Iterable[Transfer], mask: Optional[int] = None, *,
                    within: WithinLike = None) -> None:
        """All transfers in one call; with a mask, only its bits are changed."""
        if mask is None:
            self._core.i2c_write_block(_plain(transfers), limits_of(within, ONCE))
        else:
            check_range("mask", mask, 0xFF)
            self._core.i2c_write_block_masked(_plain(transfers), mask, limits_of(within, ONCE))


class Gpio(_Service):
    """General-purpose lines by their indexes: gpio[3] reads one, gpio[3] = 1 writes it."""

    __slots__ = ()

    def read(self, lines: abc.Sequence[int], *, within: WithinLike = None) -> List[int]:
        """The states of lines, 0 or 1."""
        return self._core.gpio_read(_lines(lines), limits_of(within))

    def write(self, lines: abc.Sequence[int], states: abc.Sequence[int], *, within: WithinLike = None) -> None:
        """As many states as lines."""
        self._core.gpio_write(_lines(lines), _states(states), limits_of(within))

    def enable_output(self, lines: abc.Sequence[int], enables: abc.Sequence[int], *, within: WithinLike = None) -> None:
        """Makes lines outputs (1) or inputs (0)."""
        self._core.gpio_enable_output(_lines(lines), _states(enables), limits_of(within))

    def output_enables(self, lines: abc.Sequence[int], *, within: WithinLike = None) -> List[int]:
        """Which lines are outputs."""
        return self._core.gpio_output_enables(_lines(lines), limits_of(within))

    def set_default(self, lines: abc.Sequence[int], *, within: WithinLike = None) -> None:
        """Brings lines to the board's defaults."""
        self._core.gpio_set_default(_lines(lines), limits_of(within))

    def reset(self, *, within: WithinLike = None) -> None:
        """Resets the bank."""
        self._core.gpio_reset(limits_of(within))

    def bit_bang(self, first: abc.Sequence[int], second: abc.Sequence[int], third: abc.Sequence[int], *,
                 within: WithinLike = None) -> List[int]:
        """Three lists of one length, as the board's service defines them; as many states back."""
        return self._core.gpio_bit_bang(_lines(first), _lines(second), _lines(third), limits_of(within, ONCE))

    def __getitem__(self, line: int) -> int:
        return self.read([line])[0]

    def __setitem__(self, line: int, state: int) -> None:
        self.write([line], [state])


class Jtag(_Service):
    """The board's JTAG chain."""

    __slots__ = ()

    def max_bytes(self, *, within: WithinLike = None) -> int:
        """The longest shift that the board accepts, in bytes."""
        return self._core.jtag_max_bytes(limits_of(within))

    def shift(self, *shifts: Shift, within: WithinLike = None) -> List[str]:
        """Shifts in one call; each result is as long as its `tms`."""
        return self._core.jtag_shift([(each.data, each.tms, each.last_tms) for each in shifts], limits_of(within, ONCE))


class Capture(numpy.ndarray[Any, numpy.dtype[numpy.uint8]]):
    """Samples of an analogue input, in units of the converter: a numpy array that notebooks show as a curve."""

    def _repr_html_(self) -> str:
        curve = plot(numpy.asarray(self).ravel(), "sample", "units of the converter") if self.size else None
        if curve is not None:
            return curve
        told = (str(self.size), *(str(getattr(self, each)()) if self.size else "" for each in ("min", "mean", "max")))
        return table(("samples", "least", "mean", "most"), [told])


class Adc(_Service):
    """The board's capture of analogue inputs."""

    __slots__ = ()

    def capture(self, count: int, *, channels: int = 1, within: WithinLike = None) -> Capture:
        """Initializes, chooses channels (a bit for each), starts, takes up to `count` samples and stops.

        Samples are units of the converter, 0 to 255; of several channels they take turns. Each step has the limits of
        `within`.
        """
        check_range("channels", channels, 0xFFFFFFFF)
        check_range("count", count, 0xFFFFFFFF)
        limits = limits_of(within, ONCE)
        self._core.adc_initialize(limits)
        self._core.adc_set_channel_mask(channels, limits)
        self._core.adc_start(limits)
        try:
            return self._core.adc_data(count, limits).view(Capture)
        finally:
            self._core.adc_stop(limits)

    def initialize(self, *, within: WithinLike = None) -> None:
        """Brings the capture to its beginning."""
        self._core.adc_initialize(limits_of(within, ONCE))

    def start(self, *, within: WithinLike = None) -> None:
        """Starts capturing."""
        self._core.adc_start(limits_of(within, ONCE))

    def stop(self, *, within: WithinLike = None) -> None:
        """Stops capturing; what was not taken is gone."""
        self._core.adc_stop(limits_of(within, ONCE))

    def set_channels(self, mask: int, *, within: WithinLike = None) -> None:
        """Chooses channels, a bit for each."""
        check_range("mask", mask, 0xFFFFFFFF)
        self._core.adc_set_channel_mask(mask, limits_of(within, ONCE))

    def set_dump_file(self, name: str, *, within: WithinLike = None) -> None:
        """The file on the board that samples are kept in."""
        self._core.adc_set_dump_file(name, limits_of(within, ONCE))

    def set_event_name(self, name: str, *, within: WithinLike = None) -> None:
        """The name of the next event."""
        self._core.adc_set_event_name(name, limits_of(within, ONCE))

    def data(self, count: int, *, within: WithinLike = None) -> Capture:
        """Up to `count` samples; what was read is gone from the board."""
        check_range("count", count, 0xFFFFFFFF)
        return self._core.adc_data(count, limits_of(within, ONCE)).view(Capture)

    def max_adc(self, *, within: WithinLike = None) -> bytes:
        """The largest sample of each channel."""
        return bytes(self._core.adc_max(limits_of(within, ONCE)))

    def events(self, *, within: WithinLike = None) -> bytes:
        """The board's list of events."""
        return bytes(self._core.adc_events(limits_of(within, ONCE)))


class Thermal(_Service):
    """The board's temperature control, in degrees Celsius: thermal[0].target = 85.0.

    The first use of a channel connects to the unit.
    """

    __slots__ = ("_connected", "_channels")

    def __init__(self, core: _orvane.Phy) -> None:
        super().__init__(core)
        self._connected = False
        self._channels: Dict[int, ThermalChannel] = {}

    def connect(self, *, within: WithinLike = None) -> None:
        """Connects to the unit."""
        self._core.thermal_connect(limits_of(within))
        self._connected = True

    def disconnect(self, *, within: WithinLike = None) -> None:
        """Leaves the unit. The next use of a channel connects again."""
        self._connected = False
        self._core.thermal_disconnect(limits_of(within))

    def state(self, *, within: WithinLike = None) -> int:
        """As the board's service numbers them."""
        return self._core.thermal_state(limits_of(within))

    def stop(self, *, within: WithinLike = None) -> None:
        """Ends the control of all channels."""
        self._core.thermal_stop(limits_of(within))

    def __getitem__(self, channel: int) -> ThermalChannel:
        check_range("channel", channel, 0xFFFFFFFF)
        return self._channels.setdefault(channel, ThermalChannel(self, channel))

    def _connect_once(self) -> _orvane.Phy:
        if not self._connected:
            self.connect()
        return self._core


class ThermalChannel:
    """One channel of the temperature control."""

    __slots__ = ("_unit", "_number", "_target")

    def __init__(self, unit: Thermal, number: int) -> None:
        self._unit = unit
        self._number = number
        self._target: Optional[float] = None

    def __repr__(self) -> str:
        return f"<orvane.ThermalChannel {self._number}>"

    @property
    def target(self) -> Optional[float]:
        """The temperature to reach; setting it starts the control. None until it was set here: the board does not
        tell."""
        return self._target

    @target.setter
    def target(self, celsius: float) -> None:
        self.set(celsius, flag=1)

    def set(self, celsius: float, *, flag: int = 0, default: bool = False, within: WithinLike = None) -> None:
        """Sets the temperature, with the service's flag, or the default one."""
        check_range("flag", flag, 0xFF)
        if not -273.15 <= celsius <= _HOTTEST:
            raise ValueError(f"temperature {celsius} is out of range: -273.15 to {_HOTTEST:.3g} degrees Celsius")
        core = self._unit._connect_once()
        send = core.thermal_set_default if default else core.thermal_set
        send(self._number, float(celsius), flag, limits_of(within))
        if not default:
            self._target = float(celsius)

    @property
    def temperature(self) -> float:
        """What is measured now."""
        return self._unit._connect_once().thermal_temperature(self._number, limits_of(None))

    def settled(self, *, within: WithinLike) -> float:
        """What is measured when it has settled. Answered only then: allow for it."""
        return self._unit._connect_once().thermal_settled(self._number, limits_of(within))

    def start(self, *, within: WithinLike = None) -> None:
        """Starts the control."""
        self._unit._connect_once().thermal_start(self._number, limits_of(within))


class Shell(_Service):
    """Commands on the board itself, and whether it answers."""

    __slots__ = ()

    def run(self, command: str, *, seconds: int = 10) -> CommandOutcome:
        """Runs a command, which the board ends after so many whole seconds. Other calls on the board wait."""
        return CommandOutcome(*self._core.shell_run(command, check_range("seconds", seconds, 0xFFFFFFFF)))

    def ping(self, *, within: WithinLike = None) -> float:
        """The time that the board's answer took, in seconds. Needs no session."""
        return self._core.shell_ping(limits_of(within))

    def ping_session(self, *, within: WithinLike = None) -> float:
        """The same through the session, which is opened if need be, over TCP."""
        return self._core.shell_ping_session(limits_of(within))

    def ping_keep_alive(self, *, within: WithinLike = None) -> float:
        """The same by the service that keeps sessions alive, over UDP."""
        return self._core.shell_ping_keep_alive(limits_of(within))

    def error_record(self, code: int, *, within: WithinLike = None) -> ErrorRecord:
        """What the board has on record for one of its codes, a negative errno value; zeros when it has nothing."""
        check_range("code", code, 0, least=-0x80000000)
        return ErrorRecord(*self._core.shell_error_record(code, limits_of(within)))

    def services(self, *, within: WithinLike = None) -> Dict[str, int]:
        """The ports (1 to 65535) of the board's services by name: "mdio", "setup", ... ; those that it runs."""
        return self._core.shell_services(limits_of(within))

    @property
    def address(self) -> str:
        """Where the board is: a dotted IPv4 address. Nothing is sent."""
        return self._core.shell_address()


class Mdio(_Service):
    """How the board talks to a PHY over MDIO, and what of it is no plain register access. For MDIO ports."""

    __slots__ = ()

    def flush(self, *, within: WithinLike = None) -> None:
        """Empties the board's queue."""
        self._core.mdio_flush(limits_of(within))

    def set_single_wire(self, on: bool, *, within: WithinLike = None) -> None:
        """Whether one wire carries both directions."""
        self._core.mdio_set_single_wire(on, limits_of(within))

    def set_preamble_count(self, bits: int, *, within: WithinLike = None) -> None:
        """Bits of preamble."""
        self._core.mdio_set_preamble_count(check_range("bits", bits, 0xFFFFFFFF), limits_of(within))

    def read_next(self, *, within: WithinLike = None) -> int:
        """Moves the address register of the 32-bit extension on, and reads the word there."""
        return self._core.mdio_read_next(limits_of(within, ONCE))

    def write_next(self, value: int, *, within: WithinLike = None) -> None:
        """Moves the address register on, and writes the word there."""
        self._core.mdio_write_next(check_range("value", value, 0xFFFFFFFF), limits_of(within, ONCE))

    def read_current(self, *, within: WithinLike = None) -> int:
        """The word at the address register."""
        return self._core.mdio_read_current(limits_of(within))

    def write_current(self, value: int, *, within: WithinLike = None) -> None:
        """Writes the word at the address register."""
        self._core.mdio_write_current(check_range("value", value, 0xFFFFFFFF), limits_of(within))

    def request_interrupt(self, first: int, second: int, third: int, fourth: int, *,
                          within: WithinLike = None) -> int:
        """Asks for interrupts, as the board's service defines the numbers."""
        return self._core.mdio_request_interrupt(
            check_range("first", first, 0xFF), check_range("second", second, 0xFF),
            check_range("third", third, 0x7FFFFFFF, least=-0x80000000),
            check_range("fourth", fourth, 0x7FFFFFFF, least=-0x80000000), limits_of(within))

    def wait_for_interrupt(self, value: int, *, within: WithinLike = None) -> int:
        """Waits for one; the board's answer."""
        return self._core.mdio_wait_for_interrupt(check_range("value", value, 0xFFFFFFFF), limits_of(within, ONCE))

    def interrupt_processed(self, value: int, *, within: WithinLike = None) -> int:
        """Tells the board that one was dealt with."""
        return self._core.mdio_interrupt_processed(check_range("value", value, 0xFFFFFFFF), limits_of(within))

    def release_interrupt(self, value: int, *, within: WithinLike = None) -> int:
        """Asks for no more."""
        return self._core.mdio_release_interrupt(check_range("value", value, 0xFFFFFFFF), limits_of(within))


class Services:
    """What has a session gives out the services of its board."""

    _thermal: Optional[Thermal] = None

    def _session(self) -> _orvane.Phy:
        raise NotImplementedError

    @property
    def i2c(self) -> I2c:
        """I2C buses."""
        return I2c(self._session())

    @property
    def gpio(self) -> Gpio:
        """General-purpose lines."""
        return Gpio(self._session())

    @property
    def jtag(self) -> Jtag:
        """The JTAG chain."""
        return Jtag(self._session())

    @property
    def adc(self) -> Adc:
        """Capture of analogue inputs."""
        return Adc(self._session())

    @property
    def thermal(self) -> Thermal:
        """Temperature control."""
        if self._thermal is None:
            self._thermal = Thermal(self._session())
        return self._thermal

    @property
    def shell(self) -> Shell:
        """Commands on the board."""
        return Shell(self._session())

    @property
    def mdio(self) -> Mdio:
        """The MDIO bus's own switches."""
        return Mdio(self._session())


_HOTTEST = 3.4e38  # that fits into what is sent


def _bus(number: int) -> int:
    return check_range("bus", number, 9)


def _device(address: int) -> int:
    return check_range("device", address, 0x7F)


def _lines(lines: abc.Sequence[int]) -> List[int]:
    return [check_range("line", each, 0xFF) for each in lines]


def _states(states: abc.Sequence[int]) -> List[int]:
    return [check_range("state", each, 1) for each in states]


def _plain(transfers: abc.Iterable[Transfer]) -> List[Any]:
    return [(_bus(each.bus), _device(each.device), check_range("register", each.register, 0xFFFFFFFF),
             check_range("bytes of a register number", each.register_bytes, 4),
             check_range("length", each.length, 255), list(each.data)) for each in transfers]
